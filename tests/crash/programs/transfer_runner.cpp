/// Lets a transfer of a prepared world run, and dies at a call of the file manager:  FOLDER SCENARIO NUMBER WHEN
///
/// WHEN is `before` the call, or `half`: if the call copies a file, half of it is there then. A run that makes fewer
/// calls ends with 0.
#include <csignal>
#include <filesystem>
#include <fstream>
#include <string>

#include "tests/fakes/TransferWorld.h"
#include "tests/support/ProgramTexts.h"

namespace {

[[noreturn]] void die() {
    std::raise(SIGKILL);
    std::abort();
}

/// What a copy leaves that is killed on its way.
void writeHalf(std::string const& from, std::string const& to) {
    std::ifstream in(from, std::ios::binary);
    std::string const contents{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    std::filesystem::create_directories(std::filesystem::path(to).parent_path());
    std::ofstream(to, std::ios::binary) << contents.substr(0, contents.size() / 2);
}

}  // namespace

int main(int, char** arguments) {
    std::string const folder = arguments[1];
    int const number = std::stoi(arguments[3]);
    bool const diesBefore = std::string(arguments[4]) == "before";
    test::TransferWorld world(folder, arguments[2]);
    world.files().failAt(1'000'000);
    if (diesBefore) {
        world.files().onCall = [number](int call) {
            if (call == number) {
                die();
            }
        };
    } else {
        world.files().onCopy = [&](std::string const& source, std::string const& destination) {
            if (world.files().getCalls() + 1 >= number) {
                std::string const store = test::TransferFiles::store;
                bool const isRemote = source.rfind(store, 0) == 0;
                writeHalf(folder + (isRemote ? "remote/" + source.substr(store.size()) : source),
                          folder + destination);
                die();
            }
            return std::optional<iFileManager::eCopyRC>();
        };
    }
    world.run();
    return 0;
}
