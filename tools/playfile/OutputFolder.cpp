#include "tools/playfile/OutputFolder.h"

#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <filesystem>
#include <memory>
#include <system_error>

#include "tools/playfile/CommandError.h"
#include "tools/playfile/Text.h"

namespace cli {
namespace {

/// A name beside `path` that no other writer uses, in this process or another.
std::string partialName(std::string const& path) {
    static std::atomic<unsigned> counter{0};
    return path + "." + std::to_string(::getpid()) + "-" + std::to_string(counter.fetch_add(1)) + ".partial";
}

struct CloseFile {
    void operator()(std::FILE* stream) const { std::fclose(stream); }
};

[[noreturn]] void refuseFolder(std::string const& path, std::string const& reason) {
    throw CommandError("cannot write to the folder " + inQuotes(path) + ": " + reason +
                       "; name another one with --out");
}

[[noreturn]] void refuseFile(std::string const& path, std::string const& reason) {
    throw CommandError("cannot write " + inQuotes(path) + ": " + reason + "; name another folder with --out");
}

/// Fills the file at `path`; false with the reason in `error` on failure.
bool fill(std::string const& path, OutputFolder::Writer const& writer, std::string& error) {
    std::unique_ptr<std::FILE, CloseFile> stream(std::fopen(path.c_str(), "wbe"));
    if (!stream) {
        error = systemErrorText(errno);
        return false;
    }
    if (!writer(stream.get(), error)) {
        return false;
    }
    if (std::fclose(stream.release()) != 0) {
        error = systemErrorText(errno);
        return false;
    }
    return true;
}

}  // namespace

OutputFolder::OutputFolder(std::string path) : path_(std::move(path)) {
    if (path_.empty()) {
        throw CommandError("--out names no folder", exitUsage);
    }
    std::error_code error;
    std::filesystem::create_directories(path_, error);
    if (error && !std::filesystem::is_directory(path_)) {
        refuseFolder(path_, error.message());
    }
    if (!std::filesystem::is_directory(path_)) {
        refuseFolder(path_, systemErrorText(ENOTDIR));
    }
    if (::access(path_.c_str(), W_OK | X_OK) != 0) {
        refuseFolder(path_, systemErrorText(errno));
    }
}

std::string OutputFolder::write(std::string const& fileName, Writer const& writer) const {
    std::string const path = (std::filesystem::path(path_) / fileName).string();
    std::string const partial = partialName(path);
    std::string error;
    bool isWritten = fill(partial, writer, error);
    if (isWritten && std::rename(partial.c_str(), path.c_str()) != 0) {
        error = systemErrorText(errno);
        isWritten = false;
    }
    if (!isWritten) {
        ::unlink(partial.c_str());
        refuseFile(path, error);
    }
    return path;
}

std::string OutputFolder::writeText(std::string const& fileName, std::string const& text) const {
    return write(fileName, [&text](std::FILE* stream, std::string& error) {
        if (std::fwrite(text.data(), 1, text.size(), stream) == text.size()) {
            return true;
        }
        error = systemErrorText(errno);
        return false;
    });
}

}  // namespace cli
