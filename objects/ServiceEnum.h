// The enumerators of a service container: over the services that answer an
// interface, and over the names. They walk the container's table in its own
// order (buckets ascending, the newest entry of a bucket first) and hold no
// reference to the container.
#pragma once

#include "kticore/core/Enum.h"
#include "objects/ServiceContainer.h"

namespace kt {

// A place in the table that stays at the end, once there, until Reset: the
// table's own walk would begin again.
class CServiceWalk {
public:
    explicit CServiceWalk(CServiceTable& table) : table(table) {}

    IKTUnknown** NextService() { return Advance(&CServiceTable::NextValue); }
    const char** NextName() { return Advance(&CServiceTable::NextKey); }
    void Reset() {
        position = CTMapPosition();
        finished = false;
    }

private:
    template <class Item>
    Item* Advance(Item* (CServiceTable::*step)(CTMapPosition&)) {
        Item* item = finished ? nullptr : (table.*step)(position);
        finished = item == nullptr;
        return item;
    }

    CServiceTable& table;
    CTMapPosition position;
    bool finished = false;
};

}  // namespace kt

// The services that answer one interface, each handed out with a reference.
class CServiceEnum : public CKTUnknownImpl<CTEnum<IKTUnknown*>> {
public:
    CServiceEnum(kt::CServiceTable& table, const type_info& wanted) : walk(table), wanted(&wanted) {}

    // Passes over a service that does not answer.
    int Next(ULONG count, IKTUnknown** items, ULONG* fetched) override;
    // Stops at the first service that does not answer, that one used up.
    int Skip(ULONG count) override;
    void Reset() override { walk.Reset(); }

private:
    kt::CServiceWalk walk;
    const type_info* wanted;
};

// The names, as the table keeps them: valid until their entry is removed.
class CServiceNameEnum : public CKTUnknownImpl<CTEnum<const char*>> {
public:
    explicit CServiceNameEnum(kt::CServiceTable& table) : walk(table) {}

    int Next(ULONG count, const char** items, ULONG* fetched) override;
    int Skip(ULONG count) override;
    void Reset() override { walk.Reset(); }

private:
    kt::CServiceWalk walk;
};
