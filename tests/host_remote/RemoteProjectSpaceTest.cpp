#include <thread>

#include "host/remote/RemoteProjectSpace.h"
#include "material/MaterialManager.h"
#include "material/MediaLocationUtils.h"
#include "tests/fakes/FakeCatalogue.h"
#include "tests/host_remote/RemoteFixture.h"

namespace test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class RemoteProjectSpaceTest : public RemoteFixture {
protected:
    RemoteProjectSpaceTest() { enter(); }

    /// Works in a space of the server, as if for the first time.
    void enter() {
        install();
        EXPECT_TRUE(stores_->spaces().add(L"far", remote("/space")));
        EXPECT_TRUE(stores_->spaces().setCurrent(L"far"));
    }
    static Ox::Ptr<iRemoteProjectSpace> space() {
        return ProjectSpacesManager::instance()->getResourceForRemoteProjectSpace({});
    }
    static std::string digits(Cookie const& clip) { return clip.asString(true).str(); }
    static std::string pathOf(Cookie const& clip) { return "/space/clips/" + digits(clip) + ".json"; }
    static std::string entry(std::string const& name) { return R"({"name": ")" + name + R"(", "size": 5})"; }
    /// A clip's document with these entries, separated by commas.
    [[nodiscard]] std::string document(std::string const& originals, std::string const& proxies = {}) const {
        return R"({"version": 1, "clip": ")" + digits(clip_) + R"(", "originals": [)" + originals +
               R"(], "proxies": [)" + proxies + "]}";
    }
    void list(std::string const& text) { server_.on(pathOf(clip_), file(text)); }
    [[nodiscard]] std::vector<Name> originals() const { return space()->getOriginalFiles(clip_, 0); }
    [[nodiscard]] Name below(std::string const& path) const { return remote("/space/" + path); }
    [[nodiscard]] bool isClipLogged(std::string const& part) const { return isLogged(pathOf(clip_), {part}); }
    /// An answer that ends before its body does.
    static HttpScript dropping() {
        HttpScript script = file("contents");
        script.dropAfter = 3;
        return script;
    }
    /// A document that is refused as a whole, for this reason.
    void expectRefused(std::string const& text, std::string const& reason) {
        enter();
        list(text);
        EXPECT_THAT(originals(), IsEmpty()) << reason;
        EXPECT_FALSE(space()->hasProxy(clip_)) << reason;
        EXPECT_TRUE(isClipLogged(reason)) << reason;
    }
    /// An entry that is left out, and the one behind it isn't.
    void expectLeftOut(std::string const& bad, std::string const& reason) {
        enter();
        log_.clear();
        list(document(bad + "," + entry("good.mov")));
        EXPECT_THAT(originals(), ElementsAre(below("good.mov"))) << bad;
        EXPECT_TRUE(isClipLogged(reason)) << bad;
    }

    Cookie const clip_{Ox::UUID::generate(), 'E', Cookie::wholeClip};
};

TEST_F(RemoteProjectSpaceTest, TellsTheRoots) {
    server_.on("/space/space.json", file(R"({"version": 1, "roots": [
        {"path": "P:/a", "localPath": "/mnt/a", "otherPath": "Q:/a"}, {"otherPath": "R:/b"}]})"));
    std::vector<RemoteRoot> const roots = space()->getRoots();
    ASSERT_THAT(roots, SizeIs(2));
    EXPECT_EQ(Name(L"P:/a"), roots[0].path);
    EXPECT_EQ(Name(L"/mnt/a"), roots[0].localPath);
    EXPECT_EQ(Name(L"Q:/a"), roots[0].otherPath);
    EXPECT_EQ(Name(L"R:/b"), roots[1].localPath);
}

TEST_F(RemoteProjectSpaceTest, LeavesOutRootsThatWouldMatchEveryName) {
    server_.on("/space/space.json", file(R"({"version": 1, "roots": [
        {"localPath": "/mnt/a"}, {"path": "P:", "localPath": ""}, 7, {"path": "a\u0001"}, {"path": "/c"}]})"));
    std::vector<RemoteRoot> const roots = space()->getRoots();
    ASSERT_THAT(roots, SizeIs(1));
    EXPECT_EQ(Name(L"/c"), roots[0].path);
    EXPECT_EQ(4U, log_.count("is left out"));
}

