// The library joins COM on the thread that loads it and leaves as it unloads:
// a host may open storages without initialising COM itself. Other threads
// that use storages initialise COM themselves.
#include "platform/OleStorage.h"

namespace {

class ComApartment {
public:
    ComApartment() : joined(kt::sys::JoinComApartment()) {}
    ~ComApartment() {
        if (joined)
            kt::sys::LeaveComApartment();
    }
    ComApartment(const ComApartment&) = delete;
    ComApartment& operator=(const ComApartment&) = delete;

private:
    bool joined;
};

const ComApartment apartment;

}  // namespace
