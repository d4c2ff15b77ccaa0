#pragma once

#include <cstdint>
#include <vector>

#include "toolkit/tasks/SubTasks.h"
#include "toolkit/tasks/TaskLog.h"

/// A way to a task's log for somebody who does a part of the task.
///
/// A copy writes to the same log, and its own work is the piece that the copied one was working on; how it
/// cuts that is its own affair.
///
/// Ownership  It shares the log. One without a log writes nothing.
/// Threads    One at a time for each handle.
class LoggerHandle final : public ProgressReportClient, public LoggerBase {
public:
    LoggerHandle() = default;
    explicit LoggerHandle(Ox::Ptr<iTaskLog> const& log) : log_(log) {}
    ~LoggerHandle() = default;
    LoggerHandle(LoggerHandle const& other)
        : ProgressReportClient(), LoggerBase(), log_(other.log_), work_(SubTasks::partOf(other.work_)) {}
    LoggerHandle& operator=(LoggerHandle const& other);

    void reportProgress(LightweightString<wchar_t> const& text, double fraction) override;
    [[nodiscard]] double calcAggregateProgress() const override { return work_.progress(); }
    void write(LightweightString<wchar_t> const& text, eOutputType type) override;

    void startSubTasks(std::uint32_t count);
    /// @param byteWeights  how much work each is
    void startSubTasks(std::vector<std::uint64_t> const& byteWeights);
    void nextSubTask();
    void endSubTasks();

private:
    void tell(LightweightString<wchar_t> const& text);

    Ox::Ptr<iTaskLog> log_;
    SubTasks work_;
};
