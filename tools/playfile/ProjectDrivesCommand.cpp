#include "tools/playfile/ProjectDrivesCommand.h"

#include <filesystem>

#include "tools/playfile/CommandError.h"
#include "tools/playfile/DrivePlace.h"
#include "tools/playfile/JsonText.h"
#include "tools/playfile/OpenedProject.h"
#include "tools/playfile/Output.h"
#include "tools/playfile/Text.h"
#include "tools/playfile/TextTable.h"

namespace cli {
namespace {

/// What the command line wants, read as a whole before anything is changed.
struct Changes {
    std::vector<DrivePlace> set;
    std::vector<DriveId> remove;
    std::vector<std::pair<std::string, DriveId>> tasks;
};

void requireDrive(OpenedProject& opened, DriveId const& drive) {
    if (!opened.project().getDrives().roots.contains(drive)) {
        throw CommandError("the project " + inQuotes(opened.path()) + " has no drive " +
                           inQuotes(std::string(1, drive.letter())) +
                           "; 'playfile project drives' lists them");
    }
}

Json describe(DriveId const& drive, LightweightString<wchar_t> const& root, DriveTable const& table) {
    std::error_code error;
    bool const isThere = std::filesystem::is_directory(narrowName(root), error);
    Json json;
    json["drive"] = std::string(1, drive.letter());
    json["root"] = narrowName(root);
    json["isThere"] = isThere;
    json["freeBytes"] = isThere ? Json(MediaDrive(drive, root).getSpaceBytes()) : Json();
    json["tasks"] = Json::array();
    for (auto const& [task, driveOfTask] : table.driveOfTask) {
        if (driveOfTask == drive) {
            json["tasks"].push_back(task);
        }
    }
    return json;
}

std::string joined(Json const& texts) {
    std::string all;
    for (Json const& text : texts) {
        all += (all.empty() ? "" : ", ") + text.get<std::string>();
    }
    return all;
}

void writeTable(Json const& drives) {
    TextTable table({"DRIVE", "STATE", "FREE", "TASKS", "ROOT"});
    for (Json const& drive : drives) {
        bool const isThere = drive["isThere"].get<bool>();
        table.add({drive["drive"].get<std::string>(), isThere ? "here" : "missing",
                   isThere ? sizeText(drive["freeBytes"].get<std::uint64_t>()) : "", joined(drive["tasks"]),
                   drive["root"].get<std::string>()});
    }
    writeLine(table.text());
}

}  // namespace

void ProjectDrivesCommand::declare(CLI::App& program) {
    command_ = program.add_subcommand("drives", "Lists the media drives of a project, and changes them");
    command_->add_option("FILE", file_, "The project's file")->required();
    command_->add_option("--set", set_, "Add a drive, or move it: L=ROOT; may come more than once");
    command_->add_option("--remove", remove_, "Take a drive away; its media are missing then");
    command_->add_option("--task", tasks_, "Say which drive a task's new files go to: import=L");
    command_->add_flag("--json", isJson_, "Write JSON");
    command_->footer(
        "Examples:\n  playfile project drives film.project\n"
        "  playfile project drives film.project --set A=/media/a --task import=A");
}

int ProjectDrivesCommand::run(SessionOptions const& options) {
    OpenedProject opened(options, file_);
    change(opened);
    list(opened);
    return exitSuccess;
}

void ProjectDrivesCommand::change(OpenedProject& opened) const {
    Changes changes;
    for (std::string const& text : set_) {
        changes.set.push_back(parseDrivePlace(text));
    }
    for (std::string const& text : remove_) {
        changes.remove.push_back(parseDrive(text));
        requireDrive(opened, changes.remove.back());
    }
    for (std::string const& text : tasks_) {
        auto const [task, letter] = splitAtSign(text, "TASK=L, the task and the drive's letter");
        changes.tasks.emplace_back(task, parseDrive(letter));
    }
    bool isDone = true;
    for (DriveId const& drive : changes.remove) {
        isDone = isDone && opened.project().removeDrive(drive);
    }
    for (DrivePlace const& place : changes.set) {
        isDone = isDone && opened.project().setDriveRoot(place.drive, place.root);
    }
    for (auto const& [task, drive] : changes.tasks) {
        requireDrive(opened, drive);
        isDone = isDone && opened.project().setDriveForTask(task.c_str(), drive);
    }
    if (!isDone) {
        opened.refuseChange();
    }
}

void ProjectDrivesCommand::list(OpenedProject& opened) const {
    DriveTable const table = opened.project().getDrives();
    Json drives = Json::array();
    for (auto const& [drive, root] : table.roots) {
        drives.push_back(describe(drive, root, table));
    }
    if (isJson_) {
        writeLine(toJsonText(drives));
    } else {
        writeTable(drives);
    }
}

}  // namespace cli
