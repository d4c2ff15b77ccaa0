#include "video/VideoReadRequest.h"

#include <functional>
#include <future>
#include <memory>
#include <utility>

#include "gtest/gtest.h"
#include "tests/fakes/ByteHolder.h"
#include "tests/fakes/RecordingIssuer.h"
#include "tests/fakes/ScriptedFile.h"
#include "tests/support/TraceFile.h"
#include "toolkit/plugins/DecoderInfo.h"

namespace {

constexpr std::uint32_t testCodec = 77;

/// Answers what it is told for the codec of these tests, and counts.
class CountingDecoder : public iVideoDecoder {
public:
    explicit CountingDecoder(int answer) : answer_(answer) {}
    [[nodiscard]] bool canDecode(VideoDecompressionInfo const& info) const override {
        return info.codec == testCodec;
    }
    int decompress(Ox::Ptr<FrameBufferRep>& buffer) override {
        ++count;
        statusSeen = buffer->decompressStatus;
        widthSeen = buffer->decodeFormat.getWidth();
        if (replacement) {
            buffer = replacement;
        }
        if (answer_ == 1) {
            buffer->setDecompressComplete(FrameBufferRep::done);
        }
        return answer_;
    }

    unsigned count = 0;
    std::uint32_t statusSeen = 0;
    std::uint32_t widthSeen = 0;
    Ox::Ptr<FrameBufferRep> replacement;

private:
    int const answer_;
};

DecodeFormat wantedFormat() {
    DecodeFormat format;
    format.setWidth(640);
    format.setHeight(360);
    format.setDataFormat(Ox::Image::rgb24);
    format.setBitsPerComponent(8);
    format.setBitsPerPixel(24);
    format.setLayout(Ox::Image::layoutBottomUp);
    format.setCoreDataSet(true);
    format.options = 0x123456789ULL;
    format.level = levelProxy;
    return format;
}

class VideoReadRequestTest : public ::testing::Test {
protected:
    ~VideoReadRequestTest() override {
        if (decoder) {
            Ox::DecoderInfo::instance().remove(decoder);
        }
    }
    Ox::Ptr<VideoReadRequest> makeRequest(eResultType resultType = resultAsDelivered) {
        return Ox::makePtr<VideoReadRequest>(file, noIndexInfo, 7U, resultType, wantedFormat(),
                                             issuer.getProxy());
    }
    /// A request whose result needs a decoder, with its buffer attached.
    Ox::Ptr<VideoReadRequest> makeCompressed(eResultType resultType) {
        auto request = makeRequest(resultType);
        VideoDecompressionInfo info;
        info.codec = testCodec;
        buffer->setVideoDecompressionInfo(info);
        request->setResultBuffer(buffer);
        return request;
    }
    void addDecoder(int answer) {
        decoder = Ox::makePtr<CountingDecoder>(answer);
        Ox::DecoderInfo::instance().add(decoder);
    }
    /// Completes a request whose result needs a decoder: everybody must see it fail.
    void expectFailedDecompression() {
        auto const request = makeCompressed(resultDecompressed);
        request->requestHasCompleted(requestComplete);
        EXPECT_EQ(issuer.only().status, requestFailed);
        EXPECT_EQ(issuer.only().result, buffer);
        EXPECT_EQ(request->getRequestStatus(), requestFailed);
        EXPECT_EQ(buffer->decompressStatus, FrameBufferRep::failed);
    }

