#pragma once

#include <map>
#include <mutex>
#include <vector>

#include "header/SavHeader.h"
#include "toolkit/catalogue/MaterialInfo.h"
#include "toolkit/catalogue/SystemCache.h"

/// The file catalogue in memory: the default, filled by the program.
///
/// Threads  Any. An entry may outlive the catalogue, and then changes what nobody looks at any more.
class MemoryCatalogue final : public SystemCache, public MaterialInfo::iStore {
public:
    MemoryCatalogue();
    ~MemoryCatalogue() override;

    [[nodiscard]] bool findFileForCookie(Cookie const& cookie, LightweightString<wchar_t>& filename,
                                         DecodeFormat const& format) override;
    [[nodiscard]] Ox::Ptr<FsysDirectoryEntry> findEntryForCookie(Cookie const& cookie) override;
    [[nodiscard]] std::vector<Ox::Ptr<FsysDirectoryEntry>> getClipMediaFiles(Cookie const& clip) override;
    using SystemCache::addFile;
    void addFile(Cookie const& cookie, MediaFileInfo const& file, bool option = false) override;
    OxResult removeFile(Cookie const& cookie, eMediaTypes types, bool option = false) override;
    /// What `setStartOffset` said, else what the header says.
    [[nodiscard]] std::int32_t getStartOffset(Cookie const& cookie) override;
    bool writeHeader(Cookie const& cookie, SAV_HEADER const& header) override;
    [[nodiscard]] bool readHeader(Cookie const& cookie, SAV_HEADER& header) override;

    /// Says which file, of no drive, holds a cookie at a level; what it said before is forgotten.
    void add(Cookie const& cookie, LightweightString<wchar_t> const& filename,
             eProxyLevel level = levelOriginal);
    void remove(Cookie const& cookie, eProxyLevel level = levelOriginal);
    void setStartOffset(Cookie const& cookie, std::int32_t samples);

    /// The one that is in force where no other is installed.
    [[nodiscard]] static MemoryCatalogue& instance();

private:
    class Media;

    Ox::Ptr<Media> const media_;
    std::mutex lock_;
    std::map<Cookie, std::int32_t> startOffsets_;
    std::map<Cookie, SAV_HEADER> headers_;
};
