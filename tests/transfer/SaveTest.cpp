/// How a job is carried out: one file, a chunked file, an image sequence. Whole transcripts of log and file manager.
#include "ole/os/OS.h"
#include "tests/fakes/TaskShelf.h"
#include "tests/transfer/TransferFixture.h"
#include "toolkit/services/ResourceText.h"
#include "toolkit/tasks/BackgroundTaskQueue.h"
#include "transfer/DownloadTask.h"

namespace test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

using Name = LightweightString<wchar_t>;
using eCopyRC = iFileManager::eCopyRC;

/// Copies where a test says.
class OpenTask : public DownloadTask {
public:
    OpenTask() : DownloadTask(Args{}) {}

    using DownloadTask::completedBytes;
    using DownloadTask::currentFileBytes;
    using DownloadTask::isChunkedFile;
    using DownloadTask::isImageSequence;
    using DownloadTask::pendingFiles;
    using DownloadTask::save;
    using DownloadTask::saveChunkedFile;
    using DownloadTask::savedFiles;
    using DownloadTask::savefile;
    using DownloadTask::saveImageSequence;
    using DownloadTask::totalBytes;

    std::function<int(OpenTask&)> body = [](OpenTask&) { return 0; };

private:
    int run() override { return body(*this); }
    eCopyRC save(CopyJob const&) override { return iFileManager::copied; }
};

class SaveTest : public TransferFixture {
protected:
    SaveTest() { task_->setLog(log_); }

    /// Does the job of a source that waits.
    eCopyRC save(Name const& source, Name const& destination, bool isProxy = false) {
        DownloadTask::CopyJob job;
        job.cookie = video();
        job.filename = source;
        job.info.isProxyFile = isProxy;
        task_->pendingFiles.insert(source);
        return task_->save(job, destination);
    }
    void writeSeries(std::string const& stem, std::string const& extension, int count) {
        for (int i = 0; i < count; ++i) {
            std::string const digits = std::to_string(i + 1);
            std::string const number = std::string(4 - digits.size(), '0') + digits;
            write(stem + number + extension, std::string(static_cast<std::size_t>(i) + 1, 'x'));
        }
    }

    Ox::Ptr<OpenTask> const task_ = Ox::makePtr<OpenTask>();
};

TEST_F(SaveTest, OneFileGoesThroughItsTemporaryName) {
    addClip(1, "Shot");
    write("elsewhere/a.mov", "12345");
    EXPECT_EQ(save(full("elsewhere/a.mov"), full("out/b.mov")), iFileManager::copied);
    EXPECT_THAT(transcript(), ElementsAre("log 0 Shot", "copy elsewhere/a.mov out/b.mov.partial 1 told",
                                          "rename out/b.mov.partial out/b.mov 1"));
    EXPECT_EQ(folder_.read("out/b.mov"), "12345");
    EXPECT_TRUE(folder_.holds("elsewhere/a.mov"));
    EXPECT_THAT(task_->savedFiles, ElementsAre(full("out/b.mov")));
    EXPECT_THAT(task_->pendingFiles, IsEmpty());
    EXPECT_EQ(catalogue_.openEdits(), 0);
}

TEST_F(SaveTest, ASourceThatNoLongerWaitsIsDoneAndNothingIsSaid) {
    addClip(1, "Shot");
    DownloadTask::CopyJob job;
    job.cookie = video();
    job.filename = write("elsewhere/a.mov", "1");
    EXPECT_EQ(task_->save(job, full("out/a.mov")), iFileManager::copied);
    EXPECT_THAT(transcript(), IsEmpty());
    EXPECT_FALSE(folder_.holds("out/a.mov"));
    EXPECT_THAT(task_->savedFiles, IsEmpty());
}

TEST_F(SaveTest, TheHeadingOfAProxySaysSo) {
    addClip(1, "Shot");
    EXPECT_EQ(save(write("elsewhere/a.mov", "1"), full("out/a.mov"), true), iFileManager::copied);
    EXPECT_THAT(recorded({"log"}), ElementsAre("log 0 Shot (proxy)"));
}

TEST_F(SaveTest, AClipThatDoesNotOpenHasAnEmptyHeading) {
    EXPECT_EQ(save(write("elsewhere/a.mov", "1"), full("out/a.mov")), iFileManager::copied);
    EXPECT_EQ(save(write("elsewhere/b.mov", "1"), full("out/b.mov"), true), iFileManager::copied);
    EXPECT_THAT(recorded({"log"}), ElementsAre("log 0 ", "log 0 "));
}