    FileScriptPtr script = std::make_shared<FileScript>();
    Ox::Ptr<FileReadInstance> file = makeVideoFile(script);
    Ox::Ptr<IndexInfoRep> noIndexInfo;
    Ox::Ptr<FrameBufferRep> buffer = makeNumberedBuffer(7);
    RecordingIssuer issuer;
    Ox::Ptr<CountingDecoder> decoder;
};

class VideoReadRequestTrace : protected TraceFile, public VideoReadRequestTest {};

TEST_F(VideoReadRequestTrace, TellsTheDecodingOfItsResult) {
    addDecoder(1);
    auto const request = makeCompressed(resultDecompressed);
    request->requestHasCompleted(requestComplete);
    EXPECT_EQ(only("decode")["args"], (Json{{"request", request->number}, {"frame", 7}}));
}

TEST_F(VideoReadRequestTest, StartsWithWhatItWasMadeFrom) {
    auto info = Ox::makePtr<IndexInfoRep>();
    VideoReadRequest const request(file, info, 9, resultDecompressed, wantedFormat(), nullptr);
    EXPECT_EQ(request.getRequestStatus(), requestBuilt);
    EXPECT_EQ(request.frame, 9U);
    EXPECT_EQ(request.resultType, resultDecompressed);
    EXPECT_EQ(request.file, file);
    EXPECT_EQ(request.indexInfo, info);
    EXPECT_FALSE(request.getResultBuffer());
}

TEST_F(VideoReadRequestTest, CopiesTheWholeFormat) {
    auto const request = makeRequest();
    EXPECT_EQ(request->getWidth(), 640U);
    EXPECT_EQ(request->getHeight(), 360U);
    EXPECT_EQ(request->getDataFormat(), Ox::Image::rgb24);
    EXPECT_EQ(request->getBitsPerComponent(), 8U);
    EXPECT_EQ(request->getBitsPerPixel(), 24U);
    EXPECT_EQ(request->getLayout(), Ox::Image::layoutBottomUp);
    EXPECT_TRUE(request->getCoreDataSet());
    EXPECT_EQ(request->options, 0x123456789ULL);
    EXPECT_EQ(request->level, levelProxy);
}

TEST_F(VideoReadRequestTest, HoldsItsFileAndItsIndexInfo) {
    auto info = Ox::makePtr<IndexInfoRep>();
    VideoReadRequest const request(file, info, 9, resultAsDelivered, DecodeFormat(), nullptr);
    EXPECT_EQ(file.useCount(), 2U);
    EXPECT_EQ(info.useCount(), 2U);
}

TEST_F(VideoReadRequestTest, HasNoIssuersWhenMadeWithANullOne) {
    VideoReadRequest request(file, noIndexInfo, 9, resultAsDelivered, DecodeFormat(), nullptr);
    EXPECT_TRUE(request.issuers.empty());
}

TEST_F(VideoReadRequestTest, LeavesTheBufferAloneWhenThereIsNobodyToTell) {
    VideoReadRequest request(file, noIndexInfo, 9, resultAsDelivered, DecodeFormat(), nullptr);
    request.setResultBuffer(buffer);
    std::uint32_t const held = buffer.useCount();
    request.requestHasCompleted(requestComplete);
    EXPECT_EQ(buffer.useCount(), held);
    EXPECT_EQ(request.getRequestStatus(), requestComplete);
}

TEST_F(VideoReadRequestTest, SurvivesAssigningItsOwnBuffer) {
    auto const request = makeRequest();
    request->setResultBuffer(std::exchange(buffer, nullptr));
    request->setResultBuffer(request->getResultBuffer());
    EXPECT_EQ(numberOf(request->getResultBuffer()), 7U);
}

TEST_F(VideoReadRequestTest, LeavesTheDecompressStatusAloneOnFailure) {
    auto const request = makeCompressed(resultDecompressed);
    request->requestHasCompleted(requestFailed);
    EXPECT_EQ(buffer->decompressStatus, FrameBufferRep::waiting);
    EXPECT_EQ(issuer.only().status, requestFailed);
    EXPECT_EQ(request->getRequestStatus(), requestFailed);
}

TEST_F(VideoReadRequestTest, TellsOfAFailureWithTheBufferIfThereIsOne) {
    auto const request = makeRequest();
    request->setResultBuffer(buffer);
    request->requestHasCompleted(requestFailed);
    EXPECT_EQ(issuer.only().result, buffer);
}

TEST_F(VideoReadRequestTest, TellsOfAFailureWithAnEmptyResultWithoutABuffer) {
    auto const request = makeRequest();
    request->requestHasCompleted(requestFailed);
    EXPECT_FALSE(issuer.only().result);
}

TEST_F(VideoReadRequestTest, StampsNothingOnFailure) {
    auto const request = makeRequest();
    request->setResultBuffer(buffer);
    request->requestHasCompleted(requestFailed);
    EXPECT_EQ(buffer->decodeFormat.getWidth(), 0U);
}

TEST_F(VideoReadRequestTest, LeavesDecompressionToTheReceiverOfAnAsDeliveredResult) {
    addDecoder(1);
    auto const request = makeCompressed(resultAsDelivered);
    request->requestHasCompleted(requestComplete);
    EXPECT_EQ(buffer->decompressStatus, FrameBufferRep::waiting);
    EXPECT_EQ(request->getRequestStatus(), requestComplete);
    EXPECT_EQ(decoder->count, 0U);
}

TEST_F(VideoReadRequestTest, StampsTheBufferWithTheWholeFormat) {
    auto const request = makeRequest();
    request->setResultBuffer(buffer);
    request->requestHasCompleted(requestComplete);
    DecodeFormat const& stamped = buffer->decodeFormat;
    EXPECT_EQ(stamped.getWidth(), 640U);
    EXPECT_EQ(stamped.getHeight(), 360U);
    EXPECT_EQ(stamped.getDataFormat(), Ox::Image::rgb24);
    EXPECT_EQ(stamped.getBitsPerComponent(), 8U);
    EXPECT_EQ(stamped.getBitsPerPixel(), 24U);
    EXPECT_EQ(stamped.getLayout(), Ox::Image::layoutBottomUp);
    EXPECT_TRUE(stamped.getCoreDataSet());
    EXPECT_EQ(stamped.options, 0x123456789ULL);
    EXPECT_EQ(stamped.level, levelProxy);
}

TEST_F(VideoReadRequestTest, DecompressesOnceOnTheCompletingThreadWhenThatIsAskedFor) {
    addDecoder(1);
    auto const request = makeCompressed(resultDecompressed);
    request->requestHasCompleted(requestComplete);
    EXPECT_EQ(decoder->count, 1U);
    EXPECT_EQ(buffer->decompressStatus, FrameBufferRep::done);
    EXPECT_EQ(issuer.only().status, requestComplete);
    EXPECT_EQ(request->getRequestStatus(), requestComplete);
}

TEST_F(VideoReadRequestTest, DecompressesForEveryResultTypeButZero) {
    addDecoder(1);
    auto const request = makeCompressed(static_cast<eResultType>(42));
    request->requestHasCompleted(requestComplete);
    EXPECT_EQ(decoder->count, 1U);
}

TEST_F(VideoReadRequestTest, ClaimsAndStampsTheBufferBeforeTheDecoderSeesIt) {
    addDecoder(1);
    makeCompressed(resultDecompressed)->requestHasCompleted(requestComplete);
    EXPECT_EQ(decoder->statusSeen, FrameBufferRep::claimed);
    EXPECT_EQ(decoder->widthSeen, 640U);
}

TEST_F(VideoReadRequestTest, FailsWithoutADecoder) {
    expectFailedDecompression();
}

TEST_F(VideoReadRequestTest, FailsWhenTheDecoderDoesNotAnswerOne) {
    addDecoder(2);
    expectFailedDecompression();
}

TEST_F(VideoReadRequestTest, TellsOfTheBufferThatTheDecoderPutThere) {
    addDecoder(1);
    decoder->replacement = makeNumberedBuffer(99);
    auto const request = makeCompressed(resultDecompressed);
    request->requestHasCompleted(requestComplete);
    EXPECT_EQ(numberOf(issuer.only().result), 99U);
    EXPECT_EQ(numberOf(request->getResultBuffer()), 99U);
}

TEST_F(VideoReadRequestTest, NeitherStampsNorDecompressesABufferThatIsDone) {
    addDecoder(1);
    auto const request = makeCompressed(resultDecompressed);
    buffer->setDecompressComplete(FrameBufferRep::done);
    request->requestHasCompleted(requestComplete);
    EXPECT_EQ(decoder->count, 0U);
    EXPECT_EQ(buffer->decodeFormat.getWidth(), 0U);
    EXPECT_EQ(issuer.only().status, requestComplete);
}

TEST_F(VideoReadRequestTest, LeavesABufferToWhomeverHasClaimedIt) {
    addDecoder(1);
    auto const request = makeCompressed(resultDecompressed);
    buffer->decompressStatus = FrameBufferRep::claimed;
    request->requestHasCompleted(requestComplete);
    EXPECT_EQ(decoder->count, 0U);
    EXPECT_EQ(buffer->decompressStatus, FrameBufferRep::claimed);
    EXPECT_EQ(request->getRequestStatus(), requestComplete);
}

TEST_F(VideoReadRequestTest, EndsAsFailedWhenItCompletesWithoutABuffer) {
    auto const request = makeRequest();
    request->requestHasCompleted(requestComplete);
    EXPECT_EQ(issuer.only().status, requestFailed);
    EXPECT_FALSE(issuer.only().result);
    EXPECT_EQ(request->getRequestStatus(), requestFailed);
}

TEST_F(VideoReadRequestTest, ShowsTheOldStatusDuringTheCallback) {
    Ox::Ptr<VideoReadRequest> request;
    RequestStatus during = requestFailed;
    RecordingIssuer looking([&](RecordingIssuer::Call const&) { during = request->getRequestStatus(); });
    request = Ox::makePtr<VideoReadRequest>(file, noIndexInfo, 7U, resultAsDelivered, DecodeFormat(),
                                            looking.getProxy());
    request->setResultBuffer(buffer);
    request->setRequestStatus(requestTakenUp);
    request->requestHasCompleted(requestComplete);
    EXPECT_EQ(during, requestTakenUp);
    EXPECT_EQ(request->getRequestStatus(), requestComplete);
}

TEST_F(VideoReadRequestTest, LeavesAnIssuerUntoldThatIsMergedInBetweenCallbacksAndStatus) {
    Ox::Ptr<VideoReadRequest> request;
    RecordingIssuer late;
    IssuersT const lateSet(late.getProxy());
    std::future<void> merge;
    RecordingIssuer merging([&](RecordingIssuer::Call const&) {
        merge = std::async(std::launch::async, [&] { request->issuers.addIssuersFrom(lateSet); });
    });
    request = Ox::makePtr<VideoReadRequest>(file, noIndexInfo, 7U, resultAsDelivered, DecodeFormat(),
                                            merging.getProxy());
    request->setResultBuffer(buffer);
    request->requestHasCompleted(requestComplete);
    merge.get();
    EXPECT_EQ(late.callCount(), 0U);
    EXPECT_EQ(request->issuers.size(), 1U);
    EXPECT_EQ(request->getRequestStatus(), requestComplete);
}

TEST_F(VideoReadRequestTest, TellsOnlyTheNewIssuersWhenItCompletesASecondTime) {
    addDecoder(1);
    auto const request = makeCompressed(resultDecompressed);
    request->requestHasCompleted(requestComplete);
    RecordingIssuer late;
    request->issuers.addIssuersFrom(IssuersT(late.getProxy()));
    request->requestHasCompleted(requestComplete);
    EXPECT_EQ(issuer.callCount(), 1U);
    EXPECT_EQ(late.only().status, requestComplete);
    EXPECT_EQ(late.only().result, buffer);
    EXPECT_EQ(decoder->count, 1U);
}

TEST_F(VideoReadRequestTest, TellsTheNewIssuersOfAResultThatIsThereNoMore) {
    auto const request = makeRequest();
    request->setRequestStatus(requestComplete);
    request->requestHasCompleted(requestComplete);
    EXPECT_EQ(issuer.only().status, requestComplete);
    EXPECT_FALSE(issuer.only().result);
    EXPECT_EQ(request->getRequestStatus(), requestComplete);
}

TEST_F(VideoReadRequestTest, DoesNotStampAgainWhenItCompletesASecondTime) {
    auto const request = makeRequest();
    request->setResultBuffer(buffer);
    request->requestHasCompleted(requestComplete);
    buffer->decodeFormat.setWidth(1);
    request->requestHasCompleted(requestComplete);
    EXPECT_EQ(buffer->decodeFormat.getWidth(), 1U);
}

TEST_F(VideoReadRequestTest, LetsAReaderTellTheIssuersItself) {
    auto const request = makeRequest();
    Ox::Ptr<iObject> result(buffer);
    request->doCallbacks(result, requestComplete);
    EXPECT_EQ(issuer.only().result, buffer);
    EXPECT_EQ(request->getRequestStatus(), requestBuilt);
}

/// A raw picture of 6 x 4 pixels, and what its file says of it.
class UncompressedResultTest : public VideoReadRequestTest {
protected:
    static constexpr std::uint32_t stride = 32;

