#pragma once

#include <vector>

#include "tools/playfile/Command.h"
#include "tools/playfile/InputFile.h"

namespace cli {

/// `playfile delete`: deletes the material of clips, and says what stays and why.
class DeleteCommand : public Command {
public:
    void declare(CLI::App& program) override;
    [[nodiscard]] bool isChosen() const override { return command_->parsed(); }
    [[nodiscard]] int run(SessionOptions const& options) override;

private:
    /// What goes with one file, and what stays.
    struct Plan {
        InputFile input;
        std::vector<std::string> goes;
        /// Name and reason.
        std::vector<std::pair<std::string, std::string>> stays;
        bool deletesHeader = false;
    };

    [[nodiscard]] static Plan planFor(std::string const& file);
    void tell(std::vector<Plan> const& plans) const;
    [[nodiscard]] bool isConfirmed() const;
    [[nodiscard]] static bool carryOut(Session& session, Plan const& plan);

    CLI::App* command_ = nullptr;
    std::vector<std::string> files_;
    bool isConfirmed_ = false;
    bool isDryRun_ = false;
    bool isJson_ = false;
};

}  // namespace cli
