#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "tests/fakes/LogRecorder.h"
#include "tests/plugins/PluginDecoder.h"
#include "tests/support/TemporaryFolder.h"
#include "toolkit/plugins/Plugin.h"

namespace test {
namespace {

/// Folders with links to the plug-ins of the tests.
class PluginLoaderTest : public ::testing::Test {
protected:
    using Outcomes = std::vector<PluginOutcome>;

    void offer(std::string const& plugin, std::string const& name) {
        std::filesystem::create_symlink(PLAYFILE_TEST_PLUGIN_DIR "/" + plugin + ".so", folder_.file(name));
    }
    Outcomes load() { return loadPlugins(fromUTF8(folder_.path().c_str())); }

    static Ox::Ptr<iVideoDecoder> decoder(PluginDecoder::eCodec codec) {
        VideoDecompressionInfo info;
        info.codec = codec;
        return Ox::DecoderInfo::instance().getDecoderFor(info);
    }
    static bool says(PluginOutcome const& outcome, std::string const& words) {
        return outcome.message.str().find(words) != std::string::npos;
    }

    TemporaryFolder folder_;
    LogRecorder log_;
};

TEST_F(PluginLoaderTest, TakesWhatAPluginOffers) {
    offer("offers_decoder", "a.so");
    Outcomes const outcomes = load();
    ASSERT_EQ(1U, outcomes.size());
    EXPECT_TRUE(outcomes[0].isLoaded) << outcomes[0].message.c_str();
    EXPECT_EQ(folder_.name("a.so"), outcomes[0].path);
    EXPECT_TRUE(decoder(PluginDecoder::ofGoodPlugin));
}

TEST_F(PluginLoaderTest, NamesAFileThatDoesNotLoadWithTheLoadersWordsAndGoesOn) {
    folder_.write("a.so", "this is no library");
    offer("offers_decoder", "b.so");
    Outcomes const outcomes = load();
    ASSERT_EQ(2U, outcomes.size());
    EXPECT_FALSE(outcomes[0].isLoaded);
    EXPECT_TRUE(says(outcomes[0], "file too short") || says(outcomes[0], "invalid ELF header"))
        << outcomes[0].message.c_str();
    EXPECT_TRUE(outcomes[1].isLoaded);
}

TEST_F(PluginLoaderTest, LogsALineWithFileAndWordsForEachFailure) {
    folder_.write("a.so", "this is no library");
    Outcomes const outcomes = load();
    ASSERT_EQ(1U, log_.log().size());
    EXPECT_EQ(1U, log_.count(folder_.file("a.so")));
    EXPECT_EQ(1U, log_.count(outcomes[0].message.view()));
}

TEST_F(PluginLoaderTest, ALibraryWithoutEntryPointIsNoPlugin) {
    offer("no_entry_point", "a.so");
    Outcomes const outcomes = load();
    ASSERT_EQ(1U, outcomes.size());
    EXPECT_FALSE(outcomes[0].isLoaded);
    EXPECT_TRUE(says(outcomes[0], pluginEntryPointName));
}

TEST_F(PluginLoaderTest, TakesNothingOfAPluginThatRefuses) {
    offer("refuses", "a.so");
    Outcomes const outcomes = load();
    EXPECT_FALSE(outcomes.at(0).isLoaded);
    EXPECT_FALSE(outcomes.at(0).message.empty());
    EXPECT_FALSE(decoder(PluginDecoder::ofRefusing));
}

TEST_F(PluginLoaderTest, TakesNothingOfAPluginThatThrowsAndTellsWhatItSaid) {
    offer("throws", "a.so");
    Outcomes const outcomes = load();
    EXPECT_FALSE(outcomes.at(0).isLoaded);
    EXPECT_TRUE(says(outcomes.at(0), "no device was found"));
    EXPECT_FALSE(decoder(PluginDecoder::ofThrowing));
}

TEST_F(PluginLoaderTest, LoadsAFileOnceUnderWhateverNames) {
    offer("offers_decoder", "a.so");
    offer("offers_decoder", "b.so");
    EXPECT_EQ(1U, load().size());
    EXPECT_EQ(0U, load().size());
    Ox::Ptr<FrameBufferRep> none;
    EXPECT_EQ(1, decoder(PluginDecoder::ofGoodPlugin)->decompress(none));
}

TEST_F(PluginLoaderTest, AFileThatDidNotLoadIsTriedAgain) {
    folder_.write("a.so", "this is no library");
    EXPECT_FALSE(load().at(0).isLoaded);
    std::filesystem::remove(folder_.file("a.so"));
    offer("offers_decoder", "a.so");
    EXPECT_TRUE(load().at(0).isLoaded);
}

TEST_F(PluginLoaderTest, GoesThroughAFolderByName) {
    for (char const* name : {"c.so", "a.so", "b.so"}) {
        folder_.write(name, "");
    }
    Outcomes const outcomes = load();
    ASSERT_EQ(3U, outcomes.size());
    EXPECT_EQ(folder_.name("a.so"), outcomes[0].path);
    EXPECT_EQ(folder_.name("b.so"), outcomes[1].path);
    EXPECT_EQ(folder_.name("c.so"), outcomes[2].path);
}

TEST_F(PluginLoaderTest, LooksAtNothingButPlugins) {
    folder_.write("readme.txt", "");
    folder_.write("a.so.1", "");
    folder_.write(".so", "");
    EXPECT_EQ(0U, load().size());
}

TEST_F(PluginLoaderTest, AFolderThatCannotBeReadIsAnOutcome) {
    Outcomes const outcomes =
        loadPlugins(folder_.name("missing") + L":" + fromUTF8(folder_.path().c_str()) + L"::");
    ASSERT_EQ(1U, outcomes.size());
    EXPECT_FALSE(outcomes[0].isLoaded);
    EXPECT_EQ(folder_.name("missing"), outcomes[0].path);
    EXPECT_TRUE(says(outcomes[0], "No such file"));
}

TEST_F(PluginLoaderTest, AnEmptySearchPathNamesNoFolder) {
    EXPECT_EQ(0U, loadPlugins(L"").size());
}

TEST_F(PluginLoaderTest, KnowsEverythingThatItHasMet) {
    folder_.write("a.so", "this is no library");
    offer("offers_decoder", "b.so");
    load();
    EXPECT_EQ(2U, getPluginOutcomes().size());
}

TEST_F(PluginLoaderTest, APluginMayLoadOthers) {
    offer("loads_more", "a.so");
    EXPECT_TRUE(load().at(0).isLoaded);
    Ox::Ptr<FrameBufferRep> none;
    EXPECT_EQ(1, decoder(PluginDecoder::ofLoadingMore)->decompress(none));
}

}  // namespace
}  // namespace test
