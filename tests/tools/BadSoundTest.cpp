/// Files whose sound is bad, through the command: a clear word or what can be had, within little memory.
#include <fstream>
#include <iterator>

#include "tests/support/WaveMaker.h"
#include "tests/tools/ToolTest.h"

namespace tooltest {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

namespace wave = test::wave;

constexpr std::uint64_t sampleTotal = 1000;

/// Runs what follows with 1.5 GB. A sanitizer takes far more for itself than it uses, and limits each
/// allocation instead.
#if defined(PLAYFILE_SANITIZED)
constexpr char const* withLittleMemory =
    "export ASAN_OPTIONS=\"$ASAN_OPTIONS:max_allocation_size_mb=1500\"; "
    "export TSAN_OPTIONS=\"$TSAN_OPTIONS:max_allocation_size_mb=1500\"; exec \"$@\"";
#else
constexpr char const* withLittleMemory = "ulimit -v 1500000; exec \"$@\"";
#endif

/// The command with the readers of real files, and no more memory than a small file needs.
class BadSound : public ToolTest {
protected:
    [[nodiscard]] Ended sums(std::string const& bytes, Arguments const& options = {}) const {
        return sumsOfFile(writeFile("sound.wav", bytes), options);
    }
    [[nodiscard]] Ended sumsOfFile(std::string const& file, Arguments const& options = {}) const {
        Arguments arguments{"sh", "-c", withLittleMemory, "sh", PLAYFILE_CLI, "audio", file, "--md5"};
        arguments.insert(arguments.end(), options.begin(), options.end());
        return runOther(arguments);
    }
    static void expectRefusal(Ended const& ended, std::string const& reason) {
        EXPECT_TRUE(ended.exitCode == 1 || ended.exitCode == 2) << ended.exitCode;
        EXPECT_THAT(ended.out, IsEmpty());
        EXPECT_THAT(ended.err, HasSubstr(reason));
    }
    /// @param samples  of each of the two channels
    static void expectSamples(Ended const& ended, std::uint64_t samples) {
        EXPECT_EQ(ended.exitCode, 0) << ended.err;
        std::vector<std::string> const lines = linesOf(ended.out);
        ASSERT_THAT(lines, SizeIs(2));
        EXPECT_EQ(fieldsOf(lines[1]).at(4), std::to_string(samples));
    }
    /// Chunks of a good file, but for its form.
    [[nodiscard]] static std::string withFormat(std::string const& format) {
        return wave::file(wave::chunk("fmt ", format) +
                          wave::chunk("data", wave::samples({}, 0, sampleTotal)));
    }
    /// A good file, but for the length that its data state.
    [[nodiscard]] static std::string withLength(std::uint32_t stated) {
        return wave::file(wave::chunk("fmt ", wave::format({})) +
                          wave::chunk("data", wave::samples({}, 0, sampleTotal), stated));
    }
};

TEST_F(BadSound, WithoutAStreamOfSoundIsSaidToBeSo) {
    expectRefusal(sumsOfFile(makeH264Clip()), "sound");
}

TEST_F(BadSound, ChannelZeroIsRefused) {
    expectRefusal(sums(wave::plainFile({}, sampleTotal), {"--channels", "0"}), "channel");
}

TEST_F(BadSound, AChannelPastTheEndIsRefused) {
    expectRefusal(sums(wave::plainFile({}, sampleTotal), {"--channels", "3"}), "channel");
}

TEST_F(BadSound, AStartAtTheEndIsRefused) {
    expectRefusal(sums(wave::plainFile({}, sampleTotal), {"--from", "1000"}), "1000");
}

TEST_F(BadSound, AStartBehindTheEndIsRefused) {
    expectRefusal(sums(wave::plainFile({}, sampleTotal), {"--from", "1001"}), "1000");
}

TEST_F(BadSound, TheLastSampleIsRead) {
    expectSamples(sums(wave::plainFile({}, sampleTotal), {"--from", "999"}), 1);
}

TEST_F(BadSound, DataThatStateTooMuchEndWithTheFile) {
    expectSamples(sums(withLength(0x7FFFFFF0)), sampleTotal);
}

TEST_F(BadSound, DataThatStateTooLittleEndThere) {
    expectSamples(sums(withLength(400)), 100);
}

TEST_F(BadSound, AFileThatIsCutInItsDataEndsWithTheLastWholeSample) {
    std::string const whole = wave::plainFile({}, sampleTotal);
    expectSamples(sums(whole.substr(0, whole.size() - 402)), 899);
}

TEST_F(BadSound, AFileThatIsCutInItsFormatIsRefused) {
    expectRefusal(sums(wave::plainFile({}, sampleTotal).substr(0, 30)), "sound.wav");
}

TEST_F(BadSound, NoChannelsAreRefused) {
    expectRefusal(sums(withFormat(wave::format(1, 0, 48000, 4, 16))), "sound.wav");
}

TEST_F(BadSound, NoRateIsRefused) {
    expectRefusal(sums(withFormat(wave::format(1, 2, 0, 4, 16))), "sound.wav");
}

TEST_F(BadSound, NoBitsAreRefused) {
    expectRefusal(sums(withFormat(wave::format(1, 2, 48000, 4, 0))), "sound.wav");
}

TEST_F(BadSound, ManyChannelsInSmallBlocksAreRefused) {
    expectRefusal(sums(withFormat(wave::format(1, 65535, 48000, 4, 16))), "sound.wav");
}

/// A request names its channel by 8 bits.
TEST_F(BadSound, OfManyChannelsTheFirstAreRead) {
    std::string const file = wave::file(wave::chunk("fmt ", wave::format(1, 65535, 48000, 65535, 8)) +
                                        wave::chunk("data", std::string(3 * 65535, 'x')));
    expectRefusal(sums(file), "has 65535 channels");
    Ended const ended = sums(file, {"--channels", "254"});
    EXPECT_EQ(ended.exitCode, 0) << ended.err;
    EXPECT_THAT(linesOf(ended.out), SizeIs(1));
}

TEST_F(BadSound, APacketThatIsCutNeitherCrashesNorHangs) {
    std::ifstream in(std::string(PLAYFILE_TEST_MEDIA_DIR) + "/music-128k.mp3", std::ios::binary);
    std::string const whole{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    Ended const ended = sumsOfFile(writeFile("cut.mp3", whole.substr(0, whole.size() / 2 + 123)));
    EXPECT_EQ(ended.exitCode, 0) << ended.err;
    EXPECT_THAT(linesOf(ended.out), SizeIs(2));
}

TEST_F(BadSound, AStreamThatNothingDecodesIsNamedAndTheOneBesideItRead) {
    std::ifstream in(std::string(PLAYFILE_TEST_MEDIA_DIR) + "/music-two-streams.mov", std::ios::binary);
    std::string bytes{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    bytes.replace(bytes.find("sowt", bytes.rfind("moov")), 4, "zzzz");
    std::string const file = writeFile("half.mov", bytes);
    EXPECT_EQ(sumsOfFile(file, {"--channels", "3"}).exitCode, 0);
    EXPECT_EQ(sumsOfFile(file, {"--channels", "1"}).exitCode, 1);
}

}  // namespace
}  // namespace tooltest
