// What all stand-in objects share: a count of references, and pages of their own, which nobody may
// touch any more once the last reference is given back. Whoever uses an object after that gets a
// memory fault at once.
#pragma once

#include <atomic>
#include <cstddef>
#include <windows.h>

// How many stand-in objects live.
inline std::atomic<int> liveComObjects = 0;

template <typename Object, typename Interface>
class ComObject : public Interface {
public:
    static void* operator new(size_t size) {
        ++liveComObjects;
        return VirtualAlloc(nullptr, size, MEM_COMMIT | MEM_RESERVE, PAGE_READWRITE);
    }
    static void operator delete(void* at, size_t size) {
        --liveComObjects;
        DWORD before = 0;
        VirtualProtect(at, size, PAGE_NOACCESS, &before);
    }

    STDMETHODIMP QueryInterface(REFIID, void**) noexcept override { return E_NOINTERFACE; }
    STDMETHODIMP_(ULONG) AddRef() noexcept override { return ++referenceCount; }
    STDMETHODIMP_(ULONG) Release() noexcept override {
        const ULONG left = --referenceCount;
        if (left == 0)
            static_cast<Object*>(this)->onLastRelease();
        return left;
    }

    ULONG references() const { return referenceCount; }

protected:
    // For objects that begin with another one holding them, `first` is 0.
    explicit ComObject(ULONG first = 1) : referenceCount(first) {}
    void onLastRelease() { delete static_cast<Object*>(this); }

private:
    friend Object;
    std::atomic<ULONG> referenceCount;
};
