#include "toolkit/services/FilespecUtils.h"

#include <gtest/gtest.h>

#include "ole/os/OS.h"
#include "tests/support/TemporaryFolder.h"
#include "toolkit/image/ImageLoader.h"
#include "toolkit/services/NumberText.h"
#include "toolkit/services/Paths.h"

namespace {

using Name = LightweightString<wchar_t>;
using Ox::FilespecUtils::getSEQFileName;
using Ox::FilespecUtils::makeSafeFilename;

TEST(FilespecUtilsTest, IndexZeroIsThePathItself) {
    EXPECT_EQ(getSEQFileName(L"/m/shot_0009.dpx", 0), L"/m/shot_0009.dpx");
}

TEST(FilespecUtilsTest, TheLastRunOfDigitsOfTheStemIsRaised) {
    EXPECT_EQ(getSEQFileName(L"/m2/A001_C002_001.R3D", 1), L"/m2/A001_C002_002.R3D");
    EXPECT_EQ(getSEQFileName(L"/m/take7b.png", 5), L"/m/take12b.png");
}

TEST(FilespecUtilsTest, ANumberKeepsItsWidthWhileItFits) {
    EXPECT_EQ(getSEQFileName(L"f009.png", 1), L"f010.png");
    EXPECT_EQ(getSEQFileName(L"f999.png", 1), L"f1000.png");
    EXPECT_EQ(getSEQFileName(L"f99999999999999999999999.png", 1), L"f100000000000000000000000.png");
}

TEST(FilespecUtilsTest, ANameWithoutADigitStaysWhateverTheIndex) {
    EXPECT_EQ(getSEQFileName(L"/m1/shot.mp4", 3), L"/m1/shot.mp4");
    EXPECT_EQ(getSEQFileName(L"", 1), L"");
}

TEST(FilespecUtilsTest, ASafeNameHoldsNothingThatASystemKeepsForItself) {
    EXPECT_EQ(makeSafeFilename(L"a/b\\c:d*e?f\"g<h>i|j\tk", L'_'), L"a_b_c_d_e_f_g_h_i_j_k");
    EXPECT_EQ(makeSafeFilename(L"Größe 東京.take", L'_'), L"Größe 東京.take");
}

TEST(FilespecUtilsTest, ASafeNameIsNeverEmptyNorAFolderOfItsOwn) {
    EXPECT_EQ(makeSafeFilename(L"", L'_'), L"_");
    EXPECT_EQ(makeSafeFilename(L".", L'_'), L"_");
    EXPECT_EQ(makeSafeFilename(L"..", L'-'), L"-");
}

TEST(PathsTest, ForeignSeparatorsBecomeThoseOfThisSystem) {
    EXPECT_EQ(fixForeignOSFileName(L"X:\\clips\\a.mov"), L"X:/clips/a.mov");
    EXPECT_EQ(stripPathAndExt(L"/m/a.b.mov"), L"a.b");
}

TEST(NumberTextTest, SizesAreTextsForPeople) {
    EXPECT_EQ(bytesAsString(0, true), L"0 bytes");
    EXPECT_EQ(bytesAsString(1023, true), L"1023 bytes");
    EXPECT_EQ(bytesAsString(1536, true), L"1.5 KiB");
    EXPECT_EQ(bytesAsString(1024UL * 1024 - 1, true), L"1023.9 KiB");
    EXPECT_EQ(bytesAsString(5UL << 30, true), L"5.0 GiB");
    EXPECT_EQ(bytesAsString(~0UL, true), L"15.9 EiB");
    EXPECT_EQ(bytesAsString(1536, false), L"1536");
    EXPECT_EQ(Ox::WStringFromInteger(-12), L"-12");
}

TEST(ImageLoaderTest, TheExtensionTellsWhetherAPictureCanBeLoaded) {
    EXPECT_TRUE(OxImage::Loader::canLoadImage(L"/m/a.DPX"));
    EXPECT_TRUE(OxImage::Loader::canLoadImage(L"a.jpeg"));
    EXPECT_FALSE(OxImage::Loader::canLoadImage(L"a.mov"));
    EXPECT_FALSE(OxImage::Loader::canLoadImage(L"dpx"));
    EXPECT_FALSE(OxImage::Loader::canLoadImage(L""));
}

}  // namespace
