#pragma once

#include <array>

#include "tools/playfile/Command.h"
#include "tools/playfile/ProjectCheckCommand.h"
#include "tools/playfile/ProjectCreateCommand.h"
#include "tools/playfile/ProjectDrivesCommand.h"
#include "tools/playfile/ProjectImportCommand.h"
#include "tools/playfile/ProjectListCommand.h"
#include "tools/playfile/ProjectSpacesCommand.h"
#include "tools/playfile/ProjectWhereCommand.h"

namespace cli {

/// `playfile project`: makes projects, fills them, and looks into them. Each of its commands takes the project's file
/// first.
class ProjectCommand : public Command {
public:
    void declare(CLI::App& program) override;
    [[nodiscard]] bool isChosen() const override { return command_->parsed(); }
    [[nodiscard]] int run(SessionOptions const& options) override;

private:
    CLI::App* command_ = nullptr;
    ProjectCreateCommand create_;
    ProjectImportCommand import_;
    ProjectListCommand list_;
    ProjectWhereCommand where_;
    ProjectCheckCommand check_;
    ProjectDrivesCommand drives_;
    ProjectSpacesCommand spaces_;
    std::array<Command*, 7> commands_{&create_, &import_, &list_, &where_, &check_, &drives_, &spaces_};
};

}  // namespace cli
