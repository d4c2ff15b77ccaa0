#pragma once

#include "tools/playfile/Command.h"
#include "tools/playfile/TransferOptions.h"
#include "transfer/ExternalDownloadSettings.h"

namespace cli {

/// `playfile download`: copies remote media of a project's clips to a folder.
class DownloadCommand : public Command {
public:
    void declare(CLI::App& program) override;
    [[nodiscard]] bool isChosen() const override { return command_->parsed(); }
    [[nodiscard]] int run(SessionOptions const& options) override;

private:
    /// What the options say, on top of what a file says.
    [[nodiscard]] ExternalDownloadSettings settings() const;

    CLI::App* command_ = nullptr;
    TransferOptions what_;
    std::string folder_;
    std::string naming_;
    std::string proxyExtension_;
    std::string settingsFile_;
    std::string newSettingsFile_;
    bool isJson_ = false;
};

}  // namespace cli
