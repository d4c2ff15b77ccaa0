#pragma once

#include <mutex>
#include <string>
#include <vector>

#include "toolkit/tasks/TaskLog.h"

namespace cli {

/// The log of a transfer that somebody watches on another thread.
///
/// Threads  The transfer writes; any may look.
class TransferLog final : public iTaskLog {
public:
    struct Line {
        std::string text;
        eOutputType type = plainLine;
    };

    void reportProgress(LightweightString<wchar_t> const& /*text*/, double fraction) override;
    [[nodiscard]] double calcAggregateProgress() const override;
    void write(LightweightString<wchar_t> const& text, eOutputType type) override;
    /// A relocation counts its pieces in its handle, and of a sequence the task tells how many frames are done.
    void startSubTasks(std::uint32_t) override {}
    void nextSubTask() override {}
    void endSubTasks() override {}

    /// The lines that came since the last call.
    [[nodiscard]] std::vector<Line> takeLines();

private:
    mutable std::mutex lock_;
    std::vector<Line> lines_;
    double fraction_ = 0.0;
};

/// A log's link to files, taken apart: what stands for them, and their names. A text that is no link stands for itself.
struct LinkText {
    [[nodiscard]] static LinkText parse(std::string const& text);

    std::string label;
    std::vector<std::string> targets;
};

}  // namespace cli
