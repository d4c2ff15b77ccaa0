#include "host/sidecar/HeaderFiles.h"

#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <string>

#include "host/memory/MemoryCatalogue.h"
#include "tests/fakes/FailingFileManager.h"
#include "tests/fakes/LogRecorder.h"
#include "tests/support/TemporaryFolder.h"

namespace test {
namespace {

/// A piece of material of each medium, without headers.
class HeaderFilesTest : public ::testing::Test {
protected:
    HeaderFilesTest() { MemoryCatalogue::instance().add(cookie_, folder_.write("a.clip.mov", "media")); }

    static SAV_HEADER headerOfWidth(int width) {
        return make_header("vision", "data", 25.0, 25.0, 0, 25.0, 0.0, 0.0, 0, 0, "PAL", width, 576,
                           L"/in/a.mov", -1, 0, "both", -1);
    }
    /// As a process sees it that hasn't written it.
    [[nodiscard]] int widthOnDisk() const {
        SAV_HEADER header;
        return HeaderFiles().readHeader(cookie_, header) ? header.width : -1;
    }
    [[nodiscard]] std::size_t filesInFolder() const {
        auto const folder = std::filesystem::directory_iterator(folder_.path());
        return static_cast<std::size_t>(std::distance(begin(folder), end(folder)));
    }

    Cookie const cookie_{Ox::UUID::generate(), 'V', 0};
    TemporaryFolder folder_;
    LogRecorder log_;
    HeaderFiles store_;
};

TEST_F(HeaderFilesTest, WritesTheTextBesideTheMaterialUnderItsName) {
    ASSERT_TRUE(store_.writeHeader(cookie_, headerOfWidth(720)));
    SAV_HEADER header = headerOfWidth(720);
    std::array<char, savHeaderTextBytes> text{};
    header_to_string(&header, text.data());
    EXPECT_EQ(folder_.read("a.clip.sav"), text.data());
    EXPECT_EQ(filesInFolder(), 2U);
}

TEST_F(HeaderFilesTest, AreFoundByOthers) {
    ASSERT_TRUE(store_.writeHeader(cookie_, headerOfWidth(720)));
    EXPECT_EQ(widthOnDisk(), 720);
}

TEST_F(HeaderFilesTest, ReadTextsOfVersion1) {
    static_cast<void>(folder_.write("a.clip.sav", "medium vision\nwidth 640\nheight 480\n"));
    SAV_HEADER header;
    ASSERT_TRUE(store_.readHeader(cookie_, header));
    EXPECT_EQ(header.width, 640);
    EXPECT_STREQ(header.format, "PAL");
}

TEST_F(HeaderFilesTest, EndTheOriginalNameWithItsLine) {
    static_cast<void>(folder_.write(
        "a.clip.sav", "header_version 6\n\rmedium vision\n\rorig_fname /a b.mov\n\rox_ver 1\n\r"));
    SAV_HEADER header;
    ASSERT_TRUE(store_.readHeader(cookie_, header));
    EXPECT_EQ(header.orig_fname, LightweightString<wchar_t>(L"/a b.mov"));
}

TEST_F(HeaderFilesTest, DoNotServeAHeaderOfTheOtherMedium) {
    static_cast<void>(folder_.write("a.clip.sav", "header_version 6\nmedium sound\nstart_offset 9\n"));
    EXPECT_EQ(widthOnDisk(), -1);
    EXPECT_EQ(store_.getStartOffset(cookie_), 0);
}

TEST_F(HeaderFilesTest, TellBeforehandWhetherAFileHoldsSomethingElse) {
    auto const canWrite = [&] { return store_.canWriteHeader(fromUTF8(folder_.file("a.clip.mov").c_str())); };
    EXPECT_TRUE(canWrite());
    static_cast<void>(folder_.write("a.clip.sav", "header_version 6\nmedium sound\n"));
    EXPECT_TRUE(canWrite());
    static_cast<void>(folder_.write("a.clip.sav", "something else"));
    EXPECT_FALSE(canWrite());
}

TEST_F(HeaderFilesTest, LeaveAFileAloneThatHoldsSomethingElse) {
    for (std::string const& contents : {std::string("$FL2@(#) SPSS DATA FILE"), std::string(100'000, 'x')}) {
        static_cast<void>(folder_.write("a.clip.sav", contents));
        EXPECT_EQ(widthOnDisk(), -1);
        EXPECT_FALSE(store_.writeHeader(cookie_, headerOfWidth(720)));
        EXPECT_EQ(folder_.read("a.clip.sav"), contents);
    }
    EXPECT_EQ(log_.count("a.clip.sav\" can't be written: that file holds something else"), 2U);
}

TEST_F(HeaderFilesTest, RefuseTheHeaderOfUnknownMaterial) {
    EXPECT_FALSE(store_.writeHeader(Cookie(Ox::UUID::generate(), 'V', 0), headerOfWidth(720)));
    EXPECT_EQ(log_.count("the catalogue doesn't know its material"), 1U);
}

TEST_F(HeaderFilesTest, KeepTheOldHeaderWhateverFails) {
    ASSERT_TRUE(store_.writeHeader(cookie_, headerOfWidth(720)));
    FailingFileManager files;
    int number = 0;
    do {
        files.failAt(++number);
        bool const isWritten = store_.writeHeader(cookie_, headerOfWidth(1000 + number));
        int const failures = files.getFailures();
        files.stopFailing();
        EXPECT_EQ(widthOnDisk(), isWritten ? 1000 + number : 720) << number;
        EXPECT_EQ(filesInFolder(), 2U) << number;
        if (failures == 0) {
            break;
        }
        if (isWritten) {
            ASSERT_TRUE(store_.writeHeader(cookie_, headerOfWidth(720)));
        }
    } while (number < 20);
    EXPECT_GT(number, 2);
    EXPECT_LT(number, 20);
}

TEST_F(HeaderFilesTest, ReadTheStartOffsetOnce) {
    static_cast<void>(folder_.write("a.clip.sav", "header_version 6\nmedium vision\nstart_offset 9\n"));
    EXPECT_EQ(store_.getStartOffset(cookie_), 9);
    static_cast<void>(folder_.write("a.clip.sav", "header_version 6\nmedium vision\nstart_offset 10\n"));
    EXPECT_EQ(store_.getStartOffset(cookie_), 9);
    EXPECT_EQ(HeaderFiles().getStartOffset(cookie_), 10);
}

}  // namespace
}  // namespace test
