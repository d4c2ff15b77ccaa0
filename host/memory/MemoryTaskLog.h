#pragma once

#include <vector>

#include "ole/os/Locks.h"
#include "toolkit/tasks/SubTasks.h"
#include "toolkit/tasks/TaskLog.h"

/// A task's log that is kept for as long as somebody holds it.
///
/// Threads  Any.
class MemoryTaskLog : public iTaskLog {
public:
    struct Line {
        LightweightString<wchar_t> text;
        eOutputType type = plainLine;
    };

    void reportProgress(LightweightString<wchar_t> const& text, double fraction) override;
    [[nodiscard]] double calcAggregateProgress() const override;
    void write(LightweightString<wchar_t> const& text, eOutputType type) override;
    void startSubTasks(std::uint32_t count) override;
    void nextSubTask() override;
    void endSubTasks() override;

    [[nodiscard]] std::vector<Line> lines() const;
    /// What is being done, as it was said last.
    [[nodiscard]] LightweightString<wchar_t> activity() const;

private:
    mutable CriticalSection lock_{eLockRank::toolkit, "MemoryTaskLog"};
    std::vector<Line> lines_ PLAYFILE_GUARDED_BY(lock_);
    LightweightString<wchar_t> activity_ PLAYFILE_GUARDED_BY(lock_);
    SubTasks work_ PLAYFILE_GUARDED_BY(lock_);
};
