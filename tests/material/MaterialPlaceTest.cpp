/// Whether media are here or remote, in a normal project and in a remote project space.
#include "tests/material/MaterialFixture.h"

namespace test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class MaterialPlaceTest : public MaterialFixture {
protected:
    static bool isRemote(std::set<Cookie> const& cookies, eMediaTypes types) {
        return MaterialManager::isMediaRemote(cookies, types);
    }
    static bool isLocal(std::set<Cookie> const& cookies, eMediaTypes types) {
        return MaterialManager::isMediaLocal(cookies, types);
    }
    static RemoteRoot root(std::string const& path, std::string const& local, std::string const& other = "") {
        return {wide(path), wide(local), wide(other)};
    }
    /// A clip that refers to its video.
    void addLog(unsigned number = 1) {
        addClip(clip(number));
        media_.setReferences(clip(number), 2, {video(number)});
    }
};

TEST_P(MaterialPlaceTest, NoOtherKindOfProjectSpaceHasMedia) {
    media_.addEntry(video(), linked("far:a"), {ownProxy("/m/p")});
    for (int const type : {-1, 3, 100}) {
        spaces_.type = type;
        EXPECT_FALSE(isRemote({video()}, mediaAll)) << type;
        EXPECT_FALSE(isLocal({video()}, mediaAll)) << type;
    }
}

TEST_P(MaterialPlaceTest, ALocalAndASharedSpaceAreNormal) {
    media_.addEntry(video(), linked("far:a"));
    for (int const type : {0, 1}) {
        spaces_.type = type;
        EXPECT_TRUE(isRemote({video()}, mediaOriginal)) << type;
        EXPECT_FALSE(isLocal({video()}, mediaOriginal)) << type;
    }
}

TEST_P(MaterialPlaceTest, OneCookieIsAskedForAsASetIs) {
    media_.addEntry(video(), linked("far:a"));
    EXPECT_TRUE(MaterialManager::isMediaRemote(video(), mediaOriginal));
    EXPECT_FALSE(MaterialManager::isMediaLocal(video(), mediaOriginal));
}

TEST_P(MaterialPlaceTest, AnyRemoteOriginalMakesASetRemote) {
    media_.addEntry(video(1), linked("far:a"));
    media_.addEntry(video(2), linked("/m/b"));
    EXPECT_TRUE(isRemote({video(1), video(2), video(3)}, mediaOriginal));
}

TEST_P(MaterialPlaceTest, AnOriginalOfAnotherKindIsNeverAskedForAsRemote) {
    media_.addEntry(video(), own("far:a"));
    EXPECT_FALSE(isRemote({video()}, mediaOriginal));
    EXPECT_THAT(calls_->with("fm.isRemote"), IsEmpty());
}

TEST_P(MaterialPlaceTest, TheFirstProxyThatMayLieElsewhereAnswersForItsClip) {
    media_.addEntry(video(), own("/m/a"), {ownProxy("far:own"), linkedProxy("/m/p"), linkedProxy("far:p")});
    EXPECT_FALSE(isRemote({video()}, mediaProxy));
    EXPECT_THAT(calls_->with("fm.isRemote"), ElementsAre("fm.isRemote /m/p"));
}

TEST_P(MaterialPlaceTest, DeliberateTheLastClipWithSuchAProxyDecidesForAll) {
    media_.addEntry(video(1), own("/m/a"), {linkedProxy("far:p")});
    media_.addEntry(video(2), own("/m/b"), {linkedProxy("/m/p")});
    EXPECT_FALSE(isRemote({video(1), video(2)}, mediaProxy));
    EXPECT_THAT(calls_->with("fm.isRemote"), ElementsAre("fm.isRemote far:p", "fm.isRemote /m/p"));
}

TEST_P(MaterialPlaceTest, AClipWithoutSuchAProxyLeavesTheAnswerAsItWas) {
    media_.addEntry(video(1), own("/m/a"), {linkedProxy("far:p")});
    media_.addEntry(video(2), own("/m/b"), {ownProxy("/m/p")});
    EXPECT_TRUE(isRemote({video(1), video(2)}, mediaProxy));
}

TEST_P(MaterialPlaceTest, ProxiesThatAreHereLeaveTheQuestionToTheOriginals) {
    media_.addEntry(video(1), linked("far:a"), {linkedProxy("far:p")});
    media_.addEntry(video(2), own("/m/b"), {linkedProxy("/m/p")});
    EXPECT_TRUE(isRemote({video(1), video(2)}, mediaAll));
}

TEST_P(MaterialPlaceTest, AnOriginalOfAnotherKindIsLocalWithoutAsking) {
    media_.addEntry(video(), own("far:a"));
    EXPECT_TRUE(isLocal({video()}, mediaOriginal));
    EXPECT_THAT(calls_->with("fm.isRemote"), IsEmpty());
}

