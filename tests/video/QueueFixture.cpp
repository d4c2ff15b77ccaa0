#include "tests/video/QueueFixture.h"

namespace {

/// A frame that no test asks for.
constexpr std::uint32_t occupantFrame = 3000000000U;

}  // namespace

RequestPtr QueueFixture::make(std::uint32_t frame, Wanted const& wanted) {
    DecodeFormat format;
    format.setWidth(wanted.width);
    format.setHeight(wanted.height);
    format.setDataFormat(wanted.format);
    Ox::Ptr<FileReadInstance> from = wanted.file ? wanted.file : file;
    Ox::Ptr<IndexInfoRep> info = wanted.indexInfo;
    Ox::Ptr<ReadRequestIssuer::Proxy> const issuer = wanted.issuer ? wanted.issuer->getProxy() : nullptr;
    return Ox::makePtr<VideoReadRequest>(from, info, frame, wanted.resultType, format, issuer);
}

RequestPtr QueueFixture::ask(std::uint32_t frame, Wanted const& wanted) {
    RequestPtr request = make(frame, wanted);
    EXPECT_EQ(queue.queueReadRequest(request), 1U);
    return request;
}

/// The issuer is told before the status is stored and while the worker still holds the request; the
/// worker's next wait is what says that all of that is over.
RequestPtr QueueFixture::read(std::uint32_t frame, Wanted wanted) {
    RecordingIssuer own;
    wanted.issuer = wanted.issuer ? wanted.issuer : &own;
    RequestPtr request = ask(frame, wanted);
    EXPECT_TRUE(wanted.issuer->waitForCalls(1));
    EXPECT_TRUE(threads.waitUntilIdle(script->readBy));
    return request;
}

void QueueFixture::occupyWorker() {
    occupantScript->readGate.close();
    occupant_ = ask(occupantFrame, {.file = makeVideoFile(occupantScript)});
    EXPECT_TRUE(occupantScript->readGate.waitForArrivals(1));
}

QueueFixture::Frames QueueFixture::finish() {
    queue.despatchGate.open();
    script->readGate.open();
    occupantScript->readGate.open();
    queue.stop();
    return script->framesRead();
}

Ox::Ptr<IndexInfoRep> makeUnit(std::uint16_t offset, std::uint32_t start, std::uint32_t end) {
    auto unit = Ox::makePtr<IndexInfoRep>();
    unit->unitOffset = offset;
    unit->unitStart = start;
    unit->unitEnd = end;
    return unit;
}

QueueFixture::~QueueFixture() {
    queue.despatchGate.open();
    script->readGate.open();
    occupantScript->readGate.open();
}
