// What the sound device asks of Windows and of DirectSound, call by call.

#include "audio/sound_device.h"

#include "tests/support/device_fixture.h"

namespace {

class SoundSequence : public DeviceTest {
protected:
    SoundSequence() { calls.except({"HeapAlloc"}); }

    void setUp() {
        Sound_SubsystemInit();
        calls.take();
    }
};

TEST_F(SoundSequence, OfASetUp) {
    Sound_SubsystemInit();
    EXPECT_TRUE(calls.match(R"(
        LoadIconA(program, #1)
        GetStockObject(4)
        RegisterClassExA(*)
        CreateWindowExA(*) -> window1
        LoadLibraryA("DSOUND.DLL") -> library1
        GetProcAddress(library1, "DirectSoundCreate") -> routine
        DirectSoundCreate(null, &sound1, null) -> 0
        IDirectSound::SetCooperativeLevel(sound1, window1, 2) -> 0
        IDirectSound::CreateSoundBuffer(sound1, {40, flags 1, bytes 0, 0, null}, &buffer1, null) -> 0
    )"));
}

TEST_F(SoundSequence, MakesTheRegistryFirst) {
    calls.only({"HeapAlloc", "RegisterClassExA"});
    calls.except({});
    Sound_SubsystemInit();
    EXPECT_TRUE(calls.match(R"(
        HeapAlloc(general, 8, 56) -> block1
        HeapAlloc(general, 8, *) -> block2
        RegisterClassExA(*)
    )"));
}

TEST_F(SoundSequence, OfASecondSetUpIsEmpty) {
    setUp();
    Sound_SubsystemInit();
    EXPECT_TRUE(calls.match(""));
}

TEST_F(SoundSequence, OfTheEnd) {
    setUp();
    Sound_SubsystemEnd();
    EXPECT_TRUE(calls.match("FreeLibrary(library1) -> 1"));
}

TEST_F(SoundSequence, OfTheEndWithoutALibraryIsEmpty) {
    calls.fail("LoadLibraryA", 1, 0);
    setUp();
    Sound_SubsystemEnd();
    EXPECT_TRUE(calls.match(""));
}

TEST_F(SoundSequence, OfAStreamBuffer) {
    setUp();
    Sound_CreateStreamBuffer(2, 44100, 204800);
    EXPECT_TRUE(calls.match(R"(
        IDirectSound::CreateSoundBuffer(sound1, {40, flags 0x180E2, bytes 204800, 0, {1, 2, 44100, 176400, 4, 16}}, &buffer2, null) -> 0
    )"));
}

TEST_F(SoundSequence, OfAStreamBufferOfAnotherFormat) {
    setUp();
    Sound_CreateStreamBuffer(1, 22050, 1000);
    EXPECT_TRUE(calls.match(R"(
        IDirectSound::CreateSoundBuffer(sound1, {40, flags 0x180E2, bytes 1000, 0, {1, 1, 22050, 44100, 2, 16}}, &buffer2, null) -> 0
    )"));
}

} // namespace
