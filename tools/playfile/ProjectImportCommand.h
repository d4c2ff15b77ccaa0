#pragma once

#include <string>
#include <vector>

#include "tools/playfile/Command.h"
#include "tools/playfile/MaterialPlacer.h"

namespace cli {

/// `playfile project import`: makes clips of files and folders.
class ProjectImportCommand : public Command {
public:
    void declare(CLI::App& program) override;
    [[nodiscard]] bool isChosen() const override { return command_->parsed(); }
    [[nodiscard]] int run(SessionOptions const& options) override;

private:
    /// Requires the project's drives to be in force.
    [[nodiscard]] MaterialPlacer makePlacer() const;

    CLI::App* command_ = nullptr;
    std::string file_;
    std::vector<std::string> paths_;
    std::string drive_;
    bool isLinked_ = false;
    bool isCopied_ = false;
    bool isRecursive_ = false;
    bool probes_ = false;
    bool isJson_ = false;
};

}  // namespace cli
