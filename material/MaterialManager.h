#pragma once

#include <set>
#include <vector>

#include "ole/Ox/OxString.h"
#include "toolkit/catalogue/Cookie.h"
#include "toolkit/catalogue/MaterialFilename.h"
#include "toolkit/catalogue/OpenType.h"
#include "toolkit/tasks/BackgroundTask.h"

struct ExternalDownloadSettings;

/// Answers questions about the media behind a clip: which files hold it, whether they are on this machine or
/// remote, what is available and what can be downloaded.
///
/// It keeps nothing: every answer comes from the file catalogue, the clip database, the project spaces and
/// the file manager as they are at that moment.
///
/// Threads      Any, but no real-time thread: the file system and the network may be asked.
/// Errors       None is reported. A clip that doesn't open, a cookie without an entry, a project space with
///              nothing behind it: false, empty, or the cookie is passed over.
/// Units        types: a mask of `mediaOriginal` and `mediaProxy`.
class MaterialManager {
public:
    /// The physical name of an image's file; empty for a clip that is none.
    [[nodiscard]] static LightweightString<wchar_t> findFileForImageClip(Cookie const& cookie);
    /// The physical name of the file that holds a clip's video.
    [[nodiscard]] static LightweightString<wchar_t> findFileForVideoClip(Cookie const& cookie);
    /// False if the type of the clip's file is known to have no alpha channel. Images, and clips without a
    /// file, count as if they had one.
    [[nodiscard]] static bool hasAlphaChannel(Cookie const& cookie);

    /// True if media of the cookies lie on another machine.
    ///
    /// Deliberate  In a normal project the last cookie that has a proxy which may be remote decides for all
    ///             proxies.
    [[nodiscard]] static bool isMediaRemote(std::set<Cookie> const& cookies, eMediaTypes types);
    [[nodiscard]] static bool isMediaRemote(Cookie const& cookie, eMediaTypes types);
    /// True if media of the cookies lie on this machine.
    [[nodiscard]] static bool isMediaLocal(std::set<Cookie> const& cookies, eMediaTypes types);
    [[nodiscard]] static bool isMediaLocal(Cookie const& cookie, eMediaTypes types);

    /// True if the media can be read at this moment. The first file of the clip that the catalogue knows
    /// answers for all.
    [[nodiscard]] static bool isMediaAvailable(Cookie const& cookie, eMediaTypes types);
    [[nodiscard]] static bool isHighResMediaAvailable(Cookie const& cookie);
    [[nodiscard]] static bool isProxyMediaAvailable(Cookie const& cookie);

    /// True if a remote project space has what isn't here yet; outside one, if the clips refer to remote
    /// media.
    ///
    /// Deliberate  Outside a remote project space the answer for proxies stands alone where both are asked
    ///             for.
    [[nodiscard]] static bool canDownload(CookieVec const& cookies, eMediaTypes types);
    [[nodiscard]] static bool canDownload(Cookie const& cookie, eMediaTypes types);

    /// The material files of a clip: its video channels, which count from 0, and its audio channels, which
    /// count from 1. Of a clip with both, video only if its attribute "chans" names it.
    [[nodiscard]] static CookieVec findClipMediaFileIDs(Cookie const& cookie);
    /// Appends the physical names of a clip's material files, as they are stored.
    static void findFilesForShot(Cookie const& cookie, std::vector<LightweightString<wchar_t>>& files);
    /// Those files of a clip that exist, as the system names them; a missing one is logged.
    [[nodiscard]] static std::vector<LightweightString<wchar_t>> getRevealableFiles(Cookie const& cookie);

    /// Adds the clips that the logs refer to.
    static void getReferencedClips(CookieVec const& cookies, std::set<Cookie>& clips);
    /// Adds the media files that the logs refer to, without edits.
    static void getReferencedMediaFiles(CookieVec const& cookies, std::set<Cookie>& files);
    [[nodiscard]] static bool logsReferToRemoteMedia(CookieVec const& cookies, eMediaTypes types);
    [[nodiscard]] static bool logsReferToLocalMedia(CookieVec const& cookies, eMediaTypes types);

    // What follows starts work: it puts a task on `UIBackgroundTasksQueue` and returns. A call that finds no
    // clips starts one too, which has nothing to do.

    /// A title with the clip's name behind it, or with the number of clips where it isn't exactly one.
    [[nodiscard]] static LightweightString<wchar_t> makeTaskTitle(CookieVec const& cookies,
                                                                  LightweightString<wchar_t> const& base);
    /// Copies linked and remote media of the clips that the logs refer to into the material folders.
    ///
    /// @param title  as it is to be shown; empty for the usual one, without a clip's name
    static void localiseMedia(CookieVec const& cookies, DriveId const& drive, bool originals, bool proxies,
                              iBackgroundTask::eImportance importance,
                              LightweightString<wchar_t> const& title);
    /// The same of media that can be downloaded.
    static void localiseRemoteMedia(CookieVec const& cookies, eMediaTypes mediaTypes,
                                    iBackgroundTask::eImportance importance);
    /// Copies remote media of those clips to a folder, and leaves the catalogue as it is.
    static void downloadRemoteMedia(CookieVec const& cookies, eMediaTypes mediaTypes,
                                    ExternalDownloadSettings const& settings);
};
