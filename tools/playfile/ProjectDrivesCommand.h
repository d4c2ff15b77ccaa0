#pragma once

#include <string>
#include <vector>

#include "tools/playfile/Command.h"

namespace cli {

class OpenedProject;

/// `playfile project drives`: lists the media drives of a project, and changes them.
class ProjectDrivesCommand : public Command {
public:
    void declare(CLI::App& program) override;
    [[nodiscard]] bool isChosen() const override { return command_->parsed(); }
    [[nodiscard]] int run(SessionOptions const& options) override;

private:
    void change(OpenedProject& opened) const;
    void list(OpenedProject& opened) const;

    CLI::App* command_ = nullptr;
    std::string file_;
    std::vector<std::string> set_;
    std::vector<std::string> remove_;
    std::vector<std::string> tasks_;
    bool isJson_ = false;
};

}  // namespace cli
