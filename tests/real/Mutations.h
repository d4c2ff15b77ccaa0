#pragma once

#include <cstdint>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include "tests/support/TemporaryFolder.h"

namespace test {

/// All bytes of a file.
[[nodiscard]] std::string bytesOf(std::string const& path);

/// Damages good files at random, each time another, and has them read.
class Mutations {
public:
    using Read = std::function<void(std::string const& path)>;

    /// @param files  of which the small ones are used
    Mutations(std::vector<std::string> const& files, Read read);

    [[nodiscard]] bool hasFiles() const { return !originals_.empty(); }
    /// Files that end somewhere.
    void readCut(std::uint32_t count);
    /// Files of which some bits are wrong.
    void readFlipped(std::uint32_t count);

private:
    [[nodiscard]] std::string const& anOriginal() { return originals_[below(originals_.size())]; }
    [[nodiscard]] std::size_t below(std::size_t limit) { return random_() % limit; }
    void readDamaged(std::string const& bytes, std::uint32_t number) const;

    Read const read_;
    TemporaryFolder const folder_;
    std::mt19937 random_{20261121};
    std::vector<std::string> originals_;
};

}  // namespace test
