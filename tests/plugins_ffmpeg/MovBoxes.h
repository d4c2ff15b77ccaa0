#pragma once

#include <cstdint>
#include <initializer_list>
#include <map>
#include <string>
#include <vector>

namespace test {

/// The boxes inside the sample table of a track, by type; a test replaces those that it is about.
using SampleTable = std::map<std::string, std::string>;

/// Numbers of 32 and 64 bits, the highest byte first.
[[nodiscard]] std::string be32(std::initializer_list<std::uint32_t> numbers);
[[nodiscard]] std::string be64(std::initializer_list<std::uint64_t> numbers);

/// A box of this type and content.
[[nodiscard]] std::string box(std::string const& type, std::string const& content);
/// The same with the long form of the size.
[[nodiscard]] std::string longBox(std::string const& type, std::string const& content);

/// What a box with version, flags and a number of rows holds.
[[nodiscard]] std::string rows(std::uint32_t count, std::string const& table);

/// Four samples of 10, 20, 30 and 40 bytes, two in a chunk at 100 and two in one at 200, shown as they
/// are decoded.
[[nodiscard]] SampleTable fourSamples();

/// A track with this number. @param information  boxes beside the sample table
[[nodiscard]] std::string track(std::uint32_t id, SampleTable const& table,
                                std::string const& information = "");
/// The boxes that say where the data of a track lie, reference by reference.
[[nodiscard]] std::string references(std::vector<std::string> const& boxes);

/// A movie whose first track is said to have its samples in another file. @param movie  the bytes of a file
[[nodiscard]] std::string referringElsewhere(std::string movie);
/// A file that consists of a movie box.
[[nodiscard]] std::string movie(std::string const& content);

}  // namespace test
