#pragma once

#include "transfer/DownloadTask.h"

/// Copies linked and remote media of clips into the system's own material folders, and corrects catalogue and links
/// after each file, so that a task that is stopped half way leaves every finished clip right.
///
/// Deliberate Each drive is tested against the bytes of the whole task; space for exactly that is enough. A failed
///            copy of a high-resolution file takes the proxy of that name out of the catalogue too. After a failure
///            or a stop all clips are told that they have changed.
class LocaliseTask : public DownloadTask {
public:
    /// In `clipSelection`: clips that can't be downloaded, as their media are linked.
    static constexpr std::uint32_t selectLinked = 1;
    /// In `clipSelection`: clips that can.
    static constexpr std::uint32_t selectDownloadable = 2;

    struct Args : DownloadTask::Args {
        DriveId targetDrive;
        std::uint32_t clipSelection = 0;
    };

    explicit LocaliseTask(Args const& args)
        : DownloadTask(args), targetDrive(args.targetDrive), clipSelection(args.clipSelection) {}

    int run() override;
    using DownloadTask::save;
    [[nodiscard]] eCopyRC save(CopyJob const& job) override;
    [[nodiscard]] eCopyRC savefile(Name const& source, Name const& destination) override;
    [[nodiscard]] bool sufficientDiskSpace(Jobs const& jobs, Ox::Ptr<iTaskLog> const& log) const override;
    /// Corrects the catalogue after a job.
    void updateStatus(CopyJob const& job, eCopyRC code);

protected:
    /// As the starter said; each job's own data say where it goes.
    DriveId const targetDrive;
    std::uint32_t const clipSelection;

private:
    [[nodiscard]] std::set<Cookie> selectedMedia() const;
    [[nodiscard]] bool isSelected(Cookie const& clip) const;
    void tellClips() const;
    void cancel(CopyJob const& job) const;
    void renameProxies(CopyJob const& job) const;
    void updateOriginal(CopyJob const& job);
    void bringFromSpace(CopyJob const& job, FsysDirectoryEntry& entry);
    void updateSound(FsysDirectoryEntry& entry);
    static void updatePictures(CopyJob const& job, FsysDirectoryEntry& entry);
};
