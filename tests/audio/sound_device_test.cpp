#include "audio/sound_device.h"

#include "audio/sound_device_state.h"
#include "display/screen_device.h"
#include "tests/support/device_fixture.h"
#include "tests/support/real_sound.h"
#include "tests/support/wait_until.h"

#include <cmath>
#include <cstddef>

static_assert(offsetof(SoundDevice, soundRegistry) == 0);
static_assert(offsetof(SoundDevice, dsoundLibrary) == 8);
static_assert(offsetof(SoundDevice, directSound) == 16);
static_assert(offsetof(SoundDevice, boundWindow) == 24);
static_assert(offsetof(SoundDevice, volumeTable) == 32);
static_assert(sizeof Sound.volumeTable == 101 * 4);

namespace {

// --- Set-up ---

using SoundSetUp = DeviceTest;

TEST_F(SoundSetUp, GivesItsRegistryWhichIsEmpty) {
    ObjectRegistry* registry = Sound_SubsystemInit();
    ASSERT_NE(registry, nullptr);
    EXPECT_EQ(registry, Sound.soundRegistry);
    EXPECT_EQ(registry->growthStep, 64);
    EXPECT_EQ(registry->capacity, 64);
    ASSERT_NE(registry->onFree, nullptr);
    registry->onFree(0); // an unknown sound: nothing to do
    ObjectId found;
    Registry_IterStart(registry);
    EXPECT_EQ(Registry_IterNext(registry, &found), nullptr);
}

TEST_F(SoundSetUp, BindsTheOneWindow) {
    ASSERT_NE(Sound_SubsystemInit(), nullptr);
    EXPECT_NE(Sound.boundWindow, nullptr);
    EXPECT_EQ(Sound.boundWindow, devices.desktop->window());
    EXPECT_EQ(devices.sound.cooperativeLevel(), static_cast<DWORD>(DSSCL_PRIORITY));
    EXPECT_NE(Sound.directSound, nullptr);
    EXPECT_NE(Sound.dsoundLibrary, nullptr);
}

TEST_F(SoundSetUp, DropsThePrimaryBufferAndDoesNotReleaseIt) {
    Sound_SubsystemInit();
    EXPECT_EQ(devices.sound.bufferCount(), 1u);
    EXPECT_FALSE(devices.sound.hasStream());
    EXPECT_EQ(calls.uses("IDirectSoundBuffer::Release"), 0);
    EXPECT_EQ(calls.uses("IDirectSoundBuffer::SetFormat"), 0);
    EXPECT_EQ(calls.uses("IDirectSoundBuffer::Play"), 0);
}

TEST_F(SoundSetUp, TheSecondTimeMakesANewRegistryAndNoDevice) {
    ObjectRegistry* first = Sound_SubsystemInit();
    IDirectSound* device = Sound.directSound;
    calls.take();
    ObjectRegistry* second = Sound_SubsystemInit();
    ASSERT_NE(second, nullptr);
    EXPECT_NE(second, first);
    EXPECT_EQ(second, Sound.soundRegistry);
    EXPECT_EQ(Sound.directSound, device);
    EXPECT_EQ(devices.sound.made(), 1);
    EXPECT_EQ(devices.sound.bufferCount(), 1u);
}

// --- The volume table ---

TEST_F(SoundSetUp, FillsTheVolumeTable) {
    Sound_SubsystemInit();
    EXPECT_EQ(Sound.volumeTable[0], 0);
    EXPECT_EQ(Sound.volumeTable[1], 6000);
    EXPECT_EQ(Sound.volumeTable[2], 6602);
    EXPECT_EQ(Sound.volumeTable[3], 6954);
    EXPECT_EQ(Sound.volumeTable[10], 8000);
    EXPECT_EQ(Sound.volumeTable[50], 9397);
    EXPECT_EQ(Sound.volumeTable[98], 9982);
    EXPECT_EQ(Sound.volumeTable[99], 9991);
    EXPECT_EQ(Sound.volumeTable[100], 10000);
}

TEST_F(SoundSetUp, CutsTheVolumesTowardsZero) {
    Sound_SubsystemInit();
    for (int percent = 1; percent < 100; ++percent) {
        const auto amplitude = [](int volume) { return std::pow(10.0L, volume / 2000.0L); };
        const int volume = Sound.volumeTable[percent];
        EXPECT_LE(amplitude(volume), 1000.0L * percent * 1.0000000001L) << percent;
        EXPECT_GT(amplitude(volume + 1), 1000.0L * percent) << percent;
    }
}

TEST_F(SoundSetUp, FillsTheVolumeTableEvenWithoutAWindow) {
    calls.fail("CreateWindowExA", 1, 0);
    EXPECT_EQ(Sound_SubsystemInit(), nullptr);
    EXPECT_EQ(Sound.volumeTable[100], 10000);
}

// --- Failures: what was done by then, and the end after each ---

class SoundFailure : public DeviceTest {
protected:
    ~SoundFailure() override {
        calls.failNothing();
        Sound_SubsystemEnd();
        EXPECT_EQ(devices.loads("DSOUND.DLL"), 0);
    }
};

TEST_F(SoundFailure, OfTheWindowLeavesTheRegistry) {
    calls.fail("CreateWindowExA", 1, 0);
    EXPECT_EQ(Sound_SubsystemInit(), nullptr);
    EXPECT_NE(Sound.soundRegistry, nullptr);
    EXPECT_EQ(calls.uses("LoadLibraryA"), 0);
    EXPECT_EQ(Sound.dsoundLibrary, nullptr);
}

TEST_F(SoundFailure, OfTheLibraryLeavesTheRegistry) {
    calls.fail("LoadLibraryA", 1, 0);
    EXPECT_EQ(Sound_SubsystemInit(), nullptr);
    EXPECT_NE(Sound.soundRegistry, nullptr);
    EXPECT_EQ(Sound.dsoundLibrary, nullptr);
    EXPECT_EQ(calls.uses("GetProcAddress"), 0);
}

TEST_F(SoundFailure, OfTheEntryLeavesTheLibrary) {
    calls.fail("GetProcAddress", 1, 0);
    EXPECT_EQ(Sound_SubsystemInit(), nullptr);
    EXPECT_EQ(devices.loads("DSOUND.DLL"), 1);
    EXPECT_EQ(Sound.directSound, nullptr);
}

TEST_F(SoundFailure, OfTheDeviceLeavesTheLibrary) {
    calls.fail("DirectSoundCreate", 1, DSERR_NODRIVER);
    EXPECT_EQ(Sound_SubsystemInit(), nullptr);
    EXPECT_EQ(devices.loads("DSOUND.DLL"), 1);
    EXPECT_EQ(Sound.directSound, nullptr);
    EXPECT_EQ(Sound.boundWindow, nullptr);
}

TEST_F(SoundFailure, OfTheDeviceIsAnyResultButZero) {
    calls.fail("DirectSoundCreate", 1, S_FALSE);
    EXPECT_EQ(Sound_SubsystemInit(), nullptr);
    EXPECT_EQ(Sound.boundWindow, nullptr);
}

TEST_F(SoundFailure, OfTheCooperativeLevelLeavesTheDevice) {
    calls.fail("IDirectSound::SetCooperativeLevel", 1, DSERR_ALLOCATED);
    EXPECT_EQ(Sound_SubsystemInit(), nullptr);
    EXPECT_NE(Sound.directSound, nullptr);
    EXPECT_EQ(Sound.boundWindow, devices.desktop->window());
    EXPECT_EQ(calls.uses("IDirectSound::CreateSoundBuffer"), 0);
}

TEST_F(SoundFailure, OfTheCooperativeLevelIsAnyResultButZero) {
    calls.fail("IDirectSound::SetCooperativeLevel", 1, S_FALSE);
    EXPECT_EQ(Sound_SubsystemInit(), nullptr);
    EXPECT_EQ(calls.uses("IDirectSound::CreateSoundBuffer"), 0);
}

TEST_F(SoundFailure, OfThePrimaryBufferLeavesTheDevice) {
    calls.fail("IDirectSound::CreateSoundBuffer", 1, DSERR_UNSUPPORTED);
    EXPECT_EQ(Sound_SubsystemInit(), nullptr);
    EXPECT_NE(Sound.directSound, nullptr);
}

TEST_F(SoundFailure, OfThePrimaryBufferIsAnyResultButZero) {
    calls.fail("IDirectSound::CreateSoundBuffer", 1, DS_NO_VIRTUALIZATION);
    EXPECT_EQ(Sound_SubsystemInit(), nullptr);
}

// --- The end ---

using SoundEnd = DeviceTest;

TEST_F(SoundEnd, DoesNothingWithoutASetUp) {
    Sound.dsoundLibrary = reinterpret_cast<HMODULE>(1); // nobody looks at it
    Sound_SubsystemEnd();
    EXPECT_TRUE(calls.match(""));
}

TEST_F(SoundEnd, UnloadsTheLibraryWithTheDeviceStillHeld) {
    ObjectRegistry* registry = Sound_SubsystemInit();
    IDirectSound* device = Sound.directSound;
    HMODULE library = Sound.dsoundLibrary;
    Sound_SubsystemEnd();
    EXPECT_EQ(devices.loads("DSOUND.DLL"), 0);
    EXPECT_EQ(calls.uses("IDirectSound::Release"), 0);
    EXPECT_EQ(Sound.soundRegistry, registry);
    EXPECT_EQ(Sound.directSound, device);
    EXPECT_EQ(Sound.dsoundLibrary, library);
    EXPECT_NE(Sound.boundWindow, nullptr);
}

ObjectId freedSound = 0;

TEST_F(SoundEnd, FreesEverySound) {
    Sound_SubsystemInit();
    Sound.soundRegistry->onFree = [](ObjectId number) { freedSound = number; };
    *static_cast<int64_t*>(Registry_Claim(Sound.soundRegistry, 5)) = 1;
    freedSound = 0;
    Sound_SubsystemEnd();
    EXPECT_EQ(freedSound, 5);
}

// --- Stream buffers ---

using StreamBuffer = DeviceTest;

TEST_F(StreamBuffer, IsTheCallersAndHoldsWhatTheDeviceGivesIt) {
    Sound_SubsystemInit();
    IDirectSoundBuffer* buffer = Sound_CreateStreamBuffer(2, 44100, 204800);
    ASSERT_NE(buffer, nullptr);
    EXPECT_EQ(devices.sound.bytes(), std::vector<uint8_t>(204800, StandInDSound::newBytes));
    EXPECT_FALSE(devices.sound.isPlaying());
    EXPECT_EQ(buffer->Release(), 0u);
}

TEST_F(StreamBuffer, IsNullWhereItCannotBeMade) {
    Sound_SubsystemInit();
    calls.fail("IDirectSound::CreateSoundBuffer", 1, DSERR_OUTOFMEMORY);
    EXPECT_EQ(Sound_CreateStreamBuffer(2, 44100, 204800), nullptr);
}

TEST_F(StreamBuffer, IsNullOnAnyResultButZero) {
    Sound_SubsystemInit();
    calls.replace<hook::IDirectSound_CreateSoundBuffer>(
        [](IDirectSound* self, const DSBUFFERDESC*, IDirectSoundBuffer** buffer, IUnknown*) {
            *buffer = reinterpret_cast<IDirectSoundBuffer*>(self);
            return S_FALSE;
        });
    EXPECT_EQ(Sound_CreateStreamBuffer(2, 44100, 204800), nullptr);
}

// --- The system's own DirectSound ---

using RealSound = RealSoundTest;

TEST_F(RealSound, IsBoundAtRunTimeAndUnloadedAtTheEnd) {
    ASSERT_EQ(GetModuleHandleA("DSOUND.DLL"), nullptr) << "this program must not import it";
    EXPECT_NE(Sound_SubsystemInit(), nullptr);
    EXPECT_EQ(Sound.dsoundLibrary, GetModuleHandleA("DSOUND.DLL"));
    EXPECT_EQ(Sound.boundWindow, Screen.hiddenWindow);
    releaseDevice();
    CallRecorder calls;
    Sound_SubsystemEnd();
    EXPECT_EQ(calls.uses("FreeLibrary"), 1);
}

TEST_F(RealSound, MakesAStreamBufferOfTheFormatAskedFor) {
    ASSERT_NE(Sound_SubsystemInit(), nullptr);
    IDirectSoundBuffer* buffer = Sound_CreateStreamBuffer(2, 44100, 204800);
    ASSERT_NE(buffer, nullptr);
    WAVEFORMATEX format{};
    EXPECT_EQ(buffer->GetFormat(&format, sizeof format, nullptr), DS_OK);
    EXPECT_EQ(format.nChannels, 2);
    EXPECT_EQ(format.nSamplesPerSec, 44100u);
    EXPECT_EQ(format.wBitsPerSample, 16);
    DSBCAPS facts{};
    facts.dwSize = sizeof facts;
    EXPECT_EQ(buffer->GetCaps(&facts), DS_OK);
    EXPECT_EQ(facts.dwBufferBytes, 204800u);
    buffer->Release();
}

TEST_F(RealSound, LetsAStreamBufferLoop) {
    ASSERT_NE(Sound_SubsystemInit(), nullptr);
    IDirectSoundBuffer* buffer = Sound_CreateStreamBuffer(2, 44100, 8820);
    ASSERT_NE(buffer, nullptr);
    EXPECT_EQ(buffer->Play(0, 0, DSBPLAY_LOOPING), DS_OK);
    DWORD last = 0;
    const auto wrapped = [&] {
        DWORD cursor = 0;
        buffer->GetCurrentPosition(&cursor, nullptr);
        return cursor < std::exchange(last, cursor);
    };
    EXPECT_TRUE(waitUntil(wrapped)) << "the play cursor never came round";
    EXPECT_EQ(buffer->Stop(), DS_OK);
    buffer->Release();
}

} // namespace
