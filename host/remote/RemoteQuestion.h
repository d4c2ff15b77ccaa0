#pragma once

#include "host/remote/HttpExchange.h"

/// Takes what a store says of a file and none of its bytes.
class RemoteQuestion final : public iHttpReceiver {
public:
    bool takeHeaders(HttpHeaders const& headers) override {
        headers_ = headers;
        return true;
    }
    bool takeBytes(char const*, std::size_t) override { return false; }

    [[nodiscard]] HttpHeaders const& headers() const { return headers_; }

private:
    HttpHeaders headers_;
};
