#include "input/mouse.h"

#include "display/screen_device.h"
#include "input/mouse_state.h"

namespace {

constexpr uint32_t buttonDownBit = 0x80;
constexpr DWORD anyAxis = DIDFT_AXIS | DIDFT_ANYINSTANCE;
constexpr DWORD anyButton = DIDFT_BUTTON | DIDFT_ANYINSTANCE;
constexpr DWORD optionalObject = 0x80000000;

// The layout that DirectInput publishes as c_dfDIMouse.
constexpr DIOBJECTDATAFORMAT mouseObjects[] = {
    {&GUID_XAxis, DIMOFS_X, anyAxis, 0},
    {&GUID_YAxis, DIMOFS_Y, anyAxis, 0},
    {&GUID_ZAxis, DIMOFS_Z, optionalObject | anyAxis, 0},
    {nullptr, DIMOFS_BUTTON0, anyButton, 0},
    {nullptr, DIMOFS_BUTTON1, anyButton, 0},
    {nullptr, DIMOFS_BUTTON2, optionalObject | anyButton, 0},
    {nullptr, DIMOFS_BUTTON3, optionalObject | anyButton, 0},
};

bool setFormat() {
    DIDATAFORMAT format{};
    format.dwSize = sizeof format;
    format.dwObjSize = sizeof(DIOBJECTDATAFORMAT);
    format.dwFlags = DIDF_RELAXIS;
    format.dwDataSize = sizeof(DIMOUSESTATE);
    format.dwNumObjs = sizeof mouseObjects / sizeof mouseObjects[0];
    format.rgodf = const_cast<DIOBJECTDATAFORMAT*>(mouseObjects);
    return Mouse.device->SetDataFormat(&format) == DI_OK;
}

void confineCursor(RECT* rectangle) {
    GetWindowRect(Screen.window, rectangle);
    ClipCursor(rectangle);
    if (Mouse.cursorShown == 1) {
        ShowCursor(FALSE);
        Mouse.cursorShown = 0;
    }
}

DIPROPDWORD wordProperty(DWORD object, DWORD how, DWORD value) {
    DIPROPDWORD property{};
    property.diph.dwSize = sizeof property;
    property.diph.dwHeaderSize = sizeof property.diph;
    property.diph.dwObj = object;
    property.diph.dwHow = how;
    property.dwData = value;
    return property;
}

bool setBufferSize() {
    const DIPROPDWORD size = wordProperty(0, DIPH_DEVICE, MouseEventLimit);
    return Mouse.device->SetProperty(DIPROP_BUFFERSIZE, &size.diph) == DI_OK;
}

bool setCooperativeLevel() {
    const DWORD sharing = Screen.windowed ? DISCL_NONEXCLUSIVE : DISCL_EXCLUSIVE;
    return Mouse.device->SetCooperativeLevel(Screen.window, DISCL_FOREGROUND | sharing) == DI_OK;
}

int32_t readWheelStep() {
    DIPROPDWORD step = wordProperty(DIMOFS_Z, DIPH_BYOFFSET, 0);
    const bool known = Mouse.device->GetProperty(DIPROP_GRANULARITY, &step.diph) == DI_OK;
    return known ? static_cast<int32_t>(step.dwData) : 1;
}

void acquire() {
    if (!setCooperativeLevel() || !setBufferSize() || Mouse.device->Acquire() != DI_OK)
        return;
    Mouse.acquireState = MouseState_Acquired;
    Mouse.wheelStep = readWheelStep();
}

void setButton(int32_t button, DWORD data) { Mouse.buttons[button] = data & buttonDownBit ? 1 : 0; }

void applyEvent(const DIDEVICEOBJECTDATA& event) {
    const auto motion = static_cast<int32_t>(event.dwData);
    switch (event.dwOfs) {
    case DIMOFS_X: Mouse.deltaX += motion; break;
    case DIMOFS_Y: Mouse.deltaY += motion; break;
    case DIMOFS_Z: Mouse.deltaWheel += motion; break;
    case DIMOFS_BUTTON0: setButton(0, event.dwData); break;
    case DIMOFS_BUTTON1: setButton(1, event.dwData); break;
    case DIMOFS_BUTTON2: setButton(2, event.dwData); break;
    default: break;
    }
}

int32_t keepWithin(int32_t position, int32_t size) {
    if (position < 0)
        return 0;
    return position >= size ? size - 1 : position;
}

void applyEvents(DWORD count, const RECT& windowRectangle) {
    for (DWORD index = 0; index < count; ++index)
        applyEvent(Mouse.eventBuffer[index]);
    Mouse.mouseX = keepWithin(Mouse.mouseX + Mouse.deltaX, Screen.screenWidth);
    Mouse.mouseY = keepWithin(Mouse.mouseY + Mouse.deltaY, Screen.screenHeight);
    if (Screen.windowed)
        SetCursorPos(windowRectangle.left + Mouse.mouseX, windowRectangle.top + Mouse.mouseY);
}

// The system lost events. Button 2 is left alone, and stays so.
void forgetButtons() {
    Mouse.buttons[0] = 0;
    Mouse.buttons[1] = 0;
}

int64_t readEvents(const RECT& windowRectangle) {
    DWORD count = MouseEventLimit;
    Mouse.lastResult =
        Mouse.device->GetDeviceData(sizeof(DIDEVICEOBJECTDATA), Mouse.eventBuffer, &count, 0);
    switch (Mouse.lastResult) {
    case DI_OK: applyEvents(count, windowRectangle); return 1;
    case DI_BUFFEROVERFLOW: forgetButtons(); return 0;
    case DIERR_INPUTLOST:
    case DIERR_NOTACQUIRED:
        if (Screen_IsActive())
            Mouse.device->Acquire();
        return 0;
    default: return 0;
    }
}

} // namespace