TEST_P(MaterialPlaceTest, AnOriginalWithoutANameIsNotLocal) {
    media_.addEntry(video(), own(""));
    EXPECT_FALSE(isLocal({video()}, mediaOriginal));
}

TEST_P(MaterialPlaceTest, ALinkedOriginalIsLocalIfItsPlaceIsHere) {
    media_.addEntry(video(1), linked("far:a"));
    EXPECT_FALSE(isLocal({video(1)}, mediaOriginal));
    media_.addEntry(video(2), linked("/m/b"));
    EXPECT_TRUE(isLocal({video(1), video(2)}, mediaOriginal));
}

TEST_P(MaterialPlaceTest, ALocalProxyEndsTheWalkOfItsClipOnly) {
    media_.addEntry(video(1), own(""), {ownProxy("/m/p"), linkedProxy("far:p")});
    media_.addEntry(video(2), own(""), {linkedProxy("far:q"), linkedProxy("/m/q"), linkedProxy("/m/r")});
    EXPECT_TRUE(isLocal({video(1), video(2)}, mediaProxy));
    EXPECT_THAT(calls_->with("fm.isRemote"), ElementsAre("fm.isRemote far:q", "fm.isRemote /m/q"));
}

TEST_P(MaterialPlaceTest, RemoteProxiesAreNotLocal) {
    media_.addEntry(video(), own("/m/a"), {linkedProxy("far:p")});
    EXPECT_FALSE(isLocal({video()}, mediaProxy));
    EXPECT_TRUE(isLocal({video()}, mediaAll));
}

TEST_P(MaterialPlaceTest, ARemoteSpaceWithNothingBehindItHasNoMedia) {
    media_.addEntry(video(), linked("far:a"), {ownProxy("/m/p")});
    spaces_.type = ProjectSpacesManager::remoteSpace;
    EXPECT_FALSE(isRemote({video()}, mediaAll));
    EXPECT_FALSE(isLocal({video()}, mediaAll));
    EXPECT_TRUE(spaces_.askedForCurrent);
}

TEST_P(MaterialPlaceTest, ALinkIntoARootOfTheSpaceIsRemote) {
    spaces_.enterRemoteSpace({root("/other", ""), root("/space", "")});
    media_.addEntry(video(1), linked("/space/a"));
    media_.addEntry(video(2), linked("/spaces/a"));
    EXPECT_TRUE(isRemote({video(1)}, mediaOriginal));
    EXPECT_FALSE(isRemote({video(2)}, mediaOriginal));
}

TEST_P(MaterialPlaceTest, ARootWithoutAFirstPathHasItsThird) {
    spaces_.enterRemoteSpace({root("", "/local", "/third")});
    media_.addEntry(video(1), linked("/third/a"));
    media_.addEntry(video(2), linked("/local/a"));
    EXPECT_TRUE(isRemote({video(1)}, mediaOriginal));
    EXPECT_FALSE(isRemote({video(2)}, mediaOriginal));
}

TEST_P(MaterialPlaceTest, ARootWithoutPathsHoldsEveryLink) {
    spaces_.enterRemoteSpace({root("", "/local", "")});
    media_.addEntry(video(), linked("/anywhere/a"));
    EXPECT_TRUE(isRemote({video()}, mediaOriginal));
}

TEST_P(MaterialPlaceTest, TheRootIsComparedWithTheStoredName) {
    spaces_.enterRemoteSpace({root("/space", "")});
    files_.mount = [](std::string const&) { return "/mounted"; };
    media_.addEntry(video(), linked("/space/a"));
    EXPECT_TRUE(isRemote({video()}, mediaOriginal));
}

TEST_P(MaterialPlaceTest, NoOriginalIsRemoteInASpaceWithoutRoots) {
    spaces_.enterRemoteSpace({});
    media_.addEntry(video(), linked("/space/a"));
    EXPECT_FALSE(isRemote({video()}, mediaOriginal));
}

TEST_P(MaterialPlaceTest, AnUnlinkedOriginalIsNotRemoteInASpace) {
    spaces_.enterRemoteSpace({root("/space", "")});
    media_.addEntry(video(), own("/space/a"));
    EXPECT_FALSE(isRemote({video()}, mediaOriginal));
}

TEST_P(MaterialPlaceTest, AnAvailableProxyThatLiesElsewhereIsRemoteInASpace) {
    spaces_.enterRemoteSpace({});
    media_.addEntry(video(), own("/m/a"), {ownProxy("/m/p"), linkedProxy("/space/p")});
    files_.addFile("/m/p");
    EXPECT_FALSE(isRemote({video()}, mediaProxy));
    files_.addFile("/space/p");
    EXPECT_TRUE(isRemote({video()}, mediaProxy));
}

