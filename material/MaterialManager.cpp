/// Which files hold a clip, and what clips refer to. Where files are is told by MaterialManagerPlace.cpp.
#include "material/MaterialManager.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "ole/os/OS.h"
#include "toolkit/catalogue/SystemCache.h"
#include "toolkit/edit/Edit.h"
#include "toolkit/edit/EditInfo.h"
#include "toolkit/services/Log.h"
#include "toolkit/services/Paths.h"

namespace {

/// Extensions of files that have no alpha channel: those of cameras, and JPEG.
constexpr std::array<std::wstring_view, 13> opaqueExtensions = {
    L"cin", L"cr2", L"sr2", L"nef", L"3FR", L"dcr", L"x3f", L"orf", L"pef", L"arw", L"dng", L"jpeg", L"jpg"};

/// Letters of other scripts are in none of the extensions.
wchar_t lowered(wchar_t letter) {
    return letter >= L'A' && letter <= L'Z' ? static_cast<wchar_t>(letter - L'A' + L'a') : letter;
}

bool isSameText(std::wstring_view a, std::wstring_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](wchar_t x, wchar_t y) { return lowered(x) == lowered(y); });
}

LightweightString<wchar_t> physicalNameOf(Cookie const& cookie) {
    Ox::Ptr<FsysDirectoryEntry> const entry = SystemCache::instance()->findEntryForCookie(cookie);
    return entry ? entry->getPhysicalFilename(false) : LightweightString<wchar_t>();
}

Cookie videoOf(Cookie const& cookie) {
    return convertCookie(cookie, 'V', Cookie::wholeClip);
}

}  // namespace

LightweightString<wchar_t> MaterialManager::findFileForImageClip(Cookie const& cookie) {
    EditPtr edit;
    edit.i_open(cookie);
    bool const isImage = edit && edit->isImage();
    return isImage ? physicalNameOf(videoOf(cookie)) : LightweightString<wchar_t>();
}

LightweightString<wchar_t> MaterialManager::findFileForVideoClip(Cookie const& cookie) {
    return physicalNameOf(videoOf(cookie));
}

bool MaterialManager::hasAlphaChannel(Cookie const& cookie) {
    if (cookie.type() == 'I') {
        return true;
    }
    LightweightString<wchar_t> const name = findFileForVideoClip(cookie);
    if (name.empty()) {
        return true;
    }
    LightweightString<wchar_t> const extension = getExtension(name, false);
    return std::none_of(opaqueExtensions.begin(), opaqueExtensions.end(),
                        [&](std::wstring_view opaque) { return isSameText(extension.view(), opaque); });
}

bool MaterialManager::isMediaAvailable(Cookie const& cookie, eMediaTypes types) {
    EditPtr edit;
    edit.i_open(cookie);
    if (!edit) {
        return false;
    }
    for (Cookie const& file : edit->getReferences(Edit::ownMediaReferences)) {
        if (Ox::Ptr<FsysDirectoryEntry> const entry = SystemCache::instance()->findEntryForCookie(file)) {
            return entry->updateStatus(types) == MediaFileInfo::available;
        }
    }
    return false;
}

bool MaterialManager::isHighResMediaAvailable(Cookie const& cookie) {
    return isMediaAvailable(cookie, mediaOriginal);
}

bool MaterialManager::isProxyMediaAvailable(Cookie const& cookie) {
    return isMediaAvailable(cookie, mediaProxy);
}

CookieVec MaterialManager::findClipMediaFileIDs(Cookie const& cookie) {
    EditInfo const info(cookie);
    std::uint32_t videoCount = info.getNumChans(videoChannel, 0);
    std::uint32_t const audioCount = info.getNumChans(audioChannel, 0);
    if (videoCount != 0 && audioCount != 0) {
        bool const namesVideo = info.getAttrib("chans").view().find('V') != std::string_view::npos;
        videoCount = namesVideo ? videoCount : 0;
    }
    CookieVec cookies;
    for (std::uint32_t channel = 0; channel < videoCount; ++channel) {
        cookies.add(convertCookie(cookie, 'V', static_cast<unsigned char>(channel)));
    }
    for (std::uint32_t channel = 1; channel <= audioCount; ++channel) {
        cookies.add(convertCookie(cookie, 'S', static_cast<unsigned char>(channel)));
    }
    return cookies;
}

void MaterialManager::findFilesForShot(Cookie const& cookie, std::vector<LightweightString<wchar_t>>& files) {
    for (Cookie const& file : findClipMediaFileIDs(cookie)) {
        if (Ox::Ptr<FsysDirectoryEntry> const entry = SystemCache::instance()->findEntryForCookie(file)) {
            files.push_back(entry->getPhysicalFilename(true));
        }
    }
}

std::vector<LightweightString<wchar_t>> MaterialManager::getRevealableFiles(Cookie const& cookie) {
    std::vector<LightweightString<wchar_t>> files;
    findFilesForShot(cookie, files);
    std::vector<LightweightString<wchar_t>> existing;
    for (LightweightString<wchar_t> const& name : files) {
        LightweightString<wchar_t> const mounted = OS()->getFileManager().getMountedFilename(name);
        if (fileExists(mounted)) {
            existing.push_back(mounted);
        } else {
            LogStringW(LightweightString<wchar_t>(L"MaterialManager::getRevealableFiles() File missing : ") +
                       name + L"\n");
        }
    }
    return existing;
}

void MaterialManager::getReferencedClips(CookieVec const& cookies, std::set<Cookie>& clips) {
    for (Cookie const& cookie : cookies) {
        EditPtr edit;
        edit.i_open(cookie);
        if (edit) {
            CookieVec const references = edit->getReferences(Edit::clipReferences);
            clips.insert(references.begin(), references.end());
        }
    }
}

void MaterialManager::getReferencedMediaFiles(CookieVec const& cookies, std::set<Cookie>& files) {
    for (Cookie const& cookie : cookies) {
        EditPtr edit;
        edit.i_open(cookie);
        if (!edit) {
            continue;
        }
        for (Cookie const& file : edit->getReferences(Edit::mediaReferences)) {
            if (file.type() != 'E') {
                files.insert(file);
            }
        }
    }
}
