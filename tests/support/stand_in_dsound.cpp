#include "tests/support/stand_in_dsound.h"

#include "tests/support/com_object.h"
#include "tests/support/unused_methods.h"

#include <cstring>

namespace {

StandInDSound* living = nullptr;

} // namespace

// The cursor, the state and the count are shared by the two threads that use a buffer. Its bytes
// are not: the region between Lock and Unlock belongs to the caller.
class StandInSoundBuffer final : public ComObject<StandInSoundBuffer, UnusedDirectSoundBuffer> {
public:
    StandInSoundBuffer(StandInDSound& sound_, const DSBUFFERDESC& wanted)
        : isPrimary((wanted.dwFlags & DSBCAPS_PRIMARYBUFFER) != 0),
          bytes(wanted.dwBufferBytes, StandInDSound::newBytes), sound(sound_) {
        sound.buffers.push_back(this);
    }
    ~StandInSoundBuffer() { std::erase(sound.buffers, this); }

    STDMETHODIMP Lock(DWORD offset, DWORD size, LPVOID* region, LPDWORD regionSize, LPVOID* second,
                      LPDWORD secondSize, DWORD) noexcept override {
        if (offset >= bytes.size() || size > bytes.size())
            return DSERR_INVALIDPARAM;
        const DWORD toEnd = static_cast<DWORD>(bytes.size()) - offset;
        *region = bytes.data() + offset;
        *regionSize = size < toEnd ? size : toEnd;
        if (second)
            *second = size > toEnd ? bytes.data() : nullptr;
        if (secondSize)
            *secondSize = size > toEnd ? size - toEnd : 0;
        return DS_OK;
    }

    STDMETHODIMP Unlock(LPVOID, DWORD, LPVOID, DWORD) noexcept override {
        ++unlocks;
        return DS_OK;
    }

    STDMETHODIMP GetCurrentPosition(LPDWORD play, LPDWORD write) noexcept override {
        if (play)
            *play = cursor;
        if (write)
            *write = cursor;
        return DS_OK;
    }

    STDMETHODIMP SetCurrentPosition(DWORD position) noexcept override {
        if (position >= bytes.size())
            return DSERR_INVALIDPARAM;
        cursor = position;
        return DS_OK;
    }

    STDMETHODIMP Play(DWORD, DWORD, DWORD flags) noexcept override {
        isLooping = (flags & DSBPLAY_LOOPING) != 0;
        isPlaying = true;
        return DS_OK;
    }

    STDMETHODIMP Stop() noexcept override {
        isPlaying = false;
        return DS_OK;
    }

    const bool isPrimary;
    std::vector<uint8_t> bytes;
    std::atomic<DWORD> cursor = 0;
    std::atomic<int> unlocks = 0;
    std::atomic<bool> isPlaying = false;
    std::atomic<bool> isLooping = false;

private:
    StandInDSound& sound;
};

class StandInDirectSound final : public ComObject<StandInDirectSound, UnusedDirectSound> {
public:
    explicit StandInDirectSound(StandInDSound& sound_) : sound(sound_) {}

    STDMETHODIMP SetCooperativeLevel(HWND window, DWORD level) noexcept override {
        if (!window)
            return DSERR_INVALIDPARAM;
        sound.level = level;
        return DS_OK;
    }

    STDMETHODIMP CreateSoundBuffer(LPCDSBUFFERDESC wanted, LPDIRECTSOUNDBUFFER* buffer,
                                   IUnknown* outer) noexcept override {
        if (outer)
            return DSERR_NOAGGREGATION;
        if (sound.level == 0)
            return DSERR_PRIOLEVELNEEDED;
        const bool isPrimary = (wanted->dwFlags & DSBCAPS_PRIMARYBUFFER) != 0;
        const bool describesSound = wanted->lpwfxFormat && wanted->dwBufferBytes > 0;
        if (wanted->dwSize != sizeof *wanted || isPrimary == describesSound)
            return DSERR_INVALIDPARAM;
        *buffer = new StandInSoundBuffer(sound, *wanted);
        return DS_OK;
    }

private:
    StandInDSound& sound;
};

StandInDSound::StandInDSound() { living = this; }

StandInDSound::~StandInDSound() { living = nullptr; }

StandInSoundBuffer* StandInDSound::stream() const {
    for (auto at = buffers.rbegin(); at != buffers.rend(); ++at)
        if (!(*at)->isPrimary)
            return *at;
    return nullptr;
}

void StandInDSound::moveCursor(DWORD offset) {
    if (stream())
        stream()->cursor = offset;
}

size_t StandInDSound::bufferCount() const { return buffers.size(); }
bool StandInDSound::hasStream() const { return stream() != nullptr; }
bool StandInDSound::isPlaying() const { return stream() && stream()->isPlaying; }
bool StandInDSound::isLooping() const { return stream() && stream()->isLooping; }
DWORD StandInDSound::cursor() const { return stream() ? stream()->cursor.load() : 0; }
int StandInDSound::unlocks() const { return stream() ? stream()->unlocks.load() : 0; }

std::vector<uint8_t> StandInDSound::bytes() const {
    return stream() ? stream()->bytes : std::vector<uint8_t>();
}

HRESULT WINAPI StandIn_DirectSoundCreate(const GUID* device, IDirectSound** object,
                                         IUnknown* outer) {
    if (!living || device || outer)
        return DSERR_INVALIDPARAM;
    *object = new StandInDirectSound(*living);
    ++living->madeCount;
    return DS_OK;
}