TEST_P(MaterialPlaceTest, AnAvailableOriginalOutsideAllRootsIsLocalInASpace) {
    spaces_.enterRemoteSpace({root("/space", "/sp"), root("/x", "/y")});
    media_.addEntry(video(), own("/m/a"));
    EXPECT_FALSE(isLocal({video()}, mediaOriginal));
    files_.addFile("/m/a");
    EXPECT_TRUE(isLocal({video()}, mediaOriginal));
}

TEST_P(MaterialPlaceTest, ASecondPathAnywhereInTheNameMakesAnOriginalForeign) {
    spaces_.enterRemoteSpace({root("/space", "/q"), root("/x", "/sp")});
    media_.addEntry(video(), own("/m/sp/a"));
    files_.addFile("/m/sp/a");
    EXPECT_FALSE(isLocal({video()}, mediaOriginal));
}

TEST_P(MaterialPlaceTest, AnEmptySecondPathMakesEveryOriginalForeign) {
    spaces_.enterRemoteSpace({root("/space", "")});
    media_.addEntry(video(), own("/m/a"));
    files_.addFile("/m/a");
    EXPECT_FALSE(isLocal({video()}, mediaOriginal));
}

TEST_P(MaterialPlaceTest, NoOriginalIsLocalInASpaceWithoutRoots) {
    spaces_.enterRemoteSpace({});
    media_.addEntry(video(), own("/m/a"));
    files_.addFile("/m/a");
    EXPECT_FALSE(isLocal({video()}, mediaOriginal));
}

TEST_P(MaterialPlaceTest, AProxyThatIsNotRemoteIsLocalInASpace) {
    spaces_.enterRemoteSpace({});
    media_.addEntry(video(1), own(""), {linkedProxy("far:p")});
    media_.addEntry(video(2), own(""), {linkedProxy("/m/p")});
    EXPECT_FALSE(isLocal({video(1)}, mediaProxy));
    EXPECT_TRUE(isLocal({video(1), video(2)}, mediaProxy));
}

TEST_P(MaterialPlaceTest, NothingIsAskedForWithoutAType) {
    media_.addEntry(video(), linked("far:a"), {linkedProxy("far:p")});
    EXPECT_FALSE(isRemote({video()}, 0));
    EXPECT_FALSE(isLocal({video()}, 0));
    EXPECT_FALSE(MaterialManager::canDownload(clip(), 0));
}

TEST_P(MaterialPlaceTest, OutsideASpaceRemoteMediaCanBeDownloaded) {
    addLog();
    media_.addEntry(video(), linked("far:a"), {linkedProxy("/m/p")});
    EXPECT_TRUE(MaterialManager::canDownload(clip(), mediaOriginal));
    EXPECT_FALSE(MaterialManager::canDownload(clip(), mediaProxy));
}

TEST_P(MaterialPlaceTest, DeliberateTheAnswerForProxiesStandsAloneOutsideASpace) {
    addLog();
    media_.addEntry(video(), linked("far:a"), {linkedProxy("/m/p")});
    EXPECT_FALSE(MaterialManager::canDownload(clip(), mediaAll));
}

TEST_P(MaterialPlaceTest, WhatASpaceHasAndIsNotHereCanBeDownloaded) {
    FakeRemoteSpace& space = spaces_.enterRemoteSpace({root("/space", "/sp")});
    addLog();
    media_.addEntry(video(), linked("/space/a"), {linkedProxy("far:p")});
    EXPECT_FALSE(MaterialManager::canDownload(clip(), mediaAll));
    space.originals[clip()] = {wide("far:a")};
    EXPECT_TRUE(MaterialManager::canDownload(clip(), mediaOriginal));
    EXPECT_FALSE(MaterialManager::canDownload(clip(), mediaProxy));
    space.withProxy.insert(clip());
    EXPECT_TRUE(MaterialManager::canDownload(clip(), mediaProxy));
}

TEST_P(MaterialPlaceTest, WhatIsHereAlreadyCanNotBeDownloadedFromASpace) {
    FakeRemoteSpace& space = spaces_.enterRemoteSpace({root("/space", "/sp")});
    addLog();
    media_.addEntry(video(), own("/m/a"), {ownProxy("/m/p")});
    files_.addFile("/m/a");
    space.originals[clip()] = {wide("far:a")};
    space.withProxy.insert(clip());
    EXPECT_FALSE(MaterialManager::canDownload(clip(), mediaAll));
}

TEST_P(MaterialPlaceTest, AnyClipThatCanBeDownloadedIsEnough) {
    FakeRemoteSpace& space = spaces_.enterRemoteSpace({root("/space", "/sp")});
    addLog(1);
    addLog(2);
    space.withProxy.insert(clip(2));
    EXPECT_TRUE(MaterialManager::canDownload(vectorOf({clip(1), clip(2)}), mediaAll));
}

INSTANTIATE_TEST_SUITE_P(Hosts, MaterialPlaceTest, MaterialFixture::hosts(), MaterialFixture::nameOf);

}  // namespace
}  // namespace test
