#include "toolkit/image/Format.h"

#include <map>
#include <mutex>
#include <shared_mutex>

#include "ole/os/Immortal.h"
#include "toolkit/image/FormatTable.h"

namespace Ox::Image {
namespace {

/// The known formats. Entries are never taken out, so a pointer to one is good for ever.
struct Table {
    Table() {
        for (FormatDescription const& format : usualFormats()) {
            add(format);
        }
    }
    void add(FormatDescription const& description) {
        formats.emplace(formatFor(description.name.view()), description);
    }

    std::shared_mutex lock;
    std::map<Format, FormatDescription> formats;
};

Table& table() {
    return immortal<Table>();
}

}  // namespace

void registerFormat(FormatDescription const& description) {
    if (description.name.empty()) {
        return;
    }
    std::lock_guard const scope(table().lock);
    table().add(description);
}

FormatDescription const* describeFormat(Format format) {
    std::shared_lock const scope(table().lock);
    auto const found = table().formats.find(format);
    return found == table().formats.end() ? nullptr : &found->second;
}

std::uint32_t planeRowBytes(FormatDescription const& description, unsigned plane, std::uint32_t width) {
    if (plane >= description.planeCount) {
        return 0;
    }
    if (plane == 1 && description.paletteBytes != 0) {
        return description.paletteBytes;
    }
    std::uint64_t const round = (1U << description.log2Width[plane]) - 1U;
    std::uint64_t const samples = (width + round) >> description.log2Width[plane];
    return static_cast<std::uint32_t>((samples * description.sampleBits[plane] + 7) / 8);
}

std::uint32_t planeRows(FormatDescription const& description, unsigned plane, std::uint32_t height) {
    if (plane >= description.planeCount) {
        return 0;
    }
    if (plane == 1 && description.paletteBytes != 0) {
        return 1;
    }
    std::uint64_t const round = (1U << description.log2Height[plane]) - 1U;
    return static_cast<std::uint32_t>((height + round) >> description.log2Height[plane]);
}

}  // namespace Ox::Image
