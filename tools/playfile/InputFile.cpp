#include "tools/playfile/InputFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>

#include "tools/playfile/CommandError.h"
#include "tools/playfile/Md5.h"
#include "tools/playfile/Text.h"

namespace cli {
namespace {

/// The last component keeps its name even if it is a link: readers go by it.
std::string absolutePath(std::string const& argument) {
    std::filesystem::path const path(argument);
    std::error_code error;
    std::filesystem::path folder =
        std::filesystem::weakly_canonical(path.has_parent_path() ? path.parent_path() : ".", error);
    if (error) {
        folder = std::filesystem::absolute(path).parent_path();
    }
    return (folder / path.filename()).string();
}

class Descriptor {
public:
    explicit Descriptor(std::string const& path)
        : number_(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY)) {}
    ~Descriptor() {
        if (number_ >= 0) {
            ::close(number_);
        }
    }
    Descriptor(Descriptor const&) = delete;
    Descriptor& operator=(Descriptor const&) = delete;

    [[nodiscard]] int number() const { return number_; }

private:
    int const number_;
};

[[noreturn]] void refuseUnopened(std::string const& path, int errorNumber) {
    std::string const shown = inQuotes(path);
    switch (errorNumber) {
        case ENOENT:
        case ENOTDIR:
            throw CommandError("there is no file " + shown + "; check its name");
        case EACCES:
        case EPERM:
            throw CommandError("no permission to read " + shown +
                               "; change its mode or run as a user who may");
        default:
            throw CommandError("cannot open " + shown + ": " + systemErrorText(errorNumber) +
                               "; check the file and its drive");
    }
}

}  // namespace

InputFile::InputFile(std::string const& argument) {
    if (argument.empty()) {
        throw CommandError("the file's name is empty; name a media file", exitUsage);
    }
    path_ = absolutePath(argument);
    widePath_ = wideName(path_);
}

void InputFile::requireReadable() {
    Descriptor const file(path_);
    if (file.number() < 0) {
        refuseUnopened(path_, errno);
    }
    struct stat facts {};
    if (::fstat(file.number(), &facts) != 0) {
        refuseUnopened(path_, errno);
    }
    if (S_ISDIR(facts.st_mode)) {
        throw CommandError(inQuotes(path_) + " is a folder; name a media file in it");
    }
    if (!S_ISREG(facts.st_mode)) {
        throw CommandError(inQuotes(path_) + " is no regular file; copy what it holds into one");
    }
    if (facts.st_size == 0) {
        throw CommandError(inQuotes(path_) + " is empty; fetch or copy it again");
    }
    byteCount_ = static_cast<std::uint64_t>(facts.st_size);
}

Cookie InputFile::cookie(CookieType type, std::uint8_t channel) const {
    Ox::UUID uuid;
    uuid.bytes = Md5::of(path_.data(), path_.size());
    return {uuid, type, channel};
}

}  // namespace cli
