#include "transfer/ExternalDownloadTask.h"

#include "tests/transfer/TransferFixture.h"
#include "toolkit/services/NumberText.h"
#include "toolkit/services/ResourceText.h"

namespace test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

using Settings = ExternalDownloadTask::Settings;

Settings settingsOf(LightweightString<wchar_t> const& location, Settings::eNaming naming) {
    Settings settings;
    settings.location = location;
    settings.naming = naming;
    settings.proxyExt = L"mp4";
    return settings;
}

TEST(ExternalDownloadSettingsTest, AreWrittenInTheirOrder) {
    JSON::Builder builder;
    settingsOf(L"/out/Größe", Settings::namedByClip).write(builder);
    EXPECT_EQ(builder.asString(),
              "{\n  \"Location\": \"/out/Größe\",\n  \"ProxyExt\": \"mp4\",\n  \"Naming\": \"clip\"\n}\n");
}

TEST(ExternalDownloadSettingsTest, EveryNamingButZeroIsByFile) {
    JSON::Builder builder;
    settingsOf(L"/o", static_cast<Settings::eNaming>(7)).write(builder);
    EXPECT_NE(builder.asString().view().find("\"Naming\": \"file\""), std::string_view::npos);
}

class ReadSettings : public testing::Test {
protected:
    bool read(char const* text) { return settings_.read(JSON::Element::parse(text)); }

    Settings settings_ = settingsOf(L"before", Settings::namedByClip);
};

TEST_F(ReadSettings, ComeBackAsTheyWereWritten) {
    EXPECT_TRUE(read(R"({"Location": "/o", "ProxyExt": "mov", "Naming": "clip"})"));
    EXPECT_EQ(settings_.location, L"/o");
    EXPECT_EQ(settings_.proxyExt, L"mov");
    EXPECT_EQ(settings_.naming, Settings::namedByClip);
}

TEST_F(ReadSettings, NoElementIsFalseAndLeavesAllAsItWas) {
    EXPECT_FALSE(settings_.read({}));
    EXPECT_EQ(settings_.location, L"before");
    EXPECT_EQ(settings_.proxyExt, L"mp4");
    EXPECT_EQ(settings_.naming, Settings::namedByClip);
}

TEST_F(ReadSettings, WithoutANamingItIsByFile) {
    EXPECT_TRUE(read(R"({"Location": "/o", "ProxyExt": "mov"})"));
    EXPECT_EQ(settings_.naming, Settings::namedByFile);
}

TEST_F(ReadSettings, OnlyTheExactTextMeansByClip) {
    EXPECT_TRUE(read(R"({"Location": "/o", "ProxyExt": "mov", "Naming": "Clip"})"));
    EXPECT_EQ(settings_.naming, Settings::namedByFile);
}

TEST_F(ReadSettings, AnEmptyExtensionOrFolderIsFalseOnceAllIsSet) {
    EXPECT_FALSE(read(R"({"Location": "/o", "ProxyExt": "", "Naming": "file"})"));
    EXPECT_EQ(settings_.location, L"/o");
    EXPECT_EQ(settings_.proxyExt, L"");
    EXPECT_EQ(settings_.naming, Settings::namedByFile);
    EXPECT_FALSE(read(R"({"Location": "", "ProxyExt": "mov"})"));
    EXPECT_EQ(settings_.proxyExt, L"mov");
}

class ExternalDownloadTaskTest : public TransferFixture {
protected:
    ExternalDownloadTaskTest() { spaces_.type = ProjectSpacesManager::localSpace; }

    /// A clip whose original and whose proxies are remote.
    void addRemoteClip(unsigned number, std::string const& name,
                       std::vector<std::string> const& proxies = {}) {
        addClip(number, name);
        std::vector<MediaFileInfo> infos;
        for (std::string const& proxy : proxies) {
            infos.push_back(asProxy(linked('M', "p", "far://" + proxy)));
            write("remote/" + proxy, "proxy");
        }
        std::string const file = std::to_string(number) + ".mov";
        write("remote/" + file, "original");
        catalogue_.addEntry(video(number), linked('M', file, "far://" + file), infos);
    }
    int run(std::set<Cookie> const& clips, eMediaTypes types, Settings::eNaming naming) {
        ExternalDownloadTask::Args args;
        args.clips = clips;
        args.mediaTypes = types;
        args.settings = settingsOf(full("out"), naming);
        task_ = Ox::makePtr<ExternalDownloadTask>(args);
        task_->setLog(log_);
        task_->execute();
        return task_->getResult();
    }
    /// Names in the folder of the copies.
    [[nodiscard]] std::set<std::string> results() const {
        std::set<std::string> names;
        for (auto const& entry : std::filesystem::directory_iterator(folder_.path() / "out")) {
            names.insert(entry.path().filename().string());
        }
        return names;
    }

