#pragma once

#include <deque>
#include <mutex>
#include <string>
#include <vector>

#include "toolkit/services/Log.h"

namespace cli {

/// Takes the library's messages: kept for those who ask, and shown on standard error if that is wanted.
///
/// Ownership  In force from its construction to its destruction.
/// Threads    Any.
class LogCapture : public iLogSink {
public:
    explicit LogCapture(bool isShown);
    ~LogCapture() override;
    LogCapture(LogCapture const&) = delete;
    LogCapture& operator=(LogCapture const&) = delete;

    void writeToConsole(LightweightString<char> const& text) override;
    /// Nothing: what goes to the log alone is of no use here.
    void writeToLog(LightweightString<char> const& text) override;

    /// The lines that are kept, oldest first, without their line ends.
    [[nodiscard]] std::vector<std::string> lines() const;

private:
    bool const isShown_;
    iLogSink* const former_;
    mutable std::mutex mutex_;
    std::deque<std::string> lines_;
    std::string unfinished_;
};

}  // namespace cli
