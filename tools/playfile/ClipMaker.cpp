#include "tools/playfile/ClipMaker.h"

#include <filesystem>
#include <numeric>

#include "toolkit/edit/Edit.h"
#include "tools/playfile/Md5.h"
#include "tools/playfile/MediaKind.h"
#include "tools/playfile/Text.h"

namespace cli {
namespace {

Cookie clipOf(FoundFile const& file) {
    Ox::UUID uuid;
    uuid.bytes = Md5::of(file.realPath.data(), file.realPath.size());
    return {uuid, 'E', Cookie::wholeClip};
}

std::uint64_t bytesOf(std::vector<FoundFile> const& files) {
    return std::accumulate(files.begin(), files.end(), std::uint64_t{0},
                           [](std::uint64_t sum, FoundFile const& file) { return sum + file.size; });
}

}  // namespace

ClipMaker::ClipMaker(DriveTable const& drives) {
    for (auto const& [drive, root] : drives.roots) {
        std::error_code error;
        std::filesystem::path const path = std::filesystem::canonical(narrowName(root), error);
        if (!error) {
            roots_[drive] = path == "/" ? "/" : path.string() + '/';
        }
    }
}

NewClip ClipMaker::make(MediaGroup const& group) const {
    FoundFile const& first = group.originals.front();
    eMediaKind const kind = kindOfMedia(first.name);
    NewClip clip;
    clip.cookie = clipOf(first);
    clip.record.name = wideName(first.name);
    clip.record.isImage = kind == eMediaKind::still;
    clip.record.logType = clip.record.isImage ? logImage : logImported;
    if (group.originals.size() > 1) {
        clip.record.attributes[fileCountAttribute] =
            LightweightString<char>(std::to_string(group.originals.size()));
    }
    CookieMedia media;
    media.add(fileOf(first, bytesOf(group.originals), false));
    for (FoundFile const& proxy : group.proxies) {
        media.add(fileOf(proxy, proxy.size, true));
    }
    clip.media = {{clip.cookie, media}};
    bool const isSound = kind == eMediaKind::sound;
    setChannels(clip, isSound ? 0 : 1, isSound ? 1 : 0);
    return clip;
}

void ClipMaker::setChannels(NewClip& clip, std::uint32_t videoChannels, std::uint32_t audioChannels) {
    CookieMedia const media = clip.media.front().second;
    clip.record.videoChannels = videoChannels;
    clip.record.audioChannels = audioChannels;
    clip.media.clear();
    for (std::uint32_t channel = 0; channel < videoChannels; ++channel) {
        clip.media.emplace_back(convertCookie(clip.cookie, 'V', static_cast<unsigned char>(channel)), media);
    }
    for (std::uint32_t channel = 1; channel <= audioChannels; ++channel) {
        clip.media.emplace_back(convertCookie(clip.cookie, 'S', static_cast<unsigned char>(channel)), media);
    }
}

MediaFileInfo ClipMaker::fileOf(FoundFile const& found, std::uint64_t size, bool isProxy) const {
    MediaFileInfo file({}, wideName(found.path), size);
    std::size_t longest = 0;
    for (auto const& [drive, root] : roots_) {
        if (root.size() > longest && found.path.starts_with(root)) {
            longest = root.size();
            file = MediaFileInfo(MaterialFilename(drive, wideName(found.path.substr(root.size()))), size);
        }
    }
    file.isProxyFile = isProxy;
    return file;
}

}  // namespace cli
