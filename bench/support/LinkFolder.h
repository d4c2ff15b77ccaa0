#pragma once

#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>

namespace bench {

/// A folder of its own with links to files, which goes at the end of the scope.
class LinkFolder {
public:
    LinkFolder() : path_((std::filesystem::temp_directory_path() / "playfile-links-XXXXXX").string()) {
        if (!mkdtemp(path_.data())) {
            throw std::runtime_error("no temporary folder can be made");
        }
    }
    ~LinkFolder() {
        std::error_code error;
        std::filesystem::remove_all(path_, error);
    }
    LinkFolder(LinkFolder const&) = delete;
    LinkFolder& operator=(LinkFolder const&) = delete;

    [[nodiscard]] std::string const& path() const { return path_; }

    /// A new name for a file, with its extension.
    std::string add(std::string const& file) {
        std::filesystem::path const source = std::filesystem::absolute(file);
        std::string const link = path_ + '/' + std::to_string(++count_) + source.extension().string();
        std::filesystem::create_symlink(source, link);
        return link;
    }

private:
    std::string path_;
    unsigned count_ = 0;
};

}  // namespace bench
