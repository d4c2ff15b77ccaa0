#include "tools/playfile/MediaGroups.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tools/playfile/MediaKind.h"

namespace {

using cli::FoundFile;
using testing::ElementsAre;
using testing::IsEmpty;

std::vector<FoundFile> filesOf(std::vector<std::string> const& names) {
    std::vector<FoundFile> files;
    for (std::string const& name : names) {
        files.push_back({name, "/m/" + name, "/m/" + name, 1});
    }
    return files;
}

/// Each clip as its files, a '|', and its proxies.
std::vector<std::string> clipsOf(std::vector<std::string> const& names,
                                 std::vector<std::string> const& proxies = {}) {
    std::vector<std::string> clips;
    for (cli::MediaGroup const& group : cli::groupMedia(filesOf(names), filesOf(proxies))) {
        std::string& text = clips.emplace_back();
        for (FoundFile const& file : group.originals) {
            text += file.name + ' ';
        }
        text += '|';
        for (FoundFile const& file : group.proxies) {
            text += ' ' + file.name;
        }
    }
    return clips;
}

TEST(MediaGroups, OfNothingThereAreNone) {
    EXPECT_THAT(clipsOf({}), IsEmpty());
}

TEST(MediaGroups, ASeriesEndsWhereANumberIsMissing) {
    EXPECT_THAT(clipsOf({"a1.png", "a2.png", "a4.png"}), ElementsAre("a1.png a2.png |", "a4.png |"));
}

TEST(MediaGroups, ASeriesKeepsItsWidthUntilThatIsFull) {
    EXPECT_THAT(clipsOf({"a09.png", "a10.png", "a99.png", "a100.png"}),
                ElementsAre("a09.png a10.png |", "a99.png a100.png |"));
}

TEST(MediaGroups, ANumberBelongsToOneSeries) {
    EXPECT_THAT(clipsOf({"a099.png", "a100.png", "a99.png"}),
                ElementsAre("a099.png a100.png |", "a99.png |"));
}

TEST(MediaGroups, SeriesOfOtherNamesAndExtensionsAreOthers) {
    EXPECT_THAT(clipsOf({"a1.jpg", "a2.png", "b1_l.png", "b1_r.png"}),
                ElementsAre("a1.jpg |", "a2.png |", "b1_l.png |", "b1_r.png |"));
}

TEST(MediaGroups, OfOneNameThePictureHasTheProxy) {
    EXPECT_THAT(clipsOf({"a.mov", "a.png", "a.wav", "a_proxy.mov"}),
                ElementsAre("a.mov | a_proxy.mov", "a.png |", "a.wav |"));
}

TEST(MediaGroups, InAProxyFolderTheNameMayBeTheSame) {
    EXPECT_THAT(clipsOf({"a.mov"}, {"a.mp4", "b.mp4", "a.proxy.mov"}),
                ElementsAre("a.mov | a.mp4 a.proxy.mov"));
}

TEST(MediaGroups, ASeriesHasItsProxyUnderTheNameWithoutNumber) {
    EXPECT_THAT(clipsOf({"shot_01.dpx", "shot_02.dpx", "shot_proxy.mov"}),
                ElementsAre("shot_01.dpx shot_02.dpx | shot_proxy.mov"));
    EXPECT_THAT(clipsOf({"shot_01.dpx", "shot_proxy.mov"}), ElementsAre("shot_01.dpx |", "shot_proxy.mov |"));
}

TEST(MediaGroups, CapitalsDoNotCountInTheWordsForProxies) {
    EXPECT_TRUE(cli::isProxyFolder("Proxies"));
    EXPECT_FALSE(cli::isProxyFolder("proxy2"));
    EXPECT_TRUE(cli::isCalledProxy("a_Proxy.mov"));
    EXPECT_FALSE(cli::isCalledProxy("_proxy.mov")) << "it is the proxy of no name";
}

TEST(MediaGroups, TheExtensionTellsTheKind) {
    EXPECT_EQ(cli::kindOfMedia("/m.wav/a"), cli::eMediaKind::none);
    EXPECT_EQ(cli::kindOfMedia("/m/.wav"), cli::eMediaKind::none);
    EXPECT_EQ(cli::kindOfMedia("a.WaV"), cli::eMediaKind::sound);
    EXPECT_EQ(cli::kindOfMedia("a.r3d"), cli::eMediaKind::cameraChunk);
    EXPECT_EQ(cli::kindOfMedia("a.GIF"), cli::eMediaKind::still);
    EXPECT_EQ(cli::kindOfMedia("シーン.mxf"), cli::eMediaKind::video);
}

}  // namespace
