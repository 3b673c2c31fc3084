#include "input/keyboard.h"

#include "display/screen_device.h"
#include "input/keyboard_state.h"
#include "runtime/program.h"

namespace {

static_assert(Key_Escape == DIK_ESCAPE && Key_Return == DIK_RETURN && Key_Up == DIK_UP &&
              Key_Left == DIK_LEFT && Key_Right == DIK_RIGHT && Key_Down == DIK_DOWN);

constexpr DWORD keyCount = 256;
constexpr uint8_t downBit = 0x80;
constexpr DWORD cooperativeLevel = DISCL_NONEXCLUSIVE | DISCL_FOREGROUND | DISCL_NOWINKEY;
constexpr DWORD optionalObject = 0x80000000; // the object need not exist on the device

// Object n of the format is the key of scan code n, at offset n.
void buildFormatTable() {
    Keyboard.formatTable = static_cast<DIOBJECTDATAFORMAT*>(
        HeapAlloc(GeneralHeap, 0, keyCount * sizeof(DIOBJECTDATAFORMAT)));
    for (DWORD key = 0; key < keyCount; ++key) {
        DIOBJECTDATAFORMAT& object = Keyboard.formatTable[key];
        object.pguid = &GUID_Key;
        object.dwOfs = key;
        object.dwType = optionalObject | DIDFT_BUTTON | DIDFT_MAKEINSTANCE(key);
        object.dwFlags = 0;
    }
}

bool setFormat() {
    DIDATAFORMAT format{};
    format.dwSize = sizeof format;
    format.dwObjSize = sizeof(DIOBJECTDATAFORMAT);
    format.dwFlags = DIDF_RELAXIS;
    format.dwDataSize = keyCount;
    format.dwNumObjs = keyCount;
    format.rgodf = Keyboard.formatTable;
    return Keyboard.device->SetDataFormat(&format) == DI_OK;
}

void bindAndAcquire() {
    Keyboard.device->SetCooperativeLevel(Screen.window, cooperativeLevel);
    Keyboard.device->Acquire();
    Keyboard.state = KeyboardState_Acquired; // if it failed, the next read tells
}

int64_t takeRelease(int32_t code) {
    uint8_t& wasDown = Keyboard.wasDown[code];
    if (Keyboard.keyState[code] & downBit) {
        wasDown = 1;
        return 0;
    }
    const int64_t released = wasDown;
    wasDown = 0;
    return released;
}

// Key 255 is left out on purpose. No early stop: every key's history is kept up.
int64_t takeAnyRelease() {
    int64_t any = 0;
    for (int32_t code = 0; code < 255; ++code)
        any |= takeRelease(code);
    return any;
}

} // namespace

int64_t Keyboard_SubsystemInit() {
    IDirectInput7A* directInput = DirectInput_Acquire();
    Keyboard.started = 1;
    if (!directInput)
        return 0;
    if (Keyboard.state != KeyboardState_None)
        return reinterpret_cast<int64_t>(directInput);
    buildFormatTable();
    Keyboard.device = DirectInput_CreateDevice(directInput, GUID_SysKeyboard);
    if (!Keyboard.device || !setFormat())
        return 0;
    Keyboard.state = KeyboardState_Made;
    return 1;
}

// DirectInput is acquired once more than it is released here: set-up runs twice. The object then
// lives until the process ends, which is harmless and meant to be so.
void Keyboard_SubsystemEnd() {
    if (!Keyboard.started)
        return;
    if (Keyboard.device) {
        Keyboard.device->Unacquire();
        Keyboard.device->Release();
        Keyboard.device = nullptr;
    }
    DirectInput_Release();
}

int64_t Keyboard_Poll() {
    if (Keyboard.state == KeyboardState_Made)
        bindAndAcquire();
    if (Keyboard.device->GetDeviceState(keyCount, Keyboard.keyState) != DI_OK) {
        Keyboard.state = KeyboardState_Made;
        return 0;
    }
    return 1;
}

int64_t Keyboard_IsReleased(int32_t code) {
    if (Keyboard.state != KeyboardState_Acquired)
        return 0;
    if (code == Keyboard_AnyKey)
        return takeAnyRelease();
    return takeRelease(Keyboard.useKeyMap ? Keyboard.keyMap[code] : code);
}
