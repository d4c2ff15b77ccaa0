#include "host/remote/RemoteCopy.h"

#include <cerrno>

#include "host/posix/PosixErrors.h"
#include "ole/os/OS.h"
#include "toolkit/services/Log.h"

namespace {

constexpr int statusWhole = 200;
constexpr int statusUnauthorised = 401;
constexpr int statusForbidden = 403;
constexpr int statusMissing = 404;
constexpr int statusGone = 410;
constexpr int firstServerError = 500;

constexpr char const* checkStore = "check the network and the store, then copy again";
constexpr char const* copyAgain = "copy it again";

std::string bytes(std::uint64_t count) {
    return std::to_string(count) + " bytes";
}

}  // namespace

RemoteCopy::RemoteCopy(HttpClient& client, HttpUrl source, std::optional<RemoteFacts> before,
                       std::string destination, iFileManager::CopyProgress progress, void* context)
    : client_(client),
      source_(std::move(source)),
      before_(std::move(before)),
      destinationPath_(std::move(destination)),
      progress_(progress),
      context_(context),
      destination_(destinationPath_) {}

iFileManager::eCopyRC RemoteCopy::run(bool replaceExisting) {
    if (!destination_.open(replaceExisting)) {
        failToWrite(iFileManager::copyCannotAccess);
        return report();
    }
    Code code = iFileManager::copyFailed;
    try {
        code = fill();
    } catch (...) {  // the caller's function, or no memory
        destination_.discard();
        throw;
    }
    if (code != iFileManager::copied) {
        destination_.discard();
    }
    return code;
}

iFileManager::eCopyRC RemoteCopy::fill() {
    judge(client_.fetch(source_, *this));
    if (!failure_ && !isStopped_) {
        static_cast<void>(mayGoOn());
    }
    return failure_ || isStopped_ ? report() : finish();
}

iFileManager::eCopyRC RemoteCopy::finish() {
    if (!destination_.flush()) {
        failToWrite(iFileManager::copyFailed);
        return report();
    }
    return iFileManager::copied;
}

bool RemoteCopy::takeHeaders(HttpHeaders const& headers) {
    if (headers.status != statusWhole) {
        return failByStatus(headers.status);
    }
    RemoteFacts const now = RemoteFacts::of(headers);
    std::string const difference = before_ ? before_->differenceTo(now) : std::string();
    if (!difference.empty()) {
        return fail(iFileManager::copyFailed, difference, copyAgain, ESTALE);
    }
    stated_ = now.size || !before_ || headers.isLengthBroken ? now.size : before_->size;
    if (!stated_) {
        return fail(iFileManager::copyCannotAccess, "the store doesn't state its length",
                    "have the store send Content-Length", EPROTO);
    }
    return destination_.empty() || failToWrite(iFileManager::copyCannotAccess);
}

bool RemoteCopy::takeBytes(char const* data, std::size_t byteCount) {
    if (!stated_ || byteCount > *stated_ - copied_) {
        return fail(iFileManager::copyFailed, "more came than the stated " + bytes(stated_.value_or(0)),
                    "check the store's copy of the file", EPROTO);
    }
    copied_ += byteCount;
    return destination_.write(data, byteCount) || failToWrite(iFileManager::copyFailed);
}

bool RemoteCopy::mayGoOn() {
    if (progress_ && progress_(context_, copied_, stated_.value_or(0)) == 0) {
        isStopped_ = true;
    }
    return !isStopped_;
}

bool RemoteCopy::failByStatus(int status) {
    std::string const answer = "the store answers with status " + std::to_string(status);
    switch (status) {
        case statusMissing:
        case statusGone:
            return fail(iFileManager::copyCannotAccess, answer, "the file isn't there; check its name",
                        ENOENT);
        case statusUnauthorised:
        case statusForbidden:
            return fail(iFileManager::copyCannotAccess, answer, "check who may read there", EACCES);
        default:
            return fail(iFileManager::copyCannotAccess, answer,
                        status >= firstServerError ? checkStore : "check the name and the store", EIO);
    }
}

/// A connection that was lost, or kept open, behind a whole body has done its work.
void RemoteCopy::judge(HttpOutcome const& outcome) {
    if (failure_ || isStopped_ || isWhole()) {
        return;
    }
    switch (outcome.end) {
        case eHttpEnd::complete:
            fail(iFileManager::copyFailed,
                 "only " + bytes(copied_) + " of the stated " + bytes(stated_.value_or(0)) + " came",
                 copyAgain, EPROTO);
            break;
        case eHttpEnd::broken:
            fail(iFileManager::copyFailed, outcome.reason + ", after " + bytes(copied_), checkStore, EIO);
            break;
        case eHttpEnd::misguided:
            fail(iFileManager::copyCannotAccess, outcome.reason, "check the store's redirections", ELOOP);
            break;
        case eHttpEnd::noAnswer:
        case eHttpEnd::notAsked:
        case eHttpEnd::refused:
            fail(iFileManager::copyCannotAccess, outcome.reason, checkStore, EHOSTUNREACH);
            break;
    }
}

bool RemoteCopy::fail(Code code, std::string reason, std::string remedy, int systemError) {
    if (!failure_) {
        keepSystemError(systemError);
        failure_ = Failure{code, std::move(reason), std::move(remedy)};
    }
    return false;
}

/// The reason is the one that was kept last.
bool RemoteCopy::failToWrite(Code code) {
    if (!failure_) {
        LightweightString<char> const reason = toUTF8(OS()->getErrors().getLastErrorText());
        failure_ = Failure{code, "\"" + destinationPath_ + "\" can't be written: " + reason.str(),
                           "check the folder, the room in it and who may write there"};
    }
    return false;
}

iFileManager::eCopyRC RemoteCopy::report() {
    if (!failure_) {
        return iFileManager::copyStopped;
    }
    LogBoth("\"%s\" was not copied: %s; %s\n", source_.shown.c_str(), failure_->reason.c_str(),
            failure_->remedy.c_str());
    return failure_->code;
}
