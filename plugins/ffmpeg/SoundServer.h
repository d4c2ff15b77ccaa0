#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "audio/AudioReader.h"
#include "plugins/ffmpeg/FFmpegAudioDecoder.h"
#include "plugins/ffmpeg/SoundAhead.h"
#include "plugins/ffmpeg/SoundFile.h"

namespace playfile_ffmpeg {

/// Serves the audio reads of one open file.
///
/// A coded stream is read by frames that are counted from its first sample that is heard. A read that
/// goes on where the last one ended, or begins at the start, decodes ahead, so that the reads after it find their samples, and has
/// the packets behind that decoded while its caller digests them; one that jumps there decodes what its
/// request needs and no more.
///
/// Threads    As `Ox::AudioReader`. Each coded stream that is read in order has a thread that feeds its decoder.
/// Errors     A stream without a decoder fails its reads. A read that begins behind the end of a stream
///            that is shorter than the file is complete and empty; of one that isn't played it is silence.
/// Deliberate The frame that ends a read is longer than the others if the request's samples go on behind
///            it (where a read begins inside a frame, the samples that it asks for end behind as many whole
///            frames as it counts), and if the read decodes ahead.
class SoundServer final : public Ox::AudioReader {
public:
    /// @param audioStreams  of the file's metadata, which gets the forms of all streams
    SoundServer(std::vector<Aud::Metadata>& audioStreams, std::unique_ptr<SoundFile> file);

    void readAudio(Ox::Ptr<AudioReadRequest>& request) override;
    OxResult readAudioSamples(unsigned int stream, unsigned long sample, unsigned int count,
                              Ox::Ptr<ByteBufferImpl>& buffer, unsigned int& samplesRead,
                              unsigned int& skipStart, unsigned int& skipEnd) override;
    [[nodiscard]] bool readsByVideoSamples() override { return false; }

    [[nodiscard]] SoundFile const& file() const { return *file_; }

private:
    /// What the read that is under way wants of its stream.
    struct Wanted {
        std::uint32_t stream = 0;
        std::uint64_t firstFrame = 0;
        std::uint64_t endSample = 0;
        std::uint64_t fetchedSamples = 0;
        bool decodesAhead = false;
        bool isSettled = false;
    };

    /// The feeding of a stream's decoder ahead of the reads.
    struct Feeding {
        Ox::Ptr<FFmpegAudioDecoder> decoder;
        Bundle::Packet packet;
        std::vector<std::uint8_t> bytes;
        std::unique_ptr<SoundAhead> ahead;
    };

    void findDecoder(unsigned int stream, SoundTrack const& track);
    void halt(unsigned int stream);
    [[nodiscard]] bool beginsAtStart(AudioReadRequest& request);
    void feedAhead(unsigned int stream, std::uint64_t first, std::uint64_t end);
    [[nodiscard]] bool feedNext(unsigned int stream);
    [[nodiscard]] bool isBehindEnd(AudioReadRequest const& request) const;
    void settle(AudioReadRequest const& request, CodedTrack& track);
    [[nodiscard]] OxResult readPcm(PcmTrack& track, std::uint32_t bytesOfAll, std::uint64_t sample,
                                   std::uint32_t count, ByteBufferImpl& buffer,
                                   unsigned int& samplesRead) const;
    [[nodiscard]] OxResult readBundle(unsigned int stream, std::uint64_t frame, ByteBufferImpl& buffer);
    [[nodiscard]] std::uint64_t endOf(unsigned int stream, std::uint64_t frame) const;

    std::unique_ptr<SoundFile> const file_;
    AudioReadRequest const* reading_ = nullptr;  ///< Under way; null between reads.
    Wanted wanted_;
    std::vector<std::uint8_t> bundle_;
    std::vector<Feeding> feedings_;  ///< By stream. Last, as their threads use all the others.
};

}  // namespace playfile_ffmpeg
