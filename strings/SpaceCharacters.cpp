#include "strings/SpaceCharacters.h"

namespace kt::text {

bool IsSpaceUnit(KTWCHAR unit) {
    if (unit <= 0xFF)
        return unit == 0x20 || (unit >= 0x09 && unit <= 0x0D) || unit == 0xA0;
    return unit == 0x1680 || (unit >= 0x2000 && unit <= 0x200A) || unit == 0x2028 ||
           unit == 0x2029 || unit == 0x202F || unit == 0x205F || unit == 0x3000;
}

}  // namespace kt::text
