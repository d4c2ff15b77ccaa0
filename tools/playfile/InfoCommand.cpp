#include "tools/playfile/InfoCommand.h"

#include "tools/playfile/Clip.h"
#include "tools/playfile/CommandError.h"
#include "tools/playfile/FileReport.h"
#include "tools/playfile/Output.h"

namespace cli {

void InfoCommand::declare(CLI::App& program) {
    command_ = program.add_subcommand("info", "Tells all that is known of a media file");
    command_->add_option("FILE", file_, "The media file")->required();
    command_->add_flag("--json", isJson_, "Write JSON");
}

int InfoCommand::run(SessionOptions const& options) {
    Session session(options);
    session.loadReaders();
    Clip const clip(session, file_);
    Ox::Ptr<FileReadInstance> const file = clip.openAny();
    Json const report = describeFile(clip, file, explainChoice(session.log(), *file));
    writeLine(isJson_ ? toJsonText(report) : toPlainText(report));
    return exitSuccess;
}

}  // namespace cli
