#include "tests/support/HttpServer.h"

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <chrono>
#include <stdexcept>

#include "tests/fakes/Gate.h"

namespace test {
namespace {

constexpr int backlog = 64;
constexpr std::size_t receiveBytes = 4096;
constexpr std::chrono::milliseconds dripEvery{1};

bool sendAll(int connection, std::string const& text) {
    for (std::size_t done = 0; done < text.size();) {
        ssize_t const part = ::send(connection, text.data() + done, text.size() - done, MSG_NOSIGNAL);
        if (part <= 0) {
            return false;
        }
        done += static_cast<std::size_t>(part);
    }
    return true;
}

bool drip(int connection, std::string const& text) {
    for (char const each : text) {
        if (!sendAll(connection, std::string(1, each))) {
            return false;
        }
        std::this_thread::sleep_for(dripEvery);
    }
    return true;
}

/// Up to and with the blank line; empty at the end of the connection. `rest` keeps what came behind it.
std::string receiveHead(int connection, std::string& rest) {
    char buffer[receiveBytes];
    for (;;) {
        std::size_t const end = rest.find("\r\n\r\n");
        if (end != std::string::npos) {
            std::string const head = rest.substr(0, end + 2);
            rest.erase(0, end + 4);
            return head;
        }
        ssize_t const count = ::recv(connection, buffer, sizeof buffer, 0);
        if (count <= 0) {
            return {};
        }
        rest.append(buffer, static_cast<std::size_t>(count));
    }
}

std::string lowered(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

HttpServer::Request parse(std::string const& head) {
    HttpServer::Request request;
    std::size_t const lineEnd = head.find("\r\n");
    std::string const first = head.substr(0, lineEnd);
    std::size_t const target = first.find(' ') + 1;
    request.method = first.substr(0, target - 1);
    request.target = first.substr(target, first.rfind(' ') - target);
    for (std::size_t start = lineEnd + 2; start < head.size();) {
        std::size_t const end = head.find("\r\n", start);
        std::string const line = head.substr(start, end - start);
        std::size_t const colon = line.find(": ");
        if (colon != std::string::npos) {
            request.headers[lowered(line.substr(0, colon))] = line.substr(colon + 2);
        }
        start = end + 2;
    }
    return request;
}

std::string chunked(std::string const& body) {
    char size[32];
    std::snprintf(size, sizeof size, "%zx\r\n", body.size());
    return body.empty() ? "0\r\n\r\n" : size + body + "\r\n0\r\n\r\n";
}

}  // namespace

HttpServer::HttpServer() : listener_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    auto* const general = reinterpret_cast<sockaddr*>(&address);
    if (listener_ < 0 || ::bind(listener_, general, size) != 0 || ::listen(listener_, backlog) != 0 ||
        ::getsockname(listener_, general, &size) != 0) {
        throw std::runtime_error("no server can be made");
    }
    port_ = ntohs(address.sin_port);
    acceptor_ = std::thread([this] { accept(); });
}

HttpServer::~HttpServer() {
    {
        std::lock_guard const scope(lock_);
        isEnding_ = true;
        isReleased_ = true;
        for (int const connection : connections_) {
            ::shutdown(connection, SHUT_RDWR);
        }
    }
    changed_.notify_all();
    ::shutdown(listener_, SHUT_RDWR);
    acceptor_.join();
    for (std::thread& thread : threads_) {
        thread.join();
    }
    ::close(listener_);
}

std::string HttpServer::url(std::string const& path, std::string const& credentials) const {
    return "http://" + (credentials.empty() ? credentials : credentials + "@") +
           "127.0.0.1:" + std::to_string(port_) + path;
}

void HttpServer::on(std::string const& path, HttpScript const& script) {
    on("", path, script);
}

void HttpServer::on(std::string const& method, std::string const& path, HttpScript const& script) {
    std::lock_guard const scope(lock_);
    scripts_[method + " " + path] = script;
}

void HttpServer::release() {
    std::lock_guard const scope(lock_);
    isReleased_ = true;
    changed_.notify_all();
}

bool HttpServer::waitForStalls(unsigned count) {
    std::unique_lock scope(lock_);
    return changed_.wait_for(scope, testPatience, [&] { return stalls_ >= count; });
}

std::vector<HttpServer::Request> HttpServer::requests() const {
    std::lock_guard const scope(lock_);
    return requests_;
}

std::size_t HttpServer::count(std::string const& path) const {
    std::vector<Request> const all = requests();
    return static_cast<std::size_t>(std::count_if(
        all.begin(), all.end(), [&](Request const& request) { return request.target == path; }));
}

void HttpServer::accept() {
    for (;;) {
        int const connection = ::accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
        std::lock_guard const scope(lock_);
        if (connection < 0 || isEnding_) {
            if (connection >= 0) {
                ::close(connection);
            }
            return;
        }
        connections_.push_back(connection);
        threads_.emplace_back([this, connection] { serve(connection); });
    }
}

void HttpServer::serve(int connection) {
    std::string rest;
    for (;;) {
        std::string const head = receiveHead(connection, rest);
        if (head.empty()) {
            break;
        }
        Request const request = parse(head);
        HttpScript const script = scriptFor(request);
        if (!answer(connection, request, script)) {
            break;
        }
    }
    std::lock_guard const scope(lock_);
    connections_.remove(connection);
    ::shutdown(connection, SHUT_RDWR);
    ::close(connection);
}

HttpScript HttpServer::scriptFor(Request const& request) {
    std::lock_guard const scope(lock_);
    requests_.push_back(request);
    auto found = scripts_.find(request.method + " " + request.target);
    if (found == scripts_.end()) {
        found = scripts_.find(" " + request.target);
    }
    HttpScript missing;
    missing.status = 404;
    return found == scripts_.end() ? missing : found->second;
}

bool HttpServer::answer(int connection, Request const& request, HttpScript const& asked) {
    HttpScript script = asked;
    std::string body = script.body;
    auto const range = request.headers.find("range");
    if (script.knowsRanges && script.status == 200 && range != request.headers.end()) {
        script.status = 206;
        script.headers.push_back("Content-Range: bytes 0-0/" + std::to_string(body.size()));
        body.resize(1);
    }
    auto const wish = request.headers.find("connection");
    bool const closes = wish != request.headers.end() && wish->second == "close" && !script.staysOpen;
    if (script.stall == HttpScript::eStall::beforeHeaders) {
        stall();
    }
    if (!script.speaksHttp) {
        sendAll(connection, body);
        return false;
    }
    if (!sendHeaders(connection, script, body.size(), closes)) {
        return false;
    }
    if (script.stall == HttpScript::eStall::afterHeaders) {
        stall();
    }
    bool const goesOn = request.method == "HEAD" || sendBody(connection, script, body);
    return goesOn && !closes && !script.dropAfter && (script.statesLength || script.isChunked);
}

bool HttpServer::sendHeaders(int connection, HttpScript const& script, std::size_t length, bool closes) {
    std::string head = "HTTP/1.1 " + std::to_string(script.status) + " As scripted\r\n";
    for (std::string const& line : script.headers) {
        head += line + "\r\n";
    }
    if (script.isChunked) {
        head += "Transfer-Encoding: chunked\r\n";
    } else if (script.statesLength) {
        head += "Content-Length: " + script.statedLength.value_or(std::to_string(length)) + "\r\n";
    }
    bool const isAmidHeaders = script.stall == HttpScript::eStall::amidHeaders;
    if (isAmidHeaders || script.hasEndlessHeaders) {
        if (!sendAll(connection, head)) {
            return false;
        }
        head.clear();
    }
    if (isAmidHeaders) {
        stall();
    }
    while (script.hasEndlessHeaders) {
        if (!sendAll(connection, "X-More: and more\r\n")) {
            return false;
        }
    }
    return sendAll(connection, head + (closes ? "Connection: close\r\n\r\n" : "\r\n"));
}

bool HttpServer::sendBody(int connection, HttpScript const& script, std::string const& body) {
    if (script.isChunked) {
        return sendAll(connection, chunked(body));
    }
    std::size_t const first = script.stall == HttpScript::eStall::afterBytes
                                  ? script.stallAfter
                                  : script.dropAfter.value_or(body.size());
    auto const send = script.isDripping ? &drip : &sendAll;
    if (!send(connection, body.substr(0, first))) {
        return false;
    }
    if (script.stall == HttpScript::eStall::afterBytes) {
        stall();
        return !script.dropAfter && sendAll(connection, body.substr(first));
    }
    while (script.isEndless) {
        if (!send(connection, body)) {
            return false;
        }
    }
    return true;
}

void HttpServer::stall() {
    std::unique_lock scope(lock_);
    ++stalls_;
    changed_.notify_all();
    changed_.wait(scope, [this] { return isReleased_; });
}

}  // namespace test
