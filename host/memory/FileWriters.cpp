/// The registry of writers.
#include "host/memory/PriorityList.h"
#include "ole/os/Immortal.h"
#include "toolkit/plugins/FileWriterInfo.h"

namespace Ox {
namespace {

PriorityList<FileWriterInfo>& writers() {
    return immortal<PriorityList<FileWriterInfo>>();
}

}  // namespace

std::vector<LightweightString<wchar_t>> FileWriterInfo::getExtensionsForFormat(
    LightweightString<char> const& format) {
    for (Ptr<FileWriterInfo> const& writer : writers().all()) {
        std::vector<LightweightString<wchar_t>> extensions = writer->getExtensions(format);
        if (!extensions.empty()) {
            return extensions;
        }
    }
    return {};
}

Ptr<FileWriterInfo> FileWriterInfo::getFileWriterFor(FileWriterParams const& params) {
    for (Ptr<FileWriterInfo> const& writer : writers().all()) {
        if (writer->canWrite(params)) {
            return writer;
        }
    }
    return {};
}

bool FileWriterInfo::add(Ptr<FileWriterInfo> const& writer, int priority) {
    return writers().add(writer, priority);
}

bool FileWriterInfo::remove(Ptr<FileWriterInfo> const& writer) {
    return writers().remove(writer);
}

}  // namespace Ox
