#include <gtest/gtest.h>

#include <array>
#include <clocale>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "header/PlayPriv.h"
#include "header/SavHeader.h"
#include "playfile/playfile.h"
#include "toolkit/image/DigitalVideoFormats.h"

namespace test {
namespace {

/// The text of a header, and its length as the function tells it.
std::string textOf(SAV_HEADER header) {
    std::vector<char> text(savHeaderTextBytes, '?');
    char const* const end = header_to_string(&header, text.data());
    EXPECT_EQ(*end, '\0');
    return std::string(static_cast<char const*>(text.data()), end);
}

SAV_HEADER soundHeader() {
    return make_header("sound", "linear_uncompressed", 48000.0, 47952.047952048, 0, 29.97, 1.5, 2.25, 3, 2,
                       "unknown", 0, 0, L"/takes/a\u00e9 1.wav", -1, 7, "", -1);
}

SAV_HEADER visionHeader() {
    return make_header("vision", "data", 25.0, 24.0, 1, 25.0, 0.0, 100.0, 0, 0, "PAL", 720, 576,
                       L"/takes/1.mov", 12, -4, "both", 5);
}

TEST(SavHeaderText, OfSoundHasItsKeysInOrder) {
    EXPECT_EQ(textOf(soundHeader()),
              std::string("header_version 6\n\rmedium sound\n\rinput_rate 48000.00000000\n\r"
                          "replay_rate 47952.04795205\n\rformat linear_uncompressed\n\rdrop_frame 0\n\r"
                          "timecode_rate 29.97000000\n\rstart_time_code 1.50000000\n\r"
                          "end_time_code 2.25000000\n\rstart_offset 7\n\rnumber_of_channels 2\n\r"
                          "bytes_per_sample 3\n\rreelid \n\rorig_fname /takes/a\xc3\xa9 1.wav\n\rox_ver ") +
                  playfileDllVersionStr() + "\n\r");
}

TEST(SavHeaderText, OfVisionHasItsKeysInOrder) {
    SAV_HEADER header = visionHeader();
    std::strcpy(header.reelid, "R7");
    EXPECT_EQ(textOf(header),
              std::string("header_version 6\n\rmedium vision\n\rinput_rate 25.00000000\n\r"
                          "replay_rate 24.00000000\n\rformat data\n\rdrop_frame 1\n\r"
                          "timecode_rate 25.00000000\n\rstart_time_code 0.00000000\n\r"
                          "end_time_code 100.00000000\n\rstart_offset -4\n\rvision_type PAL\n\rwidth 720\n\r"
                          "height 576\n\rsequence 12\n\rtransfer_type 5\n\rreelid R7\n\r"
                          "orig_fname /takes/1.mov\n\rox_ver ") +
                  playfileDllVersionStr() + "\n\rvideo_field both\n\r");
}

TEST(SavHeaderText, OfAnotherMediumHasNeitherBlock) {
    SAV_HEADER header = visionHeader();
    std::strcpy(header.medium, "smell");
    std::string const text = textOf(header);
    EXPECT_EQ(text.find("width"), std::string::npos);
    EXPECT_EQ(text.find("number_of_channels"), std::string::npos);
    EXPECT_EQ(text.find("video_field"), std::string::npos);
}

TEST(SavHeaderText, LeavesOutTheLineOfAnEmptyName) {
    SAV_HEADER header = soundHeader();
    header.orig_fname = LightweightString<wchar_t>();
    EXPECT_EQ(textOf(header).find("orig_fname"), std::string::npos);
}

TEST(SavHeaderText, StatesTheVersionOfThisBuildNotTheRecords) {
    SAV_HEADER header = soundHeader();
    std::strcpy(header.ox_ver, "1.2.3.4");
    EXPECT_EQ(textOf(header).find("1.2.3.4"), std::string::npos);
}

TEST(SavHeaderText, CutsALongLineAndGoesOnBehindIt) {
    SAV_HEADER header = soundHeader();
    header.orig_fname = LightweightString<wchar_t>(std::wstring(1000, L'n').c_str());
    std::string const text = textOf(header);
    std::size_t const begin = text.find("orig_fname ");
    EXPECT_EQ(text.find("ox_ver "), begin + 511);
    EXPECT_EQ(text[begin + 510], 'n');
}

TEST(SavHeaderText, NeverNeedsMoreThanItsStatedRoom) {
    SAV_HEADER header = visionHeader();
    header.input_rate = -std::numeric_limits<double>::max();
    header.orig_fname = LightweightString<wchar_t>(std::wstring(5000, L'\u20ac').c_str());
    EXPECT_LT(textOf(header).size(), std::size_t(savHeaderTextBytes));
}

TEST(SavHeaderText, EndsAFieldWithoutNulWithItsLastByte) {
    SAV_HEADER header = soundHeader();
    std::memset(header.reelid, 'r', sizeof(header.reelid));
    EXPECT_NE(textOf(header).find("reelid rrrrrrrrr\n\r"), std::string::npos);
}

TEST(SavHeaderText, HasFullStopsInEveryLocale) {
    for (char const* const name : {"de_DE.UTF-8", "fr_FR.UTF-8", "C.UTF-8"}) {
        if (std::setlocale(LC_ALL, name) != nullptr) {
            break;
        }
    }
    EXPECT_NE(textOf(soundHeader()).find("timecode_rate 29.97000000\n\r"), std::string::npos);
}

TEST(SavHeaderText, IsPrintedWithALineFeedBehindIt) {
    SAV_HEADER header = soundHeader();
    std::string const text = textOf(header);
    testing::internal::CaptureStdout();
    print_header(&header);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), text + "\n");
}

