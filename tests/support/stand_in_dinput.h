// The stand-in for DirectInput: a keyboard scripted snapshot by snapshot and a mouse fed event by
// event. Made by StandInDevices.
//
// It insists on what DirectInput insists on: a data format before Acquire, acquired devices before
// reading, a buffer before buffered reading, no other settings while a device is acquired.
#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <initializer_list>
#include <set>
#include <vector>
#include <windows.h>

class StandInInputDevice;

struct MouseEvent {
    DWORD offset; // DIMOFS_X and its like
    DWORD data;
};

// The entry point that programs fetch from DINPUT.DLL; serves the living StandInDInput.
HRESULT WINAPI StandIn_DirectInputCreateEx(HINSTANCE module, DWORD version, const GUID& interfaceId,
                                           void** object, IUnknown* outer);

class StandInDInput {
public:
    using Keys = std::set<uint8_t>; // the scan codes that are down

    StandInDInput();
    ~StandInDInput();
    StandInDInput(const StandInDInput&) = delete;
    StandInDInput& operator=(const StandInDInput&) = delete;

    // --- The keyboard, decided by the test ---

    // Adds snapshots: each successful read takes the next; after the last one all keys are up.
    void script(std::initializer_list<Keys> snapshots);
    // Adds a press and the release of it: two snapshots.
    void press(uint8_t scanCode);
    // Adds snapshots with no key down.
    void rest(int snapshots);
    // Runs at the first read behind the script's end, and at every later one.
    std::function<void()> onScriptEnd;

    // --- The mouse, decided by the test ---

    void move(int32_t x, int32_t y);
    void wheel(int32_t amount);
    void button(int number, bool isDown);
    void event(DWORD offset, DWORD data);
    // The next read gives DI_BUFFEROVERFLOW.
    void overflowMouse() { mouseOverflows = true; }
    // What the wheel's DIPROP_GRANULARITY is; 0: the property fails.
    DWORD granularity = 120;

    // --- Both ---

    // Takes the devices away as the system does: the next read gives DIERR_INPUTLOST, later ones
    // DIERR_NOTACQUIRED until Acquire.
    void lose();
    // While false, Acquire gives DIERR_OTHERAPPHASPRIO, as in the background.
    bool isForeground = true;

    // --- Seen by the test ---

    bool wasMade() const { return madeCount > 0; }
    int made() const { return madeCount; } // IDirectInput7A objects made
    size_t snapshotsLeft() const { return snapshots.size(); }
    int keyboardReads() const { return reads; } // successful ones
    size_t deviceCount() const { return devices.size(); }

private:
    friend HRESULT WINAPI StandIn_DirectInputCreateEx(HINSTANCE, DWORD, const GUID&, void**,
                                                      IUnknown*);
    friend class StandInDirectInput7;
    friend class StandInInputDevice;

    std::vector<StandInInputDevice*> devices;
    std::deque<Keys> snapshots;
    std::deque<MouseEvent> mouseEvents;
    bool mouseOverflows = false;
    int madeCount = 0;
    int reads = 0;
};
