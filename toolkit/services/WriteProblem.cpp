#include "toolkit/services/WriteProblem.h"

#include <cerrno>
#include <system_error>

#include "ole/os/OS.h"
#include "toolkit/services/ResourceText.h"

namespace {

/// Empty where the reason says it all.
char const* remedyFor(int number) {
    switch (number) {
        case ENOSPC:
        case EDQUOT:
            return "make room on the drive, or choose another one";
        case EFBIG:
            return "choose a drive that takes longer files";
        case EEXIST:
        case ENOTDIR:
        case EISDIR:
            return "choose another folder or name";
        case EROFS:
        case EACCES:
        case EPERM:
            return "choose a folder that may be written to";
        case ENOENT:
        case ENODEV:
        case ENXIO:
        case EIO:
        case ESTALE:
            return "see whether the drive is still there, or choose another one";
        default:
            return "";
    }
}

}  // namespace

LightweightString<char> writeProblemText(OxResult code) {
    if (code < iErrorService::systemErrorBase) {
        return resourceStr(code);
    }
    int const number = static_cast<int>(code - iErrorService::systemErrorBase);
    std::string const reason = std::generic_category().message(number);
    char const* const remedy = remedyFor(number);
    return {(*remedy == '\0' ? reason : reason + "; " + remedy).c_str()};
}

OxResult lastWriteError() {
    OxResult const error = OS()->getErrors().getLastError();
    return error == 0 ? oxFailure : error;
}
