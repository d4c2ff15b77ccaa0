#pragma once

#include <string>

#include "tools/playfile/Command.h"

namespace cli {

/// `playfile project check`: looks for what is wrong with a project, its drives, media and link files. It changes
/// nothing.
class ProjectCheckCommand : public Command {
public:
    void declare(CLI::App& program) override;
    [[nodiscard]] bool isChosen() const override { return command_->parsed(); }
    [[nodiscard]] int run(SessionOptions const& options) override;

private:
    CLI::App* command_ = nullptr;
    std::string file_;
    bool isJson_ = false;
};

}  // namespace cli
