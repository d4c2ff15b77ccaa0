#include "host/remote/HttpClient.h"

#include "host/remote/HttpTransfer.h"
#include "toolkit/services/Log.h"

HttpClient::HttpClient(RemoteLimits const& limits, RemoteClock clock)
    : limits_(limits), clock_(std::move(clock)), resting_(limits.rest) {}

void HttpClient::setCredentials(HttpUrl const& url) {
    if (!url.credentials.empty()) {
        std::lock_guard const scope(lock_);
        credentials_[url.store] = url.credentials;
    }
}

HttpRequest HttpClient::requestFor(HttpUrl const& url) {
    HttpRequest request;
    request.url = url;
    request.limits = limits_;
    request.credentials = url.credentials;
    if (url.credentials.empty()) {
        std::lock_guard const scope(lock_);
        auto const known = credentials_.find(url.store);
        request.credentials = known == credentials_.end() ? HttpCredentials() : known->second;
    }
    return request;
}

HttpOutcome HttpClient::fetch(HttpUrl const& url, iHttpReceiver& receiver) {
    HttpRequest request = requestFor(url);
    request.readsToTheEnd = true;
    return HttpTransfer(request, receiver).run();
}

HttpOutcome HttpClient::query(HttpUrl const& url, eHttpQuestion question, RemoteLimits::Time total,
                              iHttpReceiver& receiver) {
    if (resting_.isResting(url.store, now())) {
        return {eHttpEnd::notAsked, "its store gave no answer lately"};
    }
    HttpRequest request = requestFor(url);
    bool const isHead = question == eHttpQuestion::headers;
    request.method = isHead ? HttpRequest::eMethod::head : HttpRequest::eMethod::get;
    request.isFirstByteOnly = question == eHttpQuestion::firstByte;
    request.total = total;
    HttpOutcome outcome = HttpTransfer(request, receiver).run();
    note(url, outcome);
    return outcome;
}

/// A store that says something, be it nonsense, is awake.
void HttpClient::note(HttpUrl const& url, HttpOutcome const& outcome) {
    if (outcome.end != eHttpEnd::noAnswer && outcome.end != eHttpEnd::broken) {
        resting_.wake(url.store);
    } else {
        resting_.rest(url.store, now());
        LogBoth(
            "Store \"%s\" gave no answer to \"%s\" (%s); it isn't asked again for %lld ms. Check the network "
            "and the store\n",
            url.store.c_str(), url.shown.c_str(), outcome.reason.c_str(),
            static_cast<long long>(limits_.rest.count()));
    }
    if (outcome.end == eHttpEnd::misguided) {
        LogBoth("\"%s\" can't be asked for: %s; check the store's redirections\n", url.shown.c_str(),
                outcome.reason.c_str());
    }
}
