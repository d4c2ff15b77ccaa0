#include "host/remote/RemoteFacts.h"

#include <algorithm>

namespace {

constexpr int statusPartial = 206;
constexpr int statusEmptyRange = 416;

bool areBothThereAndDiffer(std::string const& a, std::string const& b) {
    return !a.empty() && !b.empty() && a != b;
}

}  // namespace

RemoteFacts RemoteFacts::of(HttpHeaders const& headers) {
    RemoteFacts facts;
    bool const isPart = headers.status == statusPartial || headers.status == statusEmptyRange;
    facts.size = isPart ? headers.wholeLength : headers.length;
    if (headers.isLengthBroken) {
        facts.size.reset();
    }
    facts.etag = headers.etag;
    facts.lastModified = headers.lastModified;
    return facts;
}

std::string RemoteFacts::differenceTo(RemoteFacts const& other) const {
    if (size && other.size && *size != *other.size) {
        return "it had " + std::to_string(*size) + " bytes and now has " + std::to_string(*other.size);
    }
    if (areBothThereAndDiffer(etag, other.etag) || areBothThereAndDiffer(lastModified, other.lastModified)) {
        return "it has changed since its size was asked for";
    }
    return {};
}

void KnownFacts::note(std::string const& url, RemoteFacts const& facts) {
    std::lock_guard const scope(lock_);
    if (!facts_.insert_or_assign(url, facts).second) {
        return;
    }
    order_.push_back(url);
    if (order_.size() > mostFiles) {
        facts_.erase(order_.front());
        order_.pop_front();
    }
}

std::optional<RemoteFacts> KnownFacts::find(std::string const& url) const {
    std::lock_guard const scope(lock_);
    auto const found = facts_.find(url);
    return found == facts_.end() ? std::nullopt : std::optional(found->second);
}

void KnownFacts::forget(std::string const& url) {
    std::lock_guard const scope(lock_);
    if (facts_.erase(url) != 0) {
        order_.erase(std::find(order_.begin(), order_.end(), url));
    }
}

std::size_t KnownFacts::size() const {
    std::lock_guard const scope(lock_);
    return facts_.size();
}
