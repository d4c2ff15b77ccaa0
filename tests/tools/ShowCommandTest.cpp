#include <fstream>
#include <nlohmann/json.hpp>

#include "tests/tools/ToolTest.h"

namespace tooltest {
namespace {

using nlohmann::json;
using testing::HasSubstr;
using testing::IsEmpty;

class ShowCommand : public ToolTest {
protected:
    [[nodiscard]] Ended show(std::string const& file) const {
        return run({"show", file, "--out", path("out")});
    }

    [[nodiscard]] json report() const {
        std::ifstream stream(path("out/report.json"));
        return json::parse(stream, nullptr, false);
    }

    [[nodiscard]] std::string sheetSize() const {
        Ended const ended = runOther({"ffprobe", "-v", "error", "-show_entries", "stream=width,height", "-of",
                                      "csv=p=0:s=x", path("out/contact_sheet.png")});
        EXPECT_EQ(ended.err, "");
        return linesOf(ended.out).front();
    }
};

TEST_F(ShowCommand, WritesSheetAndReportAndTellsWhere) {
    Ended const ended = show(makeH264Clip());
    EXPECT_EQ(ended.exitCode, 0) << ended.err;
    EXPECT_THAT(ended.err, IsEmpty());
    EXPECT_THAT(ended.out, HasSubstr("contact sheet: " + path("out/contact_sheet.png") + "\n"));
    EXPECT_THAT(ended.out, HasSubstr("report: " + path("out/report.json") + "\n"));
    EXPECT_EQ(sheetSize(), "1328x880");
    EXPECT_FALSE(report().is_discarded());
}

TEST_F(ShowCommand, TellsWhichReaderWasChosenAndWhy) {
    std::string const file = makeH264Clip();
    Ended const ended = show(file);
    EXPECT_THAT(ended.out, HasSubstr("reader: "));
    EXPECT_THAT(ended.out, HasSubstr("Open   \"" + file + "\" with "));
    json const choice = report()["readerChoice"];
    EXPECT_FALSE(choice["reader"].get<std::string>().empty());
    EXPECT_FALSE(choice["asked"].empty());
}

TEST_F(ShowCommand, MeasuresInOrderAtRandomAndFromThreads) {
    Ended const ended = show(makeH264Clip());
    EXPECT_THAT(ended.out, HasSubstr("frames served from 4 threads:"));
    json const measurements = report()["measurements"];
    EXPECT_EQ(measurements["firstFrame"]["frames"], 1);
    EXPECT_EQ(measurements["inOrder"]["frames"], 30);
    EXPECT_EQ(measurements["random"]["frames"], 30);
    EXPECT_GT(measurements["random"]["99%Ms"].get<double>(), 0.0);
    int shared = 0;
    for (int const frames : measurements["threads"]["framesOfThread"]) {
        shared += frames;
    }
    EXPECT_EQ(shared, 30);
}

TEST_F(ShowCommand, CountsWhatTheCacheAndTheQueuesDid) {
    EXPECT_EQ(show(makeH264Clip()).exitCode, 0);
    json const statistics = report()["statistics"];
    EXPECT_EQ(statistics["files"]["opened"], 1);
    EXPECT_EQ(statistics["files"]["opensFailed"], 0);
    EXPECT_GT(statistics["files"]["hits"], 0);
    EXPECT_GT(statistics["requests"]["framesRead"], 60);
    EXPECT_EQ(statistics["requests"]["framesFailed"], 0);
    EXPECT_FALSE(statistics["times"].empty());
}

TEST_F(ShowCommand, CountsBatchesDecodesAndFilesOpenedAhead) {
    Ended const ended = show(makeH264Clip());
    json const statistics = report()["statistics"];
    EXPECT_GT(statistics["decoding"]["batches"], 0);
    EXPECT_GT(statistics["decoding"]["framesDecoded"], 0);
    EXPECT_GT(statistics["decoding"]["framesFromHeldBatches"], 0);
    EXPECT_EQ(statistics["decoding"]["doubleDecodes"], 0);
    EXPECT_EQ(statistics["preOpens"], (json{{"queued", 0}, {"opened", 0}, {"failed", 0}}));
    EXPECT_NE(ended.out.find("framesFromHeldBatches: "), std::string::npos) << ended.out;
}

TEST_F(ShowCommand, ShowsASinglePicture) {
    EXPECT_EQ(show(makeClip("one.png", {"-frames:v", "1"})).exitCode, 0);
    EXPECT_EQ(sheetSize(), "272x226");
    EXPECT_EQ(report()["contactSheet"]["frames"], json::array({0}));
}

TEST_F(ShowCommand, ShowsTheSoundOfAFileWithoutPicture) {
    Ended const ended = show(writeFile("tone.synth", "sound = 2 s16 48000\nsamples = 10000\n"));
    EXPECT_EQ(ended.exitCode, 0) << ended.err;
    EXPECT_THAT(ended.out, HasSubstr("sound: 3 reads of the file served 6 blocks of channels"));
    EXPECT_FALSE(report().contains("contactSheet"));
}

TEST_F(ShowCommand, TellsPeakAndRmsOfEachChannel) {
    ASSERT_EQ(show(writeFile("tone.synth", "sound = 2 s24 48000\nsamples = 48000\n")).exitCode, 0);
    json const channel = report()["sound"]["channels"][1];
    EXPECT_EQ(channel["samples"], 48000);
    EXPECT_NEAR(channel["peakDecibels"].get<double>(), -6.0, 0.1);
    EXPECT_NEAR(channel["rmsDecibels"].get<double>(), -10.8, 0.1);
}

TEST_F(ShowCommand, DrawsAWaveformOfEachChannel) {
    ASSERT_EQ(show(writeFile("tone.synth", "sound = 2 s16 48000\nsamples = 10000\n")).exitCode, 0);
    for (char const* const name : {"out/waveform_01.png", "out/waveform_02.png"}) {
        EXPECT_EQ(runOther({"ffprobe", "-v", "error", path(name)}).exitCode, 0) << name;
    }
}

TEST_F(ShowCommand, CountsTheBlocksOfSoundThatCannotBeRead) {
    Ended const ended =
        show(writeFile("tone.synth", "sound = 1 s16 48000\nsamples = 10000\nsoundfault = 5000\n"));
    EXPECT_EQ(ended.exitCode, 1);
    EXPECT_EQ(report()["sound"]["failed"], 1);
}

}  // namespace
}  // namespace tooltest
