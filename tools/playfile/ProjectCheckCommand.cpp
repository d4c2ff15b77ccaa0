#include "tools/playfile/ProjectCheckCommand.h"

#include "tools/playfile/ClipFiles.h"
#include "tools/playfile/ClipPages.h"
#include "tools/playfile/CommandError.h"
#include "tools/playfile/Interrupt.h"
#include "tools/playfile/JsonText.h"
#include "tools/playfile/MediaPresence.h"
#include "tools/playfile/OpenedProject.h"
#include "tools/playfile/Output.h"
#include "tools/playfile/Progress.h"
#include "tools/playfile/Text.h"

namespace cli {
namespace {

/// Looks, and tells each fault when it is found; as JSON all of them are told at the end.
class Check {
public:
    Check(OpenedProject& opened, bool isJson) : opened_(opened), isJson_(isJson) {}

    /// @return true if all is well
    bool run() {
        checkFile();
        for (auto const& [drive, root] : opened_.project().getDrives().roots) {
            if (std::string const fault = faultOfDrive(drive); !fault.empty()) {
                tell("drive", std::string(1, drive.letter()), fault);
            }
        }
        checkClips();
        if (isJson_) {
            Json report;
            report["clips"] = clips_;
            report["isWell"] = problems_.empty();
            report["problems"] = problems_;
            writeLine(toJsonText(report));
        } else {
            writeLine(std::to_string(clips_) + " clips looked at, " + std::to_string(count_) + " problems");
        }
        return count_ == 0;
    }

private:
    void checkFile() {
        bool isWhole = false;
        {
            std::lock_guard const scope(opened_.project().file().lock);
            isWhole = opened_.project().file().isWhole();
        }
        if (!isWhole) {
            tell("project", opened_.path(), "the file is damaged; take it from a copy");
        }
    }
    void checkClips() {
        Progress progress("clips", opened_.project().countClips(), !isJson_);
        auto const take = [&](std::vector<ClipSummary> const& page) {
            for (ClipSummary const& clip : page) {
                checkForInterrupt();
                checkClip(clip);
                progress.step();
            }
        };
        try {
            forEachPage(opened_.project(), opened_.path(), take);
        } catch (CommandError const& error) {
            tell("project", opened_.path(), error.what());
        }
    }
    void checkClip(ClipSummary const& clip) {
        ++clips_;
        std::vector<ClipFile> const files = filesOfClip(clip.cookie, false);
        if (files.empty()) {
            tell("clip", narrowName(clip.name), "it has no media", clip.cookie);
        }
        for (ClipFile const& each : files) {
            MediaPresence const presence = lookAt(each.file);
            std::string const fault = presence.isThere ? faultOfLink(each.file) : presence.reason;
            if (!fault.empty()) {
                char const* const role = each.file.isProxy() ? "its proxy: " : "its media: ";
                tell("clip", narrowName(clip.name), role + fault, clip.cookie);
            }
        }
    }
    void tell(char const* what, std::string const& name, std::string const& fault, Cookie const& clip = {}) {
        ++count_;
        if (!isJson_) {
            writeLine(std::string(what) + ' ' + inQuotes(name) + ": " + printable(fault));
            return;
        }
        Json problem;
        problem["what"] = what;
        problem["name"] = name;
        problem["id"] = clip.valid() ? Json(clip.asString(true).str()) : Json();
        problem["problem"] = fault;
        problems_.push_back(problem);
    }

    OpenedProject& opened_;
    bool const isJson_;
    Json problems_ = Json::array();
    std::uint64_t clips_ = 0;
    std::uint64_t count_ = 0;
};

}  // namespace

void ProjectCheckCommand::declare(CLI::App& program) {
    command_ = program.add_subcommand("check", "Looks for what is wrong with a project and its media");
    command_->add_option("FILE", file_, "The project's file")->required();
    command_->add_flag("--json", isJson_, "Write JSON");
    command_->footer("It ends with 0 only if all is well.\nExample:\n  playfile project check film.project");
}

int ProjectCheckCommand::run(SessionOptions const& options) {
    OpenedProject opened(options, file_);
    return Check(opened, isJson_).run() ? exitSuccess : exitFailure;
}

}  // namespace cli
