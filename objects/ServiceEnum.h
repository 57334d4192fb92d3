// The enumerators of a service container: over the services that answer an
// interface, and over the names. They walk the container's table in its own
// order (buckets ascending, the newest entry of a bucket first), begin again
// after the end, and hold no reference to the container.
#pragma once

#include "kticore/core/Enum.h"
#include "objects/ServiceContainer.h"

// The services that answer one interface, each handed out with a reference.
class CServiceEnum : public CKTUnknownImpl<CTEnum<IKTUnknown*>> {
public:
    CServiceEnum(kt::CServiceTable& table, const type_info& wanted) : table(&table), wanted(&wanted) {}

    // Passes over a service that does not answer.
    int Next(ULONG count, IKTUnknown** items, ULONG* fetched) override;
    // Stops at the first service that does not answer, that one used up.
    int Skip(ULONG count) override;
    void Reset() override { position = CTMapPosition(); }

private:
    kt::CServiceTable* table;
    const type_info* wanted;
    CTMapPosition position;  // the bucket index, then the current entry
};

// The names, as the table keeps them: valid until their entry is removed.
class CServiceNameEnum : public CKTUnknownImpl<CTEnum<const char*>> {
public:
    explicit CServiceNameEnum(kt::CServiceTable& table) : table(&table) {}

    int Next(ULONG count, const char** items, ULONG* fetched) override;
    int Skip(ULONG count) override;
    void Reset() override { position = CTMapPosition(); }

private:
    kt::CServiceTable* table;
    CTMapPosition position;  // the bucket index, then the current entry
};
