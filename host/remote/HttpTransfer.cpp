#include "host/remote/HttpTransfer.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace {

using Time = RemoteLimits::Time;

/// The receiver is asked at least so often, and so are the limits looked at.
constexpr Time askEvery{40};
constexpr std::size_t askAfterBytes = 4 * 1024 * 1024;
constexpr long mostRedirections = 5;
constexpr long receiveBufferBytes = 512 * 1024;
/// Header lines of an answer and of all redirections before it.
constexpr std::size_t mostHeaderBytes = 256 * 1024;
constexpr char const* agent = "playfile";

/// The time in which the request belongs to the loop.
class UnderWay {
public:
    explicit UnderWay(CurlLease const& lease) : lease_(lease) {
        curl_multi_add_handle(lease.multi(), lease.easy());
    }
    ~UnderWay() { curl_multi_remove_handle(lease_.multi(), lease_.easy()); }
    UnderWay(UnderWay const&) = delete;
    UnderWay& operator=(UnderWay const&) = delete;

private:
    CurlLease const& lease_;
};

std::string milliseconds(Time time) {
    return std::to_string(time.count()) + " ms";
}

}  // namespace

HttpTransfer::HttpTransfer(HttpRequest const& request, iHttpReceiver& receiver)
    : request_(request), receiver_(receiver) {}

HttpOutcome HttpTransfer::run() {
    if (!lease_.isUsable()) {
        return {eHttpEnd::noAnswer, "libcurl can't be used"};
    }
    prepare();
    PipeSignalHeld const signalHeld;
    {
        UnderWay const scope(lease_);
        while (!outcome_) {
            step();
        }
    }
    if (exception_) {
        std::rethrow_exception(exception_);
    }
    return *outcome_;
}

void HttpTransfer::prepare() {
    prepareConnection();
    prepareRequest();
}

void HttpTransfer::prepareConnection() {
    CURL* const easy = lease_.easy();
    curl_easy_reset(easy);
    curl_easy_setopt(easy, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(easy, CURLOPT_QUICK_EXIT, 1L);  // an aborted look-up of a name isn't waited for
    curl_easy_setopt(easy, CURLOPT_CONNECTTIMEOUT_MS, static_cast<long>(request_.limits.connect.count()));
    curl_easy_setopt(easy, CURLOPT_BUFFERSIZE, receiveBufferBytes);
    curl_easy_setopt(easy, CURLOPT_TCP_KEEPALIVE, 1L);
    curl_easy_setopt(easy, CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_1_1));
    curl_easy_setopt(easy, CURLOPT_PROTOCOLS_STR, "http,https");
    // What was asked for over a secure connection isn't fetched over another.
    curl_easy_setopt(easy, CURLOPT_REDIR_PROTOCOLS_STR, request_.url.isSecure ? "https" : "http,https");
    curl_easy_setopt(easy, CURLOPT_FOLLOWLOCATION, 1L);
    curl_easy_setopt(easy, CURLOPT_MAXREDIRS, mostRedirections);
    curl_easy_setopt(easy, CURLOPT_HEADERFUNCTION, &HttpTransfer::onLine);
    curl_easy_setopt(easy, CURLOPT_HEADERDATA, this);
    curl_easy_setopt(easy, CURLOPT_WRITEFUNCTION, &HttpTransfer::onBody);
    curl_easy_setopt(easy, CURLOPT_WRITEDATA, this);
}

void HttpTransfer::prepareRequest() {
    CURL* const easy = lease_.easy();
    curl_easy_setopt(easy, CURLOPT_URL, request_.url.text.c_str());
    curl_easy_setopt(easy, CURLOPT_PATH_AS_IS, 1L);
    curl_easy_setopt(easy, CURLOPT_USERAGENT, agent);
    if (!request_.credentials.empty()) {
        curl_easy_setopt(easy, CURLOPT_USERNAME, request_.credentials.user.c_str());
        curl_easy_setopt(easy, CURLOPT_PASSWORD, request_.credentials.password.c_str());
    }
    if (request_.method == HttpRequest::eMethod::head) {
        curl_easy_setopt(easy, CURLOPT_NOBODY, 1L);
    }
    if (request_.isFirstByteOnly) {
        curl_easy_setopt(easy, CURLOPT_RANGE, "0-0");
    }
    if (request_.readsToTheEnd) {
        static curl_slist closing{const_cast<char*>("Connection: close"), nullptr};
        curl_easy_setopt(easy, CURLOPT_IGNORE_CONTENT_LENGTH, 1L);
        curl_easy_setopt(easy, CURLOPT_HTTPHEADER, &closing);
    }
}

void HttpTransfer::step() {
    int running = 0;
    CURLMcode const code = curl_multi_perform(lease_.multi(), &running);
    endIfDone();
    if (code != CURLM_OK || running == 0) {
        endWith(eHttpEnd::broken, "libcurl has given it up");
    }
    Clock::time_point const now = Clock::now();
    if (!outcome_ && now - lastAsked_ >= askEvery) {
        ask(now);
    }
    endIfWhole(now);
    endIfOverdue(now);
    if (!outcome_) {
        curl_multi_poll(lease_.multi(), nullptr, 0, waitMs(), nullptr);
    }
}

int HttpTransfer::waitMs() const {
    auto const left = std::chrono::duration_cast<Time>(lastAsked_ + askEvery - Clock::now());
    return static_cast<int>(std::clamp<Time::rep>(left.count() + 1, 1, askEvery.count()));
}

