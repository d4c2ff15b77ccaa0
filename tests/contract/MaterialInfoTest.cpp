#include "toolkit/catalogue/MaterialInfo.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <memory>
#include <optional>
#include <string>

#include "header/SavHeader.h"
#include "host/memory/MemoryCatalogue.h"
#include "host/sidecar/HeaderFiles.h"
#include "host/sqlite/SqliteMaterialInfo.h"
#include "tests/support/Installed.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/Threads.h"

namespace test {
namespace {

SAV_HEADER soundHeader() {
    SAV_HEADER header = make_header("sound", "linear_uncompressed", 48000.0, 47952.04795205, 0, 25.0, 1.5,
                                    2.5, 3, 1, "unknown", 0, 0, L"/in/some folder/a.wav", -1, 480, "", -1);
    hdr_string_copy(header.reelid, "REEL0001", 8);
    return header;
}

SAV_HEADER visionHeader() {
    return make_header("vision", "data", 29.97002997, 25.0, 1, 29.97, 0.0, 10.0, 0, 0, "NTSC", 1920, 1080,
                       L"/in/\x00E4\x6F22 b.mov", 7, 0, "both", 4);
}

/// Whether two headers say the same; which build wrote them doesn't count.
void expectSame(SAV_HEADER const& one, SAV_HEADER const& other) {
    SAV_HEADER a = one;
    SAV_HEADER b = other;
    std::array<char, savHeaderTextBytes> textOfA{};
    std::array<char, savHeaderTextBytes> textOfB{};
    header_to_string(&a, textOfA.data());
    header_to_string(&b, textOfB.data());
    EXPECT_STREQ(textOfA.data(), textOfB.data());
}

/// What every store of headers must do, run on each that there is.
class MaterialInfoContract : public ::testing::TestWithParam<std::string> {
protected:
    MaterialInfoContract() {
        for (Cookie const& cookie : {vision_, sound_}) {
            std::string const name = cookie.asString().str();
            MemoryCatalogue::instance().add(cookie, folder_.write(name + ".mov", "media"));
        }
        if (GetParam() == "Sidecar") {
            store_ = std::make_unique<HeaderFiles>();
        } else if (GetParam() == "Project") {
            std::string error;
            store_ =
                std::make_unique<SqliteMaterialInfo>(ProjectFile::open(folder_.name("a.project"), error));
        }
        installed_.emplace(store_.get());
    }

    static int write(Cookie const& cookie, SAV_HEADER const& header) {
        return MaterialInfo::write_header(cookie, header);
    }

    Cookie const vision_{Ox::UUID::generate(), 'V', 0};
    Cookie const sound_{Ox::UUID::generate(), 'S', 1};

private:
    TemporaryFolder folder_;
    std::unique_ptr<MaterialInfo::iStore> store_;
    std::optional<InstalledStartOffsets> installed_;
};

TEST_P(MaterialInfoContract, MaterialWithoutAHeaderHasNone) {
    SAV_HEADER header;
    header.width = 5;
    EXPECT_FALSE(MaterialInfo::read_header(vision_, header));
    EXPECT_EQ(header.width, 5);
    EXPECT_EQ(MaterialInfo::get_start_offset(vision_), 0);
}

TEST_P(MaterialInfoContract, GivesBackAHeaderOfVision) {
    ASSERT_EQ(write(vision_, visionHeader()), 0);
    SAV_HEADER header;
    ASSERT_TRUE(MaterialInfo::read_header(vision_, header));
    expectSame(header, visionHeader());
}

TEST_P(MaterialInfoContract, GivesBackAHeaderOfSound) {
    ASSERT_EQ(write(sound_, soundHeader()), 0);
    SAV_HEADER header;
    ASSERT_TRUE(MaterialInfo::read_header(sound_, header));
    expectSame(header, soundHeader());
}

TEST_P(MaterialInfoContract, KeepsTheHeadersOfTwoPiecesApart) {
    ASSERT_EQ(write(sound_, soundHeader()), 0);
    ASSERT_EQ(write(vision_, visionHeader()), 0);
    SAV_HEADER header;
    ASSERT_TRUE(MaterialInfo::read_header(sound_, header));
    expectSame(header, soundHeader());
}

TEST_P(MaterialInfoContract, ASecondHeaderReplacesTheFirst) {
    SAV_HEADER second = visionHeader();
    second.width = 720;
    ASSERT_EQ(write(vision_, visionHeader()), 0);
    ASSERT_EQ(write(vision_, second), 0);
    SAV_HEADER header;
    ASSERT_TRUE(MaterialInfo::read_header(vision_, header));
    expectSame(header, second);
}

TEST_P(MaterialInfoContract, TheStartOffsetIsTheHeaders) {
    ASSERT_EQ(MaterialInfo::get_start_offset(sound_), 0);
    ASSERT_EQ(write(sound_, soundHeader()), 0);
    EXPECT_EQ(MaterialInfo::get_start_offset(sound_), 480);
}

TEST_P(MaterialInfoContract, KeepsALongNameOfTheOriginalFile) {
    SAV_HEADER written = visionHeader();
    written.orig_fname = LightweightString<wchar_t>(std::wstring(400, L'n'));
    ASSERT_EQ(write(vision_, written), 0);
    SAV_HEADER header;
    ASSERT_TRUE(MaterialInfo::read_header(vision_, header));
    EXPECT_EQ(header.orig_fname, written.orig_fname);
}

TEST_P(MaterialInfoContract, AReaderMeetsOnlyWholeHeaders) {
    ASSERT_EQ(write(vision_, visionHeader()), 0);
    std::atomic<int> part{0};
    Threads const threads(4, [&] {
        bool const writes = part++ % 2 == 0;
        for (int turn = 0; turn < 100; ++turn) {
            SAV_HEADER header = visionHeader();
            if (writes) {
                EXPECT_EQ(write(vision_, header), 0);
            } else {
                EXPECT_TRUE(MaterialInfo::read_header(vision_, header));
                EXPECT_STREQ(header.video_field, "both");
            }
        }
    });
}

INSTANTIATE_TEST_SUITE_P(Implementations, MaterialInfoContract,
                         ::testing::Values("Memory", "Sidecar", "Project"),
                         [](auto const& tested) { return tested.param; });

}  // namespace
}  // namespace test