TEST(SavHeader, IsMadeOfTheFactsWithoutReelAndVersion) {
    SAV_HEADER const header = visionHeader();
    EXPECT_EQ(header.header_version, 6);
    EXPECT_STREQ(header.medium, "vision");
    EXPECT_STREQ(header.reelid, "");
    EXPECT_STREQ(header.ox_ver, "");
    EXPECT_EQ(header.sequence, 12);
    EXPECT_EQ(header.start_offset, -4);
    EXPECT_EQ(header.transfer_type, 5);
    EXPECT_EQ(header.orig_fname, L"/takes/1.mov");
}

TEST(SavHeader, TakesBytesBeforeChannels) {
    SAV_HEADER const header = soundHeader();
    EXPECT_EQ(header.bytes_per_sample, 3);
    EXPECT_EQ(header.number_of_channels, 2);
}

TEST(SavHeader, CutsNamesToTheirFields) {
    SAV_HEADER const header = make_header("abcdefghijklmnopqrstuvwxyz", "two words", 1, 1, 0, 1, 0, 0, 1, 1,
                                          "ABCDEFGHIJKLMNOPQRSTUVWXYZ", 0, 0, L"", 0, 0, "123456789", 0);
    EXPECT_STREQ(header.medium, "abcdefghijklmnopqrst");
    EXPECT_STREQ(header.format, "two");
    EXPECT_STREQ(header.vision_type, "ABCDEFGHIJKLMNOPQRST");
    EXPECT_STREQ(header.video_field, "1234567");
}

TEST(SavHeader, SharesItsNameWithACopyAndKeepsItWhenAssignedToItself) {
    SAV_HEADER header = soundHeader();
    SAV_HEADER copy;
    copy = header;
    EXPECT_EQ(copy.orig_fname.c_str(), header.orig_fname.c_str());
    SAV_HEADER const& same = header;
    header = same;
    EXPECT_EQ(header.orig_fname, L"/takes/a\u00e9 1.wav");
}

/// A file that has nothing but a name.
class NamedFile : public PlayFile {
public:
    using PlayFile::PlayFile;
    [[nodiscard]] LightweightString<char> getDescription() const override { return "a name"; }
};

TEST(SavHeader, OfASoundFileHoldsOneChannel) {
    SAV_HEADER header;
    PlayPriv::make_audio_header(Ox::makePtr<NamedFile>(L"/m/a.wav"), &header, 48000.0, 3);
    EXPECT_EQ(textOf(header),
              std::string("header_version 6\n\rmedium sound\n\rinput_rate 48000.00000000\n\r"
                          "replay_rate 48000.00000000\n\rformat linear_uncompressed\n\rdrop_frame 0\n\r"
                          "timecode_rate 0.00000000\n\rstart_time_code 0.00000000\n\r"
                          "end_time_code 0.00000000\n\rstart_offset 0\n\rnumber_of_channels 1\n\r"
                          "bytes_per_sample 3\n\rreelid \n\rorig_fname /m/a.wav\n\rox_ver ") +
                  playfileDllVersionStr() + "\n\r");
    EXPECT_STREQ(header.vision_type, "unknown");
    EXPECT_EQ(header.sequence, -1);
    EXPECT_EQ(header.transfer_type, -1);
}

SAV_HEADER visionHeaderOf(Ox::FrameRate rate, Ox::DigitalVideoFormats::Format format) {
    ShotVideoMetadata metadata;
    metadata.setFrameRate(rate);
    metadata.setVideoFormatUID(Ox::DigitalVideoFormats::uidOf(format));
    SAV_HEADER header;
    PlayPriv::make_vision_header(Ox::makePtr<NamedFile>(L"/m/v.mov"), metadata, &header);
    return header;
}

TEST(SavHeader, OfPicturesAt25IsPal) {
    SAV_HEADER const header = visionHeaderOf({25, 1}, {1920, 1080, 1});
    EXPECT_EQ(textOf(header),
              std::string("header_version 6\n\rmedium vision\n\rinput_rate 25.00000000\n\r"
                          "replay_rate 25.00000000\n\rformat data\n\rdrop_frame 0\n\r"
                          "timecode_rate 0.00000000\n\rstart_time_code 0.00000000\n\r"
                          "end_time_code 0.00000000\n\rstart_offset 0\n\rvision_type PAL\n\rwidth 1920\n\r"
                          "height 1080\n\rsequence -1\n\rtransfer_type -1\n\rreelid \n\r"
                          "orig_fname /m/v.mov\n\rox_ver ") +
                  playfileDllVersionStr() + "\n\rvideo_field both\n\r");
}

TEST(SavHeader, OfPicturesAtAnyOtherRateIsNtsc) {
    EXPECT_STREQ(visionHeaderOf({24, 1}, {1, 1, 1}).vision_type, "NTSC");
    EXPECT_STREQ(visionHeaderOf({50, 1}, {1, 1, 1}).vision_type, "NTSC");
    EXPECT_STREQ(visionHeaderOf({2500000001, 100000000}, {1, 1, 1}).vision_type, "PAL");
}

TEST(SavHeader, DividesTheSizeOfAFormat) {
    SAV_HEADER const header = visionHeaderOf({25, 1}, {1441, 1080, 2});
    EXPECT_EQ(header.width, 720);
    EXPECT_EQ(header.height, 540);
}

TEST(SavHeader, OfAnUnknownFormatHasNoSize) {
    SAV_HEADER const header = visionHeaderOf({25, 1}, {});
    EXPECT_EQ(header.width, 0);
    EXPECT_EQ(header.height, 0);
}

}  // namespace
}  // namespace test
