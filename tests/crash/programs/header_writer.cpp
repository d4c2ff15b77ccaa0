/// Writes one header of a piece of material after another, each with another number in all its places, until
/// it is killed:  MATERIAL
#include <unistd.h>

#include <string>

#include "host/memory/MemoryCatalogue.h"
#include "host/sidecar/HeaderFiles.h"

int main(int, char** arguments) {
    Cookie const cookie(Ox::UUID::generate(), 'V', 0);
    MemoryCatalogue::instance().add(cookie, fromUTF8(arguments[1]));
    HeaderFiles store;
    for (int number = 1; number > 0; ++number) {
        std::string const text = std::to_string(number);
        SAV_HEADER const header =
            make_header("vision", "data", number, number, 0, number, number, number, 0, 0, "PAL", number,
                        number, fromUTF8(("/in/" + text).c_str()), number, 0, "both", -1);
        if (!store.writeHeader(cookie, header)) {
            return 1;
        }
        std::string const line = text + "\n";
        [[maybe_unused]] ssize_t const written = write(STDOUT_FILENO, line.data(), line.size());
    }
}
