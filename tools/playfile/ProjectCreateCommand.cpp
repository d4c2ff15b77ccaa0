#include "tools/playfile/ProjectCreateCommand.h"

#include "tools/playfile/CommandError.h"
#include "tools/playfile/DrivePlace.h"
#include "tools/playfile/OpenedProject.h"
#include "tools/playfile/Output.h"
#include "tools/playfile/Text.h"

namespace cli {

void ProjectCreateCommand::declare(CLI::App& program) {
    command_ = program.add_subcommand("create", "Makes the file of a new project");
    command_->add_option("FILE", file_, "The project's file, which isn't there yet")->required();
    command_->add_option("--drive", drives_, "A media drive and its folder: L=ROOT; may come more than once");
    command_->footer(
        "Example:\n  playfile project create film.project --drive A=/media/a --drive B=/media/b");
}

/// The drives are looked at first, so that a slip of the pen makes no project.
int ProjectCreateCommand::run(SessionOptions const& options) {
    std::vector<DrivePlace> places;
    for (std::string const& text : drives_) {
        places.push_back(parseDrivePlace(text));
    }
    Session const session(options);
    auto const project = OpenedProject::create(file_);
    for (DrivePlace const& place : places) {
        if (!project->setDriveRoot(place.drive, place.root)) {
            throw CommandError(
                "the drives of " + inQuotes(file_) +
                " were not written; make room on its drive and set them with 'playfile project "
                "drives'");
        }
    }
    writeLine("created " + inQuotes(file_));
    return exitSuccess;
}

}  // namespace cli
