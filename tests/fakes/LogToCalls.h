#pragma once

#include <memory>
#include <string>
#include <utility>

#include "tests/fakes/CallLog.h"
#include "toolkit/services/Log.h"

/// Puts every log line between the calls of the fakes, as "log text" and "console text"; in force while
/// it lives.
class LogToCalls : public iLogSink {
public:
    explicit LogToCalls(std::shared_ptr<CallLog> calls)
        : calls_(std::move(calls)), old_(installLogSink(this)) {}
    ~LogToCalls() override { installLogSink(old_); }

    void writeToConsole(LightweightString<char> const& text) override {
        calls_->add("console " + text.str());
    }
    void writeToLog(LightweightString<char> const& text) override { calls_->add("log " + text.str()); }

private:
    std::shared_ptr<CallLog> const calls_;
    iLogSink* const old_;
};
