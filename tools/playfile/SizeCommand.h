#pragma once

#include <vector>

#include "tools/playfile/Command.h"

namespace cli {

/// `playfile size`: how many bytes the material of clips takes.
class SizeCommand : public Command {
public:
    void declare(CLI::App& program) override;
    [[nodiscard]] bool isChosen() const override { return command_->parsed(); }
    [[nodiscard]] int run(SessionOptions const& options) override;

private:
    CLI::App* command_ = nullptr;
    std::vector<std::string> files_;
    bool isJson_ = false;
};

}  // namespace cli
