#pragma once

#include "tools/playfile/Command.h"
#include "tools/playfile/TransferOptions.h"

namespace cli {

/// `playfile localise`: copies linked and remote media of a project's clips to the project's drives.
class LocaliseCommand : public Command {
public:
    void declare(CLI::App& program) override;
    [[nodiscard]] bool isChosen() const override { return command_->parsed(); }
    [[nodiscard]] int run(SessionOptions const& options) override;

private:
    CLI::App* command_ = nullptr;
    TransferOptions what_;
    bool isRemoteOnly_ = false;
    bool isJson_ = false;
};

}  // namespace cli
