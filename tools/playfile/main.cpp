#include <array>
#include <exception>
#include <string>

#include "ole/os/Shutdown.h"
#include "playfile/playfile.h"
#include "tools/playfile/AudioCommand.h"
#include "tools/playfile/CommandError.h"
#include "tools/playfile/DeleteCommand.h"
#include "tools/playfile/DownloadCommand.h"
#include "tools/playfile/ExtractCommand.h"
#include "tools/playfile/FramesCommand.h"
#include "tools/playfile/HeaderCommand.h"
#include "tools/playfile/InfoCommand.h"
#include "tools/playfile/Interrupt.h"
#include "tools/playfile/LocaliseCommand.h"
#include "tools/playfile/Output.h"
#include "tools/playfile/ProjectCommand.h"
#include "tools/playfile/QuarantineCommand.h"
#include "tools/playfile/RecordCommand.h"
#include "tools/playfile/RelocateCommand.h"
#include "tools/playfile/ShowCommand.h"
#include "tools/playfile/SizeCommand.h"
#include "tools/playfile/TasksCommand.h"
#include "tools/playfile/Text.h"

namespace cli {
namespace {

/// The program's command line and what it means.
class Program {
public:
    Program() {
        app_.name("playfile");
        app_.set_version_flag("--version", playfileDllVersionStr());
        app_.require_subcommand(1);
        app_.fallthrough();
        app_.add_option("--plugin-path", options_.pluginPath, "Folders of the plug-ins, separated by ':'")
            ->envname("PLAYFILE_PLUGIN_PATH");
        app_.add_option("--preferences", options_.preferences, "The file that keeps the quarantine marks");
        app_.add_flag("--verbose", options_.isVerbose, "Show the library's messages on standard error");
        for (Command* const command : commands_) {
            command->declare(app_);
        }
    }

    int run(int argc, char** argv) {
        try {
            app_.parse(argc, argv);
        } catch (CLI::Success const& wanted) {
            return app_.exit(wanted);
        } catch (CLI::ParseError const& error) {
            throw CommandError(printable(std::string(error.what())) + "; see 'playfile --help'", exitUsage);
        }
        for (Command* const command : commands_) {
            if (command->isChosen()) {
                return command->run(options_);
            }
        }
        return exitUsage;
    }

private:
    CLI::App app_{"Opens media files, reads, records and moves them, and keeps projects of them."};
    SessionOptions options_;
    InfoCommand info_;
    FramesCommand frames_;
    AudioCommand audio_;
    ShowCommand show_;
    RecordCommand record_;
    ExtractCommand extract_;
    HeaderCommand header_;
    SizeCommand size_;
    DeleteCommand delete_;
    ProjectCommand project_;
    DownloadCommand download_;
    LocaliseCommand localise_;
    TasksCommand tasks_;
    RelocateCommand relocate_;
    QuarantineCommand quarantine_;
    std::array<Command*, 15> commands_{&info_,     &frames_,   &audio_, &show_,     &record_,
                                       &extract_,  &header_,   &size_,  &delete_,   &project_,
                                       &download_, &localise_, &tasks_, &relocate_, &quarantine_};
};

int runGuarded(int argc, char** argv) {
    try {
        return Program().run(argc, argv);
    } catch (Stopped const& stopped) {
        return stopped.exitCode();
    } catch (CommandError const& error) {
        writeProblem(error.what());
        return error.exitCode();
    } catch (std::bad_alloc const&) {
        writeProblem("there is not enough memory; ask for fewer threads or smaller pictures");
    } catch (std::exception const& error) {
        writeProblem(printable(std::string(error.what())) + "; this is a fault of the program or a plug-in");
    }
    return exitFailure;
}

}  // namespace
}  // namespace cli

int main(int argc, char** argv) {
    cli::handleSignals();
    int const exitCode = cli::runGuarded(argc, argv);
    // While the libraries that the workers use are still there.
    Shutdown::run(Shutdown::normalExit);
    return exitCode;
}
