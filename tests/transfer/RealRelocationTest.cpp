/// Whole relocations of real files, on drives in memory: links, companions, proxies on a third drive, and names in many
/// scripts and with characters that mean something elsewhere.
#include <algorithm>
#include <filesystem>
#include <fstream>

#include "host/memory/MemoryCatalogue.h"
#include "host/memory/MemoryEditStore.h"
#include "tests/fakes/CallLog.h"
#include "tests/fakes/FakeCatalogue.h"
#include "tests/fakes/TranscriptLog.h"
#include "toolkit/catalogue/DiskManager.h"
#include "toolkit/catalogue/MaterialLink.h"
#include "transfer/LocaliseTask.h"
#include "transfer/MaterialMove.h"

#include <gmock/gmock.h>

namespace test {
namespace {

namespace fs = std::filesystem;

/// Stems that are hard on whoever searches, quotes or cuts them.
std::vector<std::string> const& stems() {
    static std::vector<std::string> const all = {
        "plain",    "Größe ß", "東京 駅",       "Ελλάδα",      "שלום",     "🎬 clip",     "a*b",
        "a?b",      "a[1-9]b", "{x,y}",         "back\\slash", "quo\"te'", "dots.in.it", " blank ",
        "per%cent", "-dash",   "$FILE$ $NUM1$", "semi;colon",  "new\nline"};
    return all;
}

std::string inMemory() {
    return fs::is_directory("/dev/shm") ? "/dev/shm" : fs::temp_directory_path().string();
}

class RealRelocation : public testing::Test {
protected:
    RealRelocation() {
        std::string pattern = inMemory() + "/playfile-test-XXXXXX";
        root_ = mkdtemp(pattern.data());
        for (char const letter : {'M', 'N', 'O'}) {
            fs::create_directories(root_ / std::string(1, letter));
            DiskManager::instance().setDriveRoot(letter, wide((root_ / std::string(1, letter)).string()));
        }
    }
    ~RealRelocation() override {
        for (char const letter : {'M', 'N', 'O'}) {
            DiskManager::instance().removeDrive(letter);
        }
        std::error_code error;
        fs::remove_all(root_, error);
    }

