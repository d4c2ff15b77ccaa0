#pragma once

#include <atomic>
#include <cstdint>
#include <map>
#include <set>
#include <vector>

#include "ole/os/FileManager.h"
#include "toolkit/catalogue/Cookie.h"
#include "toolkit/catalogue/FsysDirectoryEntry.h"
#include "toolkit/catalogue/OpenType.h"
#include "toolkit/catalogue/ProjectSpaces.h"
#include "toolkit/edit/Edit.h"
#include "toolkit/tasks/BackgroundTaskBase.h"

/// Brings the media files of a set of clips to where an editor wants them, one after the other.
///
/// A set of cookies becomes an ordered list of jobs: clips in the order of their cookies, of each clip the
/// high-resolution file before its proxies. No source is copied twice. If all of it fits on the destination the jobs
/// are done in that order, and the first that fails ends the task. Subclasses say where each file goes, and what
/// follows from its arrival.
///
/// A file is copied under a temporary name, its own with ".partial" behind it, so that no half file ever bears a final
/// one. The frames of an image sequence go straight to theirs.
///
/// Ownership  An object runs once: what it counted and saved isn't taken back.
/// Threads    `run` and what it calls: the queue's worker. Progress and the operations of a task: any.
/// Errors     Written to the task's log.
/// Deliberate A rename that fails counts as done: the file stays under its temporary name. Progress may pass 1 in a
///            task that holds an image sequence or a chunked file and other jobs.
class DownloadTask : public BackgroundTaskBase {
public:
    struct Args {
        std::set<Cookie> clips;
        eMediaTypes mediaTypes = 0;
        eImportance importance = importanceLow;
        /// The task's title.
        LightweightString<wchar_t> description;
    };

    /// One file to be copied.
    struct CopyJob {
        /// The clip that it belongs to.
        Cookie cookie;
        /// The source.
        LightweightString<wchar_t> filename;
        /// The file as it will be known afterwards.
        MediaFileInfo info;
        /// Bytes of the source; 0 marks a source that is the business of an earlier job.
        std::uint64_t size = 0;
    };
    using Jobs = std::vector<CopyJob>;

    /// What `download` and `run` answer.
    enum eResult : int { resultFailed = 0, resultComplete = 1, resultNoSpace = 2, resultStopped = 3 };

    /// Bytes done of all bytes. 0 while there is nothing to do.
    [[nodiscard]] float getProgress() const override;
    /// Always the empty one.
    [[nodiscard]] IdStamp getID() const override { return {}; }
    [[nodiscard]] LightweightString<wchar_t> getDescription() const override { return description; }
    [[nodiscard]] eImportance getImportance() const override { return importance; }
    /// Bytes of all that is to be copied; 0 where that isn't known yet, and where frames are counted.
    [[nodiscard]] std::uint64_t getTotalBytes() const { return countsFrames_ ? 0 : totalBytes.load(); }

    using Name = LightweightString<wchar_t>;
    using eCopyRC = iFileManager::eCopyRC;

    /// Does one job.
    [[nodiscard]] virtual eCopyRC save(CopyJob const& job) = 0;
    /// Copies one file, under a temporary name until it is whole. An empty destination answers
    /// `copyNoDestination`.
    [[nodiscard]] virtual eCopyRC savefile(Name const& source, Name const& destination);
    /// Copies the frames of a numbered series to a folder named like the destination without its extension.
    [[nodiscard]] virtual eCopyRC saveImageSequence(Name const& source, Name const& destination);
    /// Copies one frame of a series.
    [[nodiscard]] virtual eCopyRC imageSeqCopyFiles(Name const& source, Name const& destination);
    /// Whether all jobs fit on their destination; if not it has said so in `log`.
    [[nodiscard]] virtual bool sufficientDiskSpace(Jobs const& jobs, Ox::Ptr<iTaskLog> const& log) const;

    /// Copies the media of these cookies. @return an `eResult`
    [[nodiscard]] int download(std::set<Cookie> const& cookies);
    /// Copies the source of a job, as one file or as what it is the first file of.
    [[nodiscard]] eCopyRC save(CopyJob const& job, Name const& destination);
    /// Copies the numbered files of one recording to a folder named like the destination without its extension.
    [[nodiscard]] eCopyRC saveChunkedFile(Name const& source, Name const& destination);

    /// True for the first of numbered pictures that a clip shows as moving ones.
    [[nodiscard]] static bool isImageSequence(EditPtr& edit, Name const& source);
    /// True for the first file of a recording that a camera has cut into several.
    [[nodiscard]] static bool isChunkedFile(Name const& source);

    void updateProgress();
    /// What the file manager tells of a copy: `task` is the object. @return 0 if it is to stop
    static int copyProgress(void* task, unsigned long copied, unsigned long total);
    void logCopyFailure(eCopyRC code, Name const& destination);

protected:
    explicit DownloadTask(Args const& args);

    std::set<Cookie> clips;
    eMediaTypes mediaTypes;
    eImportance importance;
    Name description;
    /// Read by other threads without a lock: what they see may be a moment old.
    std::atomic<std::uint64_t> currentFileBytes{0};
    std::atomic<std::uint64_t> completedBytes{0};
    std::atomic<std::uint64_t> totalBytes{0};
    /// Sources that still wait to be copied.
    std::set<Name> pendingFiles;
    /// Where the high-resolution sources go.
    std::map<Name, Name> destinations;
    /// Where single files have gone.
    std::vector<Name> savedFiles;

private:
    void addJobs(Cookie const& cookie, iRemoteProjectSpace* space, Jobs& jobs);
    void addLinked(CopyJob job, FsysDirectoryEntry const& entry, Jobs& jobs);
    void addRemote(CopyJob job, iRemoteProjectSpace& space, Jobs& jobs);
    void addProxies(Cookie const& cookie, FsysDirectoryEntry const& entry, Jobs& jobs);
    [[nodiscard]] bool take(CopyJob& job);
    [[nodiscard]] eCopyRC saveAsWhatItIs(EditPtr& edit, Name const& source, Name const& destination);
    void announce(EditPtr const& edit, CopyJob const& job);

    std::atomic<bool> countsFrames_{false};
};
