#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>

/// Makes PPM files in a folder of its own, which goes with it.
class PpmFolder {
public:
    PpmFolder() {
        std::string path = std::filesystem::temp_directory_path() / "playfile-examples-XXXXXX";
        folder_ = mkdtemp(path.data());
    }
    ~PpmFolder() { std::filesystem::remove_all(folder_); }
    PpmFolder(PpmFolder const&) = delete;
    PpmFolder& operator=(PpmFolder const&) = delete;

    /// One picture: every byte of its pixels is `value`.
    [[nodiscard]] static std::string picture(unsigned width, unsigned height, char value) {
        return "P6\n# a comment\n" + std::to_string(width) + " " + std::to_string(height) + "\n255\n" +
               std::string(std::size_t(width) * height * 3, value);
    }

    /// Writes a file and gives back its path.
    [[nodiscard]] std::string write(std::string const& name, std::string const& content) const {
        std::string const path = folder_ / name;
        std::ofstream(path, std::ios::binary) << content;
        return path;
    }

    [[nodiscard]] std::string pathOf(std::string const& name) const { return folder_ / name; }

private:
    std::filesystem::path folder_;
};
