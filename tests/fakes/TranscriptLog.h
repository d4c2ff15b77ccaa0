#pragma once

#include <memory>
#include <string>

#include "tests/fakes/CallLog.h"
#include "toolkit/tasks/TaskLog.h"

/// A task's log that writes all that it is told among the calls of a test: "log 4 text" a line with its type,
/// "log.start 3", "log.next" and "log.end" its pieces. What is said of progress is only kept.
///
/// Threads  One at a time.
class TranscriptLog : public iTaskLog {
public:
    explicit TranscriptLog(std::shared_ptr<CallLog> calls) : calls_(std::move(calls)) {}

    void reportProgress(LightweightString<wchar_t> const& text, double fraction) override {
        progressTexts += narrow(text);
        fractions.push_back(fraction);
    }
    [[nodiscard]] double calcAggregateProgress() const override { return 0.0; }
    void write(LightweightString<wchar_t> const& text, eOutputType type) override {
        calls_->add("log " + std::to_string(type) + " " + narrow(text));
    }
    void startSubTasks(std::uint32_t count) override { calls_->add("log.start " + std::to_string(count)); }
    void nextSubTask() override { calls_->add("log.next"); }
    void endSubTasks() override { calls_->add("log.end"); }

    std::vector<double> fractions;
    std::string progressTexts;

private:
    std::shared_ptr<CallLog> const calls_;
};
