#pragma once

#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "header/SavHeader.h"
#include "tests/fakes/CallLog.h"
#include "tests/support/MadeCookie.h"
#include "toolkit/catalogue/MaterialInfo.h"
#include "toolkit/catalogue/SystemCache.h"
#include "toolkit/edit/Edit.h"

class FakeEdit;

/// Catalogue, material facts and clips, all in memory and all recorded; in force while it lives.
///
/// Threads  Any.
class FakeCatalogue : public SystemCache, public MaterialInfo::iStore, public iEditStore {
public:
    explicit FakeCatalogue(std::shared_ptr<CallLog> calls);
    ~FakeCatalogue() override;

    /// Files a path under a cookie, for one level.
    void addFile(Cookie const& cookie, std::string const& path, std::uint32_t level = levelOriginal);
    void setStartOffset(Cookie const& cookie, std::int32_t offset);
    /// Makes a clip that can be opened; `settings` null: it has no decode settings.
    void addEdit(Cookie const& cookie, std::unique_ptr<configb> settings);
    /// What was looked up, as "V000 1": type, channel and level, in order.
    [[nodiscard]] std::vector<std::string> finds() const {
        std::lock_guard const scope(lock_);
        return finds_;
    }
    /// Clips that are open at this moment.
    [[nodiscard]] int openEdits() const;

    /// What `removeFile` answers.
    OxResult removal = oxSuccess;
    /// False: no header can be stored.
    bool takesHeaders = true;
    /// The last one that was stored.
    SAV_HEADER header;

    /// Run at the start of each look-up of a file; set before it is used.
    std::function<void()> onFind;
    /// Run at the start of each look-up of a start offset; set before it is used.
    std::function<void(Cookie const&)> onStartOffset;
    /// Run at the start of each `removeFile`; set before it is used.
    std::function<void()> onRemove;

    /// Says how many channels a clip has that can be opened.
    void setChannels(Cookie const& cookie, std::size_t videoChannels, std::size_t audioChannels);
    /// Makes a clip want to know what its sound is. What it is told is recorded as "edit.setAudioMetadata"
    /// with the number of streams.
    void wantAudioMetadata(Cookie const& cookie);
    /// What else there is to be known of a clip.
    struct ClipFacts {
        std::uint32_t logType = logShot;
        std::string name = {};
        bool isValid = true;
        /// How fast its first channel is shown; none: it has no such channel.
        std::optional<double> velocity = {};
    };
    void setFacts(Cookie const& cookie, ClipFacts const& facts);
    /// Says what a clip refers to, of one kind.
    void setReferences(Cookie const& cookie, std::uint32_t kind, std::vector<Cookie> const& references);
    /// Says at which rate a clip's sound was recorded.
    void setAudioRate(Cookie const& cookie, Aud::SampleRate rate);
    void modified(Edit& edit, LightweightString<char> const& description) override;
    void updateRecord(Cookie const& cookie) override;

    /// Says which media files a clip refers to.
    void setReferences(Cookie const& cookie, std::vector<Cookie> const& references);
    /// Files the whole entry of a cookie.
    void addEntry(Cookie const& cookie, MediaFileInfo const& original,
                  std::vector<MediaFileInfo> const& proxies = {});
    /// The same of an entry with a keeper of its own.
    void addEntry(Ox::Ptr<FsysDirectoryEntry> const& entry);

    Ox::Ptr<FsysDirectoryEntry> findEntryForCookie(Cookie const& cookie) override;
    std::vector<Ox::Ptr<FsysDirectoryEntry>> getClipMediaFiles(Cookie const& clip) override;
    void addFile(Cookie const& cookie, MediaFileInfo const& file, bool option) override;
    void addFile(Cookie const& cookie, MaterialFilename const& material, bool option) override;
    bool writeHeader(Cookie const& cookie, SAV_HEADER const& header) override;
    OxResult removeFile(Cookie const& cookie, eMediaTypes types, bool option) override;
    /// Recorded as "catalogue.removeProxyFile", and so on.
    void removeProxyFile(Cookie const& cookie, MediaFileInfo const& file) override;
    void renameProxyFile(Cookie const& cookie, LightweightString<wchar_t> const& from,
                         LightweightString<wchar_t> const& to) override;
    std::uint32_t updateStatus(Cookie const& cookie, eMediaTypes types) override;
    DriveId getDriveForCookie(Cookie const& cookie, EditChanType type) override;
    /// Gives the edits that were added, in the order of their cookies.
    std::vector<Cookie> search(std::uint32_t source, std::uint32_t kinds) override;
    bool findFileForCookie(Cookie const& cookie, LightweightString<wchar_t>& filename,
                           DecodeFormat const& format) override;
    std::int32_t getStartOffset(Cookie const& cookie) override;
    Ox::Ptr<Edit> open(Cookie const& cookie) override;
    void close(Edit& edit) override;

private:
    std::shared_ptr<CallLog> const calls_;
    mutable std::mutex lock_;
    std::map<std::pair<std::string, std::uint32_t>, std::string> files_;
    std::map<std::string, std::int32_t> offsets_;
    std::vector<std::string> finds_;
    std::map<std::string, Ox::Ptr<FsysDirectoryEntry>> entries_;
    std::map<std::string, Ox::Ptr<FakeEdit>> edits_;
    int openEdits_ = 0;
    SystemCache* const oldCatalogue_;
    MaterialInfo::iStore* const oldMaterial_;
    iEditStore* const oldEdits_;
};