    Ox::Ptr<ExternalDownloadTask> task_;
};

TEST_F(ExternalDownloadTaskTest, CopiesRemoteMediaAndEndsWithALinkToThem) {
    addRemoteClip(1, "Shot");
    EXPECT_EQ(run({clip(1)}, mediaOriginal, Settings::namedByClip), 1);
    EXPECT_EQ(folder_.read("out/Shot.mov"), "original");
    std::string const link = narrow(LoggerBase::HyperLink(full("out"), {full("out/Shot.mov")}).asString());
    EXPECT_THAT(transcript(), ElementsAre("log 0 Shot", "copy far://1.mov out/Shot.mov.partial 1 told",
                                          "rename out/Shot.mov.partial out/Shot.mov 1", "log 6 " + link));
}

TEST_F(ExternalDownloadTaskTest, TheCatalogueStaysAsItIs) {
    addRemoteClip(1, "Shot");
    EXPECT_EQ(run({clip(1)}, mediaOriginal, Settings::namedByClip), 1);
    EXPECT_THAT(recorded({"catalogue"}), IsEmpty());
    EXPECT_EQ(catalogue_.findEntryForCookie(video(1))->getPhysicalFilename(), wide("far://1.mov"));
}

TEST_F(ExternalDownloadTaskTest, MediaThatAreHereDropOutAndTheFolderAloneIsNamed) {
    addClip(1, "Shot");
    catalogue_.addEntry(video(1), linked('M', "a.mov", "elsewhere/a.mov"));
    EXPECT_EQ(run({clip(1)}, mediaAll, Settings::namedByClip), 1);
    EXPECT_THAT(transcript(), ElementsAre("log 6 " + folder_.file("out")));
}

TEST_F(ExternalDownloadTaskTest, NamesOfTheFourKinds) {
    addRemoteClip(1, "Shot", {"p.x.avi"});
    EXPECT_EQ(run({clip(1)}, mediaAll, Settings::namedByClip), 1);
    EXPECT_THAT(results(), ElementsAre("Shot.mov", "Shot.proxy.mp4"));
    std::filesystem::remove_all(folder_.path() / "out");
    std::filesystem::create_directory(folder_.path() / "out");
    EXPECT_EQ(run({clip(1)}, mediaAll, Settings::namedByFile), 1);
    EXPECT_THAT(results(), ElementsAre("1.mov", "p.x.mp4"));
}

TEST_F(ExternalDownloadTaskTest, AClipThatDoesNotOpenKeepsTheFilesOwnName) {
    write("remote/1.mov", "x");
    catalogue_.addEntry(video(1), linked('M', "1.mov", "far://1.mov"));
    EXPECT_EQ(run({clip(1)}, mediaOriginal, Settings::namedByClip), 1);
    EXPECT_THAT(results(), ElementsAre("1.mov"));
    EXPECT_THAT(transcript(), Contains("log 0 "));
}

TEST_F(ExternalDownloadTaskTest, AClipsNameIsMadeSafe) {
    addRemoteClip(1, "../a/b:c");
    EXPECT_EQ(run({clip(1)}, mediaOriginal, Settings::namedByClip), 1);
    EXPECT_THAT(results(), ElementsAre(".._a_b_c.mov"));
}

TEST_F(ExternalDownloadTaskTest, SeparatorsOfAnotherSystemSeparate) {
    addClip(1, "Shot");
    write("remote/dir\\x.mov", "x");
    catalogue_.addEntry(video(1), linked('M', "1.mov", "far://dir\\x.mov"));
    EXPECT_EQ(run({clip(1)}, mediaOriginal, Settings::namedByFile), 1);
    EXPECT_THAT(results(), ElementsAre("x.mov"));
}

TEST_F(ExternalDownloadTaskTest, OfTwoClipsOfOneNameTheLaterOneWins) {
    addRemoteClip(1, "Shot");
    addRemoteClip(2, "Shot");
    write("remote/2.mov", "the second");
    EXPECT_EQ(run({clip(1), clip(2)}, mediaOriginal, Settings::namedByClip), 1);
    EXPECT_EQ(folder_.read("out/Shot.mov"), "the second");
}