    UncompressedResultTest() {
        PlayFileMetadataRep& metadata = *file->metadata;
        metadata.image.setWidth(6);
        metadata.image.setHeight(4);
        metadata.image.setDataFormat(Ox::Image::rgb24);
        metadata.image.setBitsPerComponent(8);
        metadata.image.setBitsPerPixel(24);
        metadata.bufferFormat.stride = stride;
        metadata.videoData.pixelAspectNumerator = 16;
        metadata.videoData.pixelAspectDenominator = 15;
        metadata.formatUID = 0xABCD;
        metadata.sampleData.fieldOrder = Ox::Image::eFieldOrder::topFirst;
        metadata.orientation = 6;
    }
    Ox::Image::Surface surfaceOf(Ox::Ptr<FrameBufferRep> const& result) {
        Ox::Image::Surface surface;
        EXPECT_TRUE(result->getSurface(0, surface));
        return surface;
    }

    Ox::Ptr<ByteHolder> memory = Ox::makePtr<ByteHolder>(stride * 4);
};

TEST_F(UncompressedResultTest, ShowsTheCallersMemoryWithoutACopy) {
    auto const request = makeRequest();
    auto const surface = surfaceOf(request->setUncompressedResult(memory));
    EXPECT_EQ(surface.getPlane(0).data, memory->getBuffer());
    EXPECT_EQ(surface.getPlane(0).stride, stride);
}

TEST_F(UncompressedResultTest, TakesThePicturesDescriptionFromTheMetadata) {
    auto const request = makeRequest();
    auto const surface = surfaceOf(request->setUncompressedResult(memory));
    EXPECT_EQ(surface.getWidth(), 6U);
    EXPECT_EQ(surface.getHeight(), 4U);
    EXPECT_EQ(surface.getDataFormat(), Ox::Image::rgb24);
    EXPECT_EQ(surface.getBitsPerComponent(), 8U);
    EXPECT_EQ(surface.getBitsPerPixel(), 24U);
    EXPECT_EQ(surface.getLayout(), Ox::Image::layoutTopDown);
    EXPECT_EQ(surface.getVideoData().pixelAspectNumerator, 16U);
    EXPECT_EQ(surface.getFormatUID(), 0xABCDU);
    EXPECT_EQ(surface.getSampleData().fieldOrder, Ox::Image::eFieldOrder::topFirst);
    EXPECT_EQ(surface.getOrientation(), 6U);
}

TEST_F(UncompressedResultTest, KeepsTheMemoryAsLongAsTheSurface) {
    ByteHolder::Alive const alive = memory->alive();
    auto request = makeRequest();
    Ox::Image::Surface surface = surfaceOf(request->setUncompressedResult(std::exchange(memory, nullptr)));
    request = nullptr;
    EXPECT_TRUE(*alive);
    surface = Ox::Image::Surface();
    EXPECT_FALSE(*alive);
}

TEST_F(UncompressedResultTest, AnswersTheResultBufferItStores) {
    auto const request = makeRequest();
    auto const result = request->setUncompressedResult(memory);
    EXPECT_EQ(request->getResultBuffer(), result);
    EXPECT_EQ(result->getStartValidFrameIndex(), 7U);
}

TEST_F(UncompressedResultTest, LeavesNothingToDecompress) {
    auto const request = makeRequest();
    EXPECT_EQ(request->setUncompressedResult(memory)->decompressStatus, FrameBufferRep::done);
}

TEST_F(UncompressedResultTest, LeavesTheStatusToTheReader) {
    auto const request = makeRequest();
    request->setUncompressedResult(memory);
    EXPECT_EQ(request->getRequestStatus(), requestBuilt);
    EXPECT_EQ(issuer.callCount(), 0U);
}

}  // namespace
