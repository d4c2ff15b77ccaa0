#include "plugins/ffmpeg/DecoderKeeper.h"

#include <gtest/gtest.h>

namespace test {
namespace {

using namespace playfile_ffmpeg;

class FakeDecoder : public KeptDecoder {
public:
    bool tryClose() override {
        isClosed = !isAtWork;
        return !isAtWork;
    }
    void tryShrink() override { ++shrinks; }
    bool isAtWork = false;
    int shrinks = 0;
    bool isClosed = false;
};

class DecoderKeeperTest : public ::testing::Test {
protected:
    std::shared_ptr<FakeDecoder> const a_ = std::make_shared<FakeDecoder>();
    std::shared_ptr<FakeDecoder> const b_ = std::make_shared<FakeDecoder>();
    std::shared_ptr<FakeDecoder> const c_ = std::make_shared<FakeDecoder>();
    DecoderKeeper keeper_{2};
};

TEST_F(DecoderKeeperTest, ClosesNoneAsLongAsThereAreFew) {
    keeper_.use(a_);
    keeper_.use(b_);
    EXPECT_FALSE(a_->isClosed);
    EXPECT_EQ(keeper_.openCount(), 2U);
}

TEST_F(DecoderKeeperTest, ClosesTheOneThatWasUsedTheLongestAgo) {
    keeper_.use(a_);
    keeper_.use(b_);
    keeper_.use(a_);
    keeper_.use(c_);
    EXPECT_TRUE(b_->isClosed);
    EXPECT_FALSE(a_->isClosed);
}

TEST_F(DecoderKeeperTest, LeavesOneThatIsAtWork) {
    a_->isAtWork = true;
    keeper_.use(a_);
    keeper_.use(b_);
    keeper_.use(c_);
    EXPECT_FALSE(a_->isClosed);
    EXPECT_EQ(keeper_.openCount(), 3U);
}

TEST_F(DecoderKeeperTest, ClosesOneThatWasAtWorkOnceItHasEnded) {
    a_->isAtWork = true;
    keeper_.use(a_);
    keeper_.use(b_);
    keeper_.use(c_);
    a_->isAtWork = false;
    keeper_.trim();
    EXPECT_TRUE(a_->isClosed);
    EXPECT_EQ(keeper_.openCount(), 2U);
}

TEST_F(DecoderKeeperTest, HoldsNoDecoder) {
    auto decoder = std::make_shared<FakeDecoder>();
    std::weak_ptr<FakeDecoder> const seen = decoder;
    keeper_.use(decoder);
    decoder = nullptr;
    EXPECT_TRUE(seen.expired());
}

TEST_F(DecoderKeeperTest, CountsNoneThatIsGone) {
    keeper_.use(a_);
    keeper_.use(std::make_shared<FakeDecoder>());
    keeper_.use(b_);
    EXPECT_FALSE(a_->isClosed);
}

TEST_F(DecoderKeeperTest, GivesEachOpenDecoderTheSamePartOfTheMemory) {
    DecoderKeeper keeper(8, 600);
    EXPECT_EQ(keeper.share(), 600U);
    keeper.use(a_);
    keeper.use(b_);
    keeper.use(b_);
    EXPECT_EQ(keeper.share(), 300U);
    keeper.use(c_);
    EXPECT_EQ(keeper.share(), 200U);
}

TEST_F(DecoderKeeperTest, GivesNoPartToOneThatItClosed) {
    DecoderKeeper keeper(2, 600);
    keeper.use(a_);
    keeper.use(b_);
    keeper.use(c_);
    EXPECT_EQ(keeper.share(), 300U);
}

TEST_F(DecoderKeeperTest, ShrinksTheOthersWhenOneOpens) {
    DecoderKeeper keeper(8, 600);
    keeper.use(a_);
    keeper.use(b_);
    EXPECT_EQ(a_->shrinks, 1);
}

TEST_F(DecoderKeeperTest, ShrinksNoneAsLongAsTheSameAreOpen) {
    DecoderKeeper keeper(8, 600);
    keeper.use(a_);
    keeper.use(b_);
    keeper.use(a_);
    keeper.use(b_);
    EXPECT_EQ(a_->shrinks, 1);
}

}  // namespace
}  // namespace test
