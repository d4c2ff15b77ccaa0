#include "tools/playfile/TransferRun.h"

#include <chrono>
#include <condition_variable>
#include <mutex>

#include "tools/playfile/CommandError.h"
#include "tools/playfile/Interrupt.h"
#include "tools/playfile/Output.h"
#include "tools/playfile/RateDisplay.h"
#include "tools/playfile/Text.h"
#include "transfer/DownloadTask.h"

namespace cli {
namespace {

/// How often it is looked whether somebody wants the program to stop, and how far a task has come.
constexpr std::chrono::milliseconds lookInterval{50};

/// Hears of the end of a task.
class EndOfTask {
public:
    explicit EndOfTask(iBackgroundTask& task)
        : task_(task),
          guard_(task.addListener(Ox::makePtr<Ox::FunctionCallback<int, iBackgroundTask::Event>>(
              [this](iBackgroundTask::Event const& event) {
                  std::lock_guard const scope(lock_);
                  hasEnded_ = hasEnded_ || event.kind == iBackgroundTask::Event::hasEnded;
                  changed_.notify_all();
                  return 0;
              }))) {}

    /// Waits a little; true once the task has ended.
    bool wait() {
        std::unique_lock scope(lock_);
        bool const isOver = changed_.wait_for(scope, lookInterval, [this] { return hasEnded_; });
        return isOver || task_.getStatus() == iBackgroundTask::ended;
    }

private:
    iBackgroundTask& task_;
    std::mutex lock_;
    std::condition_variable changed_;
    bool hasEnded_ = false;
    Ox::Ptr<Ox::Guard> const guard_;
};

bool isInterrupted() {
    try {
        checkForInterrupt();
        return false;
    } catch (Stopped const&) {
        return true;
    }
}

std::uint64_t totalOf(BackgroundTaskBase const& task) {
    auto const* const download = dynamic_cast<DownloadTask const*>(&task);
    return download != nullptr ? download->getTotalBytes() : 0;
}

}  // namespace

int TransferRun::watch(std::vector<TaskQueueTap::Watched> const& tasks) {
    bool areComplete = true;
    for (TaskQueueTap::Watched const& watched : tasks) {
        watch(watched, tasks);
        areComplete = areComplete && watched.task->getResult() == DownloadTask::resultComplete;
    }
    if (isJson_) {
        writeLine(toJsonText(reports_));
    }
    checkForInterrupt();
    return areComplete ? exitSuccess : exitFailure;
}

void TransferRun::watch(TaskQueueTap::Watched const& watched, std::vector<TaskQueueTap::Watched> const& all) {
    Json report;
    report["title"] = narrowName(watched.task->getDescription());
    report["result"] = "";
    report["errors"] = Json::array();
    report["files"] = Json::array();
    if (!isJson_) {
        writeLine(printable(report["title"].get<std::string>()));
    }
    {
        EndOfTask end(*watched.task);
        RateDisplay display;
        while (!end.wait()) {
            if (!isStopping_ && isInterrupted()) {
                isStopping_ = true;
                for (TaskQueueTap::Watched const& each : all) {
                    each.task->abort();
                }
            }
            if (!isJson_) {
                display.wipe();
                showLines(watched, report);
                display.show(watched.log->calcAggregateProgress(), totalOf(*watched.task));
            }
        }
    }
    watched.task->waitForCompletion();
    showLines(watched, report);
    report["result"] = nameOfResult(watched.task->getResult());
    if (!isJson_) {
        writeLine(report["result"].get<std::string>());
    }
    reports_.push_back(report);
}

void TransferRun::showLines(TaskQueueTap::Watched const& watched, Json& report) const {
    for (TransferLog::Line const& line : watched.log->takeLines()) {
        if (line.type == LoggerBase::errorLine) {
            report["errors"].push_back(line.text);
            writeProblem(printable(line.text));
        } else if (line.type == LoggerBase::closingLine) {
            LinkText const link = LinkText::parse(line.text);
            for (std::string const& target : link.targets) {
                report["files"].push_back(target);
            }
            report["folder"] = link.label;
            for (std::string const& target : isJson_ ? std::vector<std::string>() : link.targets) {
                writeLine("  " + printable(target));
            }
        } else if (!isJson_ && !line.text.empty()) {
            writeLine("  " + printable(line.text));
        }
    }
}

char const* TransferRun::nameOfResult(int result) {
    switch (result) {
        case DownloadTask::resultComplete:
            return "complete";
        case DownloadTask::resultNoSpace:
            return "not enough space";
        case DownloadTask::resultStopped:
            return "stopped";
        default:
            return "failed";
    }
}

}  // namespace cli
