/// What a file says of itself in words: broadcast chunk, lists of texts, iXML.
#include "tests/plugins_wave/WaveFixture.h"

namespace {

using namespace test;

/// The fields of a broadcast chunk.
struct Broadcast {
    std::string description = "A walk in the rain";
    std::string originator = "Recorder";
    std::string reference = "REF0001";
    std::string date = "2026-03-14";
    std::string time = "15:09:26";
    std::uint64_t timeReference = 172800000;
    std::uint32_t version = 1;
    std::string umid = std::string(64, '\0');
    std::string history = "A=PCM,F=48000\r\n";

    [[nodiscard]] std::string contents() const {
        return field(description, 256) + field(originator, 32) + field(reference, 32) + field(date, 10) +
               field(time, 8) + wave::number64(timeReference) + wave::number16(version) + umid +
               std::string(190, '\0') + history;
    }

private:
    static std::string field(std::string text, std::size_t length) {
        text.resize(length, '\0');
        return text;
    }
};

class WaveTextsTest : public WaveFixture {
protected:
    /// Opens a good file with more chunks behind its format.
    void openWith(std::string const& chunks) {
        openGood(wave::file(wave::chunk("fmt ", wave::format({})) + chunks + wave::chunk("data", "1234")));
    }
    void openWith(Broadcast const& broadcast) { openWith(wave::chunk("bext", broadcast.contents())); }
    void openWithInfo(std::string const& texts) { openWith(wave::chunk("LIST", "INFO" + texts)); }
};

TEST_F(WaveTextsTest, DescribesTheFile) {
    openWith("");
    EXPECT_EQ(text("container"), "wav");
    EXPECT_EQ(text("codec"), "pcm_s16le");
    EXPECT_EQ(text("bitRate"), "1536000");
    EXPECT_EQ(text("duration"), "0.000021");
    EXPECT_EQ(text("tag.time_reference"), "(none)");
}

TEST_F(WaveTextsTest, ReadsTheFieldsOfABroadcastChunk) {
    openWith(Broadcast());
    EXPECT_EQ(text("tag.comment"), "A walk in the rain");
    EXPECT_EQ(text("tag.encoded_by"), "Recorder");
    EXPECT_EQ(text("tag.originator_reference"), "REF0001");
    EXPECT_EQ(text("tag.date"), "2026-03-14");
    EXPECT_EQ(text("tag.creation_time"), "15:09:26");
    EXPECT_EQ(text("tag.time_reference"), "172800000");
    EXPECT_EQ(text("tag.coding_history"), "A=PCM,F=48000");
    EXPECT_EQ(text("tag.umid"), "(none)");
}

TEST_F(WaveTextsTest, ReadsAllBitsOfTheTimeReference) {
    openWith(Broadcast{.timeReference = 0xFEDCBA9876543210});
    EXPECT_EQ(text("tag.time_reference"), "18364758544493064720");
}

TEST_F(WaveTextsTest, AFieldMayBeFullToItsEnd) {
    openWith(Broadcast{.description = std::string(256, 'd'), .originator = std::string(32, 'o')});
    EXPECT_EQ(text("tag.comment"), std::string(256, 'd'));
    EXPECT_EQ(text("tag.encoded_by"), std::string(32, 'o'));
}

TEST_F(WaveTextsTest, LeavesOutFieldsThatAreEmpty) {
    openWith(Broadcast{.description = "  ", .originator = "", .date = "", .history = ""});
    for (char const* const key : {"tag.comment", "tag.encoded_by", "tag.date", "tag.coding_history"}) {
        EXPECT_EQ(text(key), "(none)") << key;
    }
}

TEST_F(WaveTextsTest, WritesABasicUmidInHexadecimalDigits) {
    openWith(Broadcast{.umid = std::string(32, '\xA5') + std::string(32, '\0')});
    std::string digits;
    for (unsigned i = 0; i < 32; ++i) {
        digits += "A5";
    }
    EXPECT_EQ(text("tag.umid"), "0x" + digits);
}

TEST_F(WaveTextsTest, WritesAllOfAnExtendedUmid) {
    openWith(Broadcast{.umid = std::string(63, '\0') + "\x0F"});
    EXPECT_EQ(text("tag.umid"), "0x" + std::string(127, '0') + "F");
}

TEST_F(WaveTextsTest, HasNoUmidInAChunkOfVersion0) {
    openWith(Broadcast{.version = 0, .umid = std::string(64, 'u')});
    EXPECT_EQ(text("tag.umid"), "(none)");
}

TEST_F(WaveTextsTest, TakesWhatIsThereOfAShortBroadcastChunk) {
    openWith(wave::chunk("bext", Broadcast().contents().substr(0, 340)));
    EXPECT_EQ(text("tag.creation_time"), "15:09:26");
    EXPECT_EQ(text("tag.time_reference"), "(none)");
    openWith(wave::chunk("bext", Broadcast().contents().substr(0, 348)));
    EXPECT_EQ(text("tag.time_reference"), "172800000");
    openWith(wave::chunk("bext", ""));
    EXPECT_EQ(text("tag.comment"), "(none)");
}

TEST_F(WaveTextsTest, KeepsUtf8AndTakesEverythingElseForLatin1) {
    openWith(Broadcast{.description = "Pr\xC3\xA4lude", .originator = "Pr\xE4lude"});
    EXPECT_EQ(text("tag.comment"), "Pr\xC3\xA4lude");
    EXPECT_EQ(text("tag.encoded_by"), "Pr\xC3\xA4lude");
}

TEST_F(WaveTextsTest, ReadsAListOfTexts) {
    char const* const codes[][2] = {{"IART", "artist"},  {"ICMT", "comment"},  {"ICOP", "copyright"},
                                    {"ICRD", "date"},    {"IGNR", "genre"},    {"ILNG", "language"},
                                    {"INAM", "title"},   {"IPRD", "album"},    {"ITRK", "track"},
                                    {"ISFT", "encoder"}, {"ISMP", "timecode"}, {"ITCH", "encoded_by"}};
    std::string texts;
    for (auto const& [code, key] : codes) {
        texts += wave::chunk(code, std::string("the ") + key + '\0');
    }
    openWithInfo(texts);
    for (auto const& [code, key] : codes) {
        EXPECT_EQ(text((std::string("tag.") + key).c_str()), std::string("the ") + key) << code;
    }
}

TEST_F(WaveTextsTest, ReadsTextsOfOddLengthWithAndWithoutAPadByte) {
    for (std::string const& pad : {std::string(1, '\0'), std::string()}) {
        openWithInfo(wave::chunk("INAM", "odd", 3) + pad + wave::chunk("IART", "Somebody"));
        EXPECT_EQ(text("tag.title"), "odd") << pad.size();
        EXPECT_EQ(text("tag.artist"), "Somebody") << pad.size();
    }
}

TEST_F(WaveTextsTest, CutsATextAtTheEndOfItsList) {
    openWithInfo(wave::chunk("INAM", "short", 0xFFFFFFF0));
    EXPECT_EQ(text("tag.title"), "short");
}

TEST_F(WaveTextsTest, PassesOverOtherLists) {
    openWith(wave::chunk("LIST", "adtl" + wave::chunk("INAM", "no title")) + wave::chunk("LIST", "IN") +
             wave::chunk("LIST", ""));
    EXPECT_EQ(text("tag.title"), "(none)");
}

TEST_F(WaveTextsTest, TheBroadcastChunkWinsOverAList) {
    std::string const list = wave::chunk("LIST", "INFO" + wave::chunk("ICMT", "from the list"));
    std::string const broadcast = wave::chunk("bext", Broadcast().contents());
    for (std::string const& chunks : {list + broadcast, broadcast + list}) {
        openWith(chunks);
        EXPECT_EQ(text("tag.comment"), "A walk in the rain");
    }
}

TEST_F(WaveTextsTest, KeepsIxmlAsItStands) {
    std::string const xml = "<?xml version=\"1.0\"?>\r\n<BWFXML><SCENE>A101</SCENE></BWFXML>";
    openWith(wave::chunk("iXML", xml + std::string(20, '\0')));
    EXPECT_EQ(text("iXML"), xml);
}

TEST_F(WaveTextsTest, KeepsABoundedPartOfEndlessTexts) {
    std::string const endless(5 * 1024 * 1024, 'x');
    openWith(wave::chunk("iXML", endless) + wave::chunk("LIST", "INFO" + wave::chunk("INAM", "too late")));
    EXPECT_EQ(text("iXML").size(), 4U * 1024 * 1024);
    EXPECT_EQ(text("tag.title"), "(none)");
    EXPECT_EQ(readBlock(0, 1).bytes, "1234");
}

}  // namespace
