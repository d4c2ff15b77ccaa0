#include "tests/contract/CatalogueContract.h"
#include "tests/support/Threads.h"
#include "toolkit/catalogue/DiskManager.h"
#include "toolkit/services/Paths.h"

namespace test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST_P(CatalogueContract, KnowsNothingAtFirst) {
    EXPECT_EQ(found(video_), "none, untouched");
    EXPECT_FALSE(catalogue_->findEntryForCookie(video_));
    EXPECT_FALSE(catalogue_->fileExists(video_));
    EXPECT_THAT(catalogue_->getClipMediaFiles(video_), IsEmpty());
}

TEST_P(CatalogueContract, FindsWhatWasAdded) {
    catalogue_->addFile(video_, own("/m/a.mov"));
    EXPECT_EQ(found(video_), "/m/a.mov");
    EXPECT_TRUE(catalogue_->fileExists(video_));
}

TEST_P(CatalogueContract, KeepsAllThatIsKnownOfAFile) {
    MediaFileInfo file(MaterialFilename(DriveId('B'), wide("Vision/a.mov")), wide("/far/a.mov"),
                       std::uint64_t{1} << 40);
    file.streamCount = 3;
    file.status = 5;
    catalogue_->addFile(video_, file);
    Ox::Ptr<FsysDirectoryEntry> const entry = catalogue_->findEntryForCookie(video_);
    ASSERT_TRUE(entry);
    EXPECT_EQ(entry->getCookie(), video_);
    EXPECT_EQ(entry->materialFilename, file.materialFilename);
    EXPECT_EQ(narrow(entry->physicalFilename), "/far/a.mov");
    EXPECT_EQ(entry->streamCount, 3U);
    EXPECT_EQ(entry->kind, MediaFileInfo::kindElsewhere);
    EXPECT_EQ(entry->status, 5U);
    EXPECT_EQ(entry->size, std::uint64_t{1} << 40);
    EXPECT_TRUE(entry->isLinked());
}

TEST_P(CatalogueContract, KeepsNamesOfAnyScript) {
    for (std::string const name :
         {"/m/\xC3\xA4\xC3\x9F.mov", "/m/\xE6\xBC\xA2\xE5\xAD\x97", "/m/\xF0\x9F\x98\x80",
          "/m/it's \"100%\"; DROP TABLE media", "/m/ \t\n x"}) {
        catalogue_->addFile(video_, own(name));
        EXPECT_EQ(found(video_), name);
    }
}

TEST_P(CatalogueContract, AnOriginalTakesThePlaceOfTheOneBefore) {
    catalogue_->addFile(video_, own("/m/a.mov"));
    catalogue_->addFile(video_, own("/m/b.mov"));
    EXPECT_EQ(found(video_), "/m/b.mov");
}

TEST_P(CatalogueContract, ProxiesStandInTheOrderInWhichTheyCame) {
    catalogue_->addFile(video_, proxy("/m/p2"));
    catalogue_->addFile(video_, own("/m/a"));
    catalogue_->addFile(video_, proxy("/m/p1"));
    EXPECT_THAT(proxiesOf(video_), ElementsAre("/m/p2", "/m/p1"));
    EXPECT_EQ(found(video_, DecodeFormat(2)), "/m/p2");
}

TEST_P(CatalogueContract, NeverFallsBackFromProxyToOriginalOrBack) {
    catalogue_->addFile(video_, own("/m/a"));
    EXPECT_EQ(found(video_, DecodeFormat(2)), "none, untouched");
    catalogue_->addFile(sound_, proxy("/m/p"));
    EXPECT_EQ(found(sound_), "none, untouched");
}

TEST_P(CatalogueContract, AnEntryOfProxiesAloneHasNoNameOfItsOwn) {
    catalogue_->addFile(video_, proxy("/m/p"));
    Ox::Ptr<FsysDirectoryEntry> const entry = catalogue_->findEntryForCookie(video_);
    ASSERT_TRUE(entry);
    EXPECT_TRUE(entry->getPhysicalFilename().empty());
}

TEST_P(CatalogueContract, TheWholeClipMeansTheFirstChannelOfItsType) {
    catalogue_->addFile(Cookie(clip_, 'S', 3), own("/m/s3"));
    catalogue_->addFile(Cookie(clip_, 'S', 2), own("/m/s2"));
    catalogue_->addFile(video_, own("/m/v"));
    EXPECT_EQ(found(Cookie(clip_, 'S', Cookie::wholeClip)), "/m/s2");
    EXPECT_EQ(catalogue_->findEntryForCookie(Cookie(clip_, 'S', 255))->getCookie(), Cookie(clip_, 'S', 2));
    EXPECT_EQ(found(Cookie(clip_, 'E', Cookie::wholeClip)), "none, untouched");
}

