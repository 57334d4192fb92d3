// The host's progress sink. The library only asks it whether to go on, and
// tells it the range of a document's work; it counts references on it.
#pragma once

#include "kticore/core/Unknown.h"

namespace KTIFC {

struct IProgress : IKTUnknown {
    // Nonzero stops the work: the next stream operation throws XE_CANCELLED.
    virtual int IsCancelled() = 0;
    // Two slots of the host's own, which the library never calls.
    virtual void ReservedSlot1() {}
    virtual void ReservedSlot2() {}
    // Called with 0 and 100 when a document storage is made at the top.
    virtual void SetRange(int low, int high) = 0;

protected:
    ~IProgress() = default;
};

}  // namespace KTIFC
