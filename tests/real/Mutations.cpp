#include "tests/real/Mutations.h"

#include <fstream>
#include <iterator>
#include <utility>

namespace test {
namespace {

constexpr std::size_t largestOriginal = 700'000;
constexpr std::size_t mostFlips = 8;

}  // namespace

std::string bytesOf(std::string const& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

Mutations::Mutations(std::vector<std::string> const& files, Read read) : read_(std::move(read)) {
    for (std::string const& file : files) {
        std::string bytes = bytesOf(file);
        if (!bytes.empty() && bytes.size() <= largestOriginal) {
            originals_.push_back(std::move(bytes));
        }
    }
}

void Mutations::readCut(std::uint32_t count) {
    for (std::uint32_t i = 0; i < count; ++i) {
        std::string const& whole = anOriginal();
        readDamaged(whole.substr(0, below(whole.size())), i);
    }
}

void Mutations::readFlipped(std::uint32_t count) {
    for (std::uint32_t i = 0; i < count; ++i) {
        std::string bytes = anOriginal();
        for (std::size_t flips = 1 + below(mostFlips); flips > 0; --flips) {
            bytes[below(bytes.size())] ^= static_cast<char>(1U << below(8));
        }
        readDamaged(bytes, i);
    }
}

/// Each has a name of its own, so that nothing that is known of an earlier one counts.
void Mutations::readDamaged(std::string const& bytes, std::uint32_t number) const {
    std::string const name = "damaged" + std::to_string(number);
    folder_.write(name, bytes);
    read_(folder_.file(name));
    std::filesystem::remove(folder_.file(name));
}

}  // namespace test
