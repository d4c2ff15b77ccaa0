/// Sections of clips, extracted through the library and the plug-in, beside the same sections of the linear
/// decode by the program `ffmpeg`.
///
/// The seed is printed; the environment's PLAYFILE_TEST_SEED sets it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <memory>
#include <random>

#include "header/FileXferSpec.h"
#include "host/memory/MemoryCatalogue.h"
#include "host/memory/MemoryEditStore.h"
#include "host/memory/MemoryTaskLog.h"
#include "host/sidecar/HeaderFiles.h"
#include "tests/real/DecodedSound.h"
#include "tests/real/OpenClip.h"
#include "tests/real/OpenSound.h"
#include "tests/real/RealMedia.h"
#include "tests/real/SoundBounds.h"
#include "tests/support/Installed.h"
#include "tests/support/TemporaryFolder.h"
#include "toolkit/catalogue/DiskManager.h"

namespace test {
namespace {

constexpr int sectionCount = turns(100);
constexpr std::uint32_t mostFrames = 40;
constexpr std::uint32_t mostSamples = 100'000;
/// The rate by which times are told; the sections are counted in samples.
constexpr double samplesPerSecond = 48000.0;
/// Longer ones would make up most of the test's time.
constexpr std::uintmax_t mostBytes = 3'000'000;

std::uint32_t seed() {
    char const* const given = std::getenv("PLAYFILE_TEST_SEED");
    std::uint32_t const number = given != nullptr
                                     ? static_cast<std::uint32_t>(std::strtoul(given, nullptr, 10))
                                     : std::random_device()();
    std::cout << "PLAYFILE_TEST_SEED=" << number << std::endl;
    return number;
}

/// A drive for renders in a folder of its own, and headers beside the material.
class ExtractReal : public testing::Test {
protected:
    ExtractReal() : random_(seed()), installed_(&headers_) {
        DiskManager::instance().setDriveRoot('X', folder_.name(""));
        DiskManager::instance().setDriveForTask("render", 'X');
    }
    ~ExtractReal() override { DiskManager::instance().removeDrive('X'); }

    [[nodiscard]] std::uint64_t pick(std::uint64_t most) {
        return std::uniform_int_distribution<std::uint64_t>(0, most)(random_);
    }

    /// Extracts, and gives the path of the copy; empty if that failed.
    [[nodiscard]] std::string extract(FileXferSpec& spec) {
        Ox::Ptr<MemoryTaskLog> const log = Ox::makePtr<MemoryTaskLog>();
        LoggerHandle handle(log);
        OxResult const result = spec.get_extract(handle);
        for (MemoryTaskLog::Line const& line : log->lines()) {
            ADD_FAILURE() << toUTF8(line.text).str();
        }
        LightweightString<wchar_t> name;
        bool const isFiled = MemoryCatalogue::instance().findFileForCookie(spec.destination, name,
                                                                           DecodeFormat(levelOriginal));
        EXPECT_EQ(isFiled, result == oxSuccess);
        return isFiled ? toUTF8(name).str() : "";
    }

    /// The samples of one channel from `first` up to `end`.
    static std::unique_ptr<FileXferSpec> soundSection(std::string const& path, std::uint32_t channel,
                                                      std::uint64_t first, std::uint64_t end) {
        auto spec = std::make_unique<FileXferSpec>();
        spec->source = Cookie(Ox::UUID::generate(), 'S', static_cast<std::uint8_t>(channel + 1));
        spec->destination = Cookie(Ox::UUID::generate(), 'S', 1);
        MemoryCatalogue::instance().add(spec->source, fromUTF8(path.c_str()));
        MemoryEditStore::instance().setAudioInputSampleRate(
            convertCookie(spec->source, 'E', Cookie::wholeClip), Aud::SampleRate(samplesPerSecond));
        spec->startTime = static_cast<double>(first) / samplesPerSecond;
        spec->endTime = static_cast<double>(end) / samplesPerSecond;
        return spec;
    }

