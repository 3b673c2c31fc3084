#include "sound.h"

#include "synth.h"

#include <windows.h>

#include <dsound.h>

#include <atomic>

namespace {
constexpr int ringFrames = 32768;  // what the device plays round and round
constexpr int aheadFrames = 17640; // 0.4 s are rendered before they are heard
constexpr int fadeFrames = 1024, guardFrames = 128;
constexpr int tailFrames = 4410; // of silence, which a device plays before it is closed
constexpr int frameBytes = 4;
constexpr DWORD pauseMilliseconds = 10;

struct Device {
    IDirectSound* sound;
    IDirectSoundBuffer* ring;
    HANDLE thread, fade;        // the event that ends the thread
    int64_t rendered;           // frames since the start
    std::atomic<int64_t> heard; // written by the thread
};

Device device;
Synth synth;

// Returns the frames heard so far. The cursor goes round; `heard` is less than a round old.
int64_t countHeard() {
    DWORD cursor = 0;
    device.ring->GetCurrentPosition(&cursor, nullptr);
    const int64_t heard = device.heard;
    return heard + ((int64_t(cursor / frameBytes) - heard) & (ringFrames - 1));
}

// Calls work(samples, count) for the part of the ring that begins at a frame: twice if it wraps.
template <class Work>
void withRing(int64_t frame, int count, const Work& work) {
    void* parts[2];
    DWORD sizes[2];
    const DWORD start = DWORD(frame & (ringFrames - 1)) * frameBytes;
    if (device.ring->Lock(start, DWORD(count * frameBytes), &parts[0], &sizes[0], &parts[1],
                          &sizes[1], 0) != DS_OK)
        return;
    for (int part = 0; part < 2; ++part)
        if (parts[part])
            work(static_cast<int16_t*>(parts[part]), int(sizes[part]) / frameBytes);
    device.ring->Unlock(parts[0], sizes[0], parts[1], sizes[1]);
}

void renderAhead() {
    device.heard = countHeard();
    const int64_t wanted = device.heard + aheadFrames - device.rendered;
    const int count = int(wanted) / Synth_Block * Synth_Block;
    if (count <= 0)
        return;
    withRing(device.rendered, count,
             [](int16_t* samples, int frames) { Synth_Render(synth, samples, frames); });
    device.rendered += count;
}

// Rewrites what has been rendered but not yet played.
void fadeRing() {
    DWORD cursor = 0;
    device.ring->GetCurrentPosition(nullptr, &cursor);
    int left = fadeFrames;
    withRing(cursor / frameBytes + guardFrames, ringFrames - aheadFrames / 2,
             [&](int16_t* samples, int frames) {
                 for (int frame = 0; frame < frames; ++frame) {
                     for (int side = 0; side < 2; ++side)
                         samples[2 * frame + side] =
                             int16_t(samples[2 * frame + side] * left / fadeFrames);
                     left = left > 0 ? left - 1 : 0;
                 }
             });
}

DWORD WINAPI playTune(void*) {
    while (WaitForSingleObject(device.fade, pauseMilliseconds) == WAIT_TIMEOUT)
        renderAhead();
    fadeRing();
    Sleep((fadeFrames + guardFrames + tailFrames) * 1000 / Tune_Rate);
    device.ring->Stop();
    return 0;
}

bool openRing(HWND window) {
    WAVEFORMATEX format = {};
    format.wFormatTag = WAVE_FORMAT_PCM;
    format.nChannels = 2;
    format.nSamplesPerSec = Tune_Rate;
    format.wBitsPerSample = 16;
    format.nBlockAlign = frameBytes;
    format.nAvgBytesPerSec = Tune_Rate * frameBytes;
    DSBUFFERDESC description = {};
    description.dwSize = sizeof description;
    description.dwFlags = DSBCAPS_GETCURRENTPOSITION2 | DSBCAPS_GLOBALFOCUS;
    description.dwBufferBytes = ringFrames * frameBytes;
    description.lpwfxFormat = &format;
    return DirectSoundCreate(nullptr, &device.sound, nullptr) == DS_OK &&
           device.sound->SetCooperativeLevel(window, DSSCL_PRIORITY) == DS_OK &&
           device.sound->CreateSoundBuffer(&description, &device.ring, nullptr) == DS_OK;
}
} // namespace

void Sound_Start(void* window, const Tune& tune) {
    if (tune.noteCount == 0 || !openRing(static_cast<HWND>(window)))
        return;
    Synth_Start(synth, tune);
    renderAhead();
    device.fade = CreateEventA(nullptr, TRUE, FALSE, nullptr);
    device.ring->Play(0, 0, DSBPLAY_LOOPING);
    device.thread = CreateThread(nullptr, 0, playTune, nullptr, 0, nullptr);
    SetThreadPriority(device.thread, THREAD_PRIORITY_ABOVE_NORMAL);
}

float Sound_TimeAt(float clock) {
    static float offset = 0, latest = 0;
    static int64_t before = 0;
    if (!device.thread)
        return clock;
    const int64_t heard = countHeard();
    if (heard != before) { // a device that has stopped does not hold up the picture
        const float late = float(double(heard) / Tune_Rate) - clock - offset;
        offset += late > 0.1f || late < -0.1f ? late : 0.05f * late;
    }
    before = heard;
    latest = clock + offset > latest ? clock + offset : latest;
    return latest;
}

void Sound_FadeOut() {
    if (device.thread)
        SetEvent(device.fade);
}

void Sound_Stop() {
    Sound_FadeOut();
    if (device.thread)
        WaitForSingleObject(device.thread, INFINITE);
    if (device.ring)
        device.ring->Release();
    if (device.sound)
        device.sound->Release();
}
