#pragma once

#include "header/FileXferSpec.h"
#include "tools/playfile/Clip.h"
#include "tools/playfile/Command.h"

namespace cli {

/// `playfile extract`: writes a section of a clip into a file of its own, every pixel and sample as it was.
class ExtractCommand : public Command {
public:
    void declare(CLI::App& program) override;
    [[nodiscard]] bool isChosen() const override { return command_->parsed(); }
    [[nodiscard]] int run(SessionOptions const& options) override;

private:
    /// What is asked for, in the file's own counting; the end doesn't belong to it.
    struct Section {
        bool hasPicture = false;
        std::uint64_t first = 0;
        std::uint64_t end = 0;
        std::uint64_t firstSample = 0;
        std::uint64_t endSample = 0;
    };

    [[nodiscard]] Section section(Clip const& clip) const;
    [[nodiscard]] Section pictureSection(FileReadInstance const& file) const;
    [[nodiscard]] Section soundSection(Clip const& clip, FileReadInstance const& file) const;
    [[nodiscard]] bool wantsPicture(Clip const& clip) const;
    void addSound(Section& section, FileReadInstance const& picture, FileReadInstance const& sound) const;
    [[nodiscard]] std::string target(Clip const& clip, bool hasPicture) const;
    void transfer(FileXferSpec& spec, std::string const& target) const;
    void tell(Section const& section, std::string const& target) const;

    CLI::App* command_ = nullptr;
    std::string file_;
    std::string from_ = "0";
    std::string to_;
    std::string out_;
    std::string only_;
    bool isJson_ = false;
};

}  // namespace cli