    TemporaryFolder folder_;
    HeaderFiles headers_;
    std::mt19937 random_;
    InstalledStartOffsets installed_;
};

struct KnownClip {
    std::string path;
    std::unique_ptr<OpenClip> clip;
    std::vector<std::string> shown;
};

/// A section that crosses the change is refused, which the command's tests show.
constexpr char const* changingSize = "resolution_change";

/// Those of every coding that aren't long, whose frames ffmpeg shows all.
std::vector<KnownClip> knownClips() {
    std::vector<KnownClip> clips;
    for (std::string const& path : clipsWithPictures()) {
        if (std::filesystem::file_size(path) > mostBytes || path.find(changingSize) != std::string::npos) {
            continue;
        }
        KnownClip known{path, std::make_unique<OpenClip>(path), {}};
        if (known.clip->isOpen() && known.clip->frameCount() > 1) {
            known.shown = shownFrames(path);
        }
        if (!known.shown.empty() && known.shown.size() == known.clip->frameCount()) {
            clips.push_back(std::move(known));
        }
    }
    return clips;
}

TEST_F(ExtractReal, FramesOfRandomSectionsAreThoseOfTheLinearDecode) {
    std::vector<KnownClip> const clips = knownClips();
    ASSERT_GE(clips.size(), 20U);
    for (int turn = 0; turn < sectionCount; ++turn) {
        KnownClip const& known = clips[pick(clips.size() - 1)];
        std::size_t const first = pick(known.shown.size() - 1);
        std::size_t const count = 1 + pick(std::min<std::size_t>(mostFrames, known.shown.size() - first) - 1);
        FileXferSpec spec;
        spec.source = known.clip->cookie();
        spec.destination = Cookie(Ox::UUID::generate(), 'V', 0);
        spec.frameRate = known.clip->metadata().videoSequence.frameRate;
        double const rate = Ox::getFramesPerSecond(spec.frameRate);
        spec.startTime = static_cast<double>(first) / rate;
        spec.endTime = static_cast<double>(first + count) / rate;
        std::string const copy = extract(spec);
        auto const begin = known.shown.begin() + static_cast<std::ptrdiff_t>(first);
        std::vector<std::string> const expected(begin, begin + static_cast<std::ptrdiff_t>(count));
        EXPECT_EQ(shownFrames(copy), expected) << known.path << " from " << first << ", " << count;
        std::filesystem::remove(copy);
    }
}

/// Whether all streams of a file have decoders that give the same wherever they begin.
bool isExact(OpenSound const& sound, std::string const& path) {
    auto const& streams = sound.metadata().audioStreams;
    return std::all_of(streams.begin(), streams.end(), [&](Aud::Metadata const& stream) {
        return soundBoundOf(path, stream.codec.str()) == 0.0;
    });
}

std::vector<std::string> filesWithSound(bool areExact) {
    std::vector<std::string> files = soundFiles();
    std::vector<std::string> const waves = waveFiles();
    files.insert(files.end(), waves.begin(), waves.end());
    std::erase_if(files, [areExact](std::string const& path) {
        if (std::filesystem::file_size(path) > mostBytes) {
            return true;
        }
        OpenSound const sound(path);
        return !sound.isOpen() || sound.metadata().audioSampleCount == 0 || isExact(sound, path) != areExact;
    });
    return files;
}

/// One stream of a file as ffmpeg decodes it, and a channel of it.
struct KnownChannel {
    KnownChannel(std::string const& path, PlayFileMetadataRep const& metadata, std::uint32_t fileChannel)
        : channel(fileChannel) {
        std::uint32_t stream = 0;
        while (channel >= metadata.audioStreams[stream].channels) {
            channel -= metadata.audioStreams[stream++].channels;
        }
        decoded = std::make_unique<DecodedSound>(path, stream, metadata.audioStreams[stream]);
        sampleFormat = metadata.audioStreams[stream].sampleFormat;
        form = rawFormName(sampleFormat);
        codec = metadata.audioStreams[stream].codec.str();
    }

    std::uint32_t channel;
    std::unique_ptr<DecodedSound> decoded;
    std::uint32_t sampleFormat = 0;
    std::string form;
    std::string codec;
};

/// A random section of one of a file's channels, and what it should be.
struct SoundSection {
    SoundSection(std::string const& path, std::mt19937& random) : sound(path) {
        auto const pick = [&](std::uint64_t most) {
            return std::uniform_int_distribution<std::uint64_t>(0, most)(random);
        };
        channel = static_cast<std::uint32_t>(pick(sound.metadata().getTotalChannels() - 1));
        known = std::make_unique<KnownChannel>(path, sound.metadata(), channel);
        first = pick(known->decoded->sampleCount() - 1);
        std::uint64_t const left = known->decoded->sampleCount() - first;
        count = static_cast<std::uint32_t>(1 + pick(std::min<std::uint64_t>(mostSamples, left) - 1));
    }

    [[nodiscard]] std::string expected() const {
        return known->decoded->samples(known->channel, first, count);
    }

    OpenSound sound;
    std::unique_ptr<KnownChannel> known;
    std::uint32_t channel = 0;
    std::uint64_t first = 0;
    std::uint32_t count = 0;
};

TEST_F(ExtractReal, SamplesOfRandomSectionsAreThoseOfTheLinearDecode) {
    std::vector<std::string> const files = filesWithSound(true);
    ASSERT_GE(files.size(), 20U);
    for (int turn = 0; turn < sectionCount; ++turn) {
        std::string const& path = files[pick(files.size() - 1)];
        SoundSection const part(path, random_);
        std::string const copy =
            extract(*soundSection(path, part.channel, part.first, part.first + part.count));
        EXPECT_EQ(decodedSamples(copy, part.known->form), part.expected())
            << path << " channel " << part.channel << " from " << part.first << ", " << part.count;
        std::filesystem::remove(copy);
    }
}

TEST_F(ExtractReal, SamplesOfCodecsThatRememberArriveWithinTheBoundOfTheirReads) {
    constexpr int sectionsOfEach = std::max(1, sectionCount / 30);
    std::vector<std::string> const files = filesWithSound(false);
    ASSERT_GE(files.size(), 5U);
    for (std::string const& path : files) {
        Deviation all;
        double bound = 0.0;
        for (int turn = 0; turn < sectionsOfEach; ++turn) {
            SoundSection const part(path, random_);
            std::string const copy =
                extract(*soundSection(path, part.channel, part.first, part.first + part.count));
            std::string const samples = decodedSamples(copy, part.known->form);
            ASSERT_EQ(samples.size(), part.expected().size()) << path;
            all.add(deviationOf(samples, part.expected(), part.known->sampleFormat));
            bound = std::max(bound, soundBoundOf(path, part.known->codec));
            std::filesystem::remove(copy);
        }
        std::cout << path << ": off by " << all.rootMeanSquare() << " (root mean square)\n";
        EXPECT_LE(all.rootMeanSquare(), bound) << path;
    }
}

}  // namespace
}  // namespace test
