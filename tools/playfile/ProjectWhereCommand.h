#pragma once

#include <string>

#include "tools/playfile/Command.h"

namespace cli {

/// `playfile project where`: tells where the files of a clip are, and why they aren't there.
class ProjectWhereCommand : public Command {
public:
    void declare(CLI::App& program) override;
    [[nodiscard]] bool isChosen() const override { return command_->parsed(); }
    [[nodiscard]] int run(SessionOptions const& options) override;

private:
    CLI::App* command_ = nullptr;
    std::string file_;
    std::string clip_;
    bool isJson_ = false;
};

}  // namespace cli
