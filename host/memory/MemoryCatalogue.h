#pragma once

#include <map>
#include <mutex>

#include "toolkit/catalogue/MaterialInfo.h"
#include "toolkit/catalogue/SystemCache.h"

/// The file catalogue in memory: the default, filled by the program.
///
/// Threads  Any.
class MemoryCatalogue final : public SystemCache, public MaterialInfo::iStore {
public:
    [[nodiscard]] bool findFileForCookie(Cookie const& cookie, LightweightString<wchar_t>& filename,
                                         DecodeFormat const& format) override;
    [[nodiscard]] std::int32_t getStartOffset(Cookie const& cookie) override;

    /// Says which file holds a cookie at a level; what it said before is forgotten.
    void add(Cookie const& cookie, LightweightString<wchar_t> const& filename,
             eProxyLevel level = levelOriginal);
    void remove(Cookie const& cookie, eProxyLevel level = levelOriginal);
    void setStartOffset(Cookie const& cookie, std::int32_t samples);

    /// The one that is in force where no other is installed.
    [[nodiscard]] static MemoryCatalogue& instance();

private:
    struct Key {
        Cookie cookie;
        std::uint32_t level;
        auto operator<=>(Key const&) const = default;
    };

    std::mutex lock_;
    std::map<Key, LightweightString<wchar_t>> files_;
    std::map<Cookie, std::int32_t> startOffsets_;
};
