#include "tools/playfile/ProjectCommand.h"

#include <algorithm>

#include "tools/playfile/CommandError.h"

namespace cli {

void ProjectCommand::declare(CLI::App& program) {
    command_ =
        program.add_subcommand("project", "Makes projects, fills them with clips, and looks into them");
    command_->require_subcommand(1);
    for (Command* const command : commands_) {
        command->declare(*command_);
    }
}

int ProjectCommand::run(SessionOptions const& options) {
    auto const chosen = std::find_if(commands_.begin(), commands_.end(),
                                     [](Command const* command) { return command->isChosen(); });
    return chosen == commands_.end() ? static_cast<int>(exitUsage) : (*chosen)->run(options);
}

}  // namespace cli
