// Events that clear themselves when a wait has seen them set.
#include <memory>
#include <utility>

#include "kticore/core/Exception.h"
#include "kticore/core/Threads.h"
#include "core/WaitResult.h"
#include "platform/Event.h"

namespace {

struct CloseEvent {
    void operator()(kt::sys::Event* event) const { kt::sys::CloseEvent(event); }
};
using EventHandle = std::unique_ptr<kt::sys::Event, CloseEvent>;

class CEvent final : public IEvent {
public:
    explicit CEvent(EventHandle event) : event(std::move(event)) {}

    ULONG AddRef() override { return ++refs; }

    ULONG Release() override {
        if (--refs != 0)
            return refs;
        delete this;
        return 0;
    }

    int QueryInterface(const type_info&, void**) override { return 0; }

    void Set() override { kt::sys::SignalEvent(event.get()); }
    void Reset() override { kt::sys::ClearEvent(event.get()); }

    int Wait(DWORD timeoutMs) override {
        return kt::WaitResultOf(kt::sys::WaitForEvent(event.get(), timeoutMs));
    }

private:
    EventHandle event;
    ULONG refs = 1;
};

}  // namespace

IEvent* Event_New(int initialState) {
    EventHandle event(kt::sys::CreateAutoResetEvent(initialState != 0));
    if (event == nullptr)
        throw CXMemException();
    // Closed by its holder if making the object throws.
    return new CEvent(std::move(event));
}
