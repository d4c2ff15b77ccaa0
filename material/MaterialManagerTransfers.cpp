// The operations that put a transfer on the queue of tasks.

#include "material/MaterialManager.h"
#include "toolkit/edit/Edit.h"
#include "toolkit/services/NumberText.h"
#include "toolkit/services/ResourceText.h"
#include "toolkit/tasks/BackgroundTaskQueue.h"
#include "transfer/ExternalDownloadTask.h"
#include "transfer/LocaliseTask.h"

namespace {

constexpr wchar_t const* titleSeparator = L" : ";
constexpr std::uint32_t allSelections = LocaliseTask::selectLinked | LocaliseTask::selectDownloadable;

template <class Task>
void start(typename Task::Args const& args) {
    UIBackgroundTasksQueue::instance().queue(Ox::makePtr<Task>(args), false);
}

}  // namespace

LightweightString<wchar_t> MaterialManager::makeTaskTitle(CookieVec const& cookies,
                                                          LightweightString<wchar_t> const& base) {
    LightweightString<wchar_t> const begun = base + LightweightString<wchar_t>(titleSeparator);
    if (cookies.size() != 1) {
        return begun +
               resourceStrW(ResIds::severalClips)
                   .substitute(L"$NUM$", Ox::WStringFromInteger(static_cast<std::int64_t>(cookies.size())));
    }
    EditPtr edit;
    edit.i_open(cookies[0], 0);
    return edit ? begun + edit->getName() : base;
}

void MaterialManager::localiseMedia(CookieVec const& cookies, DriveId const& drive, bool originals,
                                    bool proxies, iBackgroundTask::eImportance importance,
                                    LightweightString<wchar_t> const& title) {
    LocaliseTask::Args args;
    getReferencedClips(cookies, args.clips);
    args.mediaTypes = (originals ? mediaOriginal : 0U) | (proxies ? mediaProxy : 0U);
    args.importance = importance;
    args.description = title.empty() ? resourceStrW(ResIds::localising) : title;
    args.targetDrive = drive;
    args.clipSelection = allSelections;
    start<LocaliseTask>(args);
}

void MaterialManager::localiseRemoteMedia(CookieVec const& cookies, eMediaTypes mediaTypes,
                                          iBackgroundTask::eImportance importance) {
    LocaliseTask::Args args;
    getReferencedClips(cookies, args.clips);
    LightweightString<wchar_t> const usual = resourceStrW(ResIds::localising);
    LightweightString<wchar_t> const title = makeTaskTitle(cookies, usual);
    args.mediaTypes = mediaTypes;
    args.importance = importance;
    args.description = title.empty() ? usual : title;
    args.targetDrive = DriveId::none;
    args.clipSelection = LocaliseTask::selectDownloadable;
    start<LocaliseTask>(args);
}

void MaterialManager::downloadRemoteMedia(CookieVec const& cookies, eMediaTypes mediaTypes,
                                          ExternalDownloadSettings const& settings) {
    ExternalDownloadTask::Args args;
    getReferencedClips(cookies, args.clips);
    args.mediaTypes = mediaTypes;
    args.importance = iBackgroundTask::importanceHigh;
    args.description = makeTaskTitle(cookies, resourceStrW(ResIds::externalDownload));
    args.settings = settings;
    start<ExternalDownloadTask>(args);
}
