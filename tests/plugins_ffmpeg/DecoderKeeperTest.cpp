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
    bool isAtWork = false;
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

}  // namespace
}  // namespace test
