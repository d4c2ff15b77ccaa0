#include <gtest/gtest.h>

#include <clocale>
#include <cstring>

#include "header/SavHeader.h"
#include "playfile/playfile.h"

namespace test {
namespace {

/// A record in which no field holds a default.
SAV_HEADER strangeRecord() {
    SAV_HEADER header;
    header.header_version = 99;
    std::strcpy(header.medium, "old_medium");
    header.number_of_channels = 91;
    header.bytes_per_sample = 92;
    header.input_rate = 93.0;
    header.replay_rate = 94.0;
    std::strcpy(header.format, "old_format");
    header.drop_frame = 95;
    header.timecode_rate = 96.0;
    header.start_time_code = 97.0;
    header.end_time_code = 98.0;
    header.sequence = 81;
    header.start_offset = 82;
    std::strcpy(header.vision_type, "old_type");
    header.width = 83;
    header.height = 84;
    header.orig_fname = L"old name";
    std::strcpy(header.reelid, "old_reel");
    std::strcpy(header.ox_ver, "old_version");
    std::strcpy(header.video_field, "old");
    header.transfer_type = 85;
    return header;
}

SAV_HEADER parsed(void (*parse)(SAV_HEADER*, char*), std::string text) {
    SAV_HEADER header = strangeRecord();
    parse(&header, text.data());
    return header;
}

SAV_HEADER v1(std::string const& text) {
    return parsed(&parse_header_v1, text);
}

SAV_HEADER v2(std::string const& text) {
    return parsed(&parse_header_v2, text);
}

int versionOf(std::string text) {
    return playhdr_get_version(text.data());
}

TEST(SavHeaderVersion, IsTheStatedOne) {
    EXPECT_EQ(versionOf("medium sound\nheader_version 5\n"), 5);
    EXPECT_EQ(versionOf("header_version 0x10\n"), 0);
    EXPECT_EQ(versionOf("header_version old\n"), 0);
}

TEST(SavHeaderVersion, Is1WhereNoneIsStated) {
    EXPECT_EQ(versionOf("medium sound\n"), 1);
    EXPECT_EQ(versionOf("header_version \n"), 1);
    EXPECT_EQ(versionOf(""), 1);
}

TEST(SavHeaderV1, TakesOneRateOfSoundForBoth) {
    SAV_HEADER const header =
        v1("medium sound\nnumber_of_channels 2\nbytes_per_sample 3\n"
           "sampling_frequency 44100.5\nsound_format pcm le\n");
    EXPECT_STREQ(header.medium, "sound");
    EXPECT_EQ(header.number_of_channels, 2);
    EXPECT_EQ(header.bytes_per_sample, 3);
    EXPECT_EQ(header.input_rate, 44100.5);
    EXPECT_EQ(header.replay_rate, 44100.5);
    EXPECT_STREQ(header.format, "pcm");
}

TEST(SavHeaderV1, LeavesWhatItsSoundDoesntState) {
    SAV_HEADER const header = v1("");
    EXPECT_STREQ(header.medium, "sound");
    EXPECT_EQ(header.number_of_channels, 91);
    EXPECT_EQ(header.bytes_per_sample, 92);
    EXPECT_EQ(header.input_rate, 93.0);
    EXPECT_EQ(header.replay_rate, 94.0);
    EXPECT_STREQ(header.format, "old_format");
    EXPECT_STREQ(header.vision_type, "old_type");
    EXPECT_STREQ(header.video_field, "old");
    EXPECT_EQ(header.transfer_type, 85);
}

TEST(SavHeaderV1, FixesFormatAndRatesOfVision) {
    SAV_HEADER const header =
        v1("medium vision\nvision_type NTSC\nwidth 720\nheight 486\ninput_rate 30\n"
           "format data\n");
    EXPECT_STREQ(header.vision_type, "NTSC");
    EXPECT_EQ(header.width, 720);
    EXPECT_EQ(header.height, 486);
    EXPECT_STREQ(header.format, "PAL");
    EXPECT_EQ(header.input_rate, 25.0);
    EXPECT_EQ(header.replay_rate, 25.0);
    EXPECT_STREQ(header.video_field, "old");
}

TEST(SavHeaderV1, LeavesWhatItsVisionDoesntState) {
    SAV_HEADER const header = v1("medium vision\n");
    EXPECT_STREQ(header.vision_type, "old_type");
    EXPECT_EQ(header.width, 83);
    EXPECT_EQ(header.height, 84);
    EXPECT_EQ(header.number_of_channels, 91);
}

TEST(SavHeaderV1, IgnoresTheKeysThatItDoesntKnow) {
    for (char const* const medium : {"sound", "vision", "smell"}) {
        SAV_HEADER const header =
            v1("medium " + std::string(medium) +
               "\ndrop_frame 1\nstart_time_code 1\nend_time_code 2\ntimecode_rate 30\nsequence 4\n"
               "start_offset 5\nreelid R\nox_ver 1\norig_fname f\nheader_version 2\n");
        EXPECT_EQ(header.drop_frame, 0);
        EXPECT_EQ(header.start_time_code, 0.0);
        EXPECT_EQ(header.end_time_code, 0.0);
        EXPECT_EQ(header.timecode_rate, 25.0);
        EXPECT_TRUE(header.orig_fname.empty());
        EXPECT_STREQ(header.reelid, "");
        EXPECT_STREQ(header.ox_ver, "");
        EXPECT_EQ(header.sequence, -1);
        EXPECT_EQ(header.start_offset, 0);
        EXPECT_EQ(header.header_version, 6);
    }
}

TEST(SavHeaderV2, GivesDefaultsForAnEmptyText) {
    SAV_HEADER const header = v2("");
    EXPECT_STREQ(header.medium, "sound");
    EXPECT_EQ(header.drop_frame, 0);
    EXPECT_EQ(header.sequence, -1);
    EXPECT_EQ(header.start_offset, 0);
    EXPECT_EQ(header.input_rate, 1.0);
    EXPECT_EQ(header.replay_rate, 1.0);
    EXPECT_EQ(header.timecode_rate, 1.0);
    EXPECT_EQ(header.start_time_code, 0.0);
    EXPECT_EQ(header.end_time_code, 0.0);
    EXPECT_STREQ(header.reelid, "");
    EXPECT_TRUE(header.orig_fname.empty());
    EXPECT_STREQ(header.ox_ver, "unknown");
    EXPECT_EQ(header.header_version, 6);
}

TEST(SavHeaderV2, LeavesWhatHasNoDefault) {
    SAV_HEADER const header = v2("");
    EXPECT_EQ(header.number_of_channels, 91);
    EXPECT_EQ(header.bytes_per_sample, 92);
    EXPECT_STREQ(header.format, "old_format");
    EXPECT_STREQ(header.vision_type, "old_type");
    EXPECT_EQ(header.width, 83);
    EXPECT_EQ(header.height, 84);
    EXPECT_STREQ(header.video_field, "old");
    EXPECT_EQ(header.transfer_type, 85);
}

TEST(SavHeaderV2, LetsARateFollowTheOneBeforeIt) {
    EXPECT_EQ(v2("input_rate 30\n").timecode_rate, 30.0);
    SAV_HEADER const header = v2("input_rate 30\nreplay_rate 24\n");
    EXPECT_EQ(header.replay_rate, 24.0);
    EXPECT_EQ(header.timecode_rate, 24.0);
    EXPECT_EQ(v2("input_rate 30\ntimecode_rate 29.97\n").timecode_rate, 29.97);
}

TEST(SavHeaderV2, ReadsChannelsOfSoundOnly) {
    EXPECT_EQ(v2("medium sound\nnumber_of_channels 2\n").number_of_channels, 2);
    EXPECT_EQ(v2("medium vision\nnumber_of_channels 2\n").number_of_channels, 91);
    EXPECT_EQ(v2("medium vision\nbytes_per_sample 2\n").bytes_per_sample, 92);
}

TEST(SavHeaderV2, ReadsSequenceAndSizeOfVisionOnly) {
    SAV_HEADER const sound = v2("medium sound\nsequence 4\nwidth 5\nheight 6\n");
    EXPECT_EQ(sound.sequence, -1);
    EXPECT_EQ(sound.width, 83);
    SAV_HEADER const vision = v2("medium vision\nsequence 4\nwidth 5\nheight 6\n");
    EXPECT_EQ(vision.sequence, 4);
    EXPECT_EQ(vision.width, 5);
    EXPECT_EQ(vision.height, 6);
    EXPECT_EQ(v2("medium vision\n").sequence, -1);
}

TEST(SavHeaderV2, DoesntKnowTheTypeOfVisionUpToVersion3) {
    for (char const* const version : {"", "header_version 1\n", "header_version 3\n"}) {
        EXPECT_STREQ(v2(std::string(version) + "medium vision\nvision_type PAL\n").vision_type, "unknown");
        EXPECT_STREQ(v2(std::string(version) + "medium vision\n").vision_type, "unknown");
    }
}

TEST(SavHeaderV2, ReadsTheTypeOfVisionFromVersion4On) {
    EXPECT_STREQ(v2("header_version 4\nmedium vision\nvision_type PAL\n").vision_type, "PAL");
    EXPECT_STREQ(v2("header_version 4\nmedium vision\n").vision_type, "old_type");
}

TEST(SavHeaderV2, CutsAReelAtEightCharactersAndAtABlank) {
    EXPECT_STREQ(v2("reelid 123456789\n").reelid, "12345678");
    EXPECT_STREQ(v2("reelid ab cd\n").reelid, "ab");
}

TEST(SavHeaderV2, TakesForANameAllBehindItsKey) {
    SAV_HEADER const header = v2("orig_fname /takes/a\xc3\xa9 1.wav\n\rox_ver 9\n\r");
    EXPECT_EQ(header.orig_fname, L"/takes/a\u00e9 1.wav\n\rox_ver 9\n\r");
    EXPECT_STREQ(header.ox_ver, "9");
}

TEST(SavHeaderV2, CutsTheVersionOfABuild) {
    EXPECT_STREQ(v2("ox_ver 123456789012345678901\n").ox_ver, "12345678901234567890");
}

TEST(SavHeaderV2, TakesTheSecondFieldWhereVisionStatesNone) {
    EXPECT_STREQ(v2("medium vision\n").video_field, "second");
    EXPECT_STREQ(v2("medium vision\nvideo_field both\n").video_field, "both");
    EXPECT_STREQ(v2("medium sound\nvideo_field both\n").video_field, "old");
}

TEST(SavHeaderV2, KeepsSevenCharactersOfALongField) {
    EXPECT_STREQ(v2("medium vision\nvideo_field 12345678\n").video_field, "1234567");
}

TEST(SavHeaderV2, ReadsNoTransferType) {
    EXPECT_EQ(v2("medium vision\ntransfer_type 3\n").transfer_type, 85);
}

TEST(SavHeaderV2, TakesWhatBeginsWithNoNumberAs0) {
    SAV_HEADER const header = v2("drop_frame yes\ninput_rate fast\n");
    EXPECT_EQ(header.drop_frame, 0);
    EXPECT_EQ(header.input_rate, 0.0);
}

TEST(SavHeaderV2, ReadsEverythingThatWasWrittenButTheNameAndTheTransferType) {
    SAV_HEADER written = make_header("vision", "data", 24000.0 / 1001.0, 25.0, 1, 30.0, 1.25, 2.5, 0, 0,
                                     "NTSC", 720, 486, L"", 4, 5, "both", 6);
    std::strcpy(written.reelid, "reel0001");
    std::string text(savHeaderTextBytes, '\0');
    header_to_string(&written, text.data());
    SAV_HEADER const read = v2(text);
    EXPECT_NEAR(read.input_rate, written.input_rate, 0.5e-8);
    EXPECT_EQ(read.replay_rate, 25.0);
    EXPECT_EQ(read.drop_frame, 1);
    EXPECT_EQ(read.timecode_rate, 30.0);
    EXPECT_EQ(read.start_time_code, 1.25);
    EXPECT_EQ(read.end_time_code, 2.5);
    EXPECT_STREQ(read.vision_type, "NTSC");
    EXPECT_EQ(read.width, 720);
    EXPECT_EQ(read.height, 486);
    EXPECT_EQ(read.sequence, 4);
    EXPECT_EQ(read.start_offset, 5);
    EXPECT_STREQ(read.reelid, "reel0001");
    EXPECT_STREQ(read.ox_ver, playfileDllVersionStr());
    EXPECT_STREQ(read.video_field, "both");
}

TEST(SavHeaderV2, ReadsAnEmptyReelBackAsEmpty) {
    SAV_HEADER written = make_header("sound", "data", 1, 1, 0, 1, 0, 0, 1, 1, "", 0, 0, L"", 0, 0, "", 0);
    std::string text(savHeaderTextBytes, '\0');
    header_to_string(&written, text.data());
    EXPECT_STREQ(v2(text).reelid, "");
}

}  // namespace
}  // namespace test
