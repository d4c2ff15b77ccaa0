#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "host/posix/CopyDestination.h"
#include "host/remote/HttpClient.h"
#include "host/remote/RemoteFacts.h"
#include "ole/os/FileManager.h"

/// Copies one file from a remote store, once.
///
/// A destination that exists is emptied when the store begins to answer with the file, so that a source which
/// can't be had costs nothing. The file must come with the length that the store states, no more and no less,
/// and be what it was when its size was asked for.
///
/// Threads  One, which it blocks. In all it may take any time; a connection that isn't made and a store that is
///          silent end it.
/// Units    Bytes.
/// Errors   Every failure but a stop is logged, with the source's URL, the reason and the remedy; the reason is
///          kept for the error service, too.
class RemoteCopy final : private iHttpReceiver {
public:
    /// @param before    what was known of the source before, if anything
    /// @param progress  may be null
    RemoteCopy(HttpClient& client, HttpUrl source, std::optional<RemoteFacts> before, std::string destination,
               iFileManager::CopyProgress progress, void* context);

    /// See `iFileManager::copyFile`.
    [[nodiscard]] iFileManager::eCopyRC run(bool replaceExisting);

private:
    using Code = iFileManager::eCopyRC;
    struct Failure {
        Code code;
        std::string reason;
        std::string remedy;
    };

    bool takeHeaders(HttpHeaders const& headers) override;
    bool takeBytes(char const* data, std::size_t byteCount) override;
    bool mayGoOn() override;
    [[nodiscard]] bool isWhole() const override { return stated_ && copied_ == *stated_; }

    Code fill();
    Code finish();
    bool fail(Code code, std::string reason, std::string remedy, int systemError);
    bool failToWrite(Code code);
    bool failByStatus(int status);
    void judge(HttpOutcome const& outcome);
    [[nodiscard]] Code report();

    HttpClient& client_;
    HttpUrl const source_;
    std::optional<RemoteFacts> const before_;
    std::string const destinationPath_;
    iFileManager::CopyProgress const progress_;
    void* const context_;

    CopyDestination destination_;
    std::optional<std::uint64_t> stated_;
    std::uint64_t copied_ = 0;
    bool isStopped_ = false;
    std::optional<Failure> failure_;
};
