#include "bench/transfer/Relocation.h"

#include <chrono>
#include <filesystem>
#include <fstream>

#include "bench/support/Footprint.h"
#include "bench/support/Program.h"
#include "host/memory/MemoryCatalogue.h"
#include "host/memory/MemoryEditStore.h"
#include "toolkit/catalogue/DiskManager.h"
#include "transfer/MaterialMove.h"

namespace fs = std::filesystem;

namespace bench {
namespace {

constexpr unsigned filesPerFolder = 100;
constexpr unsigned tenth = 10;

double secondsOf(std::function<void()> const& work) {
    auto const begin = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

std::string nameOf(unsigned number) {
    return "folder" + std::to_string(number / filesPerFolder) + "/clip" + std::to_string(number) + ".mov";
}

Cookie clipOf(unsigned number) {
    Ox::UUID uuid;
    uuid.bytes[0] = 1;
    for (unsigned i = 0; i < sizeof(number); ++i) {
        uuid.bytes[uuid.bytes.size() - 1 - i] = static_cast<std::uint8_t>(number >> (8 * i));
    }
    return {uuid, 'E', Cookie::wholeClip};
}

/// Files on a drive, their clips, and an empty drive.
class Drives {
public:
    Drives(std::string const& folder, unsigned files, unsigned bytesPerFile)
        : folder_(folder), files_(files) {
        for (unsigned number = 0; number < files; ++number) {
            fs::path const path = fs::path(source()) / nameOf(number);
            fs::create_directories(path.parent_path());
            std::ofstream(path, std::ios::binary) << std::string(bytesPerFile, 'x');
            Cookie const video = convertCookie(clipOf(number), 'V', 0);
            MemoryCatalogue::instance().addFile(
                video, MediaFileInfo(MaterialFilename('M', fromUTF8(nameOf(number).c_str())), bytesPerFile));
            MemoryEditStore::instance().setChannels(clipOf(number), 1, 0);
        }
        DiskManager::instance().setDriveRoot('M', fromUTF8(source().c_str()));
        fs::create_directories(target());
        DiskManager::instance().setDriveRoot('N', fromUTF8(target().c_str()));
    }
    ~Drives() {
        std::error_code error;
        fs::remove_all(source(), error);
        fs::remove_all(target(), error);
    }
    Drives(Drives const&) = delete;
    Drives& operator=(Drives const&) = delete;

    [[nodiscard]] std::string source() const { return folder_ + "/playfile-transferbench-m"; }
    [[nodiscard]] std::string target() const { return folder_ + "/playfile-transferbench-n"; }

    void emptyTarget() const {
        fs::remove_all(target());
        fs::create_directories(target());
    }
    void relocate(unsigned from, unsigned end) const {
        CookieVec clips;
        for (unsigned number = from; number < end; ++number) {
            clips.add(clipOf(number));
        }
        MaterialMove::relocate('N', clips, MaterialMove::copyFiles, LoggerHandle());
    }
    /// File by file, each on its device before the next one.
    [[nodiscard]] bool copyPlainly() const {
        bool isGood = true;
        for (unsigned number = 0; number < files_ && isGood; ++number) {
            fs::path const to = fs::path(target()) / nameOf(number);
            std::error_code error;
            fs::create_directories(to.parent_path(), error);
            isGood =
                fs::copy_file(fs::path(source()) / nameOf(number), to, error) && isOnItsDevice(to.string());
        }
        return isGood;
    }
    /// All of them, and then each on its device.
    [[nodiscard]] bool copyWithProgram() const {
        bool isGood = runProgram({"cp", "-r", source() + "/.", target()});
        for (unsigned number = 0; number < files_ && isGood; ++number) {
            isGood = isOnItsDevice(target() + "/" + nameOf(number));
        }
        return isGood;
    }
    [[nodiscard]] bool areAllThere() const {
        unsigned count = 0;
        for (auto const& entry : fs::recursive_directory_iterator(target())) {
            count += entry.is_regular_file() ? 1 : 0;
        }
        return count == files_;
    }

private:
    std::string const folder_;
    unsigned const files_;
};

}  // namespace

RelocationFigures measureRelocation(std::string const& folder, unsigned files, unsigned bytesPerFile) {
    Drives const drives(folder, files, bytesPerFile);
    RelocationFigures figures;
    unsigned const first = files / tenth;
    double const firstSeconds = secondsOf([&] { drives.relocate(0, first); });
    double const before = Footprint::now().residentMiB;
    figures.seconds = firstSeconds + secondsOf([&] { drives.relocate(first, files); });
    figures.growthMiB = Footprint::now().residentMiB - before;
    figures.isGood = drives.areAllThere();
    drives.emptyTarget();
    figures.plainSeconds = secondsOf([&] { figures.isGood = drives.copyPlainly() && figures.isGood; });
    drives.emptyTarget();
    figures.programSeconds = secondsOf([&] { figures.isGood = drives.copyWithProgram() && figures.isGood; });
    figures.firstSecondsPerFile = firstSeconds / first;
    figures.secondsPerFile = figures.seconds / files;
    return figures;
}

}  // namespace bench
