#pragma once

#include "transfer/DownloadTask.h"
#include "transfer/ExternalDownloadSettings.h"

/// Copies the remote media of clips to a folder that somebody chose. The catalogue stays as it is, and the task's log
/// ends with a link to the copies.
///
/// Deliberate With names by clip, two clips of one name go to one destination, and the later one wins. A list that
///            fills the volume to its last byte is refused.
class ExternalDownloadTask : public DownloadTask {
public:
    using Settings = ExternalDownloadSettings;

    struct Args : DownloadTask::Args {
        Settings settings;
    };

    explicit ExternalDownloadTask(Args const& args) : DownloadTask(args), settings(args.settings) {}

    int run() override;
    using DownloadTask::save;
    [[nodiscard]] eCopyRC save(CopyJob const& job) override;
    [[nodiscard]] bool sufficientDiskSpace(Jobs const& jobs, Ox::Ptr<iTaskLog> const& log) const override;

protected:
    Settings const settings;

private:
    [[nodiscard]] Name fileNameFor(CopyJob const& job, EditPtr const& edit) const;
};
