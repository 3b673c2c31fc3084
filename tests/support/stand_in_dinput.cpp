#include "tests/support/stand_in_dinput.h"

#include "tests/support/com_object.h"
#include "tests/support/unused_methods.h"

#include <algorithm>
#include <cstring>

namespace {

StandInDInput* living = nullptr;

constexpr uint8_t keyIsDown = 0x80;

} // namespace

class StandInInputDevice final : public ComObject<StandInInputDevice, UnusedDirectInputDevice7A> {
public:
    StandInInputDevice(StandInDInput& input_, bool isKeyboard_)
        : input(input_), isKeyboard(isKeyboard_) {
        input.devices.push_back(this);
    }
    ~StandInInputDevice() { std::erase(input.devices, this); }

    STDMETHODIMP SetDataFormat(LPCDIDATAFORMAT format) noexcept override {
        if (!format || format->dwSize != sizeof *format)
            return DIERR_INVALIDPARAM;
        if (isAcquired)
            return DIERR_ACQUIRED;
        dataSize = format->dwDataSize;
        return DI_OK;
    }

    STDMETHODIMP SetCooperativeLevel(HWND window, DWORD) noexcept override {
        if (!window)
            return E_HANDLE;
        if (isAcquired)
            return DIERR_ACQUIRED;
        return DI_OK;
    }

    STDMETHODIMP SetProperty(REFGUID property, LPCDIPROPHEADER header) noexcept override {
        if (isAcquired)
            return DIERR_ACQUIRED;
        if (&property != &DIPROP_BUFFERSIZE)
            return DIERR_UNSUPPORTED;
        bufferSize = reinterpret_cast<const DIPROPDWORD*>(header)->dwData;
        return DI_OK;
    }

    STDMETHODIMP GetProperty(REFGUID property, LPDIPROPHEADER header) noexcept override {
        if (&property != &DIPROP_GRANULARITY || input.granularity == 0)
            return DIERR_UNSUPPORTED;
        reinterpret_cast<DIPROPDWORD*>(header)->dwData = input.granularity;
        return DI_OK;
    }

    STDMETHODIMP Acquire() noexcept override {
        if (dataSize == 0)
            return DIERR_INVALIDPARAM;
        if (!input.isForeground)
            return DIERR_OTHERAPPHASPRIO;
        isLost = false;
        if (isAcquired)
            return S_FALSE;
        isAcquired = true;
        return DI_OK;
    }

    STDMETHODIMP Unacquire() noexcept override {
        isLost = false;
        if (!isAcquired)
            return DI_NOEFFECT;
        isAcquired = false;
        return DI_OK;
    }

    STDMETHODIMP GetDeviceState(DWORD size, LPVOID state) noexcept override {
        const HRESULT result = readable();
        if (result != DI_OK)
            return result;
        if (size != dataSize || !isKeyboard)
            return DIERR_INVALIDPARAM;
        memset(state, 0, size);
        for (uint8_t key : nextSnapshot())
            static_cast<uint8_t*>(state)[key] = keyIsDown;
        return DI_OK;
    }

    STDMETHODIMP GetDeviceData(DWORD, LPDIDEVICEOBJECTDATA data, LPDWORD count,
                               DWORD) noexcept override {
        const HRESULT result = readable();
        if (result != DI_OK)
            return result;
        if (bufferSize == 0 || isKeyboard)
            return static_cast<HRESULT>(DIERR_NOTBUFFERED);
        return takeEvents(data, *count);
    }

    void lose() {
        isLost = isAcquired;
        isAcquired = false;
    }

private:
    // The first read after a loss tells of it; the later ones only that the device is not ours.
    HRESULT readable() {
        const bool wasLost = isLost;
        isLost = false;
        if (wasLost)
            return DIERR_INPUTLOST;
        if (!isAcquired)
            return DIERR_NOTACQUIRED;
        return DI_OK;
    }

    StandInDInput::Keys nextSnapshot() {
        ++input.reads;
        if (input.snapshots.empty() && input.onScriptEnd)
            input.onScriptEnd();
        if (input.snapshots.empty())
            return {};
        const StandInDInput::Keys keys = input.snapshots.front();
        input.snapshots.pop_front();
        return keys;
    }

