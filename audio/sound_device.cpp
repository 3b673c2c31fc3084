#include "audio/sound_device.h"

#include "audio/sound_device_state.h"
#include "display/screen_device.h"
#include "display/window.h"
#include "runtime/library.h"

#include <cmath>

namespace {

constexpr int32_t registryStep = 64;
constexpr DWORD descriptionSize = 40;

// The music goes on when another program comes to the front, and the play cursor is precise. That
// a buffer which is rewritten for ever asks to be static is odd, and stays.
constexpr DWORD streamFlags = DSBCAPS_STATIC | DSBCAPS_CTRLFREQUENCY | DSBCAPS_CTRLPAN |
                              DSBCAPS_CTRLVOLUME | DSBCAPS_GLOBALFOCUS |
                              DSBCAPS_GETCURRENTPOSITION2;

using CreateFunction = HRESULT(WINAPI*)(LPCGUID, IDirectSound**, IUnknown*);

// The kind's free routine. No sample sound is ever made, so there is nothing to free.
void freeSound(ObjectId) {}

void fillVolumeTable() {
    Sound.volumeTable[0] = 0;
    Sound.volumeTable[100] = 10000;
    for (int32_t percent = 1; percent < 100; ++percent)
        Sound.volumeTable[percent] = static_cast<int32_t>(2000.0 * std::log10(1000.0 * percent));
}

bool createDevice() {
    Sound.dsoundLibrary = LoadLibraryA("DSOUND.DLL");
    if (!Sound.dsoundLibrary)
        return false;
    auto create = Library_Find<CreateFunction>(Sound.dsoundLibrary, "DirectSoundCreate");
    return create && create(nullptr, &Sound.directSound, nullptr) == DS_OK;
}

bool bindToWindow() {
    Sound.boundWindow = Screen.hiddenWindow;
    return Sound.directSound->SetCooperativeLevel(Sound.boundWindow, DSSCL_PRIORITY) == DS_OK;
}

DSBUFFERDESC describeBuffer(DWORD flags, DWORD bytes, WAVEFORMATEX* format) {
    DSBUFFERDESC description{};
    description.dwSize = descriptionSize;
    description.dwFlags = flags;
    description.dwBufferBytes = bytes;
    description.lpwfxFormat = format;
    return description;
}

// The primary buffer is dropped on the spot: never set, played or released. All that it does is to
// be refused on a device that cannot give it, and that is no leak to be mended.
bool askForPrimaryBuffer() {
    const DSBUFFERDESC description = describeBuffer(DSBCAPS_PRIMARYBUFFER, 0, nullptr);
    IDirectSoundBuffer* dropped;
    return Sound.directSound->CreateSoundBuffer(&description, &dropped, nullptr) == DS_OK;
}

WAVEFORMATEX describeFormat(int32_t channels, uint32_t samplesPerSecond) {
    WAVEFORMATEX format{};
    format.wFormatTag = WAVE_FORMAT_PCM;
    format.nChannels = static_cast<WORD>(channels);
    format.nSamplesPerSec = samplesPerSecond;
    format.nAvgBytesPerSec = static_cast<DWORD>(channels) * samplesPerSecond * 2;
    format.nBlockAlign = static_cast<WORD>(channels * 2);
    format.wBitsPerSample = 16;
    return format;
}

} // namespace

ObjectRegistry* Sound_SubsystemInit() {
    Sound.soundRegistry = Registry_New(sizeof(int64_t), registryStep, freeSound);
    fillVolumeTable();
    if (!Window_Create())
        return nullptr;
    if (Sound.directSound)
        return Sound.soundRegistry;
    return createDevice() && bindToWindow() && askForPrimaryBuffer() ? Sound.soundRegistry
                                                                     : nullptr;
}

// The device object is not released: the library goes with it still held, as it is meant to.
void Sound_SubsystemEnd() {
    if (!Sound.soundRegistry)
        return;
    Registry_FreeAll(Sound.soundRegistry);
    if (Sound.dsoundLibrary)
        FreeLibrary(Sound.dsoundLibrary);
}

IDirectSoundBuffer* Sound_CreateStreamBuffer(int32_t channels, uint32_t samplesPerSecond,
                                             uint32_t bytes) {
    WAVEFORMATEX format = describeFormat(channels, samplesPerSecond);
    const DSBUFFERDESC description = describeBuffer(streamFlags, bytes, &format);
    IDirectSoundBuffer* buffer = nullptr;
    const HRESULT result = Sound.directSound->CreateSoundBuffer(&description, &buffer, nullptr);
    return result == DS_OK ? buffer : nullptr;
}
