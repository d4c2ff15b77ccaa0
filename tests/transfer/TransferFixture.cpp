#include "tests/transfer/TransferFixture.h"

#include <algorithm>
#include <filesystem>

namespace test {

TransferFixture::TransferFixture() {
    for (char const* const name : {"m", "n", "out", "remote", "elsewhere"}) {
        std::filesystem::create_directories(folder_.path() / name);
    }
    DiskManager::instance().setDriveRoot('M', folder_.name("m"));
    DiskManager::instance().setDriveRoot('N', folder_.name("n"));
    DiskManager::instance().setDriveForTask("import", 'M');
}

TransferFixture::~TransferFixture() {
    DiskManager::instance().removeDrive('M');
    DiskManager::instance().removeDrive('N');
}

void TransferFixture::addClip(unsigned number, std::string const& name, FakeCatalogue::ClipFacts facts) {
    facts.name = name;
    catalogue_.addEdit(clip(number), nullptr);
    catalogue_.setFacts(clip(number), facts);
}

LightweightString<wchar_t> TransferFixture::write(std::string const& path, std::string const& contents) {
    std::filesystem::create_directories((folder_.path() / path).parent_path());
    return folder_.write(path, contents);
}

MediaFileInfo TransferFixture::own(DriveId drive, std::string const& path, std::uint64_t size) {
    return {MaterialFilename(drive, wide(path)), size};
}

MediaFileInfo TransferFixture::linked(DriveId drive, std::string const& path, std::string const& target,
                                      std::uint64_t size) const {
    bool const isRemote = target.rfind(TransferFiles::store, 0) == 0;
    return {MaterialFilename(drive, wide(path)), isRemote ? wide(target) : full(target), size};
}

TransferFixture::Lines TransferFixture::recorded(std::vector<std::string> const& beginnings) const {
    Lines lines = calls_->all();
    std::erase_if(lines, [&](std::string const& line) {
        return std::none_of(beginnings.begin(), beginnings.end(),
                            [&](std::string const& each) { return line.rfind(each, 0) == 0; });
    });
    return lines;
}

}  // namespace test
