#include <gtest/gtest.h>

#include "files/FileReadInstance.h"
#include "tests/fakes/ByteHolder.h"
#include "tests/support/Threads.h"
#include "toolkit/plugins/DecoderInfo.h"
#include "toolkit/plugins/FileReaderInfo.h"

namespace test {
namespace {

using Ox::FileReaderInfo;

class NamedReader final : public FileReaderInfo {
public:
    explicit NamedReader(char const* name) { readerName = name; }
    Ox::Ptr<FileReadInstance> openFile(LightweightString<wchar_t> const&, DecodeFormat const&,
                                       OpenType) override {
        return {};
    }
    bool canOpen(LightweightString<wchar_t> const&, OpenType) override { return false; }
    std::uint32_t getReadableTypes(LightweightString<wchar_t> const&, OpenType, PlayFileMetadataRep*,
                                   Aud::Metadata const&) override {
        return 0;
    }
};

class FileReaderRegistry : public ::testing::Test {
protected:
    static Ox::Ptr<FileReaderInfo> add(char const* name, int priority) {
        Ox::Ptr<FileReaderInfo> reader = Ox::makePtr<NamedReader>(name);
        EXPECT_TRUE(FileReaderInfo::add(reader, priority));
        return reader;
    }
    static std::string inOrder() {
        std::string names;
        for (unsigned index = 0; index < FileReaderInfo::getNumFileReaders(); ++index) {
            names += FileReaderInfo::getFileReaders(static_cast<unsigned char>(index))->readerName.str();
        }
        return names;
    }
};

TEST_F(FileReaderRegistry, OrdersByPriorityThenByArrival) {
    add("c", 100);
    add("a", 50);
    add("d", 100);
    add("b", 50);
    EXPECT_EQ("abcd", inOrder());
}

TEST_F(FileReaderRegistry, HasNothingPastItsEnd) {
    add("a", 100);
    EXPECT_FALSE(FileReaderInfo::getFileReaders(1));
    EXPECT_FALSE(FileReaderInfo::getFileReaders(255));
}

TEST_F(FileReaderRegistry, TakesNoReaderTwice) {
    EXPECT_FALSE(FileReaderInfo::add(add("a", 100), 50));
    EXPECT_EQ(1, FileReaderInfo::getNumFileReaders());
}

TEST_F(FileReaderRegistry, TakesNoReaderThatIsNotThere) {
    EXPECT_FALSE(FileReaderInfo::add({}, 100));
    EXPECT_EQ(0, FileReaderInfo::getNumFileReaders());
}

TEST_F(FileReaderRegistry, TakesNoMoreThanAnIndexCanName) {
    for (unsigned index = 0; index < FileReaderInfo::maxReaders; ++index) {
        add("x", 100);
    }
    EXPECT_FALSE(FileReaderInfo::add(Ox::makePtr<NamedReader>("one too many"), 1));
    EXPECT_EQ(255, FileReaderInfo::getNumFileReaders());
}

TEST_F(FileReaderRegistry, LetsAReaderGo) {
    auto const reader = add("a", 100);
    add("b", 100);
    EXPECT_TRUE(FileReaderInfo::remove(reader));
    EXPECT_FALSE(FileReaderInfo::remove(reader));
    EXPECT_EQ("b", inOrder());
}

/// A decoder that does, while it is asked, what a plug-in might do.
class AskingDecoder final : public iVideoDecoder {
public:
    [[nodiscard]] bool canDecode(VideoDecompressionInfo const& info) const override {
        Ox::DecoderInfo::instance().add(Ox::makePtr<AskingDecoder>());
        return info.codec == 5;
    }
    int decompress(Ox::Ptr<FrameBufferRep>&) override { return 1; }
};

class VideoDecoders : public ::testing::Test {
protected:
    static VideoDecompressionInfo info(std::uint32_t codec) {
        VideoDecompressionInfo result;
        result.codec = codec;
        return result;
    }
    static Ox::Ptr<FrameBufferRep> bufferOf(Ox::Image::Surface const& surface) {
        return Ox::makePtr<FrameBufferRep>(surface, 0);
    }
    static Ox::Image::Surface surface() {
        return {2, 2, Ox::Image::rgba, 8, 32, Ox::Image::layoutTopDown, Ox::Image::showForeignMemory, 0};
    }
    Ox::Ptr<iVideoDecoder> const raw_ =
        Ox::DecoderInfo::instance().getDecoderFor(info(VideoDecompressionInfo::rawPixels));
};

TEST_F(VideoDecoders, KnowOneForPixelsFromTheStart) {
    EXPECT_TRUE(raw_);
    EXPECT_FALSE(Ox::DecoderInfo::instance().getDecoderFor(info(5)));
}

TEST_F(VideoDecoders, PixelsThatAreThereAreDone) {
    Ox::Image::Surface filled = surface();
    filled.setDataPtr(Ox::makePtr<ByteHolder>(16));
    auto buffer = bufferOf(filled);
    EXPECT_EQ(1, raw_->decompress(buffer));
    EXPECT_EQ(FrameBufferRep::done, buffer->decompressStatus);
}

TEST_F(VideoDecoders, PixelsThatNeverCameFailAndLeaveTheStatus) {
    auto buffer = bufferOf(surface());
    EXPECT_EQ(0, raw_->decompress(buffer));
    EXPECT_EQ(FrameBufferRep::waiting, buffer->decompressStatus);
}

TEST_F(VideoDecoders, NoBufferFails) {
    Ox::Ptr<FrameBufferRep> none;
    EXPECT_EQ(0, raw_->decompress(none));
}

TEST_F(VideoDecoders, PixelsAreWaitedFor) {
    Ox::Image::Surface later = surface();
    later.addEvent();
    auto buffer = bufferOf(later);
    int answer = 0;
    {
        Threads const decoding(1, [&] { answer = raw_->decompress(buffer); });
        later.setDataPtr(Ox::makePtr<ByteHolder>(16));
        later.set();
    }
    EXPECT_EQ(1, answer);
}

TEST_F(VideoDecoders, AreAskedWithoutALockHeld) {
    auto const asking = Ox::makePtr<AskingDecoder>();
    Ox::DecoderInfo::instance().add(asking);
    EXPECT_EQ(asking.get(), Ox::DecoderInfo::instance().getDecoderFor(info(5)).get());
}

TEST_F(VideoDecoders, OneThatWasRemovedIsNotAsked) {
    auto const decoder = Ox::makePtr<AskingDecoder>();
    Ox::DecoderInfo::instance().add(decoder);
    Ox::DecoderInfo::instance().remove(decoder);
    EXPECT_FALSE(Ox::DecoderInfo::instance().getDecoderFor(info(5)));
}

class CountingKeeper final : public CodecPool::iKeeper {
public:
    void flushUnreferenced() override { ++flushes; }
    int flushes = 0;
};

TEST(CodecPool, AsksEveryKeeperUntilItIsRemoved) {
    auto const keeper = Ox::makePtr<CountingKeeper>();
    CodecPool::addKeeper(keeper);
    CodecPool::flushAllUnreferenced();
    CodecPool::removeKeeper(keeper);
    CodecPool::flushAllUnreferenced();
    EXPECT_EQ(1, keeper->flushes);
}

}  // namespace
}  // namespace test
