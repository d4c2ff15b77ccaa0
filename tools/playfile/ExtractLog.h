#pragma once

#include <string>

#include "header/FileXferSpec.h"
#include "toolkit/tasks/TaskLog.h"
#include "tools/playfile/Progress.h"

namespace cli {

/// The log of one transfer: shows how far it has come, keeps what went wrong, and stops the transfer when
/// somebody wants the program to end.
///
/// Threads  The transfer's, which reports; others after its end.
class ExtractLog final : public iTaskLog {
public:
    /// @param spec  lives as long as the log
    explicit ExtractLog(FileXferSpec& spec);

    void reportProgress(LightweightString<wchar_t> const& text, double fraction) override;
    [[nodiscard]] double calcAggregateProgress() const override { return fraction_; }
    void write(LightweightString<wchar_t> const& text, eOutputType type) override;
    /// The handle through which the transfer writes counts its pieces itself.
    void startSubTasks(std::uint32_t) override {}
    void nextSubTask() override {}
    void endSubTasks() override {}

    /// The last line about an error; empty if there was none.
    [[nodiscard]] std::string const& problem() const { return problem_; }

private:
    FileXferSpec& spec_;
    Progress progress_;
    double fraction_ = 0.0;
    std::string problem_;
};

}  // namespace cli