TEST_F(SaveTest, AnEmptyDestinationIsFiveAndTouchesNothing) {
    EXPECT_EQ(task_->savefile(write("elsewhere/a.mov", "1"), {}), 5U);
    EXPECT_THAT(transcript(), IsEmpty());
}

TEST_F(SaveTest, WhatWasThereIsReplaced) {
    write("out/a.mov", "old");
    write("out/a.mov.partial", "left by one that was killed, and longer");
    EXPECT_EQ(task_->savefile(write("elsewhere/a.mov", "new"), full("out/a.mov")), iFileManager::copied);
    EXPECT_EQ(folder_.read("out/a.mov"), "new");
    EXPECT_FALSE(folder_.holds("out/a.mov.partial"));
}

TEST_F(SaveTest, AFileBeginsAtNoBytes) {
    task_->currentFileBytes = 99;
    task_->totalBytes = 100;
    files_.onCopy = [this](auto const&, auto const&) -> std::optional<eCopyRC> {
        EXPECT_EQ(task_->currentFileBytes, 0U);
        return iFileManager::copied;
    };
    static_cast<void>(task_->savefile(full("elsewhere/a"), full("out/a")));
}

/// The code of a failed copy, and the line that tells of it.
class CopyCodes : public SaveTest {
protected:
    Lines failWith(std::uint32_t code) {
        files_.onCopy = [code](auto const&, auto const&) { return static_cast<eCopyRC>(code); };
        EXPECT_EQ(task_->savefile(full("elsewhere/a"), full("out/a.mov")), code);
        return transcript();
    }
};

TEST_F(CopyCodes, TwoNamesTheDestinationEverywhereInItsText) {
    setResourceText(11259, L"<$FILE$|$FILE$>");
    EXPECT_THAT(failWith(2),
                ElementsAre("copy elsewhere/a out/a.mov.partial 1 told",
                            "log 4 <" + folder_.file("out/a.mov") + "|" + folder_.file("out/a.mov") + ">",
                            "delete out/a.mov.partial"));
    setResourceText(11259, {});
}

TEST_F(CopyCodes, ThreeIsSilentAndTakesTheTemporaryFileAway) {
    write("out/a.mov.partial", "half");
    EXPECT_THAT(failWith(3),
                ElementsAre("copy elsewhere/a out/a.mov.partial 1 told", "delete out/a.mov.partial"));
    EXPECT_FALSE(folder_.holds("out/a.mov.partial"));
}

TEST_F(CopyCodes, FourHasTheTextOfResultTwo) {
    EXPECT_THAT(failWith(4), testing::Contains("log 4 " + narrow(resourceStrW(2, ResStrFmt(3)))));
}

TEST_F(CopyCodes, EveryOtherHasOneText) {
    for (std::uint32_t const code : {1U, 5U, 6U, 4711U}) {
        calls_->clear();
        EXPECT_THAT(failWith(code), testing::Contains("log 4 Error copying/downloading file")) << code;
    }
}

TEST_F(CopyCodes, AFileThatFailsLeavesItsDestinationAsItWas) {
    write("out/a.mov", "old");
    failWith(4);
    EXPECT_EQ(folder_.read("out/a.mov"), "old");
}

TEST_F(CopyCodes, AFailedFileIsNotTriedAgainByAnotherJob) {
    files_.onCopy = [](auto const&, auto const&) { return iFileManager::copyFailed; };
    Name const source = write("elsewhere/a.mov", "1");
    EXPECT_EQ(save(source, full("out/a.mov")), iFileManager::copyFailed);
    DownloadTask::CopyJob job;
    job.filename = source;
    EXPECT_EQ(task_->save(job, full("out/b.mov")), iFileManager::copied);
    EXPECT_EQ(calls_->count("copy"), 1U);
    EXPECT_THAT(task_->savedFiles, IsEmpty());
}

TEST_F(SaveTest, ARenameThatFailsCountsAsDoneAndLeavesTheTemporaryFile) {
    addClip(1, "Shot");
    std::filesystem::create_directories(folder_.path() / "out/a.mov");
    Name const source = write("elsewhere/a.mov", "12345");
    EXPECT_EQ(save(source, full("out/a.mov")), iFileManager::copied);
    EXPECT_EQ(folder_.read("out/a.mov.partial"), "12345");
    EXPECT_THAT(recorded({"log 4"}), ElementsAre("log 4 " + narrow(OS()->getErrors().getLastErrorText())));
    EXPECT_THAT(task_->savedFiles, ElementsAre(full("out/a.mov")));
}

