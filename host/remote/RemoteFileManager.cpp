#include "host/remote/RemoteFileManager.h"

#include <curl/curl.h>

#include <cerrno>

#include "host/posix/PosixErrors.h"
#include "host/remote/RemoteCopy.h"
#include "host/remote/RemoteQuestion.h"
#include "ole/os/Immortal.h"
#include "toolkit/services/Log.h"

namespace {

constexpr int statusWhole = 200;
constexpr int statusPartial = 206;
constexpr int statusMissing = 404;
constexpr int statusGone = 410;
constexpr int statusEmptyRange = 416;
constexpr std::uint64_t nanosecondsPerSecond = 1'000'000'000;

/// Every store that speaks HTTP.
class HttpStore final : public iRemoteStore {
public:
    LightweightString<wchar_t> getDisplayName(LightweightString<wchar_t> const& name) override {
        auto const url = HttpUrl::parse(name);
        return url ? displayNameOf(*url) : LightweightString<wchar_t>(L"?");
    }
};

bool refuse(int systemError) {
    keepSystemError(systemError);
    return false;
}

bool isAnsweredWithFile(HttpHeaders const& headers) {
    return headers.status == statusWhole || headers.status == statusPartial ||
           (headers.status == statusEmptyRange && headers.wholeLength);
}

bool isMissing(HttpHeaders const& headers) {
    return headers.status == statusMissing || headers.status == statusGone;
}

std::uint64_t modifiedAt(std::string const& date) {
    std::time_t const seconds = date.empty() ? -1 : curl_getdate(date.c_str(), nullptr);
    return seconds > 0 ? static_cast<std::uint64_t>(seconds) * nanosecondsPerSecond : 0;
}

}  // namespace

RemoteFileManager::RemoteFileManager(std::shared_ptr<HttpClient> client, iFileManager& before)
    : client_(std::move(client)), before_(before) {}

iFileManager::eCopyRC RemoteFileManager::copyFile(Name const& source, Name const& destination,
                                                  bool replaceExisting, CopyProgress progress,
                                                  void* context) {
    if (isHttpName(destination)) {
        LogBoth("Nothing is copied into a remote store; choose a folder of this machine\n");
        keepSystemError(EROFS);
        return copyCannotAccess;
    }
    if (!isHttpName(source)) {
        return before_.copyFile(source, destination, replaceExisting, progress, context);
    }
    auto const url = HttpUrl::parse(source);
    if (!url) {
        LogBoth("A remote name that is no URL was not copied; check the name of the file\n");
        keepSystemError(EINVAL);
        return copyCannotAccess;
    }
    return copyFromStore(*url, destination, replaceExisting, progress, context);
}

/// What was known before holds for one copy: who copies again, after a failure, gets the file as it is then.
iFileManager::eCopyRC RemoteFileManager::copyFromStore(HttpUrl const& source, Name const& destination,
                                                       bool replaceExisting, CopyProgress progress,
                                                       void* context) {
    RemoteCopy copy(*client_, source, known_.find(source.text), toUTF8(destination).str(), progress, context);
    eCopyRC const code = copy.run(replaceExisting);
    if (code != copyStopped) {
        known_.forget(source.text);
    }
    return code;
}

bool RemoteFileManager::renameFile(Name const& from, Name const& to, bool replaceExisting) {
    return isHttpName(from) || isHttpName(to) ? refuse(EROFS) : before_.renameFile(from, to, replaceExisting);
}

bool RemoteFileManager::deleteFile(Name const& path) {
    return isHttpName(path) ? refuse(EROFS) : before_.deleteFile(path);
}

bool RemoteFileManager::fileExists(Name const& path) {
    if (!isHttpName(path)) {
        return before_.fileExists(path);
    }
    auto const url = HttpUrl::parse(path);
    return url ? ask(*url).has_value() : refuse(EINVAL);
}

bool RemoteFileManager::isRemote(Name const& path) {
    return isHttpName(path) || before_.isRemote(path);
}

