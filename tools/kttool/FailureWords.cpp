#include "tools/kttool/FailureWords.h"

namespace kttool {

std::string FailureWords(DWORD code) {
    switch (code) {
    case XE_FILE_NOT_FOUND:
        return "no such file";
    case XE_PATH_NOT_FOUND:
        return "no such path";
    case XE_SHARING:
        return "in use by another program";
    case XE_ACCESS_DENIED:
        return "access denied";
    case XE_DISK_FULL:
        return "the disk is full";
    case XE_NO_MEMORY:
        return "out of memory";
    case XE_BAD_DATA:
    case XE_SHORT_DATA:
        return "damaged or of another format";
    case XE_NOT_TEXT:
        return "not text";
    default:
        return "failure code " + std::to_string(code);
    }
}

}  // namespace kttool
