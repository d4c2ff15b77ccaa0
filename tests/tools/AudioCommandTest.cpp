#include <fstream>
#include <sstream>

#include "plugins/synth/SynthTone.h"
#include "tests/tools/ToolTest.h"
#include "tools/playfile/Md5.h"

namespace tooltest {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

constexpr std::uint32_t rate = 48000;

/// The bytes of a made channel. @param channel  from 1
std::string samplesOf(std::uint32_t channel, std::uint64_t from, std::uint64_t count,
                      Aud::eSampleFormat format = Aud::sampleS24) {
    std::string bytes;
    for (std::uint64_t sample = from; sample < from + count; ++sample) {
        std::uint8_t value[4];
        EXPECT_TRUE(SynthTone::put(SynthTone::valueOf(channel - 1, sample, rate), format, value));
        bytes.append(reinterpret_cast<char const*>(value), Aud::bytesPerSampleOf(format));
    }
    return bytes;
}

std::string sumOf(std::string const& bytes) {
    return cli::asHex(cli::Md5::of(bytes.data(), bytes.size()));
}

class AudioCommand : public ToolTest {
protected:
    /// A made file of 10000 samples: channels 1 and 2 in one stream, 3 in another.
    [[nodiscard]] std::string makeTones(std::string const& more = "") const {
        return writeFile("tones.synth", "sound = 2 s24 48000\nsound = 1 s24 48000\nsamples = 10000\n" + more);
    }
    /// A picture of 25 frames a second with sound.
    [[nodiscard]] std::string makePictureWithTones() const {
        return writeFile("both_50f_64x36_25fps.synth", "sound = 1 s24 48000\nsamples = 96000\n");
    }

