#pragma once

#include <string>
#include <vector>

#include "toolkit/catalogue/Cookie.h"
#include "toolkit/catalogue/MaterialFilename.h"
#include "tools/playfile/Command.h"
#include "tools/playfile/RelocationPlan.h"

namespace cli {

class OpenedProject;

/// `playfile relocate`: copies or moves material between a project's drives.
class RelocateCommand : public Command {
public:
    void declare(CLI::App& program) override;
    [[nodiscard]] bool isChosen() const override { return command_->parsed(); }
    [[nodiscard]] int run(SessionOptions const& options) override;

private:
    [[nodiscard]] DriveId driveNamed(std::string const& name) const;
    [[nodiscard]] CookieVec clips(OpenedProject& opened) const;
    [[nodiscard]] int tell(RelocationPlan const& plan) const;
    [[nodiscard]] int relocate(CookieVec const& clips, DriveId destination, RelocationPlan const& plan) const;

    CLI::App* command_ = nullptr;
    std::string project_;
    std::string from_;
    std::vector<std::string> clips_;
    std::string to_;
    bool isMove_ = false;
    bool isDryRun_ = false;
    bool isJson_ = false;
};

}  // namespace cli
