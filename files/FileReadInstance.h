#pragma once

#include <atomic>
#include <cstdint>

#include "files/PlayFile.h"
#include "ole/Ox/OxVector.h"
#include "ole/os/Errors.h"
#include "toolkit/catalogue/Cookie.h"
#include "toolkit/catalogue/OpenType.h"
#include "toolkit/image/DecodeFormat.h"
#include "toolkit/image/FrameBufferRep.h"
#include "toolkit/services/ConfigB.h"
#include "toolkit/services/GenericParam.h"
#include "toolkit/services/RequestStatus.h"

class AudioReadRequest;
class LoggerHandle;
class VideoReadRequest;

namespace Ox {
class AudioReadQueue;
class FileWriterParams;
class VideoReadQueue;
}  // namespace Ox

/// One media file opened for reading, for one `OpenType`: the base of every reader.
///
/// A reader's class passes name, format and type to this constructor, fills `metadata` (audio streams,
/// sample counts and the frame rate above all) before its open operation returns, names itself in
/// `getDescription`, overrides the two-argument `readVideo` for video, and `updateMetadataFrom` if it
/// keeps copies of metadata.
///
/// Ownership  Held by `Ox::Ptr`; requests and the cache hold it. It borrows a queue from the pool at
///            its first video read, another at its first audio read, and gives them back in its destructor.
/// Threads    `queueReadRequest`: any thread. `readVideo`, `readAudio`: the thread of their queue, one
///            read at a time each.
///            `purge` and `limitUsage`: any thread, with the cache's lock held. A reader that shares
///            state between these guards it itself.
/// Lock order The cache's lock, `lock`, the pool's lock, the queue's lock.
class FileReadInstance : public PlayFile {
public:
    /// What the two-argument `readVideo` may answer; the numbers match `RequestStatus`.
    enum eReadResult : std::uint32_t {
        takenOver = requestTakenUp,   ///< the reader completes the request itself, later
        frameRead = requestComplete,  ///< the frame is in the buffer
        noFrame = requestFailed,
    };

    /// The file itself isn't touched.
    FileReadInstance(LightweightString<wchar_t> const& name, DecodeFormat const& format, OpenType type);

    /// Gives the queues back to their pools, video's first.
    ~FileReadInstance() override;

    /// Merges what another reader found out about the file into `metadata`: what is missing here, all
    /// extra settings, and, if the other's frame rate varies or is none of the standard ones, rates,
    /// map and counts.
    ///
    /// Deliberate  The audio sample count becomes the larger of the two; everything else overwrites.
    virtual void updateMetadataFrom(Ox::Ptr<PlayFileMetadataRep> const& other);

    /// Asks the reader to compute a size anew; `size` is untouched by one that doesn't.
    virtual void recalculateSize(unsigned int value, unsigned int& size);

    /// The settings that the reader takes for decoding; empty without any.
    [[nodiscard]] virtual LightweightVector<Ox::Ptr<GenericParam::iParam>> getDecodeOptions(
        Ox::Ptr<FileReadInstance> self);
    [[nodiscard]] virtual configb getDecodeOptionValues();
    virtual void setDecodeOptionValues(configb const& values);

    /// Hands the request to the file's video queue, which is taken from the pool at the first one.
    /// `request` may come back as an older request for the same frame. The result is the queue's: 1.
    ///
    /// Requires that the file was opened for video; 0 otherwise, with the request as it was.
    virtual unsigned int queueReadRequest(Ox::Ptr<VideoReadRequest>& request);

    /// Hands the request to the file's audio queue, which is taken from the pool at the first one. The
    /// result is the queue's: 1.
    ///
    /// Requires that the file was opened for audio; 0 otherwise, with the request as it was.
    virtual unsigned int queueReadRequest(Ox::Ptr<AudioReadRequest>& request);

    /// Reads a frame for `request` and completes it, or fails it. On the queue's thread.
    virtual void readVideo(Ox::Ptr<VideoReadRequest>& request);

    /// Reads one frame: the operation that a video reader overrides.
    ///
    /// @param buffer  set on `frameRead`; ignored with any other answer
    /// @return an `eReadResult`; anything but `frameRead` and `takenOver` fails the request
    virtual unsigned int readVideo(Ox::Ptr<FrameBufferRep>& buffer, Ox::Ptr<VideoReadRequest>& request);

    /// Reads one channel for `request` and ends it; here: nothing. An audio reader leads it to its
    /// `Ox::AudioReader`. On the audio queue's thread.
    virtual void readAudio(Ox::Ptr<AudioReadRequest>& request);

    /// Copies a section of the file into files of their own; here: `oxCannotExtract`.
    [[nodiscard]] virtual OxResult extractFiles(LightweightString<wchar_t> const& source,
                                                LightweightString<wchar_t> const& target,
                                                Cookie const& cookie, OpenType type,
                                                Ox::FileWriterParams const& params, LoggerHandle& log) const;

    /// Lets go of every finished read of the video queue.
    virtual void purge();
    /// Lets go of the finished reads that nobody holds any more.
    virtual void limitUsage();

    /// Takes those of the reader's own settings that `saved` knows, hands them to the reader and
    /// answers them. Keys that the reader doesn't have are ignored.
    configb initDecodeOptionValues(configb const& saved);

    /// The media that the chosen reader serves: a mask, 0 until it is chosen.
    std::uint32_t readableTypes = 0;
    OpenType const openType;
    DecodeFormat const decodeFormat;

private:
    /// Empty until the first video request. Written once, under `lock`.
    Ox::ExternalPtr<Ox::VideoReadQueue> videoQueue_;
    /// Empty until the first audio request. Written once, under `lock`.
    Ox::ExternalPtr<Ox::AudioReadQueue> audioQueue_;
    /// Says to those who don't take `lock` that the pointer is written.
    std::atomic<bool> hasVideoQueue_{false};
};