TEST_F(RemoteProjectSpaceTest, ListsOriginalsAsNamesBelowTheSpace) {
    list(document(entry("a.mov") + "," + entry("folder/b.mov")));
    EXPECT_THAT(originals(), ElementsAre(below("a.mov"), below("folder/b.mov")));
}

TEST_F(RemoteProjectSpaceTest, NamesOfAnyScriptLeadToTheirFiles) {
    list(document(entry("\xE4\xBD\xA0 \xC3\xA4/100%#?.mov") + "," + entry("%2e%2e/a;b")));
    std::vector<Name> const names = originals();
    ASSERT_THAT(names, ElementsAre(below("%E4%BD%A0%20%C3%A4/100%25%23%3F.mov"), below("%252e%252e/a%3Bb")));
    server_.on("/space/%E4%BD%A0%20%C3%A4/100%25%23%3F.mov", file("contents"));
    EXPECT_EQ(8U, files().getFileSize(names[0]));
    EXPECT_EQ(below("\xE4\xBD\xA0 \xC3\xA4/100%#?.mov"),
              files().findRemoteStore(names[0])->getDisplayName(names[0]));
}

TEST_F(RemoteProjectSpaceTest, KnowsWhetherThereIsAProxy) {
    list(document("", entry("p.mp4")));
    EXPECT_TRUE(space()->hasProxy(clip_));
    EXPECT_THAT(originals(), IsEmpty());
}

TEST_F(RemoteProjectSpaceTest, KnowsNothingOfAClipThatIsNotThere) {
    EXPECT_THAT(originals(), IsEmpty());
    EXPECT_FALSE(space()->hasProxy(clip_));
    EXPECT_THAT(space()->getRoots(), IsEmpty());
    EXPECT_TRUE(log_.log().empty());
}

TEST_F(RemoteProjectSpaceTest, AnyCookieOfTheClipWillDoAndOneRequestServesAll) {
    list(document(entry("a.mov"), entry("p.mp4")));
    for (Cookie const& cookie : {clip_, convertCookie(clip_, 'V', 0), convertCookie(clip_, 'S', 7)}) {
        EXPECT_THAT(space()->getOriginalFiles(cookie, 0), SizeIs(1));
        EXPECT_TRUE(space()->hasProxy(cookie));
    }
    EXPECT_EQ(1U, server_.count());
}

TEST_F(RemoteProjectSpaceTest, ACookieOfNothingIsAskedForNowhere) {
    EXPECT_FALSE(space()->hasProxy(Cookie()));
    EXPECT_EQ(0U, server_.count());
}

TEST_F(RemoteProjectSpaceTest, AsksAgainWhenTheAnswerIsOld) {
    list(document(""));
    EXPECT_THAT(originals(), IsEmpty());
    list(document(entry("a.mov")));
    now_ += limits_.listing - RemoteLimits::Time(1);
    EXPECT_THAT(originals(), IsEmpty());
    now_ += RemoteLimits::Time(1);
    EXPECT_THAT(originals(), SizeIs(1));
}

TEST_F(RemoteProjectSpaceTest, RefusesADocumentThatIsBroken) {
    expectRefused("{", "no JSON object");
    expectRefused("", "no JSON object");
    expectRefused("[1]", "no JSON object");
    expectRefused(document(entry("a")) + "x", "no JSON object");
    expectRefused(R"({"clip": ")" + digits(clip_) + R"("})", "isn't of version 1");
    expectRefused(R"({"version": 2, "originals": [)" + entry("a") + "]}", "isn't of version 1");
    expectRefused(R"({"version": 1, "clip": "0", "originals": [)" + entry("a") + "]}", "of another clip");
    expectRefused(R"({"version": 1, "clip": ")" + digits(clip_) + R"(", "originals": 7})", "is no list");
}

TEST_F(RemoteProjectSpaceTest, RefusesADocumentThatIsNestedWithoutEnd) {
    expectRefused(std::string(SpaceReader::mostDocumentBytes, '['), "no JSON object");
    std::string const half(SpaceReader::mostDocumentBytes / 4, '[');
    expectRefused(document(half + std::string(half.size(), ']') + "," + entry("a") + "," + "x"),
                  "no JSON object");
}

