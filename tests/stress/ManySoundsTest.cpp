/// 8 threads on many files of sound, whose requests are held, dropped and read ahead, while the shared cache
/// closes files under them.
#include <algorithm>
#include <atomic>
#include <map>
#include <mutex>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "audio/AudioQueuePool.h"
#include "playfile/Counters.h"
#include "tests/fakes/CacheFixture.h"
#include "tests/fakes/RecordingIssuer.h"
#include "tests/fakes/ScriptedDecoder.h"
#include "tests/fakes/ScriptedSound.h"

namespace {

constexpr unsigned threadCount = 8;
constexpr unsigned fileCount = 100;
/// Files that a quarter of all requests go to, so that threads meet on one file.
constexpr unsigned busyFileCount = 3;
constexpr unsigned roundsPerThread = 150;
constexpr unsigned aheadAtMost = 6;
constexpr unsigned channelCount = 4;
constexpr unsigned frameSize = 100;
constexpr std::uint64_t packetCount = 500;
constexpr std::uint64_t samplesPerFile = packetCount * frameSize;

/// One file in three is compressed, one way or the other.
enum class eKind { plain, byChannels, interleaved };

eKind kindOf(unsigned file) {
    return file % 6 == 0 ? eKind::byChannels : file % 6 == 3 ? eKind::interleaved : eKind::plain;
}

std::string pathOf(unsigned file) {
    return "/m/sound" + std::to_string(file);
}

class ManySoundsTest : public CacheFixture {
protected:
    struct Asked {
        Ox::Ptr<AudioReadRequest> request;
        std::unique_ptr<RecordingIssuer> issuer;
        unsigned file;
        unsigned channel;
    };

    ManySoundsTest() {
        for (unsigned file = 0; file < fileCount; ++file) {
            addFile(pathOf(file));
            for (unsigned channel = 1; channel <= channelCount; ++channel) {
                catalogue.addFile(makeCookie(file, 'S', static_cast<std::uint8_t>(channel)), pathOf(file));
            }
        }
        Ox::Ptr<ScriptedReader> const reader = addReader("sounds");
        reader->make = [this](ScriptedReader::OpenCall const& call) { return makeFile(narrow(call.name)); };
    }

    Ox::Ptr<FileReadInstance> makeFile(std::string const& path) {
        eKind const kind = kindOf(static_cast<unsigned>(std::stoul(path.substr(pathOf(0).size() - 1))));
        auto const script = std::make_shared<SoundScript>();
        script->sampleCount = samplesPerFile;
        Aud::Metadata const format =
            kind == eKind::plain ? soundFormat(channelCount) : compressedFormat(channelCount, frameSize);
        auto const made = Ox::makePtr<ScriptedSound>(path, OpenType::audio, script, std::vector{format});
        if (kind != eKind::plain) {
            script->packetCount = packetCount;
            auto const decoder = std::make_shared<DecoderScript>();
            decoder->metadata = format;
            decoder->decodesToStreams = kind == eKind::byChannels;
            decoder->preRollFrames = 1;
            made->codecs[0] = Ox::makePtr<ScriptedDecoder>(decoder);
            made->lastFrameRead[0] = ScriptedSound::nothingFed;
        }
        std::lock_guard const scope(lock_);
        scripts_.push_back(script);
        return made;
    }

    static Cookie cookieOf(unsigned file, unsigned channel) {
        return makeCookie(file, 'S', static_cast<std::uint8_t>(channel + 1));
    }
    /// Asks for samples somewhere in a file. Of compressed files whole frames are asked for.
    Asked ask(std::mt19937& random) {
        auto const file = static_cast<unsigned>(random() % (random() % 4 == 0 ? busyFileCount : fileCount));
        auto const channel = static_cast<unsigned>(random() % channelCount);
        std::uint64_t const start = random() % (samplesPerFile - frameSize);
        bool const isPlain = kindOf(file) == eKind::plain;
        return ask(file, channel, isPlain ? start : start - start % frameSize,
                   static_cast<unsigned>(random() % 1500 + 1));
    }
    Asked ask(unsigned file, unsigned channel, std::uint64_t start, unsigned count) {
        Asked asked{nullptr, std::make_unique<RecordingIssuer>(), file, channel};
        ++askedCount;
        OxResult const result =
            PlayFileCache::Shared()->audioReadRequest(asked.request, cookieOf(file, channel), start, count,
                                                      levelOriginal, asked.issuer->getProxy(), true);
        wrongCount += result == oxSuccess && narrow(asked.request->file->filename) == pathOf(asked.file) &&
                              asked.request->file->queueReadRequest(asked.request) == 1
                          ? 0U
                          : 1U;
        return asked;
    }

