#pragma once

#include <atomic>
#include <cstdint>
#include <vector>

#include "ole/os/Errors.h"
#include "toolkit/catalogue/Cookie.h"
#include "toolkit/catalogue/MaterialFilename.h"
#include "toolkit/image/VideoCompressionInfo.h"
#include "toolkit/plugins/FileXferManager.h"
#include "toolkit/services/ConfigB.h"
#include "toolkit/tasks/LoggerHandle.h"

/// A partial copy of a material file: the section between two times of a source becomes new material on a
/// drive. The copying itself is a plug-in's.
///
/// Threads  One at a time; `get_extract` takes as long as the copy does.
/// Units    Times in seconds of the source, samples and frames from 0. The end doesn't belong to the section.
class FileXferSpec : public VideoCompressionInfo {
public:
    /// The new material's drive is the one for renders.
    FileXferSpec();

    /// Makes the copy, and files it in the catalogue.
    ///
    /// @param log  for the plug-in
    /// @return     1; 0 for a source of no medium or that can't be opened, without a plug-in, or a failed copy;
    ///             `oxEmptyExtractSection`; `oxInterrupted`; what the plug-in answers
    /// Deliberate  A section that begins before 0 copies nothing and succeeds: black padding is only announced.
    OxResult get_extract(LoggerHandle& log);

    /// Turns the times into samples of the source's medium; 0 for a source of none, else 1.
    OxResult get_extract_samples();
    /// Frames: a time up to a ten-thousandth of a second before one means it.
    void get_vision_samples();
    /// Samples: up to a millionth before one.
    void get_sound_samples();
    /// The first plug-in that can make this copy; null if none can.
    [[nodiscard]] iFileXferManager* getOurFileXferManager();

    /// Asks the transfer that is under way to end; from any thread.
    void requestStop() { std::atomic_ref(xferStatus).store(oxInterrupted, std::memory_order_relaxed); }
    /// For the plug-in, which asks again and again.
    [[nodiscard]] bool isStopRequested() {
        return std::atomic_ref(xferStatus).load(std::memory_order_relaxed) != 0;
    }

    /// 0 when a transfer begins; anything else asks it to end.
    std::int32_t xferStatus = 0;
    /// For the plug-in.
    configb options;
    /// Of a source of pictures.
    Ox::FrameRate frameRate;
    /// Its type says what the source is.
    Cookie source;
    Cookie destination;
    double startTime = 0.0;
    double endTime = 0.0;
    DriveId drive;
    std::uint64_t startSample = 0;
    std::uint64_t endSample = 0;

private:
    [[nodiscard]] bool clipToSource();
    [[nodiscard]] OxResult transfer(LoggerHandle& log);
};

/// The rate at which the sound of a cookie's clip was recorded; 0 if it isn't known.
[[nodiscard]] double get_soundfile_sample_rate(Cookie cookie);