TEST_F(RemoteProjectSpaceTest, LeavesOutAnEntryThatIsNestedDeeply) {
    std::size_t const depth = SpaceReader::mostDocumentBytes / 4;
    expectLeftOut(std::string(depth, '[') + std::string(depth, ']'), "no object");
}

TEST_F(RemoteProjectSpaceTest, RefusesAHundredThousandFiles) {
    std::string many = entry("a");
    for (int number = 1; number < 100'000; ++number) {
        many += R"(,{"name":"a"})";
    }
    expectRefused(document(many), "has 100000 entries, more than 1024");
}

TEST_F(RemoteProjectSpaceTest, TakesAsManyFilesAsAreAllowed) {
    std::string most = entry("a");
    for (std::size_t number = 1; number < SpaceReader::mostFiles; ++number) {
        most += "," + entry("a");
    }
    list(document(most));
    EXPECT_THAT(originals(), SizeIs(SpaceReader::mostFiles));
    expectRefused(document(most + "," + entry("a")), "more than 1024");
}

TEST_F(RemoteProjectSpaceTest, RefusesADocumentThatIsTooLong) {
    expectRefused(document(entry("a")) + std::string(SpaceReader::mostDocumentBytes, ' '),
                  "more than 2097152 bytes");
}

TEST_F(RemoteProjectSpaceTest, StopsReadingADocumentThatNeverEnds) {
    HttpScript script = file(std::string(65536, ' '));
    script.isEndless = true;
    script.statesLength = false;
    server_.on(pathOf(clip_), script);
    EXPECT_THAT(originals(), IsEmpty());
    EXPECT_TRUE(isClipLogged("more than 2097152 bytes"));
    EXPECT_EQ(0U, log_.count("gave no answer"));
}

TEST_F(RemoteProjectSpaceTest, LeavesOutNamesThatLeadElsewhere) {
    for (char const* name : {"../a", "a/../b", "a/..", "./a", "a//b", "a/", "."}) {
        expectLeftOut(entry(name), "empty, . or ..");
    }
    expectLeftOut(entry("/a"), "absolute");
    expectLeftOut(entry("//host/a"), "another host");
    expectLeftOut(entry("http://host/a"), "another host");
    expectLeftOut(entry("file:///a"), "another host");
    expectLeftOut(entry(R"(a\\b)"), "backslash");
    expectLeftOut(entry(R"(..\\b)"), "backslash");
}

TEST_F(RemoteProjectSpaceTest, LeavesOutNamesThatAreNoText) {
    expectLeftOut(entry(R"(a\nb)"), "control characters");
    expectLeftOut(entry(R"(a\u0000b)"), "control characters");
    expectLeftOut(entry("a\xC2\x85"), "control characters");
    expectLeftOut(entry("a\x7F"), "control characters");
    expectLeftOut(entry("a\xFF"), "no UTF-8");
    expectLeftOut(entry("a\xC0\xAF"), "no UTF-8");
    expectLeftOut(entry("a\xED\xA0\x80"), "no UTF-8");
    expectLeftOut(entry("a\xE4\xBD"), "no UTF-8");
}

TEST_F(RemoteProjectSpaceTest, LeavesOutEntriesWithoutNameOrSize) {
    expectLeftOut("7", "no object");
    expectLeftOut(R"({"size": 5})", "no name");
    expectLeftOut(R"({"name": 7, "size": 5})", "no name");
    expectLeftOut(R"({"name": "a"})", "no number of bytes");
    expectLeftOut(R"({"name": "a", "size": -1})", "no number of bytes");
    expectLeftOut(R"({"name": "a", "size": "1"})", "no number of bytes");
}

TEST_F(RemoteProjectSpaceTest, LeavesOutANameThatIsTooLong) {
    EXPECT_EQ("", SpaceReader::faultOf(std::string(SpaceReader::mostNameBytes, 'a')));
    expectLeftOut(entry(std::string(SpaceReader::mostNameBytes + 1, 'a')), "more than 1024 bytes");
}

