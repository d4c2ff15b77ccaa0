#pragma once

#include <chrono>
#include <vector>

#include "tools/playfile/ClipMaker.h"
#include "tools/playfile/JsonText.h"
#include "tools/playfile/MaterialPlacer.h"
#include "tools/playfile/OpenedProject.h"
#include "tools/playfile/Progress.h"

namespace cli {

/// Brings clips into a project, some hundreds in one change. What was killed or stopped has imported whole changes
/// and nothing of the one that was under way.
///
/// Threads  One at a time. Other processes may import into the project meanwhile.
/// Errors   CommandError if the project can't be changed.
class ClipImporter {
public:
    /// @param probes  true opens each file for what its reader says of it
    ClipImporter(OpenedProject& opened, MaterialPlacer const& placer, bool probes, ImportProblems& problems);

    /// @throws Stopped  if somebody has asked for that
    void add(MediaGroup const& group);
    /// Imports what has been collected.
    void flush();

    /// Link files, which aren't imported: they lead to the media of clips.
    [[nodiscard]] std::uint64_t linkFiles() const { return linkFiles_; }
    /// What has been imported by now.
    [[nodiscard]] Json report() const;

private:
    using Clock = std::chrono::steady_clock;

    /// Looks into new media and gives them their place; false for a clip that isn't to be imported.
    [[nodiscard]] bool prepare(NewClip& clip, MediaGroup const& group);
    void showProgress();

    OpenedProject& opened_;
    MaterialPlacer const& placer_;
    ClipMaker const maker_;
    bool const probes_;
    ImportProblems& problems_;
    std::vector<NewClip> batch_;
    AddedMedia added_;
    std::uint64_t found_ = 0;
    std::uint64_t written_ = 0;
    std::uint64_t linkFiles_ = 0;
    Progress progress_;
    Clock::time_point nextLine_;
    Clock::time_point nextFlush_;
};

}  // namespace cli
