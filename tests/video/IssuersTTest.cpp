#include "video/IssuersT.h"

#include <memory>
#include <utility>

#include "gtest/gtest.h"
#include "tests/fakes/RecordingIssuer.h"
#include "tests/fakes/ScriptedFile.h"

namespace {

class IssuersTTest : public ::testing::Test {
protected:
    void tell(IssuersT& issuers, RequestStatus status = requestComplete) {
        Ox::Ptr<iObject> result(buffer);
        issuers.doCallbacks(result, status);
    }

    Ox::Ptr<FrameBufferRep> buffer = makeNumberedBuffer(7);
    RecordingIssuer first;
    RecordingIssuer second;
};

TEST_F(IssuersTTest, IsEmptyWhenMadeFromANullIssuer) {
    IssuersT issuers(nullptr);
    EXPECT_TRUE(issuers.empty());
}

TEST_F(IssuersTTest, TellsResultAndStatus) {
    IssuersT issuers(first.getProxy());
    tell(issuers, requestFailed);
    EXPECT_EQ(first.only().result, buffer);
    EXPECT_EQ(first.only().status, requestFailed);
}

TEST_F(IssuersTTest, TellsEachPartyOnlyOnce) {
    IssuersT issuers(first.getProxy());
    tell(issuers);
    tell(issuers);
    EXPECT_EQ(first.callCount(), 1U);
    EXPECT_TRUE(issuers.empty());
}

TEST_F(IssuersTTest, TellsInTheOrderOfTheProxiesAddresses) {
    IssuersT issuers(first.getProxy());
    IssuersT const others(second.getProxy());
    issuers.addIssuersFrom(others);
    tell(issuers);
    bool const isFirstLower = std::less<>()(first.getProxy().get(), second.getProxy().get());
    EXPECT_EQ(first.only().order < second.only().order, isFirstLower);
}

TEST_F(IssuersTTest, LeavesTheOtherSetAsItWasWhenAdding) {
    IssuersT issuers(first.getProxy());
    IssuersT others(second.getProxy());
    issuers.addIssuersFrom(others);
    EXPECT_EQ(issuers.size(), 2U);
    EXPECT_EQ(others.size(), 1U);
}

TEST_F(IssuersTTest, KeepsOneEntryForAProxyThatIsThereAlready) {
    IssuersT issuers(first.getProxy());
    IssuersT const others(first.getProxy());
    issuers.addIssuersFrom(others);
    EXPECT_EQ(issuers.size(), 1U);
}

TEST_F(IssuersTTest, KeepsTwoProxiesOfOneIssuerApart) {
    IssuersT issuers(first.getProxy());
    IssuersT const others(Ox::makePtr<ReadRequestIssuer::Proxy>(&first));
    issuers.addIssuersFrom(others);
    tell(issuers);
    EXPECT_EQ(first.callCount(), 2U);
}

TEST_F(IssuersTTest, AddsNothingFromAnEmptySet) {
    IssuersT issuers(first.getProxy());
    IssuersT const none(nullptr);
    issuers.addIssuersFrom(none);
    EXPECT_EQ(issuers.size(), 1U);
}

TEST_F(IssuersTTest, ErasesAProxyWhoseIssuerHasGone) {
    auto gone = std::make_unique<RecordingIssuer>();
    IssuersT issuers(gone->getProxy());
    gone.reset();
    tell(issuers);
    EXPECT_TRUE(issuers.empty());
}

TEST_F(IssuersTTest, TellsTheOthersWhenOneIssuerHasGone) {
    auto gone = std::make_unique<RecordingIssuer>();
    IssuersT issuers(gone->getProxy());
    IssuersT const others(first.getProxy());
    issuers.addIssuersFrom(others);
    gone.reset();
    tell(issuers);
    EXPECT_EQ(first.callCount(), 1U);
}

TEST_F(IssuersTTest, LetsGoOfTheProxiesThatItHasTold) {
    IssuersT issuers(first.getProxy());
    std::uint32_t const held = first.getProxy().useCount();
    tell(issuers);
    EXPECT_EQ(first.getProxy().useCount(), held - 1);
}

TEST_F(IssuersTTest, TellsOnTheThreadThatCompletes) {
    IssuersT issuers(first.getProxy());
    std::thread other([&] { tell(issuers); });
    std::thread::id const id = other.get_id();
    other.join();
    EXPECT_EQ(first.only().thread, id);
}

TEST_F(IssuersTTest, LetsTheNotifiedThreadAddToTheSameSet) {
    IssuersT const others(second.getProxy());
    IssuersT* target = nullptr;
    RecordingIssuer adding([&](RecordingIssuer::Call const&) { target->addIssuersFrom(others); });
    IssuersT issuers(adding.getProxy());
    target = &issuers;
    tell(issuers);
    EXPECT_EQ(adding.callCount(), 1U);
    EXPECT_TRUE(issuers.empty());
}

TEST_F(IssuersTTest, AddsFromASetThatAnotherThreadIsTelling) {
    Gate told{false};
    RecordingIssuer slow([&](RecordingIssuer::Call const&) { told.pass(); });
    IssuersT others(slow.getProxy());
    std::jthread telling([&] { tell(others); });
    EXPECT_TRUE(told.waitForArrivals(1));
    IssuersT issuers(first.getProxy());
    issuers.addIssuersFrom(others);
    EXPECT_FALSE(issuers.empty());
    told.open();
}

TEST_F(IssuersTTest, IsEmptyWhenMadeFromNothing) {
    IssuersT issuers;
    EXPECT_TRUE(issuers.empty());
}

TEST_F(IssuersTTest, APartyMayTellAllTheOthersItself) {
    IssuersT* all = nullptr;
    bool hasTold = false;
    auto const tellAll = [&](RecordingIssuer::Call const&) {
        if (!std::exchange(hasTold, true)) {
            tell(*all);
        }
    };
    RecordingIssuer one(tellAll);
    RecordingIssuer another(tellAll);
    IssuersT issuers(one.getProxy());
    issuers.addIssuersFrom(IssuersT(another.getProxy()));
    all = &issuers;
    tell(issuers);
    EXPECT_EQ(one.callCount() + another.callCount(), 3U);
    EXPECT_TRUE(issuers.empty());
}

}  // namespace
