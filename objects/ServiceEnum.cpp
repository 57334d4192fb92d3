#include "objects/ServiceEnum.h"

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
            IKTUnknown** service = walk.NextService();
            if (service == nullptr)
                break;
            if ((*service)->QueryInterface(*wanted, reinterpret_cast<void**>(&items[stored])))
                ++stored;
        }
    } catch (...) {
        // The caller learns no count, so the references already handed out
        // would be lost.
        while (stored != 0)
            items[--stored]->Release();
        throw;
    }
    return Finish(stored, fetched);
}

int CServiceEnum::Skip(ULONG count) {
    ULONG counted = 0;
    while (counted < count) {
        IKTUnknown** service = walk.NextService();
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
        const char** name = walk.NextName();
        if (name == nullptr)
            break;
        items[stored++] = *name;
    }
    return Finish(stored, fetched);
}

int CServiceNameEnum::Skip(ULONG count) {
    ULONG stepped = 0;
    while (stepped < count && walk.NextName() != nullptr)
        ++stepped;
    return stepped != 0;
}
