#pragma once

#include <cstdint>

#include "toolkit/catalogue/Cookie.h"

struct SAV_HEADER;

/// What is stored with a piece of material beside its media.
///
/// Threads  Any; the installed store takes its locks innermost.
class MaterialInfo {
public:
    /// Where the facts lie.
    class iStore {
    public:
        virtual ~iStore() = default;
        /// Samples by which the clip's time line begins behind its media's start, as its header says; 0
        /// without one.
        [[nodiscard]] virtual std::int32_t getStartOffset(Cookie const& cookie) = 0;
        /// Stores the header of a piece of material, in place of the one before; false on failure.
        virtual bool writeHeader(Cookie const& /*cookie*/, SAV_HEADER const& /*header*/) { return false; }
        /// False if the header of a material file of that name would take the place of something that is none.
        [[nodiscard]] virtual bool canWriteHeader(LightweightString<wchar_t> const& /*material*/) {
            return true;
        }
        /// False, and the header untouched, if there is none.
        [[nodiscard]] virtual bool readHeader(Cookie const& /*cookie*/, SAV_HEADER& /*header*/) {
            return false;
        }
    };

    static constexpr int failed = -1;

    /// See `iStore::getStartOffset`.
    [[nodiscard]] static std::int32_t get_start_offset(Cookie const& cookie);

    /// Stores a header; `failed` on failure, else 0.
    [[nodiscard]] static int write_header(Cookie const& cookie, SAV_HEADER const& header);
    /// See `iStore::canWriteHeader`.
    [[nodiscard]] static bool can_write_header(LightweightString<wchar_t> const& material);
    /// See `iStore::readHeader`.
    [[nodiscard]] static bool read_header(Cookie const& cookie, SAV_HEADER& header);

    /// Puts `store` in force, null for the host's own, and gives back the one before, null for the host's
    /// own. Not owned.
    static iStore* install(iStore* store) noexcept;
};
