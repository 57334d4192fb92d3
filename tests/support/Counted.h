// Reference-counted objects for tests that watch what a container or a value
// does with its references.
#pragma once

#include <memory>

#include "kticore/core/Unknown.h"

namespace kt::test {

class CCounted final : public CKTUnknownImpl<IKTUnknown> {
public:
    ULONG References() const { return refs; }
};

// Holds the caller's one reference of a library object and releases it.
struct ReleaseReference {
    template <class I>
    void operator()(I* object) const {
        if (object != nullptr)
            object->Release();
    }
};
template <class I>
using Ref = std::unique_ptr<I, ReleaseReference>;

// What `object` answers for I, with its reference; null for a miss.
template <class I>
Ref<I> Answer(IKTUnknown* object) {
    void* found = nullptr;
    object->QueryInterface(typeid(I), &found);
    return Ref<I>(static_cast<I*>(found));
}

}  // namespace kt::test
