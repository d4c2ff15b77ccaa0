#include <gmock/gmock.h>

#include "files/PlayUtil.h"
#include "tests/fakes/ByteHolder.h"
#include "tests/fakes/ForwardingOS.h"
#include "tests/fakes/ForwardingThreadService.h"
#include "tests/fakes/LogToCalls.h"
#include "tests/fakes/ScriptedWriter.h"

namespace test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// What the callback was told: it is a plain function, so it needs a place of its own.
std::vector<RequestStatus>& told() {
    static std::vector<RequestStatus> statuses;
    return statuses;
}

void tell(RequestStatus status) {
    told().push_back(status);
}

/// Sleeps at once, and records for how long it would have.
class RecordedSleep : public ForwardingThreadService {
public:
    explicit RecordedSleep(std::shared_ptr<CallLog> calls) : calls_(std::move(calls)) {}
    void sleep(std::uint32_t milliseconds) override { calls_->add("sleep " + std::to_string(milliseconds)); }

private:
    std::shared_ptr<CallLog> const calls_;
};

class Write : public testing::Test {
protected:
    Write() {
        os_.threads = &sleep_;
        told().clear();
        file_->metadata->audioStreams.resize(2);
        file_->metadata->audioStreams[0].bytesPerSample = 3;
    }

    std::uint32_t writeFrame(int sampleId) {
        return PlayUtil::OxVideoSample_write(file_, sampleId, packet_, tell);
    }
    std::uint32_t writeSound(std::uint32_t byteCount) {
        Ox::Ptr<iMemHolder> data = Ox::makePtr<ByteHolder>(byteCount);
        return PlayUtil::OxAudioSamples_write(file_, data, tell);
    }
    [[nodiscard]] std::uint32_t frames() const { return file_->metadata->videoSampleCount; }

    std::shared_ptr<CallLog> const calls_ = std::make_shared<CallLog>();
    std::shared_ptr<WriteScript> const script_ = std::make_shared<WriteScript>();
    LogToCalls log_{calls_};
    RecordedSleep sleep_{calls_};
    ForwardingOS os_;
    Ox::Ptr<FileWriteInstance> file_ = Ox::makePtr<ScriptedWriteFile>(L"/m/a", calls_, script_);
    Ox::Ptr<CapturePacket> packet_ = Ox::makePtr<CapturePacket>(Ox::Image::Surface());
};

TEST_F(Write, CountsTheSamplesThatWereWritten) {
    EXPECT_EQ(writeSound(30), 1U);
    EXPECT_EQ(writeSound(32), 1U);
    EXPECT_EQ(file_->metadata->audioSampleCount, 20U);
}

TEST_F(Write, CountsNoSamplesOfAFailedWrite) {
    script_->audioStatus = 9;
    EXPECT_EQ(writeSound(30), 9U);
    EXPECT_EQ(file_->metadata->audioSampleCount, 0U);
}

TEST_F(Write, WritesNoSoundWithoutAFile) {
    file_ = nullptr;
    EXPECT_EQ(writeSound(30), 0U);
}

TEST_F(Write, TakesSamplesOfNoBytes) {
    file_->metadata->audioStreams[0].bytesPerSample = 0;
    EXPECT_EQ(writeSound(30), 1U);
    EXPECT_EQ(file_->metadata->audioSampleCount, 0U);
}

TEST_F(Write, CountsAFrameAndTellsSo) {
    EXPECT_EQ(writeFrame(0), 1U);
    EXPECT_EQ(writeFrame(1), 1U);
    EXPECT_EQ(frames(), 2U);
    EXPECT_THAT(told(), ElementsAre(requestComplete, requestComplete));
}

TEST_F(Write, RefusesAFrameOutOfOrder) {
    EXPECT_EQ(writeFrame(1), 0U);
    EXPECT_EQ(frames(), 0U);
    EXPECT_THAT(told(), IsEmpty());
    EXPECT_THAT(calls_->all(), ElementsAre("console Bad sample ID 1\n", "log Bad sample ID 1\n"));
}

TEST_F(Write, WritesAtOnceWithABacklogOf32) {
    script_->backlog = {32};
    EXPECT_EQ(writeFrame(0), 1U);
    EXPECT_THAT(calls_->with("sleep"), IsEmpty());
}

TEST_F(Write, WaitsWithABacklogOf33AndLooksTwicePerPause) {
    script_->backlog = {33, 0, 33, 0, 32};
    EXPECT_EQ(writeFrame(0), 1U);
    EXPECT_THAT(calls_->all(), ElementsAre("writer.backlog", "writer.backlog", "sleep 100", "writer.backlog",
                                           "writer.backlog", "sleep 100", "writer.backlog", "writer.frame"));
}

TEST_F(Write, GivesAFrameUpAfter49Pauses) {
    script_->backlog = {33};
    EXPECT_EQ(writeFrame(0), 0U);
    EXPECT_EQ(calls_->count("sleep 100"), 49U);
    EXPECT_EQ(calls_->count("writer.frame"), 0U);
    EXPECT_THAT(told(), ElementsAre(requestFailed));
    EXPECT_EQ(calls_->all().back(), "log Failed to write sample 0\n");
    EXPECT_EQ(frames(), 0U);
}

TEST_F(Write, TakesAWriterThatCatchesUpInTheLastPause) {
    script_->backlog.assign(49 * 2, 33);
    script_->backlog.push_back(0);
    EXPECT_EQ(writeFrame(0), 1U);
    EXPECT_EQ(calls_->count("sleep 100"), 49U);
}

TEST_F(Write, ReportsAFrameThatFailsOnceAndCountsItNot) {
    script_->frameStatus = 9;
    EXPECT_EQ(writeFrame(0), 9U);
    EXPECT_THAT(calls_->all(),
                ElementsAre("writer.backlog", "writer.frame", "writer.error 9",
                            "console Failed to write sample 0\n", "log Failed to write sample 0\n"));
    EXPECT_THAT(told(), ElementsAre(requestFailed));
    EXPECT_EQ(frames(), 0U);
}

TEST_F(Write, TakesTheSameFrameAgainAfterAFailure) {
    script_->frameStatus = 9;
    EXPECT_EQ(writeFrame(0), 9U);
    script_->frameStatus = oxSuccess;
    EXPECT_EQ(writeFrame(0), 1U);
    EXPECT_EQ(frames(), 1U);
}

TEST_F(Write, LeavesReportsToAWriterWithAWayOfItsOwn) {
    file_ = Ox::makePtr<OwnWayWriteFile>(L"/m/a", calls_, script_);
    script_->frameStatus = 9;
    EXPECT_EQ(writeFrame(0), 9U);
    EXPECT_EQ(calls_->count("writer.surface"), 1U);
    EXPECT_EQ(calls_->count("writer.error"), 0U);
    EXPECT_THAT(told(), ElementsAre(requestFailed));
}

TEST_F(Write, NeedsNoCallback) {
    EXPECT_EQ(PlayUtil::OxVideoSample_write(file_, 0, packet_, nullptr), 1U);
    script_->frameStatus = 9;
    EXPECT_EQ(PlayUtil::OxVideoSample_write(file_, 1, packet_, nullptr), 9U);
    script_->backlog = {33};
    EXPECT_EQ(PlayUtil::OxVideoSample_write(file_, 1, packet_, nullptr), 0U);
    EXPECT_THAT(told(), IsEmpty());
}

}  // namespace
}  // namespace test
