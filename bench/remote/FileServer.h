#pragma once

#include <cstdint>
#include <string>
#include <thread>

namespace bench {

/// Serves one file of so many bytes by HTTP on the loopback interface, to one client at a time, and costs as little
/// as a server can: the file lies in memory and the kernel sends it.
class FileServer {
public:
    explicit FileServer(std::uint64_t byteCount);
    ~FileServer();
    FileServer(FileServer const&) = delete;
    FileServer& operator=(FileServer const&) = delete;

    /// False if the machine gives it no memory or no port.
    [[nodiscard]] bool isUsable() const { return port_ != 0; }
    [[nodiscard]] std::string url() const { return "http://127.0.0.1:" + std::to_string(port_) + "/file"; }

private:
    void serve() const;
    void serveClient(int client) const;

    std::uint64_t const byteCount_;
    int file_ = -1;
    int listener_ = -1;
    int port_ = 0;
    std::thread thread_;
};

}  // namespace bench
