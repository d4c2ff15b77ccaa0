#pragma once

#include <optional>
#include <string>

#include "host/remote/HttpAnswer.h"
#include "host/remote/HttpUrl.h"
#include "host/remote/RemoteLimits.h"

/// What becomes of an answer. Each of these, called on the transfer's thread, ends the transfer with false.
class iHttpReceiver {
public:
    virtual ~iHttpReceiver() = default;
    /// The headers of the answer that counts are there.
    virtual bool takeHeaders(HttpHeaders const& headers) = 0;
    virtual bool takeBytes(char const* data, std::size_t byteCount) = 0;
    /// Asked again and again, also while the server is silent.
    virtual bool mayGoOn() { return true; }
    /// True when all has come that was to come.
    [[nodiscard]] virtual bool isWhole() const { return false; }
};

/// How a transfer ended.
enum class eHttpEnd {
    complete,   ///< the server ended its answer
    refused,    ///< the receiver said false
    noAnswer,   ///< no connection, or nothing that could be used came of it
    broken,     ///< the connection was lost, or went silent, in the answer's body
    notAsked,   ///< the store gave no answer lately
    misguided,  ///< redirected too often, or to where nobody goes
};

struct HttpOutcome {
    eHttpEnd end = eHttpEnd::noAnswer;
    /// Why, in words for the log, unless it is complete or was refused.
    std::string reason;
};

/// What is asked for, and how long it may take.
struct HttpRequest {
    enum class eMethod { get, head };

    HttpUrl url;
    HttpCredentials credentials;
    eMethod method = eMethod::get;
    /// True asks for the first byte alone.
    bool isFirstByteOnly = false;
    /// True has the server end the connection behind the body, and takes as body all that comes before it does:
    /// so a body longer than was stated is noticed.
    bool readsToTheEnd = false;
    RemoteLimits limits;
    /// Bounds the whole, where it is set.
    std::optional<RemoteLimits::Time> total;
};