    // More events than the buffer holds are an overflow, as well as one that the test asks for.
    HRESULT takeEvents(LPDIDEVICEOBJECTDATA data, DWORD& count) {
        const bool overflows = input.mouseOverflows || input.mouseEvents.size() > bufferSize;
        const size_t most = std::min<size_t>(count, bufferSize);
        const size_t taken = std::min(most, input.mouseEvents.size());
        for (size_t at = 0; at < taken; ++at) {
            const MouseEvent& event = input.mouseEvents[at];
            writeEvent(data, at, {event.offset, event.data, 0, ++sequence, 0});
        }
        input.mouseEvents.erase(input.mouseEvents.begin(),
                                input.mouseEvents.begin() + static_cast<int64_t>(taken));
        if (overflows)
            input.mouseEvents.clear();
        input.mouseOverflows = false;
        count = static_cast<DWORD>(taken);
        return overflows ? DI_BUFFEROVERFLOW : DI_OK;
    }

    // In the short form of the record, which has no user data at its end.
    struct Event {
        DWORD offset, data, time, sequence;
        DWORD unused;
    };
    static void writeEvent(LPDIDEVICEOBJECTDATA data, size_t at, const Event& event) {
        constexpr size_t shortSize = 16;
        memcpy(reinterpret_cast<uint8_t*>(data) + at * shortSize, &event, shortSize);
    }

    StandInDInput& input;
    const bool isKeyboard;
    DWORD dataSize = 0;
    DWORD bufferSize = 0;
    DWORD sequence = 0;
    bool isAcquired = false;
    bool isLost = false;
};

class StandInDirectInput7 final : public ComObject<StandInDirectInput7, UnusedDirectInput7A> {
public:
    explicit StandInDirectInput7(StandInDInput& input_) : input(input_) {}

    STDMETHODIMP CreateDeviceEx(REFGUID device, REFIID interfaceId, LPVOID* made,
                                LPUNKNOWN outer) noexcept override {
        const bool isKeyboard = IsEqualGUID(device, GUID_SysKeyboard);
        if (outer || !IsEqualGUID(interfaceId, IID_IDirectInputDevice7A))
            return DIERR_NOINTERFACE;
        if (!isKeyboard && !IsEqualGUID(device, GUID_SysMouse))
            return DIERR_DEVICENOTREG;
        *made = new StandInInputDevice(input, isKeyboard);
        return DI_OK;
    }

private:
    StandInDInput& input;
};

StandInDInput::StandInDInput() { living = this; }

StandInDInput::~StandInDInput() { living = nullptr; }

void StandInDInput::script(std::initializer_list<Keys> added) {
    snapshots.insert(snapshots.end(), added.begin(), added.end());
}

void StandInDInput::press(uint8_t scanCode) { script({{scanCode}, {}}); }

void StandInDInput::rest(int count) { snapshots.insert(snapshots.end(), size_t(count), Keys{}); }

void StandInDInput::event(DWORD offset, DWORD data) { mouseEvents.push_back({offset, data}); }

void StandInDInput::move(int32_t x, int32_t y) {
    event(DIMOFS_X, static_cast<DWORD>(x));
    event(DIMOFS_Y, static_cast<DWORD>(y));
}

void StandInDInput::wheel(int32_t amount) { event(DIMOFS_Z, static_cast<DWORD>(amount)); }

void StandInDInput::button(int number, bool isDown) {
    event(DIMOFS_BUTTON0 + static_cast<DWORD>(number), isDown ? keyIsDown : 0);
}

void StandInDInput::lose() {
    for (StandInInputDevice* device : devices)
        device->lose();
}

HRESULT WINAPI StandIn_DirectInputCreateEx(HINSTANCE, DWORD version, const GUID& interfaceId,
                                           void** object, IUnknown* outer) {
    if (!living || outer || !IsEqualGUID(interfaceId, IID_IDirectInput7A))
        return DIERR_NOINTERFACE;
    if (version != DIRECTINPUT_VERSION)
        return DIERR_OLDDIRECTINPUTVERSION;
    *object = new StandInDirectInput7(*living);
    ++living->madeCount;
    return DI_OK;
}
