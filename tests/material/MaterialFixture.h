#pragma once

#include <gmock/gmock.h>

#include <memory>
#include <set>
#include <string>
#include <vector>

#include "material/MaterialManager.h"
#include "tests/fakes/CallLog.h"
#include "tests/fakes/FakeProjectSpaces.h"
#include "tests/fakes/LogRecorder.h"
#include "tests/fakes/ScriptedFileManager.h"
#include "tests/material/HostedMedia.h"
#include "tests/support/MadeCookie.h"

namespace test {

/// Clips whose media are here, linked, remote or missing, as a test says, on each host. Names that begin with
/// "far:" are remote.
class MaterialFixture : public testing::TestWithParam<Host> {
public:
    static auto hosts() { return testing::Values(Host::memory, Host::sqlite); }
    [[nodiscard]] static std::string nameOf(testing::TestParamInfo<Host> const& tested) {
        return tested.param == Host::memory ? "Memory" : "Sqlite";
    }

protected:
    MaterialFixture() { files_.remotePrefix = "far:"; }

    /// A file at its own place.
    static MediaFileInfo own(std::string const& path, bool isProxy = false) {
        MediaFileInfo file(MaterialFilename(DriveId::none, wide(path)), 1);
        file.isProxyFile = isProxy;
        return file;
    }
    /// A file that lies elsewhere.
    static MediaFileInfo linked(std::string const& path, bool isProxy = false) {
        MediaFileInfo file(MaterialFilename(DriveId::none, wide("link")), wide(path), 1);
        file.isProxyFile = isProxy;
        return file;
    }
    static MediaFileInfo ownProxy(std::string const& path) { return own(path, true); }
    static MediaFileInfo linkedProxy(std::string const& path) { return linked(path, true); }

    static Cookie clip(unsigned number = 1) { return makeCookie(number, 'E', Cookie::wholeClip); }
    static Cookie video(unsigned number = 1, std::uint8_t channel = 0) {
        return makeCookie(number, 'V', channel);
    }
    static Cookie sound(unsigned number, std::uint8_t channel) { return makeCookie(number, 'S', channel); }

    void addClip(Cookie const& cookie, ClipFacts const& facts = {}) { media_.addClip(cookie, facts); }
    /// The cookies as they are, where a vector is wanted.
    static CookieVec vectorOf(std::vector<Cookie> const& cookies) {
        CookieVec vector;
        for (Cookie const& cookie : cookies) {
            vector.add(cookie);
        }
        return vector;
    }
    static std::vector<Cookie> listOf(CookieVec const& cookies) { return {cookies.begin(), cookies.end()}; }

    std::shared_ptr<CallLog> const calls_ = std::make_shared<CallLog>();
    HostedMedia media_{GetParam(), calls_};
    ScriptedFileManager files_{calls_};
    FakeProjectSpaces spaces_;
    LogRecorder log_;
};

}  // namespace test
