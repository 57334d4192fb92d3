// Events that clear themselves when a wait has seen them set.
#include "kticore/core/Exception.h"
#include "kticore/core/Threads.h"
#include "core/WaitResult.h"
#include "platform/Event.h"

namespace {

class CEvent final : public IEvent {
public:
    explicit CEvent(kt::sys::Event* event) : event(event) {}
    ~CEvent() { kt::sys::CloseEvent(event); }

    ULONG AddRef() override { return ++refs; }

    ULONG Release() override {
        if (--refs != 0)
            return refs;
        delete this;
        return 0;
    }

    int QueryInterface(const type_info&, void**) override { return 0; }

    void Set() override { kt::sys::SignalEvent(event); }
    void Reset() override { kt::sys::ClearEvent(event); }

    int Wait(DWORD timeoutMs) override { return kt::WaitResultOf(kt::sys::WaitForEvent(event, timeoutMs)); }

private:
    kt::sys::Event* event;
    ULONG refs = 1;
};

}  // namespace

IEvent* Event_New(int initialState) {
    kt::sys::Event* event = kt::sys::CreateAutoResetEvent(initialState != 0);
    if (event == nullptr)
        throw CXMemException();
    return new CEvent(event);
}
