#include <signal.h>

#include <algorithm>
#include <filesystem>
#include <nlohmann/json.hpp>

#include "tests/tools/Process.h"
#include "tests/tools/ToolTest.h"

namespace tooltest {
namespace {

using nlohmann::json;
using testing::ElementsAreArray;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

class RecordCommand : public ToolTest {
protected:
    [[nodiscard]] Ended record(Arguments const& more) const {
        Arguments arguments{"record"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        arguments.insert(arguments.end(), {"--out", path("out"), "--json"});
        return run(arguments);
    }
    [[nodiscard]] json reportOf(Arguments const& more) const {
        Ended const ended = record(more);
        EXPECT_EQ(ended.exitCode, 0) << ended.err;
        return json::parse(ended.out);
    }
    [[nodiscard]] std::string makeNumbers(std::string const& lines = "# no more\n") const {
        return writeFile("numbers_40f_256x144_25fps.synth", lines);
    }
    [[nodiscard]] std::vector<std::string> frameSums(std::string const& file,
                                                     std::string const& frames = "all") const {
        return sumsOf(run({"frames", file, "--frames", frames, "--md5"}).out);
    }
    /// Form, samples and sum of each channel.
    [[nodiscard]] std::vector<std::string> soundSums(std::string const& file, Arguments more = {}) const {
        Arguments arguments{"audio", file, "--md5"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        std::vector<std::string> sums;
        for (std::string const& line : linesOf(run(arguments).out)) {
            std::vector<std::string> const fields = fieldsOf(line);
            sums.push_back(fields[2] + ' ' + fields[4] + ' ' + fields[5]);
        }
        return sums;
    }
    /// What ffprobe says of a stream.
    [[nodiscard]] std::string probe(std::string const& file, std::string const& entry) const {
        Ended const ended = runOther({"ffprobe", "-v", "error", "-count_packets", "-show_entries",
                                      "stream=" + entry, "-of", "csv=p=0", file});
        EXPECT_THAT(ended.err, IsEmpty()) << file;
        return ended.out.substr(0, ended.out.find('\n'));
    }
    static std::string pathOf(json const& report, std::size_t index) {
        return report["files"][index]["path"];
    }
};

TEST_F(RecordCommand, KeepsEveryFrameToTheBitWhereTheFormatLosesNone) {
    json const report = reportOf({makeNumbers(), "--video", "mov-h264", "--option", "profile=lossless"});
    EXPECT_EQ(frameSums(pathOf(report, 0)), frameSums(makeNumbers()));
    EXPECT_EQ(report["files"][0]["frames"], 40);
}

TEST_F(RecordCommand, KeepsTheSectionThatIsNamed) {
    std::string const source = makeNumbers("sound = 1 s24 48000\nsamples = 76800\n");
    json const report = reportOf(
        {source, "--from", "0.4", "--seconds", "0.8", "--video", "mov-h264", "--option", "profile=lossless"});
    std::vector<std::string> const recorded = frameSums(pathOf(report, 0));
    std::vector<std::string> const played = frameSums(source, "10-29");
    ASSERT_THAT(recorded, SizeIs(20));
    for (std::size_t frame = 0; frame < recorded.size(); ++frame) {
        EXPECT_EQ(fieldsOf(recorded[frame])[1], fieldsOf(played[frame])[1]);
    }
    EXPECT_THAT(soundSums(source, {"--from", "0.4s", "--count", "0.8s"}),
                ElementsAreArray(soundSums(pathOf(report, 1))));
}

struct Format {
    char const* name;
    char const* codec;
};

void PrintTo(Format const& format, std::ostream* out) {
    *out << format.name;
}

class EveryVideoFormat : public RecordCommand, public testing::WithParamInterface<Format> {};

TEST_P(EveryVideoFormat, OpensElsewhereWithEveryFrame) {
    json const report = reportOf({makeNumbers(), "--video", GetParam().name});
    EXPECT_EQ(probe(pathOf(report, 0), "codec_name"), GetParam().codec);
    EXPECT_EQ(probe(pathOf(report, 0), "nb_read_packets"), "40");
    EXPECT_THAT(frameSums(pathOf(report, 0)), SizeIs(40));
}

INSTANTIATE_TEST_SUITE_P(Formats, EveryVideoFormat,
                         testing::Values(Format{"mov-prores", "prores"}, Format{"mov-dnxhr", "dnxhd"},
                                         Format{"mov-h264", "h264"}, Format{"mxf-dnxhr", "dnxhd"}),
                         [](testing::TestParamInfo<Format> const& format) {
                             std::string name = format.param.name;
                             std::replace(name.begin(), name.end(), '-', '_');
                             return name;
                         });

class EverySampleFormat : public RecordCommand, public testing::WithParamInterface<char const*> {};

TEST_P(EverySampleFormat, KeepsEverySampleOfEveryChannelToTheBit) {
    std::string const source = std::string(PLAYFILE_TEST_MEDIA_DIR) + "/" + GetParam();
    json const report = reportOf({source});
    std::vector<std::string> recorded;
    for (json const& file : report["files"]) {
        std::vector<std::string> const sums = soundSums(file["path"]);
        recorded.insert(recorded.end(), sums.begin(), sums.end());
    }
    EXPECT_EQ(recorded, soundSums(source));
    EXPECT_EQ(std::to_string(recorded.size()), probe(source, "channels"));
}

TEST_P(EverySampleFormat, OpensElsewhereAsOneChannel) {
    json const report = reportOf({std::string(PLAYFILE_TEST_MEDIA_DIR) + "/" + GetParam()});
    EXPECT_EQ(probe(pathOf(report, 0), "channels"), "1");
}

INSTANTIATE_TEST_SUITE_P(Files, EverySampleFormat,
                         testing::Values("noise-u8-1ch.wav", "music-s16.mov", "noise-s24-8ch.wav",
                                         "noise-s32-3ch.wav", "noise-f32-64ch.wav", "noise-f64-2ch.wav"),
                         [](testing::TestParamInfo<char const*> const& file) {
                             std::string name = file.param;
                             std::replace_if(
                                 name.begin(), name.end(), [](char c) { return c == '-' || c == '.'; }, '_');
                             return name;
                         });

TEST_F(RecordCommand, MakesASourceOfItsOwn) {
    json const report = reportOf({"--source", "numbers", "--seconds", "2", "--rate", "30000/1001", "--tones",
                                  "3", "--size", "256x144"});
    ASSERT_THAT(report["files"], SizeIs(4));
    EXPECT_EQ(report["files"][0]["frames"], 60);
    EXPECT_EQ(report["files"][3]["samples"], 96000);
    EXPECT_EQ(report["ended"], "complete");
}

TEST_F(RecordCommand, TellsHowOftenItWaitedForTheWriters) {
    json const report = reportOf({"--source", "numbers", "--seconds", "3", "--size", "1280x720"});
    EXPECT_GT(report["waitsForWriters"]["count"], 0);
    EXPECT_GT(report["waitsForWriters"]["seconds"], 0.0);
}

TEST_F(RecordCommand, KeepsWhatWasRecordedWhenItIsStopped) {
    Process process({PLAYFILE_CLI, "record", "--source", "numbers", "--seconds", "36000", "--out",
                     path("out"), "--json", "--preferences", path("prefs")},
                    environment);
    while (!std::filesystem::exists(path("out") + "/Sound") ||
           std::filesystem::is_empty(path("out") + "/Sound")) {
    }
    process.send(SIGINT);
    std::string out;
    std::string err;
    EXPECT_EQ(process.wait(out, err), 128 + SIGINT) << err;
    json const report = json::parse(out);
    EXPECT_EQ(report["ended"], "stopped");
    EXPECT_THAT(err, Not(HasSubstr(" holds ")));
}

TEST_F(RecordCommand, WantsAFileOrASource) {
    Ended const ended = record({});
    EXPECT_EQ(ended.exitCode, 2);
    EXPECT_THAT(ended.err, HasSubstr("name a file to play, or a source with --source"));
}

TEST_F(RecordCommand, TellsOfAFormatThatNobodyWrites) {
    Ended const ended = record({makeNumbers(), "--video", "tape"});
    EXPECT_EQ(ended.exitCode, 1);
    EXPECT_THAT(ended.err, HasSubstr("no writer makes files of the format 'tape'"));
}

TEST_F(RecordCommand, PassesOnWhatTheWriterSays) {
    Ended const ended = record({makeNumbers(), "--option", "profile=tape"});
    EXPECT_EQ(ended.exitCode, 1);
    EXPECT_THAT(ended.err, HasSubstr("has no profile \"tape\"; choose one of proxy, lt, standard"));
}

TEST_F(RecordCommand, RefusesAnOptionWithoutAValue) {
    EXPECT_EQ(record({makeNumbers(), "--option", "profile"}).exitCode, 2);
}

TEST_F(RecordCommand, KeepsWhatCameBeforeAFrameThatCannotBeRead) {
    Ended const ended = record({makeNumbers("fault = 30\n")});
    EXPECT_EQ(ended.exitCode, 1);
    EXPECT_THAT(ended.err, HasSubstr("frame 30 of "));
    json const report = json::parse(ended.out);
    EXPECT_EQ(report["ended"], "failed");
    EXPECT_THAT(frameSums(pathOf(report, 0)), SizeIs(report["files"][0]["frames"].get<std::size_t>()));
}

/// Tests with drives that only the recorder sees. They need the right to mount.
class RecordOnADrive : public RecordCommand {
protected:
    /// Records tones onto a drive of 2 MiB at "drive"; `mount` and `meanwhile` are lines of the shell. What
    /// the drive holds in the end lies in "kept".
    [[nodiscard]] Ended recordOnDrive(std::string const& options, std::string const& meanwhile,
                                      std::string const& mount = "") const {
        std::filesystem::create_directories(path("drive"));
        std::filesystem::create_directories(path("kept"));
        std::string const script =
            "cd " + path("") + "\nmount -t tmpfs -o size=2m playfile-test drive\n" + mount +
            "\n" PLAYFILE_CLI " record --source numbers --out drive/new --json " + "--preferences prefs " +
            options + " >report 2>problems &\nrecorder=$!\n" + meanwhile +
            "\nwait $recorder\ncode=$?\ncp -r drive/new/. kept 2>/dev/null\n"
            "cat report; cat problems >&2; exit $code\n";
        return runOther({"unshare", "--mount", "sh", "-c", script});
    }

    /// Lines of the shell: the recorder is held as soon as there is the header of its first file, which comes
    /// before the samples, until `event` is over.
    [[nodiscard]] static std::string onceItRecords(std::string const& event) {
        return "while [ ! -s drive/new/Sound/*.sav ]; do :; done\nkill -STOP $recorder\n" + event +
               "\nkill -CONT $recorder";
    }
};

TEST_F(RecordOnADrive, TellsOfAFullDiskAndKeepsTheSamplesBefore) {
    Ended const ended = recordOnDrive("--seconds 600 --video none --tones 1", "");
    EXPECT_EQ(ended.exitCode, 1);
    EXPECT_THAT(ended.err, HasSubstr("No space left on device; make room on the drive"));
    json const report = json::parse(ended.out);
    std::string const kept = path("kept") + pathOf(report, 0).substr(path("drive/new").size());
    std::size_t const samples = report["files"][0]["samples"];
    EXPECT_GT(samples, 500000U);
    std::string const source = writeFile("tone.synth", "sound = 1 s24 48000\nsamples = 28800000\n");
    EXPECT_EQ(soundSums(kept), soundSums(source, {"--count", std::to_string(samples)}));
}

TEST_F(RecordOnADrive, TellsOfAFullDiskAndKeepsTheFramesBefore) {
    Ended const ended = recordOnDrive("--seconds 60 --sound none --size 320x180 --video mov-dnxhr", "");
    EXPECT_EQ(ended.exitCode, 1);
    EXPECT_THAT(ended.err, HasSubstr("No space left on device; make room on the drive"));
    json const report = json::parse(ended.out);
    std::string const kept = path("kept") + pathOf(report, 0).substr(path("drive/new").size());
    EXPECT_THAT(frameSums(kept, "0-20"), SizeIs(21));
}

TEST_F(RecordOnADrive, TellsOfADriveThatMayNotBeWritten) {
    Ended const ended = recordOnDrive("--seconds 1", "", "mount -o remount,ro drive");
    EXPECT_EQ(ended.exitCode, 1);
    EXPECT_THAT(ended.err, HasSubstr("Read-only file system"));
    EXPECT_THAT(ended.out, IsEmpty());
}

TEST_F(RecordOnADrive, TellsOfADriveThatHasGoneWhileItRecorded) {
    Ended const ended =
        recordOnDrive("--seconds 100 --video none --tones 1 --bits 16", onceItRecords("umount -l drive"));
    EXPECT_EQ(ended.exitCode, 1);
    EXPECT_THAT(ended.err, HasSubstr("nothing is left of "));
    EXPECT_THAT(json::parse(ended.out)["files"], IsEmpty());
}

TEST_F(RecordOnADrive, TellsOfAFolderThatHasGoneWhileItRecorded) {
    Ended const ended =
        recordOnDrive("--seconds 20 --video none --tones 1 --bits 16", onceItRecords("rm -r drive/new"));
    EXPECT_EQ(ended.exitCode, 1);
    EXPECT_THAT(ended.err, HasSubstr("nothing is left of "));
    EXPECT_THAT(json::parse(ended.out)["files"], IsEmpty());
}

}  // namespace
}  // namespace tooltest