    [[nodiscard]] std::string place(char drive, std::string const& path) const {
        return (root_ / std::string(1, drive) / path).string();
    }
    void write(std::string const& path, std::string const& contents) const {
        fs::create_directories(fs::path(path).parent_path());
        std::ofstream(path, std::ios::binary) << contents;
    }
    static std::string read(std::string const& path) {
        std::ifstream in(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    }
    /// A clip with a file and a companion on M, and a proxy on O.
    void addClip(unsigned number, std::string const& stem) {
        std::string const path = "deep/" + stem + ".mov";
        write(place('M', path), "media of " + stem);
        write(place('M', "deep/" + stem + ".sav"), "header of " + stem);
        write(place('O', "p" + std::to_string(number) + ".mov"), "proxy of " + stem);
        Cookie const video = makeCookie(number, 'V', 0);
        catalogue().addFile(video, MediaFileInfo(MaterialFilename('M', wide(path)), 1));
        MediaFileInfo proxy(MaterialFilename('O', wide("p" + std::to_string(number) + ".mov")), 1);
        proxy.isProxyFile = true;
        catalogue().addFile(video, proxy);
        MemoryEditStore::instance().setChannels(makeCookie(number, 'E', Cookie::wholeClip), 1, 0);
        clips_.add(makeCookie(number, 'E', Cookie::wholeClip));
    }
    /// A clip whose channels of sound are links on M to one file that lies elsewhere.
    void addLinkedSound(std::uint32_t channels) {
        write(place('X', "a.wav"), "the sound");
        for (std::uint32_t channel = 1; channel <= channels; ++channel) {
            catalogue().addFile(sound(channel), MediaFileInfo(MaterialFilename('M', wide(soundPath(channel))),
                                                              wide(place('X', "a.wav")), 9));
        }
        MemoryEditStore::instance().setChannels(makeCookie(1, 'E', Cookie::wholeClip), 0, channels);
        clips_.add(makeCookie(1, 'E', Cookie::wholeClip));
    }
    static Cookie sound(std::uint32_t channel) {
        return makeCookie(1, 'S', static_cast<unsigned char>(channel));
    }
    static std::string soundPath(std::uint32_t channel) {
        return narrow(MediaDrive::getFolder(sound(channel))) + "s" + std::to_string(channel) + ".wav";
    }
    static MemoryCatalogue& catalogue() { return MemoryCatalogue::instance(); }
    void relocate(MaterialMove::eType type) {
        MaterialMove::relocate('N', clips_, type, LoggerHandle(Ox::makePtr<TranscriptLog>(calls_)));
    }
    int localise() {
        LocaliseTask::Args args;
        args.clips = {clips_.begin(), clips_.end()};
        args.mediaTypes = mediaOriginal;
        args.clipSelection = LocaliseTask::selectLinked;
        auto const task = Ox::makePtr<LocaliseTask>(args);
        task->setLog(Ox::makePtr<TranscriptLog>(calls_));
        task->execute();
        return task->getResult();
    }
    void addAll() {
        for (unsigned number = 0; number < stems().size(); ++number) {
            addClip(number + 1, stems()[number]);
        }
    }

    fs::path root_;
    CookieVec clips_;
    std::shared_ptr<CallLog> const calls_ = std::make_shared<CallLog>();
};

TEST_F(RealRelocation, AMoveTakesEachClipsFilesAndNoOthers) {
    addAll();
    relocate(MaterialMove::moveFiles);
    for (unsigned number = 0; number < stems().size(); ++number) {
        std::string const& stem = stems()[number];
        EXPECT_EQ(read(place('N', "deep/" + stem + ".mov")), "media of " + stem);
        EXPECT_EQ(read(place('N', "deep/" + stem + ".sav")), "header of " + stem);
        EXPECT_EQ(read(place('N', "p" + std::to_string(number + 1) + ".mov")), "proxy of " + stem);
        auto const entry = catalogue().findEntryForCookie(makeCookie(number + 1, 'V', 0));
        EXPECT_EQ(narrow(entry->getPhysicalFilename()), place('N', "deep/" + stem + ".mov"));
    }
    EXPECT_TRUE(fs::is_empty(root_ / "M" / "deep"));
    EXPECT_TRUE(fs::is_empty(root_ / "O"));
    EXPECT_TRUE(calls_->with("log 4").empty());
}

TEST_F(RealRelocation, ACopyLeavesAllAsItIs) {
    addAll();
    relocate(MaterialMove::copyFiles);
    for (std::string const& stem : stems()) {
        EXPECT_EQ(read(place('M', "deep/" + stem + ".mov")), "media of " + stem);
        EXPECT_EQ(read(place('N', "deep/" + stem + ".mov")), "media of " + stem);
    }
    auto const entry = catalogue().findEntryForCookie(makeCookie(1, 'V', 0));
    EXPECT_EQ(entry->materialFilename.getDrive(), DriveId('M'));
}

/// The files of the clips with wildcards in their names lie beside files that those would match.
TEST_F(RealRelocation, WildcardsInANameTouchNoOtherClip) {
    addClip(1, "a*b");
    write(place('M', "deep/axxb.sav"), "another clip's");
    write(place('M', "deep/a*b2.sav"), "another clip's");
    relocate(MaterialMove::moveFiles);
    EXPECT_EQ(read(place('M', "deep/axxb.sav")), "another clip's");
    EXPECT_EQ(read(place('M', "deep/a*b2.sav")), "another clip's");
    EXPECT_EQ(read(place('N', "deep/a*b.sav")), "header of a*b");
}

TEST_F(RealRelocation, AMovedLinkStillPlays) {
    std::string const folder = narrow(MediaDrive::getFolder(makeCookie(1, 'V', 0)));
    write(place('O', folder + "real.mov"), "the media");
    write(place('N', folder + "real.mov"), "their copy");
    MaterialLink::createLink(wide(place('M', "link.mov")), wide(place('O', folder + "real.mov")), true);
    Cookie const video = makeCookie(1, 'V', 0);
    catalogue().addFile(video, MediaFileInfo(MaterialFilename('M', wide("link.mov")),
                                             wide(place('O', folder + "real.mov")), 9));
    MemoryEditStore::instance().setChannels(makeCookie(1, 'E', Cookie::wholeClip), 1, 0);
    clips_.add(makeCookie(1, 'E', Cookie::wholeClip));
    relocate(MaterialMove::moveFiles);
    auto const entry = catalogue().findEntryForCookie(video);
    EXPECT_EQ(entry->materialFilename.getDrive(), DriveId('N'));
    EXPECT_EQ(read(narrow(entry->getPhysicalFilename())), "their copy");
    EXPECT_FALSE(fs::exists(place('M', "link.mov")));
}

TEST_F(RealRelocation, SoundThatWasLocalisedIsWholeOnTheDriveThatItIsMovedTo) {
    addLinkedSound(1);
    ASSERT_EQ(localise(), DownloadTask::resultComplete);
    ASSERT_EQ(read(place('M', soundPath(1))), "the sound");
    relocate(MaterialMove::moveFiles);
    EXPECT_EQ(read(place('N', soundPath(1))), "the sound");
    EXPECT_FALSE(fs::exists(place('M', soundPath(1))));
    auto const entry = catalogue().findEntryForCookie(sound(1));
    EXPECT_EQ(narrow(entry->getPhysicalFilename()), place('N', soundPath(1)));
    EXPECT_TRUE(calls_->with("log 4").empty());
}

/// The second channel is a link to the first one's file, and both move.
TEST_F(RealRelocation, ChannelsThatShareTheirSoundStillPlayWhereTheyAreMovedTo) {
    addLinkedSound(2);
    ASSERT_EQ(localise(), DownloadTask::resultComplete);
    relocate(MaterialMove::moveFiles);
    for (std::uint32_t const channel : {1U, 2U}) {
        auto const entry = catalogue().findEntryForCookie(sound(channel));
        EXPECT_EQ(entry->materialFilename.getDrive(), DriveId('N'));
        EXPECT_EQ(read(narrow(entry->getPhysicalFilename())), "the sound") << channel;
    }
    EXPECT_TRUE(fs::is_empty(fs::path(place('M', soundPath(1))).parent_path()));
}

}  // namespace
}  // namespace test
