// One counted reference, released when the scope ends, also by an exception.
#pragma once

namespace kt::params {

template <class T>
class Held {
public:
    explicit Held(T* object = nullptr) : object(object) {}
    Held(const Held&) = delete;
    Held& operator=(const Held&) = delete;
    Held(Held&& other) noexcept : object(other.object) { other.object = nullptr; }
    Held& operator=(Held&&) = delete;
    ~Held() { Reset(nullptr); }

    // Takes over `next`, releasing what was held.
    void Reset(T* next) {
        if (object != nullptr)
            object->Release();
        object = next;
    }
    T* get() const { return object; }
    T* operator->() const { return object; }
    explicit operator bool() const { return object != nullptr; }

private:
    T* object;
};

// A reference of the caller's own on an object it was handed, if any.
template <class T>
Held<T> HoldAnother(T* object) {
    if (object != nullptr)
        object->AddRef();
    return Held<T>(object);
}

}  // namespace kt::params
