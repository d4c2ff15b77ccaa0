#pragma once

#include <cstdio>
#include <string>
#include <vector>

#include "bench/sound/SoundCases.h"
#include "bench/support/Child.h"

namespace bench {

/// Another way to read what the library reads.
struct Rival {
    std::string name;
    std::vector<Sample> samples;
    /// How many times as fast as it the library is to be; 0 where nothing is set.
    double leastRatio = 0.0;
};

/// The repetitions of one case, all sides in turn.
struct SoundCaseResult {
    eSoundCase which = eSoundCase::inOrder;
    std::vector<Sample> library;
    std::vector<Rival> rivals;

    /// True if no repetition of any side failed.
    [[nodiscard]] bool isGood() const;
};

/// All that was measured of one file.
struct SoundResult {
    std::string path;
    SoundFacts facts;
    std::uint32_t blockSamples = 0;
    std::vector<SoundCaseResult> cases;
};

void printSoundTable(std::FILE* out, SoundResult const& result);

/// What the columns of the table mean.
void printSoundLegend(std::FILE* out);

void printSoundJson(std::FILE* out, std::vector<SoundResult> const& results);

/// Says of each speed that playfile sets itself whether it was reached.
void printSoundTargets(std::FILE* out, std::vector<SoundResult> const& results);

}  // namespace bench
