#include "tools/playfile/DeleteCommand.h"

#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <iostream>

#include "files/PlayUtil.h"
#include "host/sidecar/HeaderFiles.h"
#include "ole/os/OS.h"
#include "toolkit/catalogue/MediaExtensions.h"
#include "toolkit/catalogue/SystemCache.h"
#include "toolkit/services/ResourceText.h"
#include "tools/playfile/CommandError.h"
#include "tools/playfile/Interrupt.h"
#include "tools/playfile/JsonText.h"
#include "tools/playfile/Output.h"
#include "tools/playfile/Text.h"

namespace cli {
namespace {

constexpr std::uint8_t firstVideoChannel = 0;
constexpr std::uint8_t firstAudioChannel = 1;

/// What lies beside a file under its name with another extension, in the order of their names.
std::vector<std::filesystem::path> companionsOf(std::filesystem::path const& file) {
    std::vector<std::filesystem::path> companions;
    std::error_code error;
    for (auto const& entry : std::filesystem::directory_iterator(file.parent_path(), error)) {
        if (entry.path().stem() == file.stem() && entry.path() != file) {
            companions.push_back(entry.path());
        }
    }
    std::sort(companions.begin(), companions.end());
    return companions;
}

bool isMedia(std::filesystem::path const& file) {
    return hasMediaExtension(fromUTF8(file.filename().c_str()));
}

/// The waveform that an editor has drawn of the sound.
std::string waveformOf(InputFile const& input) {
    return narrowName(getWaveformDataFileFor(input.cookie('S', firstAudioChannel)));
}

}  // namespace

void DeleteCommand::declare(CLI::App& program) {
    command_ = program.add_subcommand("delete", "Deletes the material of clips with its header and waveform");
    command_->add_option("FILE", files_, "The media files")->required();
    command_->add_flag("--yes", isConfirmed_, "Delete without asking");
    command_->add_flag("--dry-run", isDryRun_, "Only tell what would go and what would stay");
    command_->add_flag("--json", isJson_, "Tell it as JSON");
}

int DeleteCommand::run(SessionOptions const& options) {
    Session session(options);
    std::vector<Plan> plans;
    for (std::string const& file : files_) {
        plans.push_back(planFor(file));
    }
    tell(plans);
    if (isDryRun_) {
        return exitSuccess;
    }
    if (!isConfirmed_ && !isConfirmed()) {
        writeProblem("nothing was deleted");
        return exitFailure;
    }
    int result = exitSuccess;
    for (Plan const& plan : plans) {
        checkForInterrupt();
        result = carryOut(session, plan) ? result : exitFailure;
    }
    return result;
}

DeleteCommand::Plan DeleteCommand::planFor(std::string const& file) {
    Plan plan{InputFile(file), {}, {}, false};
    plan.input.requireReadable();
    std::filesystem::path const path = plan.input.path();
    plan.goes.push_back(path.string());
    if (std::filesystem::is_symlink(path)) {
        plan.stays.emplace_back(std::filesystem::canonical(path).string(),
                                "the link to it goes, not the media");
    }
    std::string const headerName = narrowName(HeaderFiles::nameFor(plan.input.widePath()));
    std::vector<std::filesystem::path> const companions = companionsOf(path);
    bool const isShared = std::any_of(companions.begin(), companions.end(), isMedia);
    for (std::filesystem::path const& companion : companions) {
        SAV_HEADER header;
        bool const isHeader =
            companion == headerName && HeaderFiles::readFile(fromUTF8(headerName.c_str()), header);
        if (isHeader && !isShared) {
            plan.deletesHeader = true;
            plan.goes.push_back(headerName);
        } else if (isHeader) {
            plan.stays.emplace_back(headerName, "other media of that name may need the header");
        } else {
            plan.stays.emplace_back(companion.string(), isMedia(companion) ? "it is other media"
                                                                           : "it is no part of the material");
        }
    }
    if (std::string const waveform = waveformOf(plan.input); std::filesystem::exists(waveform)) {
        plan.goes.push_back(waveform);
    }
    return plan;
}

void DeleteCommand::tell(std::vector<Plan> const& plans) const {
    Json report;
    report["delete"] = Json::array();
    report["keep"] = Json::array();
    for (Plan const& plan : plans) {
        for (std::string const& name : plan.goes) {
            report["delete"].push_back(name);
        }
        for (auto const& [name, reason] : plan.stays) {
            report["keep"].push_back({{"file", name}, {"reason", reason}});
        }
    }
    if (isJson_) {
        writeLine(toJsonText(report));
        return;
    }
    for (Json const& name : report["delete"]) {
        writeLine("delete " + printable(name.get<std::string>()));
    }
    for (Json const& kept : report["keep"]) {
        writeLine("keep   " + printable(kept["file"].get<std::string>()) + ": " +
                  kept["reason"].get<std::string>());
    }
}

/// Asks the user, if there is one.
bool DeleteCommand::isConfirmed() const {
    if (::isatty(STDIN_FILENO) != 1) {
        throw CommandError(
            "nothing was deleted: say --yes to delete without being asked, or --dry-run to look", exitUsage);
    }
    std::cerr << "Delete these files for ever? [y/N] " << std::flush;
    std::string answer;
    std::getline(std::cin, answer);
    checkForInterrupt();
    return answer == "y" || answer == "yes";
}

/// The header goes last: material that couldn't be deleted keeps it.
bool DeleteCommand::carryOut(Session& session, Plan const& plan) {
    InputFile const& input = plan.input;
    session.addToCatalogue(input.cookie('V', firstVideoChannel), input.widePath());
    session.addToCatalogue(input.cookie('S', firstAudioChannel), input.widePath());
    OxResult result = PlayUtil::delete_material_files(input.cookie('E', Cookie::wholeClip), mediaAll);
    bool isGone = result == oxSuccess;
    if (isGone && plan.deletesHeader) {
        isGone = OS()->getFileManager().deleteFile(HeaderFiles::nameFor(input.widePath()));
        result = OS()->getErrors().getLastError();
    }
    if (!isGone) {
        writeProblem("cannot delete all of " + inQuotes(input.path()) + ": " + resourceStr(result).str() +
                     "; allow writing in its folder");
    }
    return isGone;
}

}  // namespace cli
