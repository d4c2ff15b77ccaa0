#include "tools/playfile/MaterialPlacer.h"

#include "ole/os/OS.h"
#include "toolkit/catalogue/MaterialLink.h"
#include "toolkit/catalogue/SystemCache.h"
#include "toolkit/services/FilespecUtils.h"
#include "toolkit/services/Paths.h"
#include "tools/playfile/CommandError.h"
#include "tools/playfile/Interrupt.h"
#include "tools/playfile/Text.h"

namespace cli {
namespace {

using Name = LightweightString<wchar_t>;

int goOn(void*, unsigned long, unsigned long) {
    try {
        checkForInterrupt();
        return 1;
    } catch (Stopped const&) {
        return 0;
    }
}

/// Where series keep the number of their first file.
Name numberOf(std::string const& name) {
    constexpr std::string_view digits = "0123456789";
    std::string const stem = name.substr(0, name.rfind('.'));
    std::size_t const last = stem.find_last_of(digits);
    std::size_t const before = stem.find_last_not_of(digits, last);
    std::size_t const first = before == std::string::npos ? 0 : before + 1;
    return wideName(stem.substr(first, last + 1 - first));
}

[[noreturn]] void refuse(Name const& place, std::string const& reason) {
    throw CommandError("it can't be placed at " + inQuotes(narrowName(place)) + " (" + reason +
                       "); make room on its drive and allow writing there");
}

std::string lastReason() {
    return printable(narrowName(OS()->getErrors().getLastErrorText()));
}

}  // namespace

void MaterialPlacer::place(NewClip& clip, MediaGroup const& group) const {
    if (placing_ == ePlacing::none) {
        return;
    }
    CookieMedia media = clip.media.front().second;
    Name const stem = getMaterialFilenameForCookie(clip.media.front().first, drive_).getPath();
    FoundFile const& first = group.originals.front();
    bool const isCopiedSeries = placing_ == ePlacing::copy && group.originals.size() > 1;
    Name const number = isCopiedSeries ? Name(L"_") + numberOf(first.name) : Name();
    placeFile(*media.original, group.originals, stem + number + getExtension(wideName(first.path), true));
    for (std::size_t i = 0; i < media.proxies.size(); ++i) {
        Name const mark(L"_proxy" + std::to_wstring(i + 1));
        placeFile(media.proxies[i], {group.proxies[i]},
                  stem + mark + getExtension(wideName(group.proxies[i].path), true));
    }
    for (auto& each : clip.media) {
        each.second = media;
    }
}

void MaterialPlacer::placeFile(MediaFileInfo& file, std::vector<FoundFile> const& files,
                               Name const& path) const {
    if (file.physicalFilename.empty()) {
        return;
    }
    file.setMaterialFilename({drive_, path});
    Name const place = file.getLinkFileName();
    if (!OS()->getFileManager().createDirectory(getPath(place))) {
        refuse(place, lastReason());
    }
    if (placing_ == ePlacing::copy) {
        copy(files, place);
        file.setLink({});
    } else if (!file.createLinkFile(true)) {
        refuse(place, "no link file can be written, or another file has that name");
    }
}

void MaterialPlacer::copy(std::vector<FoundFile> const& files, Name const& first) const {
    for (std::size_t i = 0; i < files.size(); ++i) {
        Name const place = files.size() == 1
                               ? first
                               : Ox::FilespecUtils::getSEQFileName(first, static_cast<std::uint32_t>(i));
        iFileManager::eCopyRC const outcome =
            OS()->getFileManager().copyFile(wideName(files[i].path), place, true, &goOn, nullptr);
        checkForInterrupt();
        if (outcome != iFileManager::copied) {
            refuse(place, lastReason());
        }
    }
}

}  // namespace cli