TEST_F(RemoteProjectSpaceTest, TheLogShowsABadNameWithoutItsControlCharacters) {
    expectLeftOut(entry(R"(a\nb\u001B[31m)"), "An entry \"a?b?[31m\"");
}

TEST_F(RemoteProjectSpaceTest, AStatusOtherThanTwoHundredIsLoggedAndNotAskedForAgainForAWhile) {
    server_.on(pathOf(clip_), status(403));
    EXPECT_THAT(originals(), IsEmpty());
    EXPECT_THAT(originals(), IsEmpty());
    EXPECT_EQ(1U, server_.count());
    EXPECT_TRUE(isClipLogged("status 403"));
    list(document(entry("a.mov")));
    now_ += limits_.rest;
    EXPECT_THAT(originals(), SizeIs(1));
}

TEST_F(RemoteProjectSpaceTest, ASilentStoreDelaysOneQueryAndNoOther) {
    limits_.query = soon;
    enter();
    HttpScript script;
    script.stall = HttpScript::eStall::afterHeaders;
    script.body = document(entry("a.mov"));
    server_.on(pathOf(clip_), script);
    EXPECT_THAT(originals(), IsEmpty());
    for (int number = 0; number < 100; ++number) {
        EXPECT_FALSE(space()->hasProxy(Cookie(Ox::UUID::generate(), 'E', Cookie::wholeClip)));
    }
    EXPECT_EQ(1U, server_.count());
    EXPECT_EQ(1U, log_.count("isn't asked again for 10000 ms"));
}

TEST_F(RemoteProjectSpaceTest, AListingThatTricklesInWithoutEndDelaysForTheSetTimeOnly) {
    limits_.query = soon;
    enter();
    HttpScript script = file(" ");
    script.isDripping = script.isEndless = true;
    script.statesLength = false;
    server_.on(pathOf(clip_), script);
    EXPECT_THAT(originals(), IsEmpty());
    EXPECT_EQ(1U, log_.count("(not answered within 60 ms)"));
}

TEST_F(RemoteProjectSpaceTest, AClipThatWasNotAskedForIsAskedForWhenTheStoreHasRested) {
    server_.on("/space/space.json", dropping());
    EXPECT_THAT(space()->getRoots(), IsEmpty());
    list(document(entry("a.mov")));
    now_ += limits_.rest - RemoteLimits::Time(1);
    EXPECT_THAT(originals(), IsEmpty());
    now_ += RemoteLimits::Time(1);
    EXPECT_THAT(originals(), SizeIs(1));
}

TEST_F(RemoteProjectSpaceTest, ADroppedListingIsNoListing) {
    HttpScript script = file(document(entry("a.mov")));
    script.dropAfter = script.body.size() - 1;
    server_.on(pathOf(clip_), script);
    EXPECT_THAT(originals(), IsEmpty());
}

TEST_F(RemoteProjectSpaceTest, ClipsDoNotWaitForEachOther) {
    Cookie const other(Ox::UUID::generate(), 'E', Cookie::wholeClip);
    HttpScript script = file(document(entry("a.mov")));
    script.stall = HttpScript::eStall::beforeHeaders;
    server_.on(pathOf(clip_), script);
    std::thread waiting([this] { EXPECT_THAT(originals(), SizeIs(1)); });
    EXPECT_TRUE(server_.waitForStalls(1));
    EXPECT_FALSE(space()->hasProxy(other));
    server_.release();
    waiting.join();
}

TEST_F(RemoteProjectSpaceTest, WhoAsksForTheSameClipSharesTheRequest) {
    HttpScript script = file(document(entry("a.mov")));
    script.stall = HttpScript::eStall::beforeHeaders;
    server_.on(pathOf(clip_), script);
    std::vector<std::thread> threads;
    for (int number = 0; number < 4; ++number) {
        threads.emplace_back([this] { EXPECT_THAT(originals(), SizeIs(1)); });
    }
    EXPECT_TRUE(server_.waitForStalls(1));
    server_.release();
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(1U, server_.count());
}

