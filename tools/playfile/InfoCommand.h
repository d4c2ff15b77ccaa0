#pragma once

#include <string>
#include <vector>

#include "tools/playfile/Command.h"

namespace cli {

/// `playfile info`: tells all that is known of a file.
class InfoCommand : public Command {
public:
    void declare(CLI::App& program) override;
    [[nodiscard]] bool isChosen() const override { return command_->parsed(); }
    [[nodiscard]] int run(SessionOptions const& options) override;

private:
    CLI::App* command_ = nullptr;
    std::string file_;
    bool isJson_ = false;
    std::vector<double> times_;
};

}  // namespace cli
