#pragma once

#include <chrono>
#include <cstdint>
#include <vector>

#include "files/FileReadInstance.h"
#include "tools/playfile/Clip.h"
#include "tools/playfile/JsonText.h"
#include "tools/playfile/Latencies.h"

namespace cli {

/// Frames that were asked for one after another, each when the one before was there.
struct ReadSeries {
    Latencies latencies;
    std::uint64_t failed = 0;
};

/// Frames that several threads shared.
struct SharedReads {
    /// Good frames of each thread.
    std::vector<std::uint64_t> framesOfThread;
    std::uint64_t failed = 0;
    double seconds = 0.0;
};

/// How fast the frames of a file come, as stored.
struct Measurements {
    ReadSeries first;
    ReadSeries inOrder;
    ReadSeries random;
    SharedReads shared;

    [[nodiscard]] std::uint64_t failed() const;
};

/// Takes the measurements; each ends after a number of frames or a few seconds.
///
/// @param opening  how long the opening of the file took, which counts for the first frame
[[nodiscard]] Measurements measure(Clip const& clip, FileReadInstance const& file,
                                   std::chrono::steady_clock::duration opening);

/// The measurements as data, and as a table.
[[nodiscard]] Json describeMeasurements(Measurements const& measurements);
[[nodiscard]] std::string measurementTable(Measurements const& measurements);

}  // namespace cli
