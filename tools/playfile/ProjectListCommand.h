#pragma once

#include <string>

#include "tools/playfile/Command.h"

namespace cli {

/// `playfile project ls`: lists the clips of a project, in the order of their names.
class ProjectListCommand : public Command {
public:
    void declare(CLI::App& program) override;
    [[nodiscard]] bool isChosen() const override { return command_->parsed(); }
    [[nodiscard]] int run(SessionOptions const& options) override;

private:
    CLI::App* command_ = nullptr;
    std::string file_;
    bool isJson_ = false;
    bool looks_ = false;
};

}  // namespace cli
