#pragma once

#include <cstdint>
#include <functional>

namespace bench {

/// What one measurement found.
///
/// Units  Seconds of the timed part, by the clock and of the processors, those of all threads together; bytes
///        of memory that was resident at most, over the whole process; what is there before the timed part,
///        at most in it, and when the process has rested after it, where that is looked at.
struct Sample {
    bool isGood = false;
    double seconds = 0.0;
    double processorSeconds = 0.0;
    std::uint32_t reads = 0;
    std::uint64_t peakBytes = 0;
    double startMiB = 0.0;
    double restMiB = 0.0;
    double peakThreads = 0.0;
    double restThreads = 0.0;
    double peakDescriptors = 0.0;
    double restDescriptors = 0.0;
    /// Pictures that came out of the library's decoders.
    std::uint64_t decodedFrames = 0;
};

/// What is known of a clip before it is measured.
struct ClipFacts {
    bool isGood = false;
    std::uint32_t frameCount = 0;
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    bool isIntraOnly = false;
    /// Packets from one key to the next, on the average; 0 if there are none.
    std::uint32_t framesPerKey = 0;
    /// Names as libavformat and libavcodec have them, cut to fit.
    char codec[32] = {};
    char container[64] = {};
};

/// What is known of a file's sound before it is measured.
struct SoundFacts {
    bool isGood = false;
    std::uint64_t sampleCount = 0;
    std::uint32_t channels = 0;
    std::uint32_t bytesPerSample = 0;
    double sampleRate = 0.0;
    bool isCompressed = false;
    /// Of the reader's own description, cut to fit.
    char description[96] = {};
};

/// Runs `measure` in a child process and gives back what it answered; a default one if the child died.
///
/// Each measurement so begins with nothing opened, nothing cached and no memory taken, whichever side ran
/// before it. Requires that this process has started no thread.
[[nodiscard]] Sample runInChild(std::function<Sample()> const& measure);
[[nodiscard]] ClipFacts runInChild(std::function<ClipFacts()> const& look);
[[nodiscard]] SoundFacts runInChild(std::function<SoundFacts()> const& look);

/// Runs the part of a measurement that is timed, and stores how long it took and whether it went well.
void measureTime(Sample& sample, std::function<bool()> const& work);

/// The most memory that was resident in this process until now, in bytes.
[[nodiscard]] std::uint64_t peakResidentBytes();

}  // namespace bench
