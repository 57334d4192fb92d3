#include "platform/win32/RealFunctions.h"

namespace kt::sys {

RealFunctions realFunctions{};

}  // namespace kt::sys
