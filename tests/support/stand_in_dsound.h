// The stand-in for DirectSound: buffers of plain memory whose play cursor the test moves by hand.
// Made by StandInDevices. Its buffers may be used by two threads, as DirectSound's may.
#pragma once

#include <cstdint>
#include <vector>
#include <windows.h>

struct IDirectSound;
class StandInSoundBuffer;

// The entry point that programs fetch from DSOUND.DLL; serves the living StandInDSound.
HRESULT WINAPI StandIn_DirectSoundCreate(const GUID* device, IDirectSound** object,
                                         IUnknown* outer);

class StandInDSound {
public:
    StandInDSound();
    ~StandInDSound();
    StandInDSound(const StandInDSound&) = delete;
    StandInDSound& operator=(const StandInDSound&) = delete;

    // --- Decided by the test ---

    // The play cursor of the stream buffer; it stands still until it is moved again.
    void moveCursor(DWORD offset);

    // --- Seen by the test: the stream buffer is the newest one that is not a primary buffer ---

    bool wasMade() const { return madeCount > 0; }
    int made() const { return madeCount; } // IDirectSound objects made
    DWORD cooperativeLevel() const { return level; }
    size_t bufferCount() const; // the primary buffer, too
    bool hasStream() const;
    bool isPlaying() const;
    bool isLooping() const;
    DWORD cursor() const;
    int unlocks() const; // regions that were handed back
    std::vector<uint8_t> bytes() const;

    // What a new buffer is filled with, to tell it from silence.
    static constexpr uint8_t newBytes = 0x5A;

private:
    friend HRESULT WINAPI StandIn_DirectSoundCreate(const GUID*, IDirectSound**, IUnknown*);
    friend class StandInDirectSound;
    friend class StandInSoundBuffer;

    StandInSoundBuffer* stream() const;

    std::vector<StandInSoundBuffer*> buffers;
    DWORD level = 0;
    int madeCount = 0;
};
