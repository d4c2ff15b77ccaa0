#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// What a server says before the body.
struct HttpHeaders {
    int status = 0;
    /// Bytes of the body.
    std::optional<std::uint64_t> length;
    /// Bytes of the whole file, where a part of it was asked for.
    std::optional<std::uint64_t> wholeLength;
    std::string etag;
    std::string lastModified;
    /// True if it points elsewhere.
    bool hasLocation = false;
    /// True if it states two lengths that differ, or one that is no number.
    bool isLengthBroken = false;
};

/// Gathers the header lines of an answer, through redirections and interim answers up to the one that counts.
class HttpAnswer {
public:
    /// @return true when the headers of the answer that counts are all there; what comes then is passed over
    [[nodiscard]] bool addLine(std::string_view line);

    [[nodiscard]] HttpHeaders const& headers() const { return headers_; }
    [[nodiscard]] bool isComplete() const { return isComplete_; }
    /// Bytes of all header lines.
    [[nodiscard]] std::size_t byteCount() const { return byteCount_; }
    /// Answers that were complete, those that point elsewhere included.
    [[nodiscard]] unsigned blockCount() const { return blockCount_; }

private:
    void addField(std::string_view name, std::string_view value);
    void addLength(std::string_view value);

    HttpHeaders headers_;
    bool isComplete_ = false;
    std::size_t byteCount_ = 0;
    unsigned blockCount_ = 0;
};
