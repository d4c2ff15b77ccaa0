#include "toolkit/catalogue/OwnFiles.h"

#include "ole/os/OS.h"

OxResult deleteOwnFiles(std::vector<MediaFileInfo> const& files) {
    iFileManager& manager = OS()->getFileManager();
    OxResult result = oxSuccess;
    for (MediaFileInfo const& file : files) {
        LightweightString<wchar_t> const path = file.getLinkFileName();
        bool const isThere = !path.empty() && manager.fileExists(path);
        if (isThere && !manager.deleteFile(path)) {
            result = OS()->getErrors().getLastError();
        }
    }
    return result;
}