TEST_F(RemoteProjectSpaceTest, CredentialsOfTheSpaceStandInNoNameAndServeItsFiles) {
    EXPECT_TRUE(stores_->spaces().add(L"far", wide(server_.url("/space", "me:secret"))));
    list(document(entry("a.mov")));
    ASSERT_THAT(originals(), ElementsAre(below("a.mov")));
    EXPECT_FALSE(files().fileExists(originals()[0]));
    for (HttpServer::Request const& request : server_.requests()) {
        EXPECT_EQ(1U, request.headers.count("authorization")) << request.target;
    }
}

TEST_F(RemoteProjectSpaceTest, TheCurrentSpaceIsTheOneThatWasSet) {
    ProjectSpacesManager& manager = *ProjectSpacesManager::instance();
    EXPECT_EQ(ProjectSpacesManager::remoteSpace, manager.getCurrentProjectSpaceType());
    EXPECT_FALSE(stores_->spaces().setCurrent(L"unknown"));
    EXPECT_EQ(ProjectSpacesManager::remoteSpace, manager.getCurrentProjectSpaceType());
    EXPECT_TRUE(stores_->spaces().setCurrent({}));
    EXPECT_EQ(ProjectSpacesManager::localSpace, manager.getCurrentProjectSpaceType());
    EXPECT_FALSE(manager.getResourceForRemoteProjectSpace({}));
    EXPECT_TRUE(manager.getResourceForRemoteProjectSpace(L"far"));
    EXPECT_FALSE(manager.getResourceForRemoteProjectSpace(L"unknown"));
}

TEST_F(RemoteProjectSpaceTest, ASpaceThatIsRemovedIsCurrentNoMore) {
    stores_->spaces().remove(L"far");
    EXPECT_EQ(ProjectSpacesManager::localSpace,
              ProjectSpacesManager::instance()->getCurrentProjectSpaceType());
    EXPECT_FALSE(space());
}

TEST_F(RemoteProjectSpaceTest, ASpaceNeedsANameAndAnHttpUrl) {
    for (char const* url : {"", "/space", "ftp://host/space", "http://", "http://host/space?key=1"}) {
        EXPECT_FALSE(stores_->spaces().add(L"other", wide(url))) << url;
    }
    EXPECT_FALSE(stores_->spaces().add({}, remote("/space")));
    EXPECT_EQ(6U, log_.count("wasn't added"));
}

/// A catalogue whose clip has media in a store that never answers.
class SilentStoreTest : public RemoteProjectSpaceTest {
protected:
    SilentStoreTest() {
        limits_.query = soon;
        enter();
        HttpScript script = file("contents");
        script.stall = HttpScript::eStall::beforeHeaders;
        for (std::string const& path :
             {std::string("/a.mov"), std::string("/space/space.json"), pathOf(clip_)}) {
            server_.on(path, script);
        }
        Cookie const video = convertCookie(clip_, 'V', 0);
        catalogue_.addEdit(clip_, nullptr);
        catalogue_.setFacts(clip_, {});
        catalogue_.setChannels(clip_, 1, 0);
        catalogue_.setReferences(clip_, Edit::mediaReferences, {video});
        catalogue_.setReferences(clip_, Edit::ownMediaReferences, {video});
        catalogue_.addEntry(video,
                            MediaFileInfo(MaterialFilename(DriveId::none, L"link"), remote("/a.mov"), 1));
    }

    FakeCatalogue catalogue_{std::make_shared<CallLog>()};
};

TEST_F(SilentStoreTest, QueriesAboutMediaAskItOnceAndEnd) {
    for (int number = 0; number < 100; ++number) {
        EXPECT_FALSE(MaterialManager::isMediaAvailable(clip_, mediaOriginal));
        EXPECT_FALSE(MaterialManager::canDownload(clip_, mediaOriginal));
        EXPECT_FALSE(MaterialManager::isMediaRemote(convertCookie(clip_, 'V', 0), mediaOriginal));
        EXPECT_TRUE(MediaLocationUtils::getClipLocationInfo(clip_).allMediaOffline());
        EXPECT_THAT(MaterialManager::getRevealableFiles(clip_), IsEmpty());
    }
    EXPECT_EQ(1U, server_.count());
}

}  // namespace
}  // namespace test
