#pragma once

#include <string>
#include <vector>

#include "tools/playfile/JsonText.h"
#include "tools/playfile/TaskQueueTap.h"

namespace cli {

/// Waits for the tasks that were queued, and shows what they do: titles, the lines of their logs, how far they have
/// come, errors on standard error, and the files that came of them.
///
/// Somebody who wants the program to stop stops the tasks: the one under way at its next report, those behind it as
/// soon as they begin.
class TransferRun {
public:
    /// @param isJson  shows nothing meanwhile and tells all at the end
    explicit TransferRun(bool isJson) : isJson_(isJson) {}

    /// @return an `eExitCode`: success if all of them are complete
    /// @throws Stopped  once all have ended, if somebody wanted the program to stop
    [[nodiscard]] int watch(std::vector<TaskQueueTap::Watched> const& tasks);

private:
    void watch(TaskQueueTap::Watched const& watched, std::vector<TaskQueueTap::Watched> const& all);
    void showLines(TaskQueueTap::Watched const& watched, Json& report) const;
    [[nodiscard]] static char const* nameOfResult(int result);

    bool const isJson_;
    bool isStopping_ = false;
    Json reports_ = Json::array();
};

}  // namespace cli
