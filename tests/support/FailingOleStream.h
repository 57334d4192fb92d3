// An OLE stream of the tests' own whose calls fail with chosen statuses, as
// a host's stream may.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "platform/OleStream.h"
#include "tests/support/Streams.h"

namespace kt::test {

// An OLE stream whose calls fail with a chosen status; reads that succeed
// give the bytes of `content`.
class FailingOleStream final : public IStream {
public:
    HRESULT readStatus = S_OK, writeStatus = S_OK, seekStatus = S_OK, commitStatus = S_OK;
    Bytes content;

    ULONG STDMETHODCALLTYPE AddRef() override { return ++refs; }
    ULONG STDMETHODCALLTYPE Release() override { return --refs; }
    HRESULT STDMETHODCALLTYPE Read(void* buffer, ULONG size, ULONG* read) override {
        *read = readStatus < 0 ? 0 : std::min<ULONG>(size, static_cast<ULONG>(content.size() - at));
        if (*read != 0)
            std::memcpy(buffer, content.data() + at, *read);
        at += *read;
        return readStatus;
    }
    HRESULT STDMETHODCALLTYPE Write(const void*, ULONG, ULONG* written) override {
        *written = 0;
        return writeStatus;
    }
    HRESULT STDMETHODCALLTYPE Seek(LARGE_INTEGER move, DWORD origin, ULARGE_INTEGER* position) override {
        lastMove = move.QuadPart;
        lastOrigin = origin;
        position->QuadPart = 0;
        return seekStatus;
    }
    HRESULT STDMETHODCALLTYPE Commit(DWORD flags) override {
        ++commits;
        commitFlags = flags;
        refsAtCommit = refs;
        return commitStatus;
    }
#if defined(_WIN32)
    // The rest of the published interface, which the stream never calls.
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void**) override { return E_NOINTERFACE; }
    HRESULT STDMETHODCALLTYPE SetSize(ULARGE_INTEGER) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE CopyTo(IStream*, ULARGE_INTEGER, ULARGE_INTEGER*, ULARGE_INTEGER*) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE Revert() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE LockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE UnlockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Stat(STATSTG*, DWORD) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Clone(IStream**) override { return E_NOTIMPL; }
#endif
    ULONG refs = 1;
    int commits = 0;
    DWORD commitFlags = ~0u;  // those of the last commit
    ULONG refsAtCommit = 0;
    std::int64_t lastMove = 0;  // what the last Seek was asked for
    DWORD lastOrigin = 0;

private:
    size_t at = 0;
};

}  // namespace kt::test
