#include "tools/playfile/ClipFiles.h"

#include <algorithm>
#include <numeric>

#include "ole/os/OS.h"
#include "toolkit/catalogue/SystemCache.h"
#include "toolkit/edit/Edit.h"

namespace cli {
namespace {

void addFile(Cookie const& cookie, MediaFileInfo const& file, std::vector<ClipFile>& files) {
    auto const same = std::find_if(files.begin(), files.end(), [&](ClipFile const& each) {
        return each.file.isProxy() == file.isProxy() && each.file.isSameFile(file);
    });
    if (same == files.end()) {
        files.push_back({file, {cookie}});
    } else {
        same->cookies.push_back(cookie);
    }
}

bool isAvailable(ClipFile const& file) {
    return file.file.status == MediaFileInfo::available;
}

bool isOriginal(ClipFile const& file) {
    return !file.file.isProxy();
}

bool isRemote(ClipFile const& file) {
    return OS()->getFileManager().isRemote(file.file.getPhysicalFilename(true));
}

bool isLinked(ClipFile const& file) {
    return !file.file.physicalFilename.empty();
}

}  // namespace

std::vector<ClipFile> filesOfClip(Cookie const& clip, bool looks) {
    std::vector<ClipFile> files;
    for (Ox::Ptr<FsysDirectoryEntry> const& entry : SystemCache::instance()->getClipMediaFiles(clip)) {
        if (looks) {
            static_cast<void>(entry->updateStatus(mediaAll));
        }
        bool const hasOriginal =
            !entry->physicalFilename.empty() || !entry->materialFilename.getPath().empty();
        if (hasOriginal) {
            addFile(entry->getCookie(), *entry, files);
        }
        for (MediaFileInfo const& proxy : entry->getProxyFiles()) {
            addFile(entry->getCookie(), proxy, files);
        }
    }
    return files;
}

/// One original that isn't there makes a clip incomplete, and proxies make up for it only where none is.
eClipState stateOf(std::vector<ClipFile> const& files) {
    std::vector<ClipFile> originals;
    std::copy_if(files.begin(), files.end(), std::back_inserter(originals), isOriginal);
    bool const areAllThere =
        !originals.empty() && std::all_of(originals.begin(), originals.end(), isAvailable);
    if (!areAllThere) {
        bool const isAnyThere = std::any_of(originals.begin(), originals.end(), isAvailable);
        bool const hasProxy = std::any_of(files.begin(), files.end(), isAvailable);
        return !isAnyThere && hasProxy ? eClipState::proxyOnly : eClipState::missing;
    }
    if (std::any_of(originals.begin(), originals.end(), isRemote)) {
        return eClipState::remote;
    }
    return std::any_of(originals.begin(), originals.end(), isLinked) ? eClipState::linked : eClipState::here;
}

char const* nameOf(eClipState state) {
    switch (state) {
        case eClipState::here:
            return "here";
        case eClipState::linked:
            return "linked";
        case eClipState::remote:
            return "remote";
        case eClipState::proxyOnly:
            return "proxy only";
        case eClipState::missing:
            break;
    }
    return "missing";
}

std::uint64_t sizeOf(std::vector<ClipFile> const& files) {
    return std::accumulate(files.begin(), files.end(), std::uint64_t{0},
                           [](std::uint64_t sum, ClipFile const& each) { return sum + each.file.size; });
}

char const* kindOf(ClipSummary const& clip) {
    switch (clip.logType) {
        case logImage:
            return "image";
        case logSequence:
            return "sequence";
        case logGroup:
            return "group";
        case logSync:
            return "sync";
        case logEffect:
            return "effect";
        default:
            break;
    }
    if (clip.videoChannels != 0) {
        return "video";
    }
    return clip.audioChannels != 0 ? "sound" : "unknown";
}

std::string channelsOf(ClipSummary const& clip) {
    std::string text = clip.videoChannels > 1 ? "V" + std::to_string(clip.videoChannels)
                                              : std::string(clip.videoChannels, 'V');
    if (clip.audioChannels != 0) {
        text += (text.empty() ? "A" : " A") + std::to_string(clip.audioChannels);
    }
    return text;
}

}  // namespace cli
