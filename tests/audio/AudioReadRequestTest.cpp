/// What a request knows of itself, in the widths in which it knows it.
#include "tests/audio/AudioFixture.h"
#include "tests/fakes/ByteHolder.h"

namespace {

using AudioReadRequestTest = SoundFixture;

TEST_F(AudioReadRequestTest, KeepsWhatIsWantedAndWhatIsFetched) {
    open({soundFormat(2)});
    AudioRequest wanted{1, 2, 3, std::uint64_t{1} << 40, 5};
    Ox::Ptr<FileReadInstance> from = file;
    AudioReadRequest const request(from, wanted, 4711, nullptr);
    EXPECT_EQ(request.stream, 1U);
    EXPECT_EQ(request.channelInStream, 2U);
    EXPECT_EQ(request.channel, 3U);
    EXPECT_EQ(request.startSample, std::uint64_t{1} << 40);
    EXPECT_EQ(request.numSamples, 5U);
    EXPECT_EQ(request.mcsCount, 4711U);
}

TEST_F(AudioReadRequestTest, IsBuiltAndEmptyBeforeItIsRead) {
    open({soundFormat(2)});
    AudioRequestPtr const request = makeSoundRequest(file, {});
    EXPECT_EQ(request->getRequestStatus(), requestBuilt);
    EXPECT_EQ(request->getBuffer(), nullptr);
    EXPECT_EQ(request->getUsed(), 0U);
    EXPECT_FALSE(request->buffer.getHolder());
}

TEST_F(AudioReadRequestTest, WantsNothingUnlessItIsTold) {
    AudioRequest const request;
    EXPECT_EQ(request.stream + request.channelInStream + request.channel + request.numSamples, 0U);
    EXPECT_EQ(request.startSample, 0U);
}

TEST_F(AudioReadRequestTest, RegistersItsIssuerAndNoOtherThanThat) {
    open({soundFormat(2)});
    RecordingIssuer issuer;
    EXPECT_EQ(makeSoundRequest(file, {.issuer = &issuer})->issuers.size(), 1U);
    EXPECT_TRUE(makeSoundRequest(file, {})->issuers.empty());
}

TEST_F(AudioReadRequestTest, HoldsItsFile) {
    open({soundFormat(2)});
    AudioRequestPtr request = makeSoundRequest(file, {});
    EXPECT_EQ(file.useCount(), 2U);
    file = nullptr;
    EXPECT_EQ(script->destroyedCount, 0U);
    request = nullptr;
    EXPECT_EQ(script->destroyedCount, 1U);
}

TEST_F(AudioReadRequestTest, ForwardsToTheHolderOfItsBuffer) {
    open({soundFormat(2)});
    AudioRequestPtr const request = makeSoundRequest(file, {});
    auto const bytes = Ox::makePtr<ByteHolder>(40);
    bytes->setUsed(30);
    request->buffer = Aud::StreamBuffer(bytes, 0);
    EXPECT_EQ(request->getBuffer(), bytes->getBuffer());
    EXPECT_EQ(request->getUsed(), 30U);
}

TEST_F(AudioReadRequestTest, ShowsTheFormatsOfItsFile) {
    open({soundFormat(2), soundFormat(6)});
    EXPECT_EQ(&makeSoundRequest(file, {})->getAudioMetadata(), &file->metadata->audioStreams);
}

TEST_F(AudioReadRequestTest, CountsItsStartByteIn64Bits) {
    open({soundFormat(2), soundFormat(6, 3)});
    std::uint64_t const start = (std::uint64_t{1} << 40) + 1;
    EXPECT_EQ(makeSoundRequest(file, {.stream = 1, .start = start})->getStartByte(), start * 3 * 6);
    EXPECT_EQ(makeSoundRequest(file, {.stream = 0, .start = start})->getStartByte(), start * 2 * 2);
}

TEST_F(AudioReadRequestTest, CountsTheBytesOfTheWholeFetch) {
    open({soundFormat(6, 3)});
    EXPECT_EQ(makeSoundRequest(file, {.count = 10, .fetch = 100})->getBytesPerMCS(), 100U * 3 * 6);
}

TEST_F(AudioReadRequestTest, CountsTheBytesOfTheFetchIn32Bits) {
    open({soundFormat(2, 4)});
    EXPECT_EQ(makeSoundRequest(file, {.count = 0x20000001})->getBytesPerMCS(), 8U);
}

TEST_F(AudioReadRequestTest, OrdersChannelsAsIfAllStreamsHadItsOwnNumberOfThem) {
    open({soundFormat(2), soundFormat(6), soundFormat(1)});
    EXPECT_EQ(makeSoundRequest(file, {.stream = 0, .channel = 1})->getChannelIndex(), 1U);
    EXPECT_EQ(makeSoundRequest(file, {.stream = 1, .channel = 1})->getChannelIndex(), 7U);
    EXPECT_EQ(makeSoundRequest(file, {.stream = 2, .channel = 0})->getChannelIndex(), 2U);
}

TEST_F(AudioReadRequestTest, TakesAStreamThatTheFileDoesNotHaveForOneWithoutChannels) {
    open({soundFormat(2)});
    AudioRequestPtr const request = makeSoundRequest(file, {.stream = 1, .channel = 4, .start = 9});
    EXPECT_EQ(request->getStartByte(), 0U);
    EXPECT_EQ(request->getBytesPerMCS(), 0U);
    EXPECT_EQ(request->getChannelIndex(), 4U);
}

TEST_F(AudioReadRequestTest, TellsItsIssuersOfItselfAndOfItsPresentStatusOnce) {
    open({soundFormat(2)});
    RecordingIssuer issuer;
    AudioRequestPtr const request = makeSoundRequest(file, {.issuer = &issuer});
    request->setRequestStatus(requestFailed);
    Ox::Ptr<iObject> self(request);
    request->doCallbacks(self);
    request->doCallbacks(self);
    EXPECT_EQ(issuer.only().status, requestFailed);
    EXPECT_EQ(issuer.only().result, request);
}

}  // namespace
