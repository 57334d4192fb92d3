// Native stand-ins for the part of the OLE stream interface that the library
// calls, with the Windows names, values and argument order.
#pragma once

#include <cstdint>

#include "kticore/platform/Platform.h"

union LARGE_INTEGER {
    std::int64_t QuadPart;
};
union ULARGE_INTEGER {
    std::uint64_t QuadPart;
};

enum STREAM_SEEK : DWORD { STREAM_SEEK_SET = 0, STREAM_SEEK_CUR = 1, STREAM_SEEK_END = 2 };

// Calls use the platform's one convention natively.
#define STDMETHODCALLTYPE

constexpr HRESULT S_OK = 0;
constexpr HRESULT S_FALSE = 1;
constexpr HRESULT STG_E_INVALIDFUNCTION = static_cast<HRESULT>(0x80030001);
constexpr HRESULT STG_E_SEEKERROR = static_cast<HRESULT>(0x80030019);

struct IStream {
    virtual ULONG AddRef() = 0;
    virtual ULONG Release() = 0;
    virtual HRESULT Read(void* buffer, ULONG size, ULONG* read) = 0;
    virtual HRESULT Write(const void* buffer, ULONG size, ULONG* written) = 0;
    virtual HRESULT Seek(LARGE_INTEGER move, DWORD origin, ULARGE_INTEGER* newPosition) = 0;
    virtual HRESULT Commit(DWORD flags) = 0;

protected:
    ~IStream() = default;
};