    [[nodiscard]] Ended audio(std::string const& file, Arguments const& options) const {
        Arguments arguments{"audio", file};
        arguments.insert(arguments.end(), options.begin(), options.end());
        return run(arguments);
    }
    /// The last field of each line: the sums.
    [[nodiscard]] std::vector<std::string> sums(std::string const& file, Arguments options) const {
        options.emplace_back("--md5");
        Ended const ended = audio(file, options);
        EXPECT_EQ(ended.exitCode, 0) << ended.err;
        EXPECT_THAT(ended.err, IsEmpty());
        std::vector<std::string> result;
        for (std::string const& line : linesOf(ended.out)) {
            result.push_back(fieldsOf(line).back());
        }
        return result;
    }
    void expectRefusal(Ended const& ended, int exitCode, std::string const& reason) const {
        EXPECT_EQ(ended.exitCode, exitCode);
        EXPECT_THAT(linesOf(ended.err), SizeIs(1));
        EXPECT_THAT(ended.err, HasSubstr(reason));
    }
    [[nodiscard]] std::string readFile(std::string const& name) const {
        std::ifstream file(path(name), std::ios::binary);
        std::ostringstream text;
        text << file.rdbuf();
        return text.str();
    }
};

TEST_F(AudioCommand, TellsChannelStreamFormRateSamplesAndSum) {
    Ended const ended = audio(makeTones(), {"--md5"});
    EXPECT_THAT(linesOf(ended.out), ElementsAre("1 0 s24 48000 10000 " + sumOf(samplesOf(1, 0, 10000)),
                                                "2 0 s24 48000 10000 " + sumOf(samplesOf(2, 0, 10000)),
                                                "3 1 s24 48000 10000 " + sumOf(samplesOf(3, 0, 10000))));
}

TEST_F(AudioCommand, ReadsTheNamedChannelsOnly) {
    EXPECT_THAT(sums(makeTones(), {"--channels", "3,1"}),
                ElementsAre(sumOf(samplesOf(1, 0, 10000)), sumOf(samplesOf(3, 0, 10000))));
}

TEST_F(AudioCommand, ReadsASectionGivenInSamples) {
    EXPECT_THAT(sums(makeTones(), {"--channels", "2", "--from", "123", "--count", "4567"}),
                ElementsAre(sumOf(samplesOf(2, 123, 4567))));
}

TEST_F(AudioCommand, ReadsASectionGivenInSeconds) {
    EXPECT_THAT(sums(makeTones(), {"--channels", "2", "--from", "0.1s", "--count", "0.05s"}),
                ElementsAre(sumOf(samplesOf(2, 4800, 2400))));
}

TEST_F(AudioCommand, ReadsASectionGivenInTimeCodesOfThePicture) {
    EXPECT_THAT(sums(makePictureWithTones(), {"--from", "00:00:01:05", "--count", "00:00:00:02"}),
                ElementsAre(sumOf(samplesOf(1, 57600, 3840))));
}

TEST_F(AudioCommand, ReadsASectionGivenInTimeCodesOfANamedRate) {
    EXPECT_THAT(sums(makeTones(), {"--channels", "1", "--rate", "50", "--from", "00:00:00:05"}),
                ElementsAre(sumOf(samplesOf(1, 4800, 5200))));
}

TEST_F(AudioCommand, EveryOrderBlockAndNumberOfThreadsTellsTheSame) {
    std::string const file = makeTones();
    std::vector<std::string> const forward = sums(file, {});
    for (char const* const order : {"backward", "random:1", "random:2"}) {
        for (char const* const block : {"1", "1000", "4096", "100000"}) {
            Arguments const options{"--order", order, "--block", block, "--threads", "4"};
            EXPECT_EQ(sums(file, options), forward) << order << ' ' << block;
        }
    }
}

TEST_F(AudioCommand, WritesAFileThatHoldsTheSamplesInterleaved) {
    ASSERT_EQ(audio(makeTones(), {"--channels", "1-2", "--out", path("out.wav")}).exitCode, 0);
    std::string const left = samplesOf(1, 0, 10000);
    std::string const right = samplesOf(2, 0, 10000);
    std::string interleaved;
    for (std::size_t i = 0; i < left.size(); i += 3) {
        interleaved += left.substr(i, 3) + right.substr(i, 3);
    }
    std::string const written = readFile("out.wav");
    EXPECT_EQ(written.substr(written.size() - interleaved.size()), interleaved);
}

TEST_F(AudioCommand, WritesTheSameFileInAnyOrder) {
    std::string const file = makeTones();
    ASSERT_EQ(audio(file, {"--out", path("forward.wav")}).exitCode, 0);
    ASSERT_EQ(audio(file, {"--out", path("random.wav"), "--order", "random:3", "--block", "777"}).exitCode,
              0);
    EXPECT_EQ(readFile("forward.wav"), readFile("random.wav"));
}

TEST_F(AudioCommand, AnotherReaderFindsTheSamplesInTheFile) {
    std::string const file = makeTones();
    ASSERT_EQ(audio(file, {"--channels", "2", "--out", path("out.wav")}).exitCode, 0);
    Ended const ended = runOther(
        {"ffmpeg", "-v", "error", "-nostdin", "-i", path("out.wav"), "-f", "s24le", path("out.raw")});
    EXPECT_EQ(ended.exitCode, 0) << ended.err;
    EXPECT_EQ(readFile("out.raw"), samplesOf(2, 0, 10000));
}

TEST_F(AudioCommand, TellsWhereAChannelCannotBeReadAndGoesOn) {
    Ended const ended = audio(makeTones("soundfault = 5000\n"), {"--channels", "1", "--md5"});
    EXPECT_EQ(ended.exitCode, 1);
    EXPECT_THAT(ended.err, HasSubstr("channel 1 of '"));
    EXPECT_THAT(ended.err, HasSubstr("cannot be read from sample 4096 on"));
    EXPECT_THAT(ended.out, IsEmpty());
}

TEST_F(AudioCommand, ADamagedPlaceIsSilentInTheFile) {
    EXPECT_EQ(audio(makeTones("soundfault = 5000\n"), {"--channels", "1", "--out", path("out.wav")}).exitCode,
              1);
    std::string const written = readFile("out.wav");
    std::string const data = written.substr(written.size() - 30000);
    EXPECT_EQ(data.substr(0, 3 * 4096), samplesOf(1, 0, 4096));
    EXPECT_EQ(data.substr(3 * 4096, 3 * 4096), std::string(3 * 4096, '\0'));
    EXPECT_EQ(data.substr(3 * 8192), samplesOf(1, 8192, 10000 - 8192));
}

TEST_F(AudioCommand, LeavesNoFileWhenItCannotWriteAll) {
    std::filesystem::create_directory(path("out.wav"));
    Ended const ended = audio(makeTones(), {"--out", path("out.wav")});
    expectRefusal(ended, 1, "cannot write '" + path("out.wav") + "'");
    for (auto const& entry : std::filesystem::directory_iterator(path(""))) {
        EXPECT_THAT(entry.path().string(), testing::Not(HasSubstr("partial")));
    }
}

TEST_F(AudioCommand, RefusesAChannelThatTheFileLacks) {
    expectRefusal(audio(makeTones(), {"--channels", "1-4", "--md5"}), 1,
                  "has no channel 4; its channels are 1 to 3");
}

TEST_F(AudioCommand, RefusesChannelZero) {
    expectRefusal(audio(makeTones(), {"--channels", "0", "--md5"}), 1, "has no channel 0");
}

TEST_F(AudioCommand, RefusesAStartBehindTheEnd) {
    expectRefusal(audio(makeTones(), {"--from", "10000", "--md5"}), 1,
                  "has 10000 samples; --from names sample 10000, behind its end");
}

TEST_F(AudioCommand, RefusesMoreThanThereIs) {
    expectRefusal(audio(makeTones(), {"--from", "9000", "--count", "1001", "--md5"}), 1,
                  "has only 1000 samples from there");
}

TEST_F(AudioCommand, RefusesATimeCodeWithoutAFrameRate) {
    expectRefusal(audio(makeTones(), {"--from", "00:00:00:01", "--md5"}), 1, "name one with --rate");
}

TEST_F(AudioCommand, RefusesToPutTwoFormsIntoOneFile) {
    std::string const file =
        writeFile("two.synth", "sound = 1 s24 48000\nsound = 1 s16 48000\nsamples = 100\n");
    expectRefusal(audio(file, {"--out", path("out.wav")}), 1, "channels 1 and 2 differ");
}

TEST_F(AudioCommand, RefusesAnOrderThatLeavesSamplesOut) {
    expectRefusal(audio(makeTones(), {"--order", "scrub:1", "--md5"}), 2, "--order scrub leaves samples out");
}

TEST_F(AudioCommand, RefusesAPlaceThatIsNone) {
    expectRefusal(audio(makeTones(), {"--from", "soon", "--md5"}), 2, "--from 'soon' isn't understood");
}

TEST_F(AudioCommand, RefusesAFileWithoutSound) {
    expectRefusal(audio(writeFile("mute_5f_64x36_25fps.synth", "# no sound\n"), {"--md5"}), 1,
                  "has no sound");
}

TEST_F(AudioCommand, WantsExactlyOneResult) {
    EXPECT_EQ(audio(makeTones(), {}).exitCode, 2);
    EXPECT_EQ(audio(makeTones(), {"--md5", "--out", path("out.wav")}).exitCode, 2);
}

}  // namespace
}  // namespace tooltest