/// A clip is taken for its remote proxy, and its linked original comes along.
TEST_F(ExternalDownloadTaskTest, ASequenceAndAChunkedFileGetFoldersAndAreNoTargetsOfTheLink) {
    addClip(1, "Seq", {.velocity = 1.0});
    addClip(2, "Chunked");
    for (char const* const name : {"f0001.dpx", "f0002.dpx", "A_001.R3D", "A_002.R3D"}) {
        write(std::string("elsewhere/") + name, name);
    }
    MediaFileInfo proxy = asProxy(linked('M', "p", "far://p.mov"));
    proxy.status = MediaFileInfo::missing;
    catalogue_.addEntry(video(1), linked('M', "1.dpx", "elsewhere/f0001.dpx"), {proxy});
    catalogue_.addEntry(video(2), linked('M', "2.R3D", "elsewhere/A_001.R3D"), {proxy});
    EXPECT_EQ(run({clip(1), clip(2)}, mediaAll, Settings::namedByClip), 1);
    EXPECT_EQ(folder_.read("out/Seq/f0002.dpx"), "f0002.dpx");
    EXPECT_EQ(folder_.read("out/Chunked/A_002.R3D"), "A_002.R3D");
    EXPECT_EQ(calls_->all().back(), "log 6 " + folder_.file("out"));
}

TEST_F(ExternalDownloadTaskTest, ExactlyAsMuchAsIsFreeIsRefused) {
    addRemoteClip(1, "Shot");
    files_.freeBytes = 8;
    EXPECT_EQ(run({clip(1)}, mediaOriginal, Settings::namedByClip), 2);
    std::string const text = narrow(resourceStrW(11043)
                                        .substitute(L"$NUM1$", bytesAsString(8, true))
                                        .substitute(L"$NUM2$", bytesAsString(8, true)));
    EXPECT_THAT(transcript(), ElementsAre("log 4 " + text));
    EXPECT_THAT(results(), IsEmpty());
}

TEST_F(ExternalDownloadTaskTest, AByteMoreIsEnough) {
    addRemoteClip(1, "Shot");
    files_.freeBytes = 9;
    EXPECT_EQ(run({clip(1)}, mediaOriginal, Settings::namedByClip), 1);
}

TEST_F(ExternalDownloadTaskTest, NoJobsAndNothingFreeIsRefusedToo) {
    files_.freeBytes = 0;
    EXPECT_EQ(run({}, mediaOriginal, Settings::namedByClip), 2);
}

TEST_F(ExternalDownloadTaskTest, AFolderThatIsNotThereHasNoVolumeAndCountsAsEnough) {
    std::filesystem::remove_all(folder_.path() / "out");
    EXPECT_EQ(run({}, mediaOriginal, Settings::namedByClip), 1);
}

TEST_F(ExternalDownloadTaskTest, AFailureHasNoClosingLineAndEarlierFilesStay) {
    addRemoteClip(1, "One");
    addRemoteClip(2, "Two");
    files_.onCopy = [](std::string const& source, auto const&) {
        return source == "far://2.mov" ? std::optional(iFileManager::copyFailed) : std::nullopt;
    };
    EXPECT_EQ(run({clip(1), clip(2)}, mediaOriginal, Settings::namedByClip), 0);
    EXPECT_THAT(recorded({"log 6"}), IsEmpty());
    EXPECT_THAT(results(), ElementsAre("One.mov"));
}

TEST_F(ExternalDownloadTaskTest, AfterARenameThatFailedTheNextJobIsDone) {
    addRemoteClip(1, "One");
    addRemoteClip(2, "Two");
    std::filesystem::create_directories(folder_.path() / "out/One.mov");
    EXPECT_EQ(run({clip(1), clip(2)}, mediaOriginal, Settings::namedByClip), 1);
    EXPECT_THAT(results(), ElementsAre("One.mov", "One.mov.partial", "Two.mov"));
    EXPECT_EQ(folder_.read("out/One.mov.partial"), "original");
    EXPECT_THAT(recorded({"log 4"}), testing::SizeIs(1));
}

TEST_F(ExternalDownloadTaskTest, AStopHasNoClosingLine) {
    addRemoteClip(1, "One");
    files_.onCopy = [](auto const&, auto const&) { return iFileManager::copyStopped; };
    EXPECT_EQ(run({clip(1)}, mediaOriginal, Settings::namedByClip), 3);
    EXPECT_THAT(recorded({"log 6"}), IsEmpty());
    EXPECT_THAT(recorded({"log 4"}), IsEmpty());
}

}  // namespace
}  // namespace test