TEST_F(SaveTest, ACopyThatIsStoppedEndsWithThree) {
    write("elsewhere/a.mov", std::string(1000, 'x'));
    task_->totalBytes = 1000;
    task_->abort();
    EXPECT_EQ(save(full("elsewhere/a.mov"), full("out/a.mov")), iFileManager::copyStopped);
    EXPECT_FALSE(folder_.holds("out/a.mov"));
    EXPECT_FALSE(folder_.holds("out/a.mov.partial"));
    EXPECT_THAT(recorded({"log 4"}), IsEmpty());
}

// ---- Chunked files ----

TEST_F(SaveTest, AChunkedFileIsOneWhoseSecondPartIsThere) {
    write("elsewhere/A_001.R3D", "1");
    write("elsewhere/A_002.R3D", "1");
    EXPECT_TRUE(OpenTask::isChunkedFile(full("elsewhere/A_001.R3D")));
    EXPECT_FALSE(OpenTask::isChunkedFile(full("elsewhere/A_002.R3D")));
}

TEST_F(SaveTest, OtherNamesAreNoChunkedFiles) {
    write("elsewhere/A_001.mov", "1");
    write("elsewhere/A_002.mov", "1");
    write("elsewhere/r3d", "1");
    EXPECT_FALSE(OpenTask::isChunkedFile(full("elsewhere/A_001.mov")));
    EXPECT_FALSE(OpenTask::isChunkedFile(full("elsewhere/r3d")));
    EXPECT_FALSE(OpenTask::isChunkedFile(L"r3d"));
    EXPECT_FALSE(OpenTask::isChunkedFile(L".r3d"));
    EXPECT_FALSE(OpenTask::isChunkedFile({}));
}

TEST_F(SaveTest, AChunkedFileWithoutASecondPartIsCopiedAsOne) {
    EXPECT_EQ(save(write("elsewhere/A_001.r3d", "1"), full("out/A.r3d")), iFileManager::copied);
    EXPECT_THAT(task_->savedFiles, ElementsAre(full("out/A.r3d")));
}

TEST_F(SaveTest, ChunksGoToAFolderUnderTheirOwnNamesEachThroughATemporaryOne) {
    addClip(1, "Shot");
    writeSeries("elsewhere/A_", ".R3D", 3);
    task_->totalBytes = 999;
    task_->completedBytes = 10;
    EXPECT_EQ(save(full("elsewhere/A_0001.R3D"), full("out/dest.r3d")), iFileManager::copied);
    EXPECT_THAT(transcript(), ElementsAre("log 0 Shot", "folder out/dest",  //
                                          "log 0 " + folder_.file("elsewhere/A_0001.R3D"),
                                          "copy elsewhere/A_0001.R3D out/dest/A_0001.R3D.partial 1 told",
                                          "rename out/dest/A_0001.R3D.partial out/dest/A_0001.R3D 1",
                                          "log 0 " + folder_.file("elsewhere/A_0002.R3D"),
                                          "copy elsewhere/A_0002.R3D out/dest/A_0002.R3D.partial 1 told",
                                          "rename out/dest/A_0002.R3D.partial out/dest/A_0002.R3D 1",
                                          "log 0 " + folder_.file("elsewhere/A_0003.R3D"),
                                          "copy elsewhere/A_0003.R3D out/dest/A_0003.R3D.partial 1 told",
                                          "rename out/dest/A_0003.R3D.partial out/dest/A_0003.R3D 1"));
    EXPECT_EQ(task_->totalBytes, 6U);
    EXPECT_EQ(task_->completedBytes, 16U);
    EXPECT_THAT(task_->savedFiles, IsEmpty());
}

TEST_F(SaveTest, ARemoteChunkedFileIsCopiedAsOne) {
    writeSeries("remote/A_", ".R3D", 2);
    EXPECT_EQ(save(wide("far://A_0001.R3D"), full("out/A.R3D")), iFileManager::copied);
    EXPECT_THAT(task_->savedFiles, ElementsAre(full("out/A.R3D")));
}

