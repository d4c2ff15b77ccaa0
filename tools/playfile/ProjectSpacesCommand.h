#pragma once

#include <optional>
#include <string>
#include <vector>

#include "host/sqlite/SqliteProjectSpaces.h"
#include "tools/playfile/Command.h"

namespace cli {

class OpenedProject;

/// `playfile project spaces`: lists the project spaces of a project, and changes them. No store is asked.
class ProjectSpacesCommand : public Command {
public:
    void declare(CLI::App& program) override;
    [[nodiscard]] bool isChosen() const override { return command_->parsed(); }
    [[nodiscard]] int run(SessionOptions const& options) override;

private:
    /// The space that is to be added.
    [[nodiscard]] std::optional<ProjectSpaceRecord> parseAdded() const;
    void remove(OpenedProject& opened) const;
    void list(OpenedProject& opened) const;

    CLI::App* command_ = nullptr;
    CLI::Option* use_ = nullptr;
    std::string file_;
    std::string add_;
    std::vector<std::string> roots_;
    std::string inUse_;
    std::vector<std::string> remove_;
    bool isJson_ = false;
};

}  // namespace cli