TEST_P(CatalogueContract, AChannelThatIsNotThereMeansNoOther) {
    catalogue_->addFile(video_, own("/m/v"));
    EXPECT_EQ(found(Cookie(clip_, 'V', 1)), "none, untouched");
}

TEST_P(CatalogueContract, TellsTheFilesOfAClipInTheOrderOfTheirCookies) {
    catalogue_->addFile(video_, own("/m/v"));
    catalogue_->addFile(Cookie(clip_, 'S', 10), own("/m/s10"));
    catalogue_->addFile(Cookie(clip_, 'S', 2), own("/m/s2"));
    catalogue_->addFile(Cookie(Ox::UUID::generate(), 'V', 0), own("/m/other"));
    std::vector<std::string> names;
    for (Ox::Ptr<FsysDirectoryEntry> const& entry : catalogue_->getClipMediaFiles(Cookie(clip_, 'E', 255))) {
        names.push_back(narrow(entry->getPhysicalFilename()));
    }
    EXPECT_THAT(names, ElementsAre("/m/s2", "/m/s10", "/m/v"));
}

TEST_P(CatalogueContract, TheNameIsThatOfTheEntry) {
    DiskManager::instance().setDriveRoot(DriveId('Q'), wide("/q"));
    catalogue_->addFile(video_, MediaFileInfo(MaterialFilename(DriveId('Q'), wide("Vision/a.mov")), 1));
    EXPECT_EQ(found(video_), "/q/Vision/a.mov");
    EXPECT_EQ(narrow(catalogue_->findEntryForCookie(video_)->getPhysicalFilename()), "/q/Vision/a.mov");
    DiskManager::instance().removeDrive(DriveId('Q'));
}

TEST_P(CatalogueContract, RemovesOriginalsAndProxiesEachForItself) {
    catalogue_->addFile(video_, own("/m/a"));
    catalogue_->addFile(video_, proxy("/m/p"));
    EXPECT_EQ(catalogue_->removeFile(video_, mediaOriginal), oxSuccess);
    EXPECT_EQ(found(video_), "none, untouched");
    EXPECT_THAT(proxiesOf(video_), ElementsAre("/m/p"));
    EXPECT_EQ(catalogue_->removeFile(video_, mediaProxy), oxSuccess);
    EXPECT_FALSE(catalogue_->fileExists(video_));
}

TEST_P(CatalogueContract, RemovingWhatIsNotThereIsNoFailure) {
    EXPECT_EQ(catalogue_->removeFile(video_, mediaAll), oxSuccess);
}

TEST_P(CatalogueContract, RemovingDeletesTheFileAtItsOwnPlace) {
    LightweightString<wchar_t> const path = folder_.write("a.mov", "media");
    catalogue_->addFile(video_, own(narrow(path)));
    EXPECT_EQ(catalogue_->removeFile(video_, mediaAll), oxSuccess);
    EXPECT_FALSE(fileExists(path));
}

TEST_P(CatalogueContract, RemovingALinkLeavesWhatItPointsTo) {
    LightweightString<wchar_t> const link = folder_.write("a.link", "link");
    LightweightString<wchar_t> const target = folder_.write("a.mov", "media");
    catalogue_->addFile(video_, MediaFileInfo(MaterialFilename(DriveId::none, link), target, 5));
    EXPECT_EQ(catalogue_->removeFile(video_, mediaAll), oxSuccess);
    EXPECT_FALSE(fileExists(link));
    EXPECT_TRUE(fileExists(target));
}

TEST_P(CatalogueContract, ServesManyThreadsAtOnce) {
    Threads const threads(4, [&] {
        Cookie const cookie(Ox::UUID::generate(), 'V', 0);
        for (int number = 0; number < 25; ++number) {
            std::string const name = "/m/" + std::to_string(number);
            catalogue_->addFile(cookie, own(name));
            EXPECT_EQ(found(cookie), name);
        }
    });
}

INSTANTIATE_TEST_SUITE_P(Implementations, CatalogueContract, ::testing::Bool(), CatalogueContract::nameOf);

}  // namespace
}  // namespace test
