/// What is done to the material of a clip as a whole: deleting, sizing, checking.
#include "files/PlayFileCache.h"
#include "files/PlayUtil.h"
#include "ole/os/OS.h"
#include "playfile/Settings.h"
#include "toolkit/catalogue/SystemCache.h"
#include "toolkit/edit/EditModifier.h"
#include "toolkit/services/Log.h"
#include "toolkit/services/Paths.h"
#include "toolkit/services/ResourceText.h"

namespace {

constexpr unsigned mostVideoChannels = 24;

/// The files on which no open instance may stand any more when they are deleted.
std::vector<LightweightString<wchar_t>> physicalNames(FsysDirectoryEntry const& entry, eMediaTypes types) {
    std::vector<LightweightString<wchar_t>> names;
    if ((types & mediaProxy) != 0) {
        for (MediaFileInfo const& proxy : entry.getProxyFiles()) {
            names.push_back(proxy.getPhysicalFilename());
        }
    }
    if ((types & mediaOriginal) != 0) {
        names.push_back(entry.getPhysicalFilename());
    }
    return names;
}

std::uint32_t deleteMedia(Cookie const& cookie, eMediaTypes types) {
    Ox::Ptr<FsysDirectoryEntry> const entry = SystemCache::instance()->findEntryForCookie(cookie);
    if (!entry) {
        LogBoth("PlayFile[%s]::delete: *** Material not available ***\n", cookie.asString(false).c_str());
        return oxSuccess;
    }
    for (LightweightString<wchar_t> const& name : physicalNames(*entry, types)) {
        PlayFileCache::Shared()->remove(name);
    }
    std::uint32_t const result = SystemCache::instance()->removeFile(cookie, types, false);
    if (result != oxSuccess) {
        LogBoth("PlayFile[%s]::delete: *** Unable to delete material file ***, %s\n",
                cookie.asString(false).c_str(), resourceStr(result, resourcePlain).c_str());
    }
    return result;
}

Cookie channelOf(Cookie const& clip, CookieType type, unsigned channel) {
    return convertCookie(clip, type, static_cast<unsigned char>(channel));
}

}  // namespace

std::uint32_t PlayUtil::deletePlayFile(Cookie const& cookie, eMediaTypes types) {
    std::uint32_t const result = deleteMedia(cookie, types);
    if (cookie.type() == 'S') {
        OS()->getFileManager().deleteFile(getWaveformDataFileFor(cookie));
    }
    return result;
}

std::uint32_t PlayUtil::delete_material_files(Cookie cookie, eMediaTypes types) {
    std::uint32_t result = oxSuccess;
    auto const deleteChannel = [&](Cookie const& channel) {
        std::uint32_t const outcome = deletePlayFile(channel, types);
        result = outcome != oxSuccess ? outcome : result;
    };
    for (unsigned index = 0; index < mostVideoChannels; ++index) {
        Cookie const channel = channelOf(cookie, 'V', index);
        if (!SystemCache::instance()->fileExists(channel)) {
            break;
        }
        deleteChannel(channel);
    }
    std::int64_t const mostAudioChannels = readMaxAudioChannels();
    for (std::int64_t index = 1; index <= mostAudioChannels; ++index) {
        Cookie const channel = channelOf(cookie, 'S', static_cast<unsigned>(index));
        if (SystemCache::instance()->fileExists(channel)) {
            deleteChannel(channel);
        }
    }
    return result;
}

std::uint32_t PlayUtil::get_total_size(Cookie const& cookie, unsigned long* total) {
    LightweightString<wchar_t> name;
    if (SystemCache::instance()->findFileForCookie(cookie, name, DecodeFormat(levelOriginal)) &&
        fileExists(name)) {
        *total += fileSize(name);
    }
    return oxSuccess;
}

bool PlayUtil::checkAudioMetadata(Cookie const& edit) {
    EditPtr clip;
    clip.i_open(edit);
    if (!clip || !clip->wantsAudioMetadata()) {
        return false;
    }
    Ox::Ptr<FileReadInstance> const file =
        PlayFileCache::Shared()->open(convertCookie(edit, 'S', 1), DecodeFormat::getDefault(), 0);
    if (!file || file->metadata->audioStreams.empty()) {
        return false;
    }
    {
        EditModifier const modifier(clip, LightweightString<char>());
        clip->setAudioMetadata(file->metadata->audioStreams);
        EditManager::updateProjdbRec(clip->getCookie());
    }
    clip.i_close();
    return true;
}

int PlayUtil::checkVideoMetadata(Cookie const&) {
    return 0;
}