iFileManager::DirectoryItem RemoteFileManager::getFileInfo(Name const& path) {
    if (!isHttpName(path)) {
        return before_.getFileInfo(path);
    }
    DirectoryItem item;
    item.name = path;
    if (auto const facts = askAndKeep(path)) {
        item.size = facts->size.value_or(0);
        item.modified = modifiedAt(facts->lastModified);
    }
    return item;
}

bool RemoteFileManager::createDirectory(Name const& path) {
    return isHttpName(path) ? refuse(EROFS) : before_.createDirectory(path);
}

Ox::Ptr<iFile> RemoteFileManager::openFile(Name const& name, std::uint32_t access, std::uint32_t behaviour,
                                           std::uint32_t share, std::uint32_t option) {
    if (isHttpName(name)) {
        keepSystemError(ENOTSUP);
        return {};
    }
    return before_.openFile(name, access, behaviour, share, option);
}

Ox::Ptr<iVolume> RemoteFileManager::getVolume(Name const& path) {
    return isHttpName(path) ? Ox::Ptr<iVolume>() : before_.getVolume(path);
}

std::uint64_t RemoteFileManager::getFileSize(Name const& path) {
    if (!isHttpName(path)) {
        return before_.getFileSize(path);
    }
    auto const facts = askAndKeep(path);
    return facts ? facts->size.value_or(0) : 0;
}

RemoteFileManager::Name RemoteFileManager::getMountedFilename(Name const& name) {
    return isHttpName(name) ? name : before_.getMountedFilename(name);
}

RemoteFileManager::Name RemoteFileManager::getDisplayFilename(Name const& name) {
    auto const url = HttpUrl::parse(name);
    if (!url || url->credentials.empty()) {
        return before_.getDisplayFilename(name);
    }
    client_->setCredentials(*url);
    return before_.getDisplayFilename(fromUTF8(url->text.c_str()));
}

void RemoteFileManager::findFiles(Name const& pattern, std::vector<DirectoryItem>& items, bool files,
                                  bool folders) {
    if (!isHttpName(pattern)) {
        before_.findFiles(pattern, items, files, folders);
    }
}

iRemoteStore* RemoteFileManager::findRemoteStore(Name const& name) {
    return isHttpName(name) ? &immortal<HttpStore>() : before_.findRemoteStore(name);
}

std::optional<RemoteFacts> RemoteFileManager::askAndKeep(Name const& path) {
    auto const url = HttpUrl::parse(path);
    auto facts = url ? ask(*url) : std::nullopt;
    if (facts) {
        known_.note(url->text, *facts);
    }
    return facts;
}

/// A store that doesn't know HEAD, or states no length there, is asked for the file's first byte. One that
/// says that there is no such file, and one that says nothing, isn't asked twice. Both share the time that a
/// question may take.
std::optional<RemoteFacts> RemoteFileManager::ask(HttpUrl const& url) {
    auto const start = std::chrono::steady_clock::now();
    RemoteQuestion head;
    HttpOutcome const answer = client_->query(url, eHttpQuestion::headers, client_->limits().query, head);
    if (answer.end != eHttpEnd::complete || isMissing(head.headers())) {
        keepSystemError(answer.end == eHttpEnd::complete ? ENOENT : EHOSTUNREACH);
        return std::nullopt;
    }
    RemoteFacts const facts = RemoteFacts::of(head.headers());
    if (head.headers().status == statusWhole && facts.size) {
        return facts;
    }
    RemoteQuestion firstByte;
    auto const used = std::chrono::ceil<RemoteLimits::Time>(std::chrono::steady_clock::now() - start);
    static_cast<void>(
        client_->query(url, eHttpQuestion::firstByte, client_->limits().query - used, firstByte));
    if (!isAnsweredWithFile(firstByte.headers())) {
        keepSystemError(isMissing(firstByte.headers()) ? ENOENT : EIO);
        return std::nullopt;
    }
    return RemoteFacts::of(firstByte.headers());
}
