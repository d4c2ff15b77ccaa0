#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "files/FileReadInstance.h"
#include "tools/playfile/Clip.h"
#include "tools/playfile/Command.h"
#include "tools/playfile/FrameFetcher.h"
#include "tools/playfile/PictureSize.h"

namespace cli {

/// `playfile frames`: reads frames in any order and tells their sums or writes their pictures.
class FramesCommand : public Command {
public:
    FramesCommand();
    void declare(CLI::App& program) override;
    [[nodiscard]] bool isChosen() const override { return command_->parsed(); }
    [[nodiscard]] int run(SessionOptions const& options) override;

private:
    /// What the texts of the command line mean.
    struct Plan;

    [[nodiscard]] Plan readPlan() const;
    [[nodiscard]] std::vector<std::uint32_t> namedFrames(Plan const& plan,
                                                         PlayFileMetadataRep const& metadata,
                                                         std::string const& path) const;
    [[nodiscard]] int fetch(Clip const& clip, Plan const& plan, FileReadInstance const& file) const;

    CLI::App* command_ = nullptr;
    std::string file_;
    std::string frames_ = "all";
    std::string samples_;
    std::vector<double> times_;
    std::string order_ = "forward";
    std::optional<std::uint64_t> count_;
    unsigned threads_;
    bool isMd5_ = false;
    std::string out_;
    std::string size_;
};

}  // namespace cli