    /// Waits for the end, and looks at the samples.
    void finish(Asked const& asked) {
        bool const isTold = asked.issuer->waitForCalls(1);
        AudioReadRequest const& request = *asked.request;
        bool const isComplete = isTold && asked.issuer->only().status == requestComplete;
        bool const isWhole = request.getUsed() >= request.numSamples * 2;
        wrongCount += isComplete && isWhole && isRight(asked) ? 0U : 1U;
    }
    static bool isRight(Asked const& asked) {
        AudioReadRequest const& request = *asked.request;
        std::vector<std::uint8_t> given = bytesOf(request.buffer);
        given.resize(request.numSamples * 2);
        if (kindOf(asked.file) == eKind::plain) {
            return given == madeChannel(0, asked.channel, request.startSample, request.numSamples);
        }
        for (unsigned i = 0; i < request.numSamples; ++i) {
            std::uint64_t const sample = request.startSample + i;
            std::uint16_t const expected =
                decodedSample(sample / frameSize, asked.channel, static_cast<unsigned>(sample % frameSize));
            if ((given[2 * i] | given[2 * i + 1] << 8) != expected) {
                return false;
            }
        }
        return true;
    }

    /// Reads one by one, reads ahead, and drops what was asked for.
    void readMany(unsigned seed) {
        std::mt19937 random(seed);
        for (unsigned round = 0; round < roundsPerThread; ++round) {
            std::vector<Asked> held;
            unsigned const ahead = static_cast<unsigned>(random()) % aheadAtMost + 1;
            for (unsigned i = 0; i < ahead; ++i) {
                Asked asked = ask(random);
                if (random() % 4 != 0) {
                    held.push_back(std::move(asked));
                }
            }
            std::for_each(held.begin(), held.end(), [this](Asked const& asked) { finish(asked); });
        }
    }

    /// Waits until the queues of the files that are open have dropped what was dropped: what begins at the
    /// last samples is served last.
    void waitForQueues() {
        for (unsigned file = 0; file < fileCount; ++file) {
            if (PlayFileCache::Shared()->isOpen(cookieOf(file, 0), DecodeFormat(levelOriginal), 0)) {
                finish(ask(file, 0, samplesPerFile - frameSize, frameSize));
            }
        }
        EXPECT_TRUE(threads.waitUntilAllIdle());
    }
    /// Waits until every file that was opened has gone.
    void waitForFiles() {
        for (SoundScriptPtr const& script : scripts_) {
            EXPECT_TRUE(script->destroyGate.waitForArrivals(1));
        }
        EXPECT_TRUE(threads.waitUntilAllIdle());
    }
    [[nodiscard]] std::size_t madeCount() const { return scripts_.size(); }
    [[nodiscard]] std::size_t goneCount() const {
        return static_cast<std::size_t>(
            std::count_if(scripts_.begin(), scripts_.end(),
                          [](SoundScriptPtr const& script) { return script->destroyedCount == 1; }));
    }

    std::atomic<unsigned> wrongCount{0};
    std::atomic<unsigned> askedCount{0};

private:
    std::mutex lock_;
    std::vector<SoundScriptPtr> scripts_;
};

TEST_F(ManySoundsTest, GiveEveryCallerItsSamplesAndLeaveNothingBehind) {
    std::vector<std::thread> readers;
    for (unsigned i = 0; i < threadCount; ++i) {
        readers.emplace_back([this, i] { readMany(i); });
    }
    for (std::thread& thread : readers) {
        thread.join();
    }
    waitForQueues();
    PlayFileCache::Shared()->limitUsage();
    EXPECT_LE(PlayFileCache::Shared()->getOpenCount(), 2U);
    PlayFileCache::Shared()->closeAll();
    waitForFiles();
    EXPECT_EQ(wrongCount, 0U);
    EXPECT_EQ(playFileCounters().audioRequestsQueued, askedCount);
    EXPECT_EQ(playFileCounters().audioReadsFailed, 0U);
    EXPECT_GE(madeCount(), fileCount);
    EXPECT_EQ(goneCount(), madeCount());
    EXPECT_EQ(audioQueuePool().getFreeCount(), audioQueuePool().getCreated());
}

}  // namespace
