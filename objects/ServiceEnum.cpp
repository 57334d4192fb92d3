#include "objects/ServiceEnum.h"

#include <utility>

namespace {

// What both Next operations report: the number stored, in *fetched when
// asked, and whether it is not 0.
int Finish(ULONG stored, ULONG* fetched) {
    if (fetched != nullptr)
        *fetched = stored;
    return stored != 0;
}

}  // namespace

int CServiceEnum::Next(ULONG count, IKTUnknown** items, ULONG* fetched) {
    ULONG stored = 0;
    try {
        while (items != nullptr && stored < count) {
            IKTUnknown** service = table->NextValue(position);
            if (service == nullptr)
                break;
            if ((*service)->QueryInterface(*wanted, reinterpret_cast<void**>(&items[stored])))
                ++stored;
        }
    } catch (...) {
        // The caller learns no count, so the references already handed out
        // go back. Each place is emptied before its reference goes: a caller
        // that releases what is not null after catching releases nothing
        // twice.
        while (stored != 0)
            std::exchange(items[--stored], nullptr)->Release();
        throw;
    }
    return Finish(stored, fetched);
}

int CServiceEnum::Skip(ULONG count) {
    ULONG counted = 0;
    while (counted < count) {
        IKTUnknown** service = table->NextValue(position);
        if (service == nullptr)
            break;
        void* answer = nullptr;
        if (!(*service)->QueryInterface(*wanted, &answer))
            break;
        static_cast<IKTUnknown*>(answer)->Release();
        ++counted;
    }
    return counted != 0;
}

int CServiceNameEnum::Next(ULONG count, const char** items, ULONG* fetched) {
    ULONG stored = 0;
    while (items != nullptr && stored < count) {
        const char** name = table->NextKey(position);
        if (name == nullptr)
            break;
        items[stored++] = *name;
    }
    return Finish(stored, fetched);
}

int CServiceNameEnum::Skip(ULONG count) {
    ULONG stepped = 0;
    while (stepped < count && table->NextKey(position) != nullptr)
        ++stepped;
    return stepped != 0;
}
