#pragma once

#include <cstdint>

#include "files/PlayFile.h"
#include "ole/Ox/OxMemHolder.h"
#include "ole/os/Errors.h"
#include "toolkit/image/CapturePacket.h"
#include "toolkit/services/RequestStatus.h"

/// A file that is being written, and the base of every writer.
///
/// Its metadata count the samples and frames that were accepted; `PlayUtil::OxAudioSamples_write` and
/// `PlayUtil::OxVideoSample_write` keep the counts.
///
/// Ownership  Held by counted pointers; the last release ends the file, which must be whole then.
/// Threads    One thread at a time writes a file.
class FileWriteInstance : public PlayFile {
public:
    /// Told of the fate of what was handed over.
    using Callback = void (*)(RequestStatus status);

    using PlayFile::PlayFile;

    /// Takes samples of all channels, interleaved.
    ///
    /// @param callback  may be null
    /// @return          1, or what went wrong
    virtual std::uint32_t writeAudioSamples(Ox::Ptr<iMemHolder>& data, Callback callback) = 0;
    /// Told once of each write that failed.
    virtual void reportWriteError(std::uint32_t status) = 0;
    /// Writes a captured frame. A writer that has a way of its own says itself what fails.
    virtual std::uint32_t writeSurface(Ox::Ptr<CapturePacket>& packet);
    /// Writes one frame.
    virtual std::uint32_t writeFrameData(Ox::Image::Surface const& surface) = 0;
    /// Frames that were accepted and aren't written yet.
    [[nodiscard]] virtual std::uint64_t getWriteBacklog() = 0;
    /// Ends the file: waits until all that was accepted is written, and makes the file whole. Nothing can be
    /// written afterwards. Who doesn't call it leaves it to the last release, and learns of no failure.
    ///
    /// @return  1, or what was the first failure; the same again for another call
    virtual std::uint32_t finish();
};
