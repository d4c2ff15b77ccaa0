#pragma once

#include <atomic>
#include <cstdint>

#include "files/FileReadInstance.h"
#include "ole/os/Events.h"
#include "ole/os/Locks.h"
#include "ole/os/WorkerThreadPool.h"

/// Base of the readers of files that can only be decoded from some earlier point onward: a thread of its own
/// decodes a run of frames, a batch, while reads take frames out of it.
///
/// A read doesn't wait for its frame: it hands out a surface that fills in when the decoder reaches it, and
/// the receiver waits on that. A batch is begun only by a read outside both batches that are held, and only
/// when the newer of them has its last frame. The older one stays for steps back. Whether a file goes this
/// way is said by `readStreaming` of its metadata, which is fixed while the file is opened.
///
/// Ownership  It holds at most two batches; a buffer that was handed out shares its surface's pixels.
/// Threads    `readVideo` on the file's queue, `decodeFrames` on the decoder thread. A subclass calls
///            `endStreamDecode` first of all in its destructor, while its `decodeFrames` still exists.
/// Lock order `decodeLock` guards the batches. It isn't held while a batch is decoded, nor while anything is
///            waited for.
/// Errors     A read always answers that the frame is there: a decoder's failure shows in the surface, which
///            is then finished without pixels.
/// Deliberate A batch whose first surface has pixels when the decoder wakes isn't decoded again, only logged.
class StreamingDecodeReader : public FileReadInstance {
public:
    using FileReadInstance::readVideo;

    /// Starts no thread.
    StreamingDecodeReader(LightweightString<wchar_t> const& name, DecodeFormat const& format, OpenType type);

    /// Reads straight or streaming, as the metadata say; streaming begins at the first read. What isn't held
    /// is read straight as well where there is no decoder thread.
    unsigned int readVideo(Ox::Ptr<FrameBufferRep>& buffer, Ox::Ptr<VideoReadRequest>& request) override;

    /// Decodes all frames of a batch into its surfaces, on the decoder thread. The result isn't looked at.
    ///
    /// It must leave every surface finished (`set`), with pixels or without, whatever happens: others wait
    /// for them without a limit.
    virtual unsigned int decodeFrames(Ox::Ptr<FrameBufferRep>& batch, unsigned int startFrame) = 0;
    /// The ordinary read of a file that isn't read streaming: an `eReadResult`.
    virtual unsigned int readVideoDirect(Ox::Ptr<FrameBufferRep>& buffer,
                                         Ox::Ptr<VideoReadRequest>& request) = 0;
    /// Says which run of frames must be decoded to have `frame`, which is in it.
    ///
    /// @param start  comes as `frame`
    /// @param end    comes as `frame`; one past the last frame, or `start` for one frame
    virtual void getDecodeRange(unsigned int frame, unsigned int& start, unsigned int& end) = 0;
    /// Hands out the frame of a batch that is held, else begins one that has it; always `frameRead`.
    virtual unsigned int readVideoStreaming(Ox::Ptr<FrameBufferRep>& buffer,
                                            Ox::Ptr<VideoReadRequest>& request);

    void beginStreamDecode();
    /// Lets a batch in progress end, and ends the decoder thread. Nothing if streaming never began.
    void endStreamDecode();
    /// The decoder thread's body.
    void threadFn();

    /// True if the batch has the frame; false for an empty one.
    [[nodiscard]] static bool framePresent(Ox::Ptr<FrameBufferRep>& batch, unsigned int frame);

protected:
    /// Releases the members; see `Threads`.
    ~StreamingDecodeReader() override;

    /// The subclass's own.
    std::int64_t streamPosition = -999;
    /// Wakes the decoder thread. Empty until streaming has begun.
    ThreadEventPtr wakeEvent;
    /// Clear while a batch is being decoded.
    ThreadEventPtr idleEvent;
    /// The batch that is being decoded, or was last.
    Ox::Ptr<FrameBufferRep> currentBatch;
    /// The one before it.
    Ox::Ptr<FrameBufferRep> previousBatch;
    Ox::Ptr<iAccessLock> decodeLock;
    Ox::WorkerThreadPool::ThreadPtr decodeThread;
    /// From `beginStreamDecode` to `endStreamDecode`; `wakeEvent` is what makes a change seen.
    std::atomic<bool> running{false};

private:
    [[nodiscard]] bool isHeld(unsigned int frame);
    [[nodiscard]] bool findHeld(unsigned int frame, Ox::Image::Surface& surface);
    void giveUpPreviousBatch();
    void finishCurrentBatch();
    void buildBatch(VideoReadRequest const& request, Ox::Image::Surface& surface);
};
