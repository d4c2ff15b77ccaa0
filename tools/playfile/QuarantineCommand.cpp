#include "tools/playfile/QuarantineCommand.h"

#include <vector>

#include "files/QuarantinedFiles.h"
#include "toolkit/services/Preferences.h"
#include "tools/playfile/CommandError.h"
#include "tools/playfile/InputFile.h"
#include "tools/playfile/Output.h"
#include "tools/playfile/Text.h"

namespace cli {
namespace {

/// The names of all files that bear a mark.
std::vector<std::string> markedFiles() {
    LightweightString<char> const prefix = QuarantinedFiles::getAnalysisPrefKey({}, OpenType::unknown);
    std::vector<std::string> names;
    for (LightweightString<char> const& key : prefs()->getPreferenceKeys(prefix)) {
        if (prefs()->getPreference(key, false)) {
            names.push_back(key.str().substr(prefix.length()));
        }
    }
    return names;
}

void releaseFile(std::string const& name) {
    QuarantinedFiles::remove(wideName(name));
    writeLine("released " + printable(name));
}

}  // namespace

void QuarantineCommand::declare(CLI::App& program) {
    CLI::App* const command = program.add_subcommand(
        "quarantine", "Shows or forgets the files whose opening once failed or never came to its end");
    command->require_subcommand(1);
    list_ = command->add_subcommand("list", "Writes the names of the marked files");
    release_ = command->add_subcommand("release", "Forgets the mark of a file, or all marks");
    CLI::Option* const file = release_->add_option("FILE", file_, "The marked file, which needn't exist");
    release_->add_flag("--all", isAll_, "Forget all marks")->excludes(file);
}

int QuarantineCommand::run(SessionOptions const& options) {
    Session const session(options);
    return list_->parsed() ? list() : release();
}

int QuarantineCommand::list() const {
    for (std::string const& name : markedFiles()) {
        writeLine(printable(name));
    }
    return exitSuccess;
}

/// A mark bears the name that its opener used: the absolute one here, whatever was given elsewhere.
int QuarantineCommand::release() const {
    if (isAll_) {
        for (std::string const& name : markedFiles()) {
            releaseFile(name);
        }
        return exitSuccess;
    }
    if (file_.empty()) {
        throw CommandError("quarantine release: name a file, or say --all", exitUsage);
    }
    for (std::string const& name : {InputFile(file_).path(), file_}) {
        if (QuarantinedFiles::contains(wideName(name))) {
            releaseFile(name);
            return exitSuccess;
        }
    }
    throw CommandError(inQuotes(file_) + " bears no mark; 'playfile quarantine list' shows those that do");
}

}  // namespace cli
