#pragma once

#include <string>
#include <vector>

#include "tools/playfile/Command.h"

namespace cli {

/// `playfile project create`: makes the file of a new project.
class ProjectCreateCommand : public Command {
public:
    void declare(CLI::App& program) override;
    [[nodiscard]] bool isChosen() const override { return command_->parsed(); }
    [[nodiscard]] int run(SessionOptions const& options) override;

private:
    CLI::App* command_ = nullptr;
    std::string file_;
    std::vector<std::string> drives_;
};

}  // namespace cli
