#pragma once

#include <cstdint>
#include <vector>

#include "ole/Ox/OxObject.h"
#include "toolkit/catalogue/Cookie.h"
#include "toolkit/catalogue/MaterialFilename.h"
#include "toolkit/catalogue/OpenType.h"

/// One media file of a clip.
///
/// Its names:
///
/// | Name          | Operation             | What it is                                                     |
/// |---------------|-----------------------|----------------------------------------------------------------|
/// | material      | `materialFilename`    | where the catalogue keeps the file: a drive and a path on it   |
/// | link file     | `getLinkFileName`     | that place as the system takes it; it bears the clip's identity|
/// | physical      | `getPhysicalFilename` | where the pixels and samples really are                        |
///
/// They differ for a file whose media lie elsewhere (`kindElsewhere`): a small file at the material's place
/// then only points to them. Linked files and waveforms are named by the entry and the cookie.
class MediaFileInfo {
public:
    /// In `kind`: the physical file lies elsewhere, and may be remote.
    static constexpr std::uint32_t kindElsewhere = 512;
    /// In `status`: the file can be read.
    static constexpr std::uint32_t available = 2;
    static constexpr std::uint32_t missing = 0;

    MediaFileInfo() = default;
    /// A file at the place itself. @param byteCount  its size
    MediaFileInfo(MaterialFilename const& material, std::uint64_t byteCount)
        : materialFilename(material), size(byteCount) {}
    /// A file that lies elsewhere.
    MediaFileInfo(MaterialFilename const& material, LightweightString<wchar_t> const& physical,
                  std::uint64_t byteCount)
        : materialFilename(material), physicalFilename(physical), kind(kindElsewhere), size(byteCount) {}

    [[nodiscard]] bool isProxy() const { return isProxyFile; }
    /// Where the media really are. It is the very text that the catalogue gives for the file's cookie.
    ///
    /// @param asStored  true leaves out what mounting would change
    [[nodiscard]] LightweightString<wchar_t> getPhysicalFilename(bool asStored = false) const;
    /// The file at the material's place; empty if it has none, which makes it impossible to rename.
    [[nodiscard]] LightweightString<wchar_t> getLinkFileName() const { return materialFilename.getOsPath(); }
    void setMaterialFilename(MaterialFilename const& material) { materialFilename = material; }

    MaterialFilename materialFilename;
    /// Set for media that lie elsewhere; empty for a file at the material's place.
    LightweightString<wchar_t> physicalFilename;
    std::uint32_t streamCount = 0;
    std::uint32_t kind = 0;
    std::uint32_t status = available;
    /// Bytes.
    std::uint64_t size = 0;
    bool isProxyFile = false;
};

/// What the catalogue has for one cookie: its original, which the entry itself describes, and its proxies.
///
/// Threads  An entry is a picture of the catalogue at the time it was asked for, and belongs to who asked.
class FsysDirectoryEntry : public virtual iObject, public MediaFileInfo {
public:
    FsysDirectoryEntry(Cookie const& cookie, MediaFileInfo const& original,
                       std::vector<MediaFileInfo> proxies)
        : MediaFileInfo(original), cookie_(cookie), proxies_(std::move(proxies)) {}

    [[nodiscard]] Cookie const& getCookie() const { return cookie_; }
    [[nodiscard]] std::vector<MediaFileInfo> const& getProxyFiles() const { return proxies_; }

    /// True if the original's place holds a link to where the file really is.
    [[nodiscard]] bool isLinked() const { return kind == kindElsewhere && !physicalFilename.empty(); }

    /// Looks now whether the files are there, and keeps that as the `status` of each that was asked for. May take
    /// as long as the file system or the network does.
    ///
    /// @param types  originals, proxies or both
    /// @return `available` if one of them is, else `missing`
    virtual std::uint32_t updateStatus(eMediaTypes types);

private:
    Cookie const cookie_;
    std::vector<MediaFileInfo> proxies_;
};
