#pragma once

#include <chrono>

#include "tools/playfile/Clip.h"
#include "tools/playfile/Command.h"
#include "tools/playfile/JsonText.h"
#include "tools/playfile/Measurements.h"
#include "tools/playfile/OutputFolder.h"

namespace cli {

/// `playfile show`: reads a file in every way, and writes a contact sheet, a picture of each channel's
/// course, and a report of it.
class ShowCommand : public Command {
public:
    void declare(CLI::App& program) override;
    [[nodiscard]] bool isChosen() const override { return command_->parsed(); }
    [[nodiscard]] int run(SessionOptions const& options) override;

private:
    using Clock = std::chrono::steady_clock;

    /// Both put what they find into the report and on standard output; how many reads failed.
    static std::uint64_t showPicture(Clip const& clip, FileReadInstance const& file, Clock::duration opening,
                                     OutputFolder const& folder, Json& report);
    static std::uint64_t showSound(Session& session, Clip const& clip, FileReadInstance const& file,
                                   OutputFolder const& folder, Json& report);

    CLI::App* command_ = nullptr;
    std::string file_;
    std::string out_;
};

}  // namespace cli
