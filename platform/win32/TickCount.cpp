#include "platform/TickCount.h"

namespace kt::sys {

DWORD TickCount() { return ::GetTickCount(); }

}  // namespace kt::sys
