// _CTValEnum: the names of a registry key's sub-keys or values, read once
// when it is made. A snapshot: a loop that deletes what it walks is safe,
// later changes are not seen, and it holds nothing of the key, which may go
// first.
#pragma once

#include <vector>

#include "kticore/core/Enum.h"
#include "kticore/strings/XString.h"

namespace kt::params {

class _CTValEnum final : public CKTUnknownImpl<CTEnum<const char*>> {
public:
    enum class Listing { kSubKeys, kValues };

    _CTValEnum(HKEY key, Listing listing);

    // At the end 0, with *fetched left alone; else the next names (which
    // live as long as the enumerator), their number in *fetched, and 1.
    int Next(ULONG count, const char** items, ULONG* fetched) override;
    int Skip(ULONG count) override;
    void Reset() override { position = 0; }

private:
    void Append(const char* name);

    std::vector<CXString> names;
    ULONG count = 0;
    ULONG position = 0;
};

}  // namespace kt::params
