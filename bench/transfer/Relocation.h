#pragma once

#include <string>

namespace bench {

/// What a relocation of many files took, and what other ways to copy them took: one that copies each and waits until it
/// is on its device before the next one, as a relocation does; and the program cp for all, with a flush of each behind
/// it, which leaves it to the system to write them together.
struct RelocationFigures {
    bool isGood = false;
    double seconds = 0.0;
    double plainSeconds = 0.0;
    double programSeconds = 0.0;
    /// Seconds a file of the first tenth of the files, and of all.
    double firstSecondsPerFile = 0.0;
    double secondsPerFile = 0.0;
    /// MiB by which the process was larger at the end than after the first tenth.
    double growthMiB = 0.0;
};

/// Copies files in folders of 100 from one drive to another below a folder, in all ways.
[[nodiscard]] RelocationFigures measureRelocation(std::string const& folder, unsigned files,
                                                  unsigned bytesPerFile);

}  // namespace bench
