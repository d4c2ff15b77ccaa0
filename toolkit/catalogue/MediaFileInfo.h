#pragma once

#include <cstdint>

#include "ole/Ox/OxString.h"
#include "toolkit/catalogue/MaterialFilename.h"

/// One media file of a clip.
///
/// The names that a file has:
///
/// | Name      | Operation                               | What it is                                           |
/// |-----------|-----------------------------------------|------------------------------------------------------|
/// | material  | `materialFilename`                      | where the catalogue keeps it: a drive and a path on  |
/// |           |                                         | it, with the clip's identity in its last part        |
/// | link file | `getLinkFileName`                       | the material's place as the system takes it. What    |
/// |           |                                         | lies there are the media, or a link file to them     |
/// | linked    | `FsysDirectoryEntry::getLinkedFilename` | where the link file points to; empty without a link  |
/// | physical  | `getPhysicalFilename`                   | where the media really are: the linked name if there |
/// |           |                                         | is one, else the place itself. It is the one under   |
/// |           |                                         | which the file is open                               |
/// | waveform  | `getWaveformDataFileFor`, of a cookie   | the picture of a sound's course, which is no media   |
///
/// A file of `kindElsewhere` is reached by a link or through a store. One whose linked name is set is linked.
class MediaFileInfo {
public:
    /// In `kind`: the physical file lies elsewhere, and may be remote.
    static constexpr std::uint32_t kindElsewhere = 512;
    /// In `kind`: the media lie at the material's place.
    static constexpr std::uint32_t kindHere = 0;
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
    /// True if both are the same file by their names.
    [[nodiscard]] bool isSameFile(MediaFileInfo const& other) const {
        return materialFilename == other.materialFilename && physicalFilename == other.physicalFilename;
    }

    /// Says where the media are: elsewhere, or with an empty name at the material's place.
    void setLink(LightweightString<wchar_t> const& target) {
        physicalFilename = target;
        kind = target.empty() ? kindHere : kindElsewhere;
    }
    /// Writes the link file of a file that lies elsewhere.
    ///
    /// @param replaceExisting  as `MaterialLink::createLink` takes it
    /// @return false if it has no link, no place, or couldn't be written; the last is logged
    [[nodiscard]] bool createLinkFile(bool replaceExisting) const;

    MaterialFilename materialFilename;
    /// Set for media that lie elsewhere; empty for a file at the material's place.
    LightweightString<wchar_t> physicalFilename;
    std::uint32_t streamCount = 0;
    std::uint32_t kind = kindHere;
    std::uint32_t status = available;
    /// Bytes.
    std::uint64_t size = 0;
    bool isProxyFile = false;
};
