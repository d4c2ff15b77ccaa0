#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "audio/AudioReader.h"
#include "tests/fakes/CallLog.h"
#include "tests/fakes/Gate.h"

/// One call of `readAudioSamples`.
struct SoundRead {
    unsigned stream;
    std::uint64_t sample;
    unsigned count;

    friend bool operator==(SoundRead const&, SoundRead const&) = default;
};

/// What one call of `readAudioSamples` gives.
struct SoundAnswer {
    OxResult result = oxSuccess;
    unsigned samplesRead = 0;
    unsigned skipStart = 0;
    unsigned skipEnd = 0;
};

/// How a `ScriptedSound` behaves and what was asked of it; it outlives the file.
///
/// Threads  The settings are made before the file is used; the rest is for any thread.
class SoundScript {
public:
    explicit SoundScript(std::shared_ptr<CallLog> callLog = std::make_shared<CallLog>())
        : calls(std::move(callLog)) {}

    /// Where each read of a request waits before it does anything.
    Gate readGate{true};
    /// Where the file's destructor waits.
    Gate destroyGate{true};
    /// Samples of every stream.
    std::uint64_t sampleCount = 1000000;
    /// Set: reads give packets that hold the frame's number, of so many frames.
    std::optional<std::uint64_t> packetCount;
    /// Answers a read, and so many made samples are then given; empty: what is there is given, with 11
    /// at the end of the samples and 8 at that of the packets.
    std::function<SoundAnswer(SoundRead const&)> answer;
    /// Run inside the read of a request, after the gate, without the reader's lock.
    std::function<void(Ox::Ptr<AudioReadRequest>&)> duringRead;
    bool readsByVideoSamples = false;
    /// The read of a file that reads by video samples; empty: it isn't overridden.
    std::function<OxResult(Ox::Ptr<ByteBufferImpl>&, Ox::Ptr<AudioReadRequest>&)> videoRead;
    std::shared_ptr<CallLog> const calls;

    void noteRequest(AudioReadRequest const& request);
    /// The first samples of the requests that were read, in order.
    [[nodiscard]] std::vector<std::uint64_t> startsRead() const;
    void noteRead(SoundRead const& read);
    [[nodiscard]] std::vector<SoundRead> reads() const;

    std::atomic<unsigned> destroyedCount{0};
    std::atomic<std::thread::id> destroyedBy{};
    /// The thread of the latest read of a request.
    std::atomic<std::thread::id> readBy{};

private:
    mutable std::mutex lock_;
    std::vector<std::uint64_t> startsRead_;
    std::vector<SoundRead> reads_;
};

using SoundScriptPtr = std::shared_ptr<SoundScript>;

/// A file of sound that does what its script says. Its samples are those of `madeSample`.
class ScriptedSound : public FileReadInstance, public Ox::AudioReader {
public:
    using AudioReader::codecs;
    using AudioReader::lastFrameRead;
    using AudioReader::lock_;
    using AudioReader::nothingFed;
    using AudioReader::readSlack;
    using AudioReader::silence;
    using AudioReader::streams;

    ScriptedSound(std::string const& name, OpenType type, SoundScriptPtr script,
                  std::vector<Aud::Metadata> formats, DecodeFormat const& format = DecodeFormat());
    ~ScriptedSound() override;

    [[nodiscard]] LightweightString<char> getDescription() const override { return "scripted sound"; }
    void readAudio(Ox::Ptr<AudioReadRequest>& request) override;
    OxResult readAudioSamples(unsigned int stream, unsigned long sample, unsigned int count,
                              Ox::Ptr<ByteBufferImpl>& buffer, unsigned int& samplesRead,
                              unsigned int& skipStart, unsigned int& skipEnd) override;
    bool readsByVideoSamples() override { return script_->readsByVideoSamples; }
    OxResult readAudioByVideoSamples(Ox::Ptr<ByteBufferImpl>& buffer,
                                     Ox::Ptr<AudioReadRequest>& request) override;

private:
    [[nodiscard]] SoundAnswer answerTo(SoundRead const& read) const;

    SoundScriptPtr const script_;
};

/// A format of that many channels of that width, uncompressed.
[[nodiscard]] Aud::Metadata soundFormat(std::uint32_t channels, std::uint32_t bytesPerSample = 2);
/// One whose frames have that many samples.
[[nodiscard]] Aud::Metadata compressedFormat(std::uint32_t channels, std::uint32_t samplesPerFrame);

/// The made sample of a channel, in the width of the format.
[[nodiscard]] std::uint64_t madeSample(unsigned stream, unsigned channel, std::uint64_t sample,
                                       std::uint32_t bytesPerSample);
/// `count` made samples of one channel, as bytes.
[[nodiscard]] std::vector<std::uint8_t> madeChannel(unsigned stream, unsigned channel, std::uint64_t first,
                                                    std::uint32_t count, std::uint32_t bytesPerSample = 2);
/// The used bytes of a holder.
[[nodiscard]] std::vector<std::uint8_t> bytesOf(iMemHolder const& holder);
