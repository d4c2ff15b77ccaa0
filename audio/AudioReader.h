#pragma once

#include <map>
#include <vector>

#include "audio/AudioChannelCache.h"
#include "audio/AudioReadRequest.h"
#include "toolkit/sound/AudioCodecInstance.h"
#include "toolkit/sound/ByteBufferImpl.h"

namespace Ox {

/// Turns a queued request into one channel of samples: what all readers of sound share.
///
/// A reader's class derives from it beside `FileReadInstance`, lets its override of
/// `FileReadInstance::readAudio` lead to `AudioReader::readAudio`, and supplies the access to its file by
/// `readAudioSamples`. A stream is read for all of its channels at once, and the requests for the others,
/// which follow directly, are served from memory. The base knows no file format.
///
/// Ownership  It keeps the reference to the file's `audioStreams`, which must outlive it.
/// Threads    `readAudio`: the file's audio queue. `initAudioCodec`: the opening thread, before any read.
/// Lock order The lock of `AudioChannelCache` is held for the whole of `readAudio`, callbacks included: an
///            issuer must not wait for another read of the same reader, and must not block long.
/// Units      A sample is one sample of every channel of its stream. Of a compressed stream, one frame
///            counts as one sample where `readAudioSamples` is asked.
/// Errors     A failed read has status 3 and a line in the log; so has one that finds no memory. The end of
///            the data is no failure: the request is complete, and its buffer is shorter, or empty.
/// Deliberate A request whose data can't be split into channels fails, and what was split is kept for other
///            requests all the same.
class AudioReader : public AudioChannelCache {
public:
    /// @param audioStreams  of the file's metadata
    explicit AudioReader(std::vector<Aud::Metadata>& audioStreams);

    /// Reads one channel for `request`, stores its status, and tells its issuers.
    virtual void readAudio(Ptr<AudioReadRequest>& request);

    /// Reads from the file.
    ///
    /// @param sample       the first sample; the number of the frame in a compressed stream
    /// @param count        samples; 1 frame in a compressed stream
    /// @param buffer       interleaved samples, or the frame's packet, are put behind what it holds
    /// @param samplesRead  set to what was read
    /// @param skipStart    compressed: samples to blank at the start of what the frame gives
    /// @param skipEnd      compressed: samples to blank at its end
    /// @return 1 if all is well, 11 at the end of the data (8 for packets), any other code for a failure
    virtual OxResult readAudioSamples(unsigned int stream, unsigned long sample, unsigned int count,
                                      Ptr<ByteBufferImpl>& buffer, unsigned int& samplesRead,
                                      unsigned int& skipStart, unsigned int& skipEnd) = 0;

    /// True if the sound can only be reached through the file's video samples.
    [[nodiscard]] virtual bool readsByVideoSamples() = 0;

    /// Looks for a decoder of the stream; from then on the stream is compressed and has the decoder's
    /// format. A reader calls it while it opens the file.
    ///
    /// @param codecConfig  the decoder's part of the container's header; may be empty
    /// @return 5 with a decoder; 1 if no decoder knows the stream or could be tried, and it is read as uncompressed;
    ///         else what the last decoder that was tried said
    virtual OxResult initAudioCodec(unsigned int stream, Ptr<iMemHolder> codecConfig);

    /// The whole read of a file whose `readsByVideoSamples` says true; here: 12.
    virtual OxResult readAudioByVideoSamples(Ptr<ByteBufferImpl>& buffer, Ptr<AudioReadRequest>& request);

    /// Reads the request's samples into a new buffer: 1, 11 at the end of the data, or the failure.
    ///
    /// Deliberate  A read of fewer samples than a sample has bytes counts as the end of the data.
    OxResult readAudioByAudioSamples(Ptr<ByteBufferImpl>& buffer, Ptr<AudioReadRequest>& request);

    /// Makes `list` one empty buffer per channel, with room for that many codec frames. A format without
    /// channels leaves it as it was.
    static void createOutputBuffers(unsigned int frames, Aud::Metadata const& metadata,
                                    Aud::StreamBufferList& list);

    /// Decodes from a frame on until the request's samples are out, for a decoder of the one kind or the
    /// other.
    OxResult readCompressedAudio(unsigned long frameIndex, Aud::StreamBufferList& list,
                                 Ptr<AudioReadRequest>& request);
    OxResult readCompressedAudioInterleaved(unsigned long frameIndex, Aud::StreamBufferList& list,
                                            Ptr<AudioReadRequest>& request);

    /// Reads and decodes one frame, behind what the output holds. The first form blanks what is to be
    /// skipped, of the second the decoder does. `decoded` is what the decoder said.
    ///
    /// @return 1 if all is well; what the read said; 0 if the frame couldn't be decoded
    OxResult readAndDecode(unsigned int stream, unsigned long frame, Aud::StreamBufferList& list,
                           unsigned int& decoded);
    OxResult readAndDecodeInterleaved(unsigned int stream, unsigned long frame, Ptr<ByteBufferImpl>& output,
                                      unsigned int& decoded);

protected:
    /// True for a stream that is served silence, whatever the file holds.
    [[nodiscard]] static bool isMuted(std::uint32_t stream);

    ~AudioReader() = default;

    std::vector<Aud::Metadata>& streams;
    /// The compressed frame that was handed to the decoder last; `nothingFed` after `initAudioCodec`.
    std::map<int, std::uint64_t> lastFrameRead;
    /// A stream with a decoder here is compressed.
    std::map<int, Ptr<AudioCodecInstance>> codecs;
    /// Bytes added to each read buffer.
    std::uint32_t const readSlack = 512;
    /// Zeroes for streams that aren't played; it only grows.
    Aud::StreamBuffer silence;

    static constexpr std::uint64_t nothingFed = ~std::uint64_t{0};

private:
    /// What one read comes to: 1, `oxEndOfData`, with which the request is complete all the same, or a
    /// failure.
    [[nodiscard]] OxResult fetchWithinMemory(Ptr<AudioReadRequest>& request);
    [[nodiscard]] OxResult fetch(Ptr<AudioReadRequest>& request);
    [[nodiscard]] OxResult fetchCompressed(Ptr<AudioReadRequest>& request);
    [[nodiscard]] OxResult fetchUncompressed(Ptr<AudioReadRequest>& request);
    void takeResult(AudioReadRequest& request);
    void serveSilence(AudioReadRequest& request);

    [[nodiscard]] OxResult tryDecoder(unsigned int stream, AudioCodecInstance& instance);
    OxResult accept(unsigned int stream, Ptr<AudioCodecInstance> const& instance);
    /// Both ways of decoding position the decoder alike; they differ in how a frame is decoded and thrown
    /// away. 1 if the main loop may begin.
    template <class DecodeAndDrop>
    OxResult position(unsigned int stream, std::uint64_t frame, DecodeAndDrop const& decodeAndDrop);
    [[nodiscard]] Ptr<ByteBufferImpl> workBuffer(Aud::StreamBufferList& list, AudioReadRequest& request);
};

}  // namespace Ox
