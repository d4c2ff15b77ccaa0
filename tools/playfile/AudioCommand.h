#pragma once

#include <optional>

#include "tools/playfile/Clip.h"
#include "tools/playfile/Command.h"
#include "tools/playfile/SampleFetcher.h"

namespace cli {

/// `playfile audio`: reads samples, and sums them up or writes them into a WAVE file.
class AudioCommand : public Command {
public:
    AudioCommand();
    void declare(CLI::App& program) override;
    [[nodiscard]] bool isChosen() const override { return command_->parsed(); }
    [[nodiscard]] int run(SessionOptions const& options) override;

private:
    struct Plan;

    [[nodiscard]] Plan readPlan() const;
    [[nodiscard]] std::vector<ChannelRange> select(Session& session, Clip const& clip,
                                                   Plan const& plan) const;
    [[nodiscard]] int writeSums(std::string const& path, Plan const& plan,
                                std::vector<ChannelRange> const& ranges) const;
    [[nodiscard]] int writeFile(std::string const& path, Plan const& plan,
                                std::vector<ChannelRange> const& ranges) const;

    CLI::App* command_ = nullptr;
    std::string file_;
    std::string channels_ = "all";
    std::string from_ = "0";
    std::string count_;
    std::string rate_;
    std::string order_ = "forward";
    std::uint32_t block_;
    unsigned threads_;
    bool isMd5_ = false;
    std::string out_;
};

}  // namespace cli
