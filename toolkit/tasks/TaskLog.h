#pragma once

#include <cstdint>

#include "ole/Ox/OxObject.h"
#include "toolkit/tasks/LoggerBase.h"
#include "toolkit/tasks/ProgressReportClient.h"

/// The log of one task: its lines, and how far it has come.
///
/// Threads  The task writes; any may ask for the progress.
class iTaskLog : public ProgressReportClient, public LoggerBase, public virtual iObject {
public:
    /// Cuts the piece of work that is under way into as many of the same weight.
    virtual void startSubTasks(std::uint32_t count) = 0;
    /// The piece is done, the next one begins.
    virtual void nextSubTask() = 0;
    virtual void endSubTasks() = 0;
};
