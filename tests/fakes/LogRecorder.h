#pragma once

#include <algorithm>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "toolkit/services/Log.h"

namespace test {

/// Takes every finished log line while it lives, instead of console and log file.
///
/// Threads  Any.
class LogRecorder final : public iLogSink {
public:
    using Lines = std::vector<std::string>;

    LogRecorder() : before_(installLogSink(this)) {}
    ~LogRecorder() override { installLogSink(before_); }
    LogRecorder(LogRecorder const&) = delete;
    LogRecorder& operator=(LogRecorder const&) = delete;

    void writeToConsole(LightweightString<char> const& text) override { add(console_, text); }
    void writeToLog(LightweightString<char> const& text) override { add(log_, text); }

    [[nodiscard]] Lines console() const { return copy(console_); }
    [[nodiscard]] Lines log() const { return copy(log_); }
    /// How many lines of the log hold `part`.
    [[nodiscard]] std::size_t count(std::string_view part) const {
        Lines const lines = log();
        return static_cast<std::size_t>(
            std::count_if(lines.begin(), lines.end(),
                          [part](std::string const& line) { return line.find(part) != std::string::npos; }));
    }
    void clear() {
        std::scoped_lock const guard(lock_);
        console_.clear();
        log_.clear();
    }

private:
    void add(Lines& lines, LightweightString<char> const& text) {
        std::scoped_lock const guard(lock_);
        lines.push_back(text.str());
    }
    [[nodiscard]] Lines copy(Lines const& lines) const {
        std::scoped_lock const guard(lock_);
        return lines;
    }

    iLogSink* const before_;
    mutable std::mutex lock_;
    Lines console_;
    Lines log_;
};

}  // namespace test
