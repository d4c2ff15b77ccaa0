#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tools/playfile/Command.h"
#include "tools/playfile/SyntheticSource.h"

namespace cli {

/// `playfile record`: plays a file, or a made source, into new material.
class RecordCommand : public Command {
public:
    void declare(CLI::App& program) override;
    [[nodiscard]] bool isChosen() const override { return command_->parsed(); }
    [[nodiscard]] int run(SessionOptions const& options) override;

private:
    void declareSource();
    void declareResult();
    [[nodiscard]] std::unique_ptr<SyntheticSource> makeSource() const;

    CLI::App* command_ = nullptr;
    std::string file_;
    std::string source_;
    std::string size_ = "640x360";
    SyntheticShape shape_;
    double from_ = 0.0;
    std::optional<double> seconds_;
    std::string channels_ = "all";
    std::string out_;
    std::string video_ = "mov-prores";
    std::string sound_ = "wav";
    std::vector<std::string> options_;
    bool isJson_ = false;
};

}  // namespace cli
