#include "material/MediaLocationUtils.h"

#include <array>
#include <cstring>

#include "material/MaterialManager.h"
#include "ole/os/OS.h"
#include "toolkit/catalogue/SystemCache.h"
#include "toolkit/edit/EditInfo.h"
#include "toolkit/services/Paths.h"

namespace {

using Name = LightweightString<wchar_t>;

constexpr int oneItem = 2;
constexpr int topmost = -1;
/// The first words of the cookie of a strip that has no media.
constexpr std::array<std::uint32_t, 2> wordsOfNoMedia = {1, 647};

bool isEmptyOfMedia(EditPtr const& edit) {
    return edit->isEmpty(Editable::mediaExtent);
}

std::vector<Cookie> listOf(CookieVec const& cookies) {
    return {cookies.begin(), cookies.end()};
}

std::vector<Cookie> referencedMedia(Cookie const& cookie) {
    EditPtr edit;
    edit.i_open(cookie);
    bool const hasMedia = edit && !isEmptyOfMedia(edit);
    return hasMedia ? listOf(edit->getReferences(Edit::mediaReferences)) : std::vector<Cookie>();
}

std::vector<Cookie> mediaOf(Cookie const& cookie) {
    switch (EditInfo(cookie).getLogType()) {
        case logShot:
        case logImage:
        case logImported:
            return listOf(MaterialManager::findClipMediaFileIDs(cookie));
        case logGroup:
        case logSync:
            return referencedMedia(cookie);
        default:
            return {};
    }
}

void addPlace(Name const& name, MediaLocationInfo& info) {
    iFileManager& files = OS()->getFileManager();
    if (files.isRemote(name)) {
        iRemoteStore* const store = files.findRemoteStore(name);
        info.locations.push_back(store != nullptr ? store->getDisplayName(name) : name);
        info.filenames.emplace_back();
    } else {
        info.filenames.push_back(stripPath(name));
        info.locations.push_back(getPath(name));
    }
}

void addFile(Cookie const& file, MediaLocationInfo& info) {
    info.mediaFiles.push_back(file);
    Ox::Ptr<FsysDirectoryEntry> const entry = SystemCache::instance()->findEntryForCookie(file);
    if (!entry) {
        return;
    }
    info.videoStates.push_back(entry->updateStatus(mediaOriginal));
    info.audioStates.push_back(entry->updateStatus(mediaProxy));
    Name const name = entry->getPhysicalFilename(false);
    if (!name.empty()) {
        addPlace(name, info);
    }
    MaterialFilename const material = entry->materialFilename;
    if (material.getDrive() != DriveId::none && !material.getPath().empty()) {
        info.materialFiles.push_back(material);
    }
}

bool hasNoMedia(Cookie const& strip) {
    std::array<std::uint32_t, 2> words{};
    std::memcpy(words.data(), strip.uuid().bytes.data(), sizeof words);
    return words == wordsOfNoMedia;
}

bool isAllOffline(Cookie const& clip) {
    return MediaLocationUtils::getClipLocationInfo(clip).allMediaOffline();
}

/// Of what lies at the current time in the first selected channel.
bool isCurrentItemOffline(EditModule const& module) {
    std::vector<IdStamp> channels;
    module.getSelectedChans(channels, videoChannel, Edit::allChannels);
    if (channels.empty()) {
        return false;
    }
    double const time = module.getCurrentTime(EditModule::toTheFrame);
    EditGraphIterator const place(module.getEdit(), channels.front(), time, oneItem);
    if (!place.isValid()) {
        return false;
    }
    Ox::Ptr<EditNode> const node = place.getNode(topmost);
    if (node && dynamic_cast<EffectInstance_opu4h5a4j*>(node.get()) != nullptr) {
        return false;
    }
    CelEventPair const handle = place.getUTRHandle(topmost);
    if (!handle.valid() || hasNoMedia(handle.stripCookie())) {
        return false;
    }
    return isAllOffline(convertCookie(handle.stripCookie(), 'E', Cookie::wholeClip));
}

}  // namespace

MediaLocationInfo MediaLocationUtils::getClipLocationInfo(Cookie const& cookie) {
    MediaLocationInfo info;
    for (Cookie const& file : mediaOf(cookie)) {
        addFile(file, info);
    }
    return info;
}

bool MediaLocationUtils::isAllMediaOffline(EditModule const& module) {
    return isMediaOffline(module);
}

bool MediaLocationUtils::isSomeMediaOffline(EditModule const& module) {
    return isMediaOffline(module);
}

bool isMediaOffline(EditModule const& module) {
    EditPtr const& edit = module.getEdit();
    if (!edit || isEmptyOfMedia(edit)) {
        return false;
    }
    switch (edit->getLogType()) {
        case logShot:
        case logGroup:
        case logSync:
        case logEffect:
        case logImage:
            return isAllOffline(edit->getCookie());
        case logSequence:
            return isCurrentItemOffline(module);
        default:
            return false;
    }
}
