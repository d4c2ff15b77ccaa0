#include "tools/playfile/RelocationMeter.h"

#include <algorithm>
#include <filesystem>

namespace cli {
namespace {

/// Bytes of a file; 0 for one that isn't there.
std::uint64_t bytesAt(std::string const& path) {
    std::error_code error;
    std::uintmax_t const bytes = std::filesystem::file_size(path, error);
    return error ? 0 : bytes;
}

}  // namespace

RelocationMeter::RelocationMeter(RelocationPlan const& plan) : files_(plan.files), needed_(plan.needed) {
    std::erase_if(files_, [](RelocationPlan::File const& file) { return !file.reason.empty(); });
}

double RelocationMeter::fraction() {
    std::uint64_t underWay = 0;
    while (current_ < files_.size()) {
        std::uint64_t const there = bytesAt(files_[current_].target);
        bool const isPassed = current_ + 1 < files_.size() && bytesAt(files_[current_ + 1].target) != 0;
        if (there < files_[current_].size && !isPassed) {
            underWay = there;
            break;
        }
        doneBytes_ += std::min(there, files_[current_].size);
        ++current_;
    }
    return needed_ == 0 ? 1.0 : static_cast<double>(doneBytes_ + underWay) / static_cast<double>(needed_);
}

}  // namespace cli