TEST_F(SaveTest, AChunkThatFailsEndsTheFileAndEarlierOnesStay) {
    writeSeries("elsewhere/A_", ".R3D", 3);
    files_.onCopy = [](std::string const& source, auto const&) -> std::optional<eCopyRC> {
        return source == "elsewhere/A_0002.R3D" ? std::optional(iFileManager::copyFailed) : std::nullopt;
    };
    EXPECT_EQ(task_->saveChunkedFile(full("elsewhere/A_0001.R3D"), full("out/d.r3d")),
              iFileManager::copyFailed);
    EXPECT_TRUE(folder_.holds("out/d/A_0001.R3D"));
    EXPECT_FALSE(folder_.holds("out/d/A_0002.R3D"));
    EXPECT_FALSE(folder_.holds("out/d/A_0002.R3D.partial"));
    EXPECT_EQ(calls_->count("A_0003"), 0U);
    EXPECT_EQ(task_->completedBytes, 1U);
}

TEST_F(SaveTest, AFolderThatCannotBeMadeAndAnEmptyListAreOneAndSilent) {
    files_.makesFolders = false;
    writeSeries("elsewhere/A_", ".R3D", 2);
    EXPECT_EQ(task_->saveChunkedFile(full("elsewhere/A_0001.R3D"), full("out/d.r3d")), 1U);
    files_.makesFolders = true;
    write("elsewhere/B_0001.R3D", "");
    EXPECT_EQ(task_->saveChunkedFile(full("elsewhere/B_0001.R3D"), full("out/d.r3d")), 1U);
    EXPECT_THAT(recorded({"log", "copy"}), IsEmpty());
    EXPECT_EQ(task_->totalBytes, 0U);
}

// ---- Image sequences ----

class SequenceTest : public SaveTest {
protected:
    bool isSequence(std::string const& path) {
        EditPtr edit;
        edit.i_open(clip(), 0);
        return OpenTask::isImageSequence(edit, full(path));
    }
};

TEST_F(SequenceTest, NumberedPicturesThatMoveAreASequence) {
    writeSeries("elsewhere/f", ".dpx", 2);
    addClip(1, "Shot", {.velocity = 1.0});
    EXPECT_TRUE(isSequence("elsewhere/f0001.dpx"));
}

TEST_F(SequenceTest, AClipThatShowsAStillIsNone) {
    writeSeries("elsewhere/f", ".dpx", 2);
    addClip(1, "Shot", {.velocity = 0.0});
    EXPECT_FALSE(isSequence("elsewhere/f0001.dpx"));
    EXPECT_EQ(save(full("elsewhere/f0001.dpx"), full("out/a.dpx")), iFileManager::copied);
    EXPECT_THAT(task_->savedFiles, SizeIs(1));
}

TEST_F(SequenceTest, AlmostStillIsMoving) {
    writeSeries("elsewhere/f", ".dpx", 2);
    addClip(1, "Shot", {.velocity = 1e-300});
    EXPECT_TRUE(isSequence("elsewhere/f0001.dpx"));
}

TEST_F(SequenceTest, WithoutAPieceOrAClipTheNamesDecide) {
    writeSeries("elsewhere/f", ".dpx", 2);
    EXPECT_TRUE(isSequence("elsewhere/f0001.dpx"));
    addClip(1, "Shot");
    EXPECT_TRUE(isSequence("elsewhere/f0001.dpx"));
}

TEST_F(SequenceTest, OtherTypesOnePictureAndNamesWithoutANumberAreNone) {
    writeSeries("elsewhere/f", ".mov", 2);
    write("elsewhere/one0001.png", "1");
    write("elsewhere/still.png", "1");
    EXPECT_FALSE(isSequence("elsewhere/f0001.mov"));
    EXPECT_FALSE(isSequence("elsewhere/one0001.png"));
    EXPECT_FALSE(isSequence("elsewhere/still.png"));
}

