#pragma once

#include <gmock/gmock.h>

#include <chrono>
#include <cstdlib>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "host/remote/RemoteStores.h"
#include "ole/os/OS.h"
#include "tests/fakes/Gate.h"
#include "tests/fakes/LogRecorder.h"
#include "tests/support/HttpServer.h"
#include "tests/support/TemporaryFolder.h"

namespace test {

/// A server, and remote stores in force. Their clock stands still until a test moves it.
class RemoteFixture : public ::testing::Test {
protected:
    using Name = LightweightString<wchar_t>;

    RemoteFixture() {
        setenv("no_proxy", "127.0.0.1", 1);
        limits_.connect = limits_.firstByte = limits_.stall = limits_.query = patience;
        install();
    }

    static Name wide(std::string const& text) {
        return fromUTF8(text.c_str(), static_cast<int>(text.size()));
    }
    static HttpScript file(std::string const& body) {
        HttpScript script;
        script.body = body;
        return script;
    }
    static HttpScript status(int number) {
        HttpScript script;
        script.status = number;
        return script;
    }
    static HttpScript redirectionTo(std::string const& place) {
        HttpScript script = status(302);
        script.headers = {"Location: " + place};
        return script;
    }

    /// Puts remote stores with the limits as they are now in force.
    void install() {
        stores_.reset();
        stores_ = std::make_unique<RemoteStores>(limits_, [this] { return now_; });
    }
    static iFileManager& files() { return OS()->getFileManager(); }
    [[nodiscard]] Name remote(std::string const& path) const { return wide(server_.url(path)); }

    iFileManager::eCopyRC copy(std::string const& path, bool replaceExisting = false) {
        return copyTo(folder_.name("to"), path, replaceExisting);
    }
    iFileManager::eCopyRC copyTo(Name const& to, std::string const& path, bool replaceExisting = false) {
        return copyName(to, remote(path), replaceExisting);
    }
    iFileManager::eCopyRC copyName(Name const& to, Name const& from, bool replaceExisting = false) {
        return files().copyFile(from, to, replaceExisting, &RemoteFixture::note, this);
    }
    /// The log has a line with this URL and all of these parts.
    [[nodiscard]] bool isLogged(std::string const& path, std::vector<std::string> const& parts) const {
        for (std::string const& line : log_.log()) {
            bool isIt = line.find("\"" + server_.url(path) + "\"") != std::string::npos;
            for (std::string const& part : parts) {
                isIt = isIt && line.find(part) != std::string::npos;
            }
            if (isIt) {
                return true;
            }
        }
        return false;
    }

    struct Step {
        unsigned long copied;
        unsigned long total;
    };

    /// Longer than anything takes that isn't meant to be overdue.
    static constexpr RemoteLimits::Time patience{30'000};
    /// Soon over, where something is meant to be overdue.
    static constexpr RemoteLimits::Time soon{60};

    HttpServer server_;
    TemporaryFolder folder_;
    LogRecorder log_;
    RemoteLimits limits_;
    std::chrono::steady_clock::time_point now_ = std::chrono::steady_clock::now();
    std::unique_ptr<RemoteStores> stores_;
    std::vector<Step> steps_;
    std::function<bool(Step const&)> goesOn_ = [](Step const&) { return true; };

private:
    static int note(void* context, unsigned long copied, unsigned long total) {
        auto& self = *static_cast<RemoteFixture*>(context);
        self.steps_.push_back({copied, total});
        return self.goesOn_({copied, total}) ? 1 : 0;
    }
};

}  // namespace test
