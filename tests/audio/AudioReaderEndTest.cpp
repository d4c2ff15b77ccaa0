/// How the read of a request ends, and who is told when.
#include <cstdio>
#include <new>

#include "tests/audio/AudioFixture.h"

namespace {

class AudioReaderEndTest : public SoundFixture {
protected:
    void failWith(OxResult code, unsigned samplesRead = 0) {
        script->answer = [=](SoundRead const&) {
            return SoundAnswer{.result = code, .samplesRead = samplesRead};
        };
    }
    RecordingIssuer issuer;
};

TEST_F(AudioReaderEndTest, TellsTheIssuerOfTheRequestItself) {
    open({soundFormat(2)});
    AudioRequestPtr const request = read({.issuer = &issuer});
    EXPECT_EQ(issuer.only().status, requestComplete);
    EXPECT_EQ(issuer.only().result, request);
    EXPECT_TRUE(request->issuers.empty());
}

TEST_F(AudioReaderEndTest, StoresTheStatusBeforeItTells) {
    open({soundFormat(2)});
    AudioRequestPtr request;
    RequestStatus inside = requestBuilt;
    RecordingIssuer looking([&](RecordingIssuer::Call const&) { inside = request->getRequestStatus(); });
    request = makeSoundRequest(file, {.issuer = &looking});
    file->readAudio(request);
    EXPECT_EQ(inside, requestComplete);
}

TEST_F(AudioReaderEndTest, StoresAFailureBeforeItLogsAndLogsBeforeItTells) {
    failWith(7);
    open({soundFormat(2)});
    AudioRequestPtr request;
    RequestStatus inside = requestBuilt;
    std::size_t linesInside = 0;
    RecordingIssuer looking([&](RecordingIssuer::Call const&) {
        inside = request->getRequestStatus();
        linesInside = log.log().size();
    });
    request = makeSoundRequest(file, {.issuer = &looking});
    file->readAudio(request);
    EXPECT_EQ(inside, requestFailed);
    EXPECT_EQ(linesInside, 1U);
}

TEST_F(AudioReaderEndTest, HoldsItsLockDuringTheReadAndTheCalls) {
    bool isHeldInRead = false;
    bool isHeldInCall = false;
    script->answer = [&](SoundRead const&) {
        isHeldInRead = file->lock_.isHeldByThisThread();
        return SoundAnswer{.samplesRead = 100};
    };
    open({soundFormat(2)});
    RecordingIssuer looking(
        [&](RecordingIssuer::Call const&) { isHeldInCall = file->lock_.isHeldByThisThread(); });
    read({.issuer = &looking});
    EXPECT_TRUE(isHeldInRead);
    EXPECT_TRUE(isHeldInCall);
    EXPECT_FALSE(file->lock_.isHeldByThisThread());
}

TEST_F(AudioReaderEndTest, LetsAnIssuerLookIntoTheSoundsThatAreKept) {
    open({soundFormat(2)});
    bool isKept = false;
    RecordingIssuer looking([&](RecordingIssuer::Call const&) {
        AudioRequest other{0, 1, 1, 0, 100};
        isKept = file->contains(other);
    });
    read({.issuer = &looking});
    EXPECT_TRUE(isKept);
}

TEST_F(AudioReaderEndTest, FailsAndLogsWithTheCodeThatTheReaderGave) {
    for (OxResult const code :
         {OxResult(oxFailure), OxResult(8), OxResult(12), OxResult(2000), 0xDEADBEEFU}) {
        log.clear();
        failWith(code);
        open({soundFormat(2)});
        RecordingIssuer told;
        AudioRequestPtr const request = read({.issuer = &told});
        char line[64];
        std::snprintf(line, sizeof line, "** disk read error 0x%x\n", code);
        EXPECT_EQ(request->getRequestStatus(), requestFailed);
        EXPECT_EQ(told.only().status, requestFailed);
        EXPECT_EQ(log.log(), test::LogRecorder::Lines{line});
        EXPECT_EQ(log.console(), test::LogRecorder::Lines{line});
    }
}

TEST_F(AudioReaderEndTest, WritesTheCodeInHexadecimal) {
    failWith(2061);
    open({soundFormat(2)});
    read({});
    EXPECT_EQ(log.log(), test::LogRecorder::Lines{"** disk read error 0x80d\n"});
}

TEST_F(AudioReaderEndTest, GivesNothingOfAReadThatFailedAfterSomeSamples) {
    failWith(7, 40);
    open({soundFormat(2)});
    AudioRequestPtr const request = read({});
    EXPECT_EQ(request->getRequestStatus(), requestFailed);
    EXPECT_FALSE(request->buffer.getHolder());
}

TEST_F(AudioReaderEndTest, KeepsTheReadBeforeOneThatFails) {
    open({soundFormat(2)});
    read({});
    failWith(7, 40);
    read({.start = 5000});
    EXPECT_EQ(bytesRead({.channel = 1}), madeChannel(0, 1, 0, 100));
}

TEST_F(AudioReaderEndTest, ReadsOnAfterAFailure) {
    failWith(7);
    open({soundFormat(2)});
    read({});
    script->answer = nullptr;
    EXPECT_EQ(bytesRead({}), madeChannel(0, 0, 0, 100));
}

TEST_F(AudioReaderEndTest, FailsForAStreamThatTheFileDoesNotHave) {
    open({soundFormat(2), soundFormat(2)});
    EXPECT_EQ(read({.stream = 2, .issuer = &issuer})->getRequestStatus(), requestFailed);
    EXPECT_EQ(issuer.only().status, requestFailed);
    EXPECT_EQ(log.log(), test::LogRecorder::Lines{"** disk read error 0x0\n"});
    EXPECT_EQ(script->reads(), Reads{});
}

TEST_F(AudioReaderEndTest, FailsWhereTheSamplesCannotBeSplit) {
    open({soundFormat(0)});
    EXPECT_EQ(read({})->getRequestStatus(), requestFailed);
    EXPECT_EQ(log.log(), test::LogRecorder::Lines{"** disk read error 0x0\n"});
}

TEST_F(AudioReaderEndTest, KeepsWhatCouldNotBeSplitAllTheSame) {
    open({soundFormat(0)});
    EXPECT_EQ(read({})->getRequestStatus(), requestFailed);
    EXPECT_EQ(read({})->getRequestStatus(), requestComplete) << "an entry of no samples at zero";
    EXPECT_EQ(script->reads().size(), 1U);
}

TEST_F(AudioReaderEndTest, FailsWithoutMemoryAndReadsOn) {
    script->answer = [](SoundRead const&) -> SoundAnswer { throw std::bad_alloc(); };
    open({soundFormat(2)});
    EXPECT_EQ(read({.issuer = &issuer})->getRequestStatus(), requestFailed);
    EXPECT_EQ(issuer.only().status, requestFailed);
    EXPECT_FALSE(file->lock_.isHeldByThisThread());
    script->answer = nullptr;
    EXPECT_EQ(bytesRead({}), madeChannel(0, 0, 0, 100));
}

}  // namespace
