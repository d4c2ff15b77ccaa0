/// Runs a target on the inputs of its corpus: files and folders, each named as an argument.
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size);

namespace {

namespace fs = std::filesystem;

unsigned runFile(fs::path const& path) {
    std::ifstream file(path, std::ios::binary);
    std::vector<char> const bytes((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    LLVMFuzzerTestOneInput(reinterpret_cast<std::uint8_t const*>(bytes.data()), bytes.size());
    return 1;
}

unsigned run(fs::path const& path) {
    if (!fs::is_directory(path)) {
        return runFile(path);
    }
    unsigned count = 0;
    for (fs::directory_entry const& entry : fs::directory_iterator(path)) {
        count += run(entry.path());
    }
    return count;
}

}  // namespace

int main(int argumentCount, char** arguments) {
    unsigned count = 0;
    for (int index = 1; index < argumentCount; ++index) {
        count += run(arguments[index]);
    }
    std::printf("%u inputs\n", count);
    return count == 0 ? 1 : 0;
}