TEST_F(SequenceTest, FramesGoStraightToTheirNamesAndNobodyIsToldOfTheirProgress) {
    addClip(1, "Shot", {.velocity = 1.0});
    writeSeries("elsewhere/f", ".dpx", 2);
    task_->completedBytes = 10;
    task_->currentFileBytes = 5;
    EXPECT_EQ(save(full("elsewhere/f0001.dpx"), full("out/seq.dpx")), iFileManager::copied);
    EXPECT_THAT(transcript(),
                ElementsAre("log 0 Shot", "folder out/seq", "log.start 2",
                            "log 0 " + folder_.file("elsewhere/f0001.dpx"),
                            "copy elsewhere/f0001.dpx out/seq/f0001.dpx 1", "log.next",
                            "log 0 " + folder_.file("elsewhere/f0002.dpx"),
                            "copy elsewhere/f0002.dpx out/seq/f0002.dpx 1", "log.next", "log.end"));
    EXPECT_EQ(task_->totalBytes, 2U);
    EXPECT_EQ(task_->completedBytes, 12U);
    EXPECT_EQ(task_->currentFileBytes, 5U);
    EXPECT_THAT(task_->savedFiles, IsEmpty());
}

TEST_F(SequenceTest, AHundredFramesAreAHundredLinesAndSteps) {
    writeSeries("elsewhere/f", ".dpx", 100);
    EXPECT_EQ(task_->saveImageSequence(full("elsewhere/f0001.dpx"), full("out/s.dpx")), iFileManager::copied);
    EXPECT_EQ(calls_->count("log 0"), 100U);
    EXPECT_EQ(calls_->count("log.start 100"), 1U);
    EXPECT_EQ(calls_->count("log.next"), 100U);
    EXPECT_EQ(calls_->count("log.end"), 1U);
}

TEST_F(SequenceTest, TheFifthFrameFailsAndTheFourBeforeItStay) {
    writeSeries("elsewhere/f", ".dpx", 10);
    files_.onCopy = [](std::string const& source, auto const&) -> std::optional<eCopyRC> {
        return source == "elsewhere/f0006.dpx" ? std::optional(iFileManager::copyFailed) : std::nullopt;
    };
    EXPECT_EQ(task_->saveImageSequence(full("elsewhere/f0001.dpx"), full("out/s.dpx")),
              iFileManager::copyFailed);
    EXPECT_TRUE(folder_.holds("out/s/f0005.dpx"));
    EXPECT_FALSE(folder_.holds("out/s/f0006.dpx"));
    EXPECT_EQ(calls_->count("f0007"), 0U);
    EXPECT_EQ(recorded({"log 4"}), Lines{"log 4 " + narrow(resourceStrW(2, ResStrFmt(3)))});
    EXPECT_EQ(calls_->count("log.next"), 6U);
    EXPECT_EQ(calls_->count("log.end"), 1U);
}

TEST_F(SequenceTest, TheBodyRunsOnceEvenForNoFrames) {
    EXPECT_EQ(task_->saveImageSequence(full("elsewhere/f0001.dpx"), full("out/s.dpx")),
              iFileManager::copyCannotAccess);
    EXPECT_EQ(calls_->count("log.start 0"), 1U);
    EXPECT_EQ(calls_->count("log.next"), 1U);
    EXPECT_EQ(task_->totalBytes, 0U);
    EXPECT_EQ(task_->completedBytes, 1U);
}

TEST_F(SequenceTest, AFolderThatCannotBeMadeIsOneAndSilent) {
    files_.makesFolders = false;
    writeSeries("elsewhere/f", ".dpx", 2);
    EXPECT_EQ(task_->saveImageSequence(full("elsewhere/f0001.dpx"), full("out/s.dpx")), 1U);
    EXPECT_THAT(recorded({"log", "copy"}), IsEmpty());
}

/// An abort is seen between frames, and only through the queue that does the task.
TEST_F(SequenceTest, AnAbortEndsTheSequenceBehindTheFrameUnderWay) {
    writeSeries("elsewhere/f", ".dpx", 3);
    eCopyRC code = iFileManager::copied;
    task_->body = [&](OpenTask& task) {
        files_.onCopy = [&](std::string const& source, auto const&) -> std::optional<eCopyRC> {
            if (source == "elsewhere/f0002.dpx") {
                task.abort();
            }
            return std::nullopt;
        };
        code = task.saveImageSequence(full("elsewhere/f0001.dpx"), full("out/s.dpx"));
        return 0;
    };
    UIBackgroundTasksQueue::instance().queue(task_);
    task_->waitForCompletion();
    EXPECT_EQ(code, iFileManager::copyStopped);
    EXPECT_TRUE(folder_.holds("out/s/f0002.dpx"));
    EXPECT_FALSE(folder_.holds("out/s/f0003.dpx"));
    EXPECT_THAT(recorded({"log 4"}), IsEmpty());
}

}  // namespace
}  // namespace test