void HttpTransfer::endIfDone() {
    int left = 0;
    while (CURLMsg const* const message = curl_multi_info_read(lease_.multi(), &left)) {
        if (message->msg == CURLMSG_DONE && !outcome_) {
            endWithCurl(message->data.result);
        }
    }
}

void HttpTransfer::endWithCurl(CURLcode code) {
    if (code == CURLE_OK) {
        endWith(answer_.isComplete() ? eHttpEnd::complete : eHttpEnd::noAnswer, "the answer ended too soon");
    } else if (code == CURLE_TOO_MANY_REDIRECTS) {
        endWith(eHttpEnd::misguided,
                "it was redirected more than " + std::to_string(mostRedirections) + " times");
    } else if (code == CURLE_UNSUPPORTED_PROTOCOL && answer_.blockCount() == 0) {
        endWith(eHttpEnd::noAnswer, "what answers speaks no HTTP");
    } else if (code == CURLE_UNSUPPORTED_PROTOCOL || code == CURLE_URL_MALFORMAT) {
        endWith(eHttpEnd::misguided, "it was redirected to where no file is fetched from");
    } else if (code == CURLE_OPERATION_TIMEDOUT && !wasSent_) {
        endWith(eHttpEnd::noAnswer, "no connection within " + milliseconds(request_.limits.connect));
    } else {
        endWith(answer_.isComplete() ? eHttpEnd::broken : eHttpEnd::noAnswer, curl_easy_strerror(code));
    }
}

void HttpTransfer::endWith(eHttpEnd end, std::string reason) {
    if (!outcome_) {
        outcome_ = HttpOutcome{end, std::move(reason)};
    }
}

/// A body that is whole may be followed by the end of the connection alone. A server that keeps it open all
/// the same isn't waited for.
void HttpTransfer::endIfWhole(Clock::time_point now) {
    if (outcome_ || !answer_.isComplete() || !receiver_.isWhole()) {
        return;
    }
    if (!wholeSince_) {
        wholeSince_ = now;
    } else if (now - *wholeSince_ >= request_.limits.ending) {
        endWith(eHttpEnd::complete);
    }
}

bool HttpTransfer::isRequestSent() const {
    curl_off_t microseconds = 0;
    return curl_easy_getinfo(lease_.easy(), CURLINFO_PRETRANSFER_TIME_T, &microseconds) == CURLE_OK &&
           microseconds > 0;
}

/// Headers that trickle in don't count as life until they are complete.
void HttpTransfer::endIfOverdue(Clock::time_point now) {
    if (request_.total && now - start_ >= *request_.total) {
        endWith(answer_.isComplete() ? eHttpEnd::broken : eHttpEnd::noAnswer,
                "not answered within " + milliseconds(*request_.total));
    }
    if (!wasSent_ && isRequestSent()) {
        wasSent_ = true;
        lastLife_ = now;
    }
    if (answer_.blockCount() != blocksSeen_) {
        blocksSeen_ = answer_.blockCount();
        lastLife_ = now;
    }
    Time const limit = answer_.isComplete() ? request_.limits.stall : request_.limits.firstByte;
    if (wasSent_ && now - lastLife_ >= limit) {
        endWith(answer_.isComplete() ? eHttpEnd::broken : eHttpEnd::noAnswer, silence());
    }
}

std::string HttpTransfer::silence() const {
    return answer_.isComplete() ? "nothing came for " + milliseconds(request_.limits.stall)
                                : "no answer within " + milliseconds(request_.limits.firstByte);
}

template <class Function>
bool HttpTransfer::guarded(Function const& function) noexcept {
    try {
        if (!outcome_ && function()) {
            return true;
        }
    } catch (...) {
        exception_ = std::current_exception();
    }
    try {
        endWith(eHttpEnd::refused);
    } catch (...) {
        exception_ = std::current_exception();
        outcome_.emplace();
    }
    return false;
}

void HttpTransfer::ask(Clock::time_point now) {
    lastAsked_ = now;
    bytesSinceAsked_ = 0;
    static_cast<void>(guarded([this] { return receiver_.mayGoOn(); }));
}

bool HttpTransfer::takeLine(std::string_view line) {
    bool const isComplete = answer_.addLine(line);
    if (answer_.byteCount() > mostHeaderBytes) {
        endWith(eHttpEnd::noAnswer, "the answer's headers don't end");
        return false;
    }
    return !isComplete || receiver_.takeHeaders(answer_.headers());
}

bool HttpTransfer::takeBody(char const* data, std::size_t byteCount) {
    if (!receiver_.takeBytes(data, byteCount)) {
        return false;
    }
    Clock::time_point const now = Clock::now();
    lastLife_ = now;
    bytesSinceAsked_ += byteCount;
    if (bytesSinceAsked_ >= askAfterBytes || now - lastAsked_ >= askEvery) {
        ask(now);
    }
    return !outcome_;
}

std::size_t HttpTransfer::onLine(char* data, std::size_t size, std::size_t count, void* self) noexcept {
    auto& transfer = *static_cast<HttpTransfer*>(self);
    std::string_view const line(data, size * count);
    return transfer.guarded([&] { return transfer.takeLine(line); }) ? line.size() : 0;
}

std::size_t HttpTransfer::onBody(char* data, std::size_t size, std::size_t count, void* self) noexcept {
    auto& transfer = *static_cast<HttpTransfer*>(self);
    std::size_t const byteCount = size * count;
    return transfer.guarded([&] { return transfer.takeBody(data, byteCount); }) ? byteCount : 0;
}
