#include "bench/support/NullClip.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>

#include "host/memory/MemoryCatalogue.h"
#include "playfile/playfile.h"

namespace bench {

NullClip::NullClip()
    : path_(std::filesystem::temp_directory_path() / "playfile-bench-XXXXXX"),
      cookie_(Ox::UUID::generate(), 'V', 0),
      reader_(Ox::makePtr<NullReaderInfo>()) {
    int const descriptor = mkstemp(path_.data());
    if (descriptor < 0) {
        std::perror(path_.c_str());
        std::exit(1);
    }
    close(descriptor);
    filename_ = fromUTF8(path_.c_str());
    MemoryCatalogue::instance().add(cookie_, filename_);
    Ox::FileReaderInfo::add(reader_, 0);
}

NullClip::~NullClip() {
    playfile_close_all_files();
    Ox::FileReaderInfo::remove(reader_);
    MemoryCatalogue::instance().remove(cookie_);
    unlink(path_.c_str());
}

}  // namespace bench
