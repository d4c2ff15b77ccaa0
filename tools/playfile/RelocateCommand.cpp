#include "tools/playfile/RelocateCommand.h"

#include <chrono>
#include <future>

#include "toolkit/catalogue/DiskManager.h"
#include "tools/playfile/ClipSearch.h"
#include "tools/playfile/CommandError.h"
#include "tools/playfile/EscapeKey.h"
#include "tools/playfile/Interrupt.h"
#include "tools/playfile/JsonText.h"
#include "tools/playfile/OpenedProject.h"
#include "tools/playfile/Output.h"
#include "tools/playfile/RateDisplay.h"
#include "tools/playfile/RelocationMeter.h"
#include "tools/playfile/Text.h"
#include "tools/playfile/TransferLog.h"
#include "transfer/MaterialMove.h"

namespace cli {
namespace {

constexpr std::chrono::milliseconds lookInterval{50};

}  // namespace

void RelocateCommand::declare(CLI::App& program) {
    command_ = program.add_subcommand(
        "relocate", "Copies or moves material between a project's drives; its path on them stays the same");
    command_->add_option("PROJECT", project_, "The project's file")->required();
    CLI::Option* const drive =
        command_->add_option("--drive", from_, "All clips that have files on this drive");
    command_
        ->add_option("--clip", clips_, "A clip, by its name or the first digits of its id; more than once")
        ->excludes(drive);
    command_->add_option("--to", to_, "The drive to relocate to")->required();
    command_->add_flag("--move", isMove_,
                       "Remove what was copied from where it was, and correct the project");
    command_->add_flag("--dry-run", isDryRun_, "Only list what would be copied, and what not and why");
    command_->add_flag("--json", isJson_, "Tell it as JSON");
    command_->footer(
        "Files that are at their target already are left as they are, and so are their sources.\nEscape or "
        "Ctrl-C ends the work between two clips.\nExamples:\n  playfile relocate film.project --drive M --to "
        "N "
        "--move --dry-run\n  playfile relocate film.project --clip \"Shot 7\" --to N");
}

DriveId RelocateCommand::driveNamed(std::string const& name) const {
    bool const isThere = name.size() == 1 && DiskManager::instance().isMaterialVolume(DriveId(name.front()));
    if (!isThere) {
        throw CommandError("the project has no drive " + inQuotes(name) + "; 'playfile project drives " +
                           printable(project_) + "' lists them");
    }
    return DriveId(name.front());
}

CookieVec RelocateCommand::clips(OpenedProject& opened) const {
    if (!from_.empty()) {
        return clipsOnDrive(opened.project(), driveNamed(from_));
    }
    if (clips_.empty()) {
        throw CommandError("name a drive with --drive, or clips with --clip", exitUsage);
    }
    CookieVec cookies;
    for (std::string const& name : clips_) {
        cookies.add(findClip(opened.project(), name));
    }
    return cookies;
}

int RelocateCommand::run(SessionOptions const& options) {
    OpenedProject opened(options, project_);
    DriveId const destination = driveNamed(to_);
    CookieVec const chosen = clips(opened);
    RelocationPlan const plan = RelocationPlan::of(chosen, destination);
    return isDryRun_ ? tell(plan) : relocate(chosen, destination, plan);
}

int RelocateCommand::tell(RelocationPlan const& plan) const {
    Json report;
    report["files"] = Json::array();
    for (RelocationPlan::File const& file : plan.files) {
        report["files"].push_back({{"name", file.name}, {"bytes", file.size}, {"skipped", file.reason}});
        if (!isJson_) {
            writeLine(file.reason.empty() ? "copy  " + printable(file.name) + "  " + sizeText(file.size)
                                          : "skip  " + printable(file.name) + ": " + file.reason);
        }
    }
    report["neededBytes"] = plan.needed;
    report["availableBytes"] = plan.available;
    report["hasSpace"] = plan.hasSpace();
    writeLine(isJson_ ? toJsonText(report)
                      : sizeText(plan.needed) + " to copy, " + sizeText(plan.available) + " free" +
                            (plan.hasSpace() ? "" : ": not enough"));
    return plan.hasSpace() ? exitSuccess : exitFailure;
}

/// What would still have to be copied afterwards wasn't, whatever the reason: that is a failure.
int RelocateCommand::relocate(CookieVec const& clips, DriveId destination, RelocationPlan const& plan) const {
    Ox::Ptr<TransferLog> const log = Ox::makePtr<TransferLog>();
    MaterialMove::eType const type = isMove_ ? MaterialMove::moveFiles : MaterialMove::copyFiles;
    Json report;
    report["lines"] = Json::array();
    report["errors"] = Json::array();
    auto const show = [&] {
        for (TransferLog::Line const& line : log->takeLines()) {
            bool const isError = line.type == LoggerBase::errorLine;
            report[isError ? "errors" : "lines"].push_back(line.text);
            if (isError) {
                writeProblem(printable(line.text));
            } else if (!isJson_ && line.text != " ") {
                writeLine(printable(line.text));
            }
        }
    };
    {
        EscapeKey const escape;
        RateDisplay display;
        RelocationMeter meter(plan);
        std::future<void> const work = std::async(
            std::launch::async, [&] { MaterialMove::relocate(destination, clips, type, LoggerHandle(log)); });
        while (work.wait_for(lookInterval) != std::future_status::ready) {
            display.wipe();
            show();
            if (!isJson_) {
                display.show(meter.fraction(), plan.needed);
            }
        }
    }
    show();
    std::size_t const leftCount = RelocationPlan::of(clips, destination).countToCopy();
    report["filesNotRelocated"] = leftCount;
    if (isJson_) {
        writeLine(toJsonText(report));
    }
    checkForInterrupt();
    if (leftCount != 0) {
        writeProblem(std::to_string(leftCount) +
                     " file(s) were not relocated; see the lines above, and run it again");
    }
    return leftCount == 0 ? exitSuccess : exitFailure;
}

}  // namespace cli
