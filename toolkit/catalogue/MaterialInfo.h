#pragma once

#include <cstdint>

#include "toolkit/catalogue/Cookie.h"

/// What is stored with a piece of material beside its media.
///
/// Threads  Any; the installed store takes its locks innermost.
class MaterialInfo {
public:
    /// Where the facts lie.
    class iStore {
    public:
        virtual ~iStore() = default;
        /// Samples by which the clip's time line begins behind its media's start; 0 if unknown.
        [[nodiscard]] virtual std::int32_t getStartOffset(Cookie const& cookie) = 0;
    };

    /// See `iStore::getStartOffset`.
    [[nodiscard]] static std::int32_t get_start_offset(Cookie const& cookie);

    /// Puts `store` in force, null for the host's own, and gives back the one before, null for the host's
    /// own. Not owned.
    static iStore* install(iStore* store) noexcept;
};
