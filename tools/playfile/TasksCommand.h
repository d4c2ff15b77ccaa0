#pragma once

#include <string>

#include "tools/playfile/Command.h"

namespace cli {

/// `playfile tasks`: does the transfers of a list, one after the other.
class TasksCommand : public Command {
public:
    void declare(CLI::App& program) override;
    [[nodiscard]] bool isChosen() const override { return command_->parsed(); }
    [[nodiscard]] int run(SessionOptions const& options) override;

private:
    CLI::App* command_ = nullptr;
    std::string project_;
    std::string list_;
    bool isJson_ = false;
};

}  // namespace cli
