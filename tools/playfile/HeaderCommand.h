#pragma once

#include "header/SavHeader.h"
#include "tools/playfile/Command.h"

namespace cli {

/// `playfile header`: shows the header of a piece of material, or checks the text of one.
class HeaderCommand : public Command {
public:
    void declare(CLI::App& program) override;
    [[nodiscard]] bool isChosen() const override { return command_->parsed(); }
    [[nodiscard]] int run(SessionOptions const& options) override;

private:
    [[nodiscard]] int show(SessionOptions const& options) const;
    [[nodiscard]] int check() const;

    CLI::App* command_ = nullptr;
    std::string file_;
    std::string text_;
    bool isJson_ = false;
};

}  // namespace cli
