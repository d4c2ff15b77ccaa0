#pragma once

#include <atomic>

#include "files/FileReadInstance.h"
#include "ole/Ox/OxDecouplingQueue.h"
#include "toolkit/services/RequestStatus.h"

namespace Ox {

/// A wish that a file be open soon, and what came of it.
///
/// Ownership  Whoever holds it keeps the file open. It may be dropped at once: the file is opened all the same.
/// Threads    `status` goes from 0 to 2 or 3, once; `file` may be looked at when it has left 0.
/// Deliberate It can't be cancelled, and nobody is told: who wants to know looks at `status`.
class PreOpenRequest : public virtual iObject {
public:
    /// Asks for a file. One that is open already is in the request when it comes back; any other is opened
    /// on a thread of the service.
    ///
    /// @param streamIndex  the audio stream that is wanted
    /// @return never empty
    static Ptr<PreOpenRequest> create(Cookie const& cookie, DecodeFormat const& format, int streamIndex);

    PreOpenRequest(Cookie const& material, DecodeFormat const& wanted, int stream)
        : cookie(material), format(wanted), streamIndex(stream) {}

    Cookie const cookie;
    DecodeFormat const format;
    Ptr<FileReadInstance> file;
    int const streamIndex;
    /// 0 as built, 2 with the file open, 3 if it can't be opened.
    std::atomic<RequestStatus> status{requestBuilt};
};

/// Opens files ahead of need, on threads of its own, so that a later read finds them in the cache.
///
/// Ownership  There is one, made at its first use, which `Shutdown` deletes: its workers then carry out all
///            that waits. What is asked for after that fails.
/// Threads    Any.
class FilePreOpen : public DecouplingQueue<PreOpenRequest>::Decoupler {
public:
    [[nodiscard]] static FilePreOpen* instance();

    /// Opens the file through the cache, whoever still wants it: the cache is what it is for.
    void despatch(Ptr<PreOpenRequest>& request) override;
    /// Ends the service, and with it this object.
    void shutdown(Shutdown::eExitType exitType) override;

private:
    friend class PreOpenRequest;

    /// As many threads as processors, at most the setting `numReaderThreads`.
    FilePreOpen();
    ~FilePreOpen() override;

    /// Opens the file now or later; false if the service has ended.
    static bool add(Ptr<PreOpenRequest>& request);
};

}  // namespace Ox
