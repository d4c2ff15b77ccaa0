#pragma once

#include "tools/playfile/Command.h"
#include "tools/playfile/JsonText.h"
#include "tools/playfile/Measurements.h"
#include "tools/playfile/OutputFolder.h"

namespace cli {

/// `playfile show`: reads a file in every way, and writes a contact sheet and a report of it.
class ShowCommand : public Command {
public:
    void declare(CLI::App& program) override;
    [[nodiscard]] bool isChosen() const override { return command_->parsed(); }
    [[nodiscard]] int run(SessionOptions const& options) override;

private:
    CLI::App* command_ = nullptr;
    std::string file_;
    std::string out_;
};

}  // namespace cli