int64_t Mouse_SubsystemInit() {
    IDirectInput7A* directInput = DirectInput_Acquire();
    Mouse.started = 1;
    if (!directInput)
        return 0;
    Mouse.device = DirectInput_CreateDevice(directInput, GUID_SysMouse);
    if (!Mouse.device || !setFormat())
        return 0;
    Mouse.releasedByProgram = 0;
    Mouse.cursorShown = 1;
    Mouse.acquireState = MouseState_Made;
    return 1;
}

void Mouse_SubsystemEnd() {
    if (!Mouse.started)
        return;
    ClipCursor(nullptr);
    if (Mouse.device)
        Mouse.device->Release();
    Mouse.device = nullptr;
    DirectInput_Release();
}

int64_t Mouse_Poll() {
    Mouse.deltaX = 0;
    Mouse.deltaY = 0;
    Mouse.deltaWheel = 0;
    if (Mouse.releasedByProgram || !Screen_IsActive()) {
        Mouse_Unhook();
        return 0;
    }
    RECT windowRectangle{};
    if (Screen.windowed)
        confineCursor(&windowRectangle);
    if (Mouse.acquireState == MouseState_Made)
        acquire();
    return readEvents(windowRectangle);
}

// The acquire state stays: the next poll reads, is told that the device is not acquired, and
// acquires it.
int64_t Mouse_Unhook() {
    if (Screen.windowed) {
        ClipCursor(nullptr);
        if (Mouse.cursorShown == 0) {
            ShowCursor(TRUE);
            Mouse.cursorShown = 1;
        }
    }
    return Mouse.device->Unacquire();
}

int64_t Mouse_SetReleased(int32_t released) {
    if (released != 1) {
        Mouse.releasedByProgram = 0;
        return 1;
    }
    Mouse.acquireState = MouseState_Made; // taken back, the mouse is set up as a whole
    Mouse.releasedByProgram = 1;
    return Mouse_Unhook();
}

void Mouse_UnacquireIfMade() {
    if (Mouse.device)
        Mouse.device->Unacquire();
}
