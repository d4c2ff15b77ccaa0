#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

#include "ole/Ox/OxString.h"

namespace test {

/// An empty folder that goes, with all that is in it, at the end of the scope.
class TemporaryFolder {
public:
    TemporaryFolder() {
        std::string pattern = (std::filesystem::temp_directory_path() / "playfile-test-XXXXXX").string();
        if (!mkdtemp(pattern.data())) {
            throw std::runtime_error("no temporary folder can be made");
        }
        path_ = pattern;
    }
    ~TemporaryFolder() {
        std::error_code error;
        std::filesystem::remove_all(path_, error);
    }
    TemporaryFolder(TemporaryFolder const&) = delete;
    TemporaryFolder& operator=(TemporaryFolder const&) = delete;

    [[nodiscard]] std::filesystem::path const& path() const { return path_; }
    /// The full name of something in the folder, for the system and for us.
    [[nodiscard]] std::string file(std::string const& name) const { return (path_ / name).string(); }
    [[nodiscard]] LightweightString<wchar_t> name(std::string const& name) const {
        return fromUTF8(file(name).c_str());
    }

    /// Makes a file of these bytes; its name.
    LightweightString<wchar_t> write(std::string const& fileName, std::string const& contents) const {
        std::ofstream(file(fileName), std::ios::binary) << contents;
        return name(fileName);
    }
    [[nodiscard]] std::string read(std::string const& fileName) const {
        std::ifstream in(file(fileName), std::ios::binary);
        return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    }
    [[nodiscard]] bool holds(std::string const& fileName) const {
        return std::filesystem::exists(std::filesystem::symlink_status(path_ / fileName));
    }

private:
    std::filesystem::path path_;
};

}  // namespace test
