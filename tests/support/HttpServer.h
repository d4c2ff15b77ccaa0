#pragma once

#include <condition_variable>
#include <cstdint>
#include <list>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace test {

/// What the server answers to a request for a path.
struct HttpScript {
    enum class eStall { never, beforeHeaders, amidHeaders, afterHeaders, afterBytes };

    int status = 200;
    std::string body;
    /// Sent as they are; without line ends.
    std::vector<std::string> headers;
    /// What Content-Length says, if not the truth.
    std::optional<std::string> statedLength;
    bool statesLength = true;
    /// Where it stops until the test lets it go on.
    eStall stall = eStall::never;
    /// For `afterBytes`: how many bytes of the body come first.
    std::size_t stallAfter = 0;
    /// How many bytes of the body come before the connection is dropped.
    std::optional<std::size_t> dropAfter;
    /// True sends the body again and again.
    bool isEndless = false;
    /// True sends the body byte by byte, a millisecond apart.
    bool isDripping = false;
    /// True sends a header line again and again.
    bool hasEndlessHeaders = false;
    /// False sends the body alone.
    bool speaksHttp = true;
    /// True keeps the connection open although the client wants it closed.
    bool staysOpen = false;
    /// True answers a request for a range with that range.
    bool knowsRanges = false;
    /// True sends the body in chunks, without a length.
    bool isChunked = false;
};

/// A server of HTTP/1.1 on the loopback interface, which answers and fails as a test says.
///
/// Threads  Any; one of its own for each connection.
class HttpServer {
public:
    struct Request {
        std::string method;
        std::string target;
        /// Field names in small letters.
        std::map<std::string, std::string> headers;
    };

    HttpServer();
    ~HttpServer();
    HttpServer(HttpServer const&) = delete;
    HttpServer& operator=(HttpServer const&) = delete;

    /// The URL of a path. @param credentials  "user:password"
    [[nodiscard]] std::string url(std::string const& path, std::string const& credentials = {}) const;
    /// Says what to answer from the next request on; other paths are missing.
    void on(std::string const& path, HttpScript const& script);
    /// The same for one method alone.
    void on(std::string const& method, std::string const& path, HttpScript const& script);
    /// Lets everything go on that stalls, now and later.
    void release();
    /// Waits until so many answers stall or have stalled; false if they don't within the test's patience.
    [[nodiscard]] bool waitForStalls(unsigned count);

    [[nodiscard]] std::vector<Request> requests() const;
    [[nodiscard]] std::size_t count(std::string const& path) const;
    [[nodiscard]] std::size_t count() const { return requests().size(); }

private:
    void accept();
    void serve(int connection);
    [[nodiscard]] HttpScript scriptFor(Request const& request);
    /// Each false if the connection is to end.
    bool answer(int connection, Request const& request, HttpScript const& script);
    bool sendHeaders(int connection, HttpScript const& script, std::size_t length, bool closes);
    bool sendBody(int connection, HttpScript const& script, std::string const& body);
    void stall();

    int listener_ = -1;
    int port_ = 0;
    mutable std::mutex lock_;
    std::condition_variable changed_;
    bool isReleased_ = false;
    bool isEnding_ = false;
    unsigned stalls_ = 0;
    std::map<std::string, HttpScript> scripts_;
    std::vector<Request> requests_;
    std::list<int> connections_;
    std::list<std::thread> threads_;
    std::thread acceptor_;
};

}  // namespace test
