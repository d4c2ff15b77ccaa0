#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "tests/fakes/CallLog.h"
#include "tests/support/Installed.h"
#include "tests/support/TemporaryFolder.h"
#include "toolkit/catalogue/SystemCache.h"
#include "toolkit/edit/ClipStore.h"

namespace test {

/// Where a host keeps what it knows of clips and their media.
enum class Host { memory, sqlite };

/// What a test says of a clip.
struct ClipFacts {
    std::uint32_t logType = logShot;
    bool isImage = false;
    /// The attribute "chans".
    std::string channels = {};
    std::uint32_t videoCount = 0;
    std::uint32_t audioCount = 0;
    /// No host keeps time lines, so these two are the test's own.
    bool isEmpty = false;
    EditItem item = {};
};

/// The catalogue and the clips of a host, in force while it lives. Clips that are opened are recorded as
/// "edit.open".
///
/// Threads  One.
class HostedMedia : public iEditStore {
public:
    HostedMedia(Host host, std::shared_ptr<CallLog> calls);
    ~HostedMedia() override;

    /// Puts a clip in place of all that was known of it.
    void addClip(Cookie const& cookie, ClipFacts const& facts);
    void setReferences(Cookie const& cookie, std::uint32_t kind, std::vector<Cookie> const& references);
    /// Files the original of a cookie in place of the one before, and proxies beside those that are there.
    void addEntry(Cookie const& cookie, MediaFileInfo const& original,
                  std::vector<MediaFileInfo> const& proxies = {});
    [[nodiscard]] int openEdits() const { return clips_->getOpenCount(); }

    Ox::Ptr<Edit> open(Cookie const& cookie) override;
    void close(Edit& edit) override;

private:
    class TimeLine;

    std::shared_ptr<CallLog> const calls_;
    TemporaryFolder folder_;
    std::unique_ptr<SystemCache> catalogue_;
    std::unique_ptr<ClipStore> clips_;
    std::map<Cookie, ClipFacts> facts_;
    std::unique_ptr<InstalledCatalogue> installedCatalogue_;
    std::unique_ptr<InstalledEditStore> installedClips_;
};

}  // namespace test
