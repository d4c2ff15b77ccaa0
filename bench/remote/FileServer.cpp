#include "bench/remote/FileServer.h"

#include <netinet/in.h>
#include <sys/mman.h>
#include <sys/sendfile.h>
#include <sys/socket.h>
#include <unistd.h>

#include <vector>

namespace bench {
namespace {

constexpr std::size_t fillBytes = 1024 * 1024;
constexpr std::size_t requestBytes = 8192;

/// A file in memory whose pages are all there.
int makeFile(std::uint64_t byteCount) {
    int const file = memfd_create("playfile-remotebench", MFD_CLOEXEC);
    std::vector<char> const bytes(fillBytes, '\x2a');
    for (std::uint64_t done = 0; file >= 0 && done < byteCount;) {
        std::uint64_t const left = byteCount - done;
        ssize_t const part = write(file, bytes.data(), left < fillBytes ? left : fillBytes);
        if (part <= 0) {
            close(file);
            return -1;
        }
        done += static_cast<std::uint64_t>(part);
    }
    return file;
}

/// True when a whole request without a body has come.
bool receiveRequest(int client) {
    std::string request;
    char buffer[requestBytes];
    while (request.find("\r\n\r\n") == std::string::npos) {
        ssize_t const count = recv(client, buffer, sizeof buffer, 0);
        if (count <= 0) {
            return false;
        }
        request.append(buffer, static_cast<std::size_t>(count));
    }
    return true;
}

}  // namespace

FileServer::FileServer(std::uint64_t byteCount)
    : byteCount_(byteCount),
      file_(makeFile(byteCount)),
      listener_(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    auto* const general = reinterpret_cast<sockaddr*>(&address);
    if (file_ < 0 || bind(listener_, general, size) != 0 || listen(listener_, 1) != 0 ||
        getsockname(listener_, general, &size) != 0) {
        return;
    }
    port_ = ntohs(address.sin_port);
    thread_ = std::thread([this] { serve(); });
}

FileServer::~FileServer() {
    shutdown(listener_, SHUT_RDWR);
    if (thread_.joinable()) {
        thread_.join();
    }
    close(listener_);
    close(file_);
}

void FileServer::serve() const {
    for (;;) {
        int const client = accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
        if (client < 0) {
            return;
        }
        serveClient(client);
        close(client);
    }
}

void FileServer::serveClient(int client) const {
    std::string const head =
        "HTTP/1.1 200 OK\r\nContent-Length: " + std::to_string(byteCount_) + "\r\nConnection: close\r\n\r\n";
    if (!receiveRequest(client) || send(client, head.data(), head.size(), MSG_NOSIGNAL) < 0) {
        return;
    }
    for (off_t place = 0; place < static_cast<off_t>(byteCount_);) {
        if (sendfile(client, file_, &place, byteCount_ - static_cast<std::uint64_t>(place)) <= 0) {
            return;
        }
    }
}

}  // namespace bench
