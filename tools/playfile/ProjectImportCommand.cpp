#include "tools/playfile/ProjectImportCommand.h"

#include <filesystem>

#include "tools/playfile/ClipImporter.h"
#include "tools/playfile/CommandError.h"
#include "tools/playfile/DrivePlace.h"
#include "tools/playfile/ImportWalk.h"
#include "tools/playfile/Output.h"
#include "tools/playfile/Text.h"

namespace cli {

void ProjectImportCommand::declare(CLI::App& program) {
    command_ = program.add_subcommand("import", "Makes clips of media files and folders");
    command_->add_option("FILE", file_, "The project's file")->required();
    command_->add_option("PATH", paths_, "Media files, and folders of them")->required();
    CLI::Option* const link =
        command_->add_flag("--link", isLinked_, "Put link files on a drive that lead to the media");
    command_->add_flag("--copy", isCopied_, "Copy the media to a drive")->excludes(link);
    command_->add_option("--drive", drive_,
                         "The drive for --link and --copy; else the one for the task \"import\"");
    command_->add_flag("--recursive,-r", isRecursive_, "Go through the folders in folders, too");
    command_->add_flag("--probe", probes_, "Open each file for its channels, streams and rates");
    command_->add_flag("--json", isJson_, "Write the report as JSON");
    command_->footer(
        "Media stay where they are. What lies below a drive's root is filed there, all else as a link.\n"
        "Numbered stills, and the numbered chunks of a camera's file, are one clip. A file whose name goes "
        "on\n"
        "with '_proxy' or '.proxy', or that lies in a folder 'proxy' or 'proxies', is a proxy of the one "
        "beside.\n"
        "Examples:\n  playfile project import film.project /media/a --recursive\n"
        "  playfile project import film.project take1.mov take2.mov --copy --drive A --probe");
}

/// What was imported is told however it ends.
int ProjectImportCommand::run(SessionOptions const& options) {
    OpenedProject opened(options, file_);
    MaterialPlacer const placer = makePlacer();
    if (probes_) {
        opened.session().loadReaders();
    }
    ImportProblems problems;
    int exitCode = exitSuccess;
    Json report;
    {
        ClipImporter importer(opened, placer, probes_, problems);
        ImportWalk walk(isRecursive_, problems, [&](MediaGroup const& group) { importer.add(group); });
        try {
            walk.run(paths_);
            importer.flush();
        } catch (Stopped const& stopped) {
            exitCode = stopped.exitCode();
        } catch (CommandError const& error) {
            writeProblem(error.what());
            exitCode = error.exitCode();
        }
        report = importer.report();
        report["passedOver"] = walk.passedOver() + importer.linkFiles();
    }
    report["vanished"] = problems.vanishedCount();
    report["otherProblems"] = problems.otherCount();
    writeLine(isJson_ ? toJsonText(report) : toPlainText(report));
    bool const isWhole = problems.vanishedCount() + problems.otherCount() == 0;
    return exitCode == exitSuccess && !isWhole ? exitFailure : exitCode;
}

MaterialPlacer ProjectImportCommand::makePlacer() const {
    if (!isLinked_ && !isCopied_) {
        if (!drive_.empty()) {
            throw CommandError("--drive needs --link or --copy: without them media stay where they are",
                               exitUsage);
        }
        return {ePlacing::none, DriveId()};
    }
    DriveId const drive =
        drive_.empty() ? DiskManager::instance().getDriveForTask("import", true) : parseDrive(drive_);
    std::string const root = narrowName(DiskManager::instance().getDriveRoot(drive));
    std::error_code error;
    if (root.empty() || !std::filesystem::is_directory(root, error)) {
        throw CommandError(
            "there is no drive for the media, or its folder isn't there; set it with 'playfile "
            "project drives " +
            printable(file_) + " --set L=ROOT'");
    }
    return {isCopied_ ? ePlacing::copy : ePlacing::link, drive};
}

}  // namespace cli
