#pragma once

#include <curl/curl.h>

#include <memory>

/// Readies libcurl for this process, once; it is never put away. Has to come before any other call of it.
void useCurlLibrary();

struct CloseEasy {
    void operator()(CURL* easy) const { curl_easy_cleanup(easy); }
};
struct CloseMulti {
    void operator()(CURLM* multi) const { curl_multi_cleanup(multi); }
};

/// What a transfer is made with: a request, and the connections that it may find open.
struct CurlHandles {
    std::unique_ptr<CURLM, CloseMulti> multi;
    std::unique_ptr<CURL, CloseEasy> easy;

    [[nodiscard]] bool areThere() const { return multi && easy; }
};

/// Handles for one transfer. Each thread keeps those of its last one, with their open connections, until it
/// ends; a transfer that begins inside another gets new ones.
class CurlLease {
public:
    CurlLease();
    ~CurlLease();
    CurlLease(CurlLease const&) = delete;
    CurlLease& operator=(CurlLease const&) = delete;

    [[nodiscard]] bool isUsable() const { return handles_.areThere(); }
    [[nodiscard]] CURL* easy() const { return handles_.easy.get(); }
    [[nodiscard]] CURLM* multi() const { return handles_.multi.get(); }

private:
    CurlHandles handles_;
};

/// Keeps the signal of a broken pipe from the calling thread. One that comes meanwhile is dropped.
class PipeSignalHeld {
public:
    PipeSignalHeld();
    ~PipeSignalHeld();
    PipeSignalHeld(PipeSignalHeld const&) = delete;
    PipeSignalHeld& operator=(PipeSignalHeld const&) = delete;

private:
    bool wasPending_ = false;
    bool wasHeld_ = false;
};
