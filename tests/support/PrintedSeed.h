#pragma once

#include <cstdlib>
#include <iostream>
#include <random>

namespace test {

/// Random numbers whose seed is printed; the environment's PLAYFILE_TEST_SEED sets it.
[[nodiscard]] inline std::mt19937 randomWithPrintedSeed() {
    char const* const wanted = std::getenv("PLAYFILE_TEST_SEED");
    unsigned const seed =
        wanted ? static_cast<unsigned>(std::strtoul(wanted, nullptr, 10)) : std::random_device()();
    std::cout << "PLAYFILE_TEST_SEED=" << seed << std::endl;
    return std::mt19937(seed);
}

}  // namespace test
