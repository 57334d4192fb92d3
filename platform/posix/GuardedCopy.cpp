#include "platform/GuardedCopy.h"

#include <sys/uio.h>
#include <unistd.h>

namespace kt::sys {

bool CopyGuarded(void* to, const void* from, size_t size) {
    if (size == 0)
        return true;
    // The kernel copies from this process to itself and reports a bad address.
    struct iovec local = {to, size};
    struct iovec remote = {const_cast<void*>(from), size};
    return process_vm_readv(getpid(), &local, 1, &remote, 1, 0) == static_cast<ssize_t>(size);
}

}  // namespace kt::sys
