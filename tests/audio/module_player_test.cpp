#include "audio/module_player.h"

#include "audio/module_player_state.h"
#include "audio/sound_device.h"
#include "tests/support/device_fixture.h"
#include "tests/support/real_sound.h"
#include "tests/support/tiny_module.h"
#include "tests/support/wait_until.h"

#include <libmodplug/modplug.h>

#include <algorithm>
#include <cstddef>

static_assert(offsetof(ModulePlayer, module) == 0);
static_assert(offsetof(ModulePlayer, playing) == 8);
static_assert(offsetof(ModulePlayer, streamBuffer) == 16);
static_assert(offsetof(ModulePlayer, bufferBytes) == 24);
static_assert(offsetof(ModulePlayer, renderRunning) == 28);

namespace {

constexpr size_t half = 102400;

using Bytes = std::vector<uint8_t>;

const Bytes untouched(half, StandInDSound::newBytes);

// The real library, on a buffer whose play cursor the test moves.
class ModuleTest : public DeviceTest {
protected:
    ModuleTest() {
        Module_SubsystemInit();
        Sound_SubsystemInit();
        calls.replace<hook::CreateThread>([this](auto... given) {
            HANDLE thread = CallRecorder::original<hook::CreateThread>()(given...);
            const QuietScope quiet;
            HANDLE copy = nullptr;
            DuplicateHandle(GetCurrentProcess(), thread, GetCurrentProcess(), &copy, 0, FALSE,
                            DUPLICATE_SAME_ACCESS);
            threads.push_back(copy);
            return thread;
        });
    }
    // A thread that Module_Stop has overtaken still has to look at its record.
    ~ModuleTest() override {
        calls.failNothing();
        Module_SubsystemEnd();
        for (HANDLE thread : threads) {
            EXPECT_EQ(WaitForSingleObject(thread, 60000), WAIT_OBJECT_0);
            CloseHandle(thread);
        }
    }

    ModulePlayer* load(ObjectId number = 0) {
        return Module_FromMemory(number, song.data(), song.size());
    }

    // Waits until the buffer has been written to so often altogether.
    void waitForHalves(int count) {
        EXPECT_TRUE(waitUntil([&] { return devices.sound.unlocks() >= count; }));
    }

    Bytes firstHalf() const { return part(0); }
    Bytes secondHalf() const { return part(half); }

    // What the library itself makes of the song from its start.
    Bytes rendered(int halves) const {
        Bytes bytes(half * static_cast<size_t>(halves));
        const auto render = [&bytes, halves](const TinyModule& tune) {
            ModPlugFile* file = ModPlug_Load(tune.data(), tune.size());
            ModPlug_SetMasterVolume(file, 512);
            for (int at = 0; at < halves; ++at)
                ModPlug_Read(file, &bytes[static_cast<size_t>(at) * half], half);
            ModPlug_Unload(file);
        };
        // The library's filter remembers a sample over the end of a file: let it be silence.
        render(TinyModule(TinyModule::runsOff));
        render(song);
        const Bytes result = bytes;
        render(TinyModule(TinyModule::runsOff));
        return result;
    }
    static Bytes piece(const Bytes& bytes, size_t number) {
        const auto start = bytes.begin() + static_cast<int64_t>(number * half);
        return Bytes(start, start + half);
    }

    TinyModule song{TinyModule::jumpsBack};
    std::vector<HANDLE> threads; // copies of the render threads' handles

private:
    Bytes part(size_t offset) const {
        const Bytes all = devices.sound.bytes();
        const auto start = all.begin() + static_cast<int64_t>(offset);
        return Bytes(start, start + half);
    }
};

bool isSilent(const Bytes& bytes) {
    return std::all_of(bytes.begin(), bytes.end(), [](uint8_t value) { return value == 0; });
}

// --- Set-up ---

TEST_F(ModuleTest, SetUpChangesTheLoopCountAlone) {
    ModPlug_Settings settings{};
    ModPlug_GetSettings(&settings);
    EXPECT_EQ(settings.mLoopCount, -1);
    EXPECT_EQ(settings.mFlags, MODPLUG_ENABLE_OVERSAMPLING | MODPLUG_ENABLE_NOISE_REDUCTION);
    EXPECT_EQ(settings.mChannels, 2);
    EXPECT_EQ(settings.mBits, 16);
    EXPECT_EQ(settings.mFrequency, 44100);
    EXPECT_EQ(settings.mResamplingMode, MODPLUG_RESAMPLE_LINEAR);
    EXPECT_EQ(settings.mReverbDepth, 0);
    EXPECT_EQ(settings.mReverbDelay, 0);
    EXPECT_EQ(settings.mBassAmount, 0);
    EXPECT_EQ(settings.mBassRange, 0);
    EXPECT_EQ(settings.mSurroundDepth, 0);
    EXPECT_EQ(settings.mSurroundDelay, 0);
}

// --- Loading ---

TEST_F(ModuleTest, LoadingRendersAndPlaysNothing) {
    const ModulePlayer* player = load();
    ASSERT_NE(player, nullptr);
    EXPECT_NE(player->module, nullptr);
    EXPECT_NE(player->streamBuffer, nullptr);
    EXPECT_EQ(player->playing, 0);
    EXPECT_EQ(player->renderRunning, 0);
    EXPECT_EQ(player->bufferBytes, 204800);
    EXPECT_EQ(devices.sound.bytes(), Bytes(204800, StandInDSound::newBytes));
    EXPECT_FALSE(devices.sound.isPlaying());
}

TEST_F(ModuleTest, LoadingWhatIsNoModuleLeavesTheNumberEmpty) {
    EXPECT_EQ(Module_FromMemory(0, "no module", 9), nullptr);
    EXPECT_FALSE(devices.sound.hasStream());
    EXPECT_EQ(Module_Play(0), 0);
    Module_Stop(0);
    Module_Free(0);
}

TEST_F(ModuleTest, LoadingWithoutAStreamBufferLeavesTheNumberEmpty) {
    calls.fail("IDirectSound::CreateSoundBuffer", 1, DSERR_OUTOFMEMORY);
    EXPECT_EQ(load(), nullptr);
    EXPECT_EQ(Module_Play(0), 0);
    Module_Stop(0);
    Module_Free(0);
    EXPECT_NE(load(), nullptr);
}

TEST_F(ModuleTest, LoadingIntoANumberInUseFreesTheOldModule) {
    load();
    const size_t buffers = devices.sound.bufferCount();
    EXPECT_NE(load(), nullptr);
    EXPECT_EQ(devices.sound.bufferCount(), buffers);
}

TEST_F(ModuleTest, LoadingIntoANumberThatPlaysStopsItFirst) {
    load();
    Module_Play(0);
    waitForHalves(2);
    ModulePlayer* player = load();
    EXPECT_EQ(player->playing, 0);
    EXPECT_EQ(player->renderRunning, 0);
    EXPECT_EQ(calls.uses("IDirectSoundBuffer::Stop"), 1);
    EXPECT_EQ(calls.uses("IDirectSoundBuffer::Release"), 1);
}

TEST_F(ModuleTest, LoadingGivesALooseRecordWhereNoNumberIsGiven) {
    ModulePlayer* player = load(ObjectId_Any);
    ASSERT_NE(player, nullptr);
    const auto id = reinterpret_cast<ObjectId>(player);
    EXPECT_EQ(Module_Play(id), 1);
    waitForHalves(2);
    EXPECT_TRUE(devices.sound.isPlaying());
    Module_Stop(id);
    EXPECT_FALSE(devices.sound.isPlaying());
    const size_t blocks = calls.live("block");
    Module_Free(id);
    EXPECT_EQ(calls.live("block"), blocks - 1);
    EXPECT_FALSE(devices.sound.hasStream());
}

TEST_F(ModuleTest, LoadingLeavesNoLooseRecordOfAFailure) {
    const size_t blocks = calls.live("block");
    EXPECT_EQ(Module_FromMemory(ObjectId_Any, "no module", 9), nullptr);
    EXPECT_EQ(calls.live("block"), blocks);
    calls.fail("IDirectSound::CreateSoundBuffer", 1, DSERR_OUTOFMEMORY);
    EXPECT_EQ(load(ObjectId_Any), nullptr);
    EXPECT_EQ(calls.live("block"), blocks);
}

// --- Playing ---

TEST_F(ModuleTest, PlaysFromTheBuffersStartInALoop) {
    load();
    devices.sound.moveCursor(5000);
    EXPECT_EQ(Module_Play(0), 1);
    EXPECT_TRUE(devices.sound.isPlaying());
    EXPECT_TRUE(devices.sound.isLooping());
    EXPECT_EQ(devices.sound.cursor(), 0u);
}

TEST_F(ModuleTest, FillsTheFirstHalfItselfAndTheSecondByItsThread) {
    const Bytes song2 = rendered(2);
    load();
    Module_Play(0);
    waitForHalves(2);
    EXPECT_EQ(firstHalf(), piece(song2, 0));
    EXPECT_EQ(secondHalf(), piece(song2, 1));
    EXPECT_FALSE(isSilent(firstHalf()));
}

TEST_F(ModuleTest, RewritesEachHalfOnceTheCursorHasLeftIt) {
    const Bytes song5 = rendered(5);
    load();
    Module_Play(0);
    waitForHalves(2);
    devices.sound.moveCursor(half + 1);
    waitForHalves(3);
    EXPECT_EQ(firstHalf(), piece(song5, 2));
    EXPECT_EQ(secondHalf(), piece(song5, 1));
    devices.sound.moveCursor(half - 1);
    waitForHalves(4);
    EXPECT_EQ(secondHalf(), piece(song5, 3));
    devices.sound.moveCursor(2 * half - 1);
    waitForHalves(5);
    EXPECT_EQ(firstHalf(), piece(song5, 4));
}

TEST_F(ModuleTest, DoesNotRewindASongThatIsPlayedAgain) {
    const Bytes song4 = rendered(4);
    load();
    Module_Play(0);
    waitForHalves(2);
    Module_Stop(0);
    Module_Play(0);
    waitForHalves(4);
    EXPECT_EQ(firstHalf(), piece(song4, 2));
    EXPECT_EQ(secondHalf(), piece(song4, 3));
}

TEST_F(ModuleTest, StopsASongThatPlaysBeforeItPlaysItAgain) {
    const Bytes song3 = rendered(3);
    ModulePlayer* player = load();
    Module_Play(0);
    waitForHalves(2);
    EXPECT_EQ(Module_Play(0), 1);
    EXPECT_EQ(calls.uses("IDirectSoundBuffer::Stop"), 1);
    EXPECT_EQ(calls.uses("CreateThread"), 2);
    EXPECT_EQ(firstHalf(), piece(song3, 2));
    EXPECT_EQ(player->playing, 1);
}

TEST_F(ModuleTest, PlaysNothingUnderAnUnknownNumber) {
    load(3);
    EXPECT_EQ(Module_Play(0), 0);
}

TEST_F(ModuleTest, PlaysUnderAnyNumberOfTheTable) {
    load(15);
    EXPECT_EQ(Module_Play(15), 1);
    EXPECT_TRUE(devices.sound.isPlaying());
}

TEST_F(ModuleTest, GoesOnWithTheOldBytesWhereTheFirstHalfCannotBeLocked) {
    load();
    calls.failAlways("IDirectSoundBuffer::Lock", DSERR_BUFFERLOST);
    EXPECT_EQ(Module_Play(0), 1);
    EXPECT_EQ(firstHalf(), untouched);
    EXPECT_TRUE(devices.sound.isPlaying());
    EXPECT_EQ(devices.sound.unlocks(), 0);
}

TEST_F(ModuleTest, TriesAHalfThatCannotBeLockedAgain) {
    const Bytes song2 = rendered(2);
    load();
    calls.before("IDirectSoundBuffer::Lock", 5, [this] { calls.failNothing(); });
    calls.after("IDirectSoundBuffer::Unlock", 1,
                [this] { calls.failAlways("IDirectSoundBuffer::Lock", DSERR_BUFFERLOST); });
    Module_Play(0);
    waitForHalves(2);
    EXPECT_GE(calls.uses("IDirectSoundBuffer::Lock"), 5);
    EXPECT_EQ(secondHalf(), piece(song2, 1));
}

TEST_F(ModuleTest, PlaysTheFirstHalfWhereNoThreadCanBeMade) {
    ModulePlayer* player = load();
    calls.fail("CreateThread", 1, 0);
    EXPECT_EQ(Module_Play(0), 0);
    EXPECT_TRUE(devices.sound.isPlaying());
    EXPECT_TRUE(devices.sound.isLooping());
    EXPECT_EQ(player->playing, 1);
    EXPECT_EQ(secondHalf(), untouched);
    const int sleeps = calls.uses("Sleep");
    Module_Stop(0);
    EXPECT_FALSE(devices.sound.isPlaying());
    EXPECT_EQ(player->playing, 0);
    EXPECT_EQ(calls.uses("Sleep"), sleeps) << "there is nothing to wait for";
}

TEST_F(ModuleTest, KeepsNoHandleOfItsThread) {
    load();
    Module_Play(0);
    EXPECT_EQ(calls.live("thread"), 0u);
}

// --- Stopping ---

TEST_F(ModuleTest, StopsAndLeavesNoThread) {
    ModulePlayer* player = load();
    Module_Play(0);
    waitForHalves(2);
    EXPECT_EQ(player->renderRunning, 1);
    Module_Stop(0);
    EXPECT_EQ(player->playing, 0);
    EXPECT_EQ(player->renderRunning, 0);
    EXPECT_FALSE(devices.sound.isPlaying());
    ASSERT_EQ(threads.size(), 1u);
    EXPECT_EQ(WaitForSingleObject(threads[0], 60000), WAIT_OBJECT_0);
    DWORD result = 1;
    GetExitCodeThread(threads[0], &result);
    EXPECT_EQ(result, 0u);
}

TEST_F(ModuleTest, MayBeFreedStraightAfterItWasStopped) {
    for (int turn = 0; turn < 20; ++turn) {
        load();
        Module_Play(0);
        waitForHalves(2);
        Module_Stop(0);
        Module_Free(0);
        EXPECT_FALSE(devices.sound.hasStream());
    }
}

TEST_F(ModuleTest, DoesNotStopABufferThatIsStoppedAlready) {
    load();
    Module_Stop(0);
    Module_Play(0);
    Module_Stop(0);
    Module_Stop(0);
    Module_Stop(7);
    EXPECT_EQ(calls.uses("IDirectSoundBuffer::Stop"), 1);
}

TEST_F(ModuleTest, StopsEveryModule) {
    load(2);
    Module_Play(2);
    ModulePlayer* loose = load(ObjectId_Any);
    loose->playing = 1;
    Module_Stop(ObjectId_Any);
    EXPECT_EQ(calls.uses("IDirectSoundBuffer::Stop"), 2);
    EXPECT_EQ(loose->playing, 0);
}

TEST_F(ModuleTest, StopsEveryModuleWhereThereIsNone) {
    calls.take();
    Module_Stop(ObjectId_Any);
    EXPECT_TRUE(calls.match(""));
}

// The thread is made and does not run before Module_Stop is through.
TEST_F(ModuleTest, StopDoesNotWaitForAThreadThatHasNotRunYet) {
    ModulePlayer* player = load();
    LPTHREAD_START_ROUTINE routine = nullptr;
    calls.replace<hook::CreateThread>([&](auto, auto, auto given, auto, auto, auto) -> HANDLE {
        routine = given;
        const QuietScope quiet;
        return CreateEventA(nullptr, TRUE, FALSE, nullptr);
    });
    EXPECT_EQ(Module_Play(0), 1);
    ASSERT_NE(routine, nullptr);
    calls.take();
    Module_Stop(0);
    EXPECT_TRUE(calls.match("IDirectSoundBuffer::Stop(*)"));
    EXPECT_EQ(routine(player), 0u);
    EXPECT_TRUE(calls.match("")) << "it ends without a look at the buffer";
    EXPECT_EQ(player->renderRunning, 0);
    EXPECT_EQ(secondHalf(), untouched);
}

// --- Freeing ---

TEST_F(ModuleTest, FreesAModuleOnce) {
    ModulePlayer* player = load();
    Module_Free(0);
    EXPECT_EQ(player->module, nullptr);
    EXPECT_EQ(player->bufferBytes, 0);
    EXPECT_FALSE(devices.sound.hasStream());
    Module_Free(0);
    EXPECT_EQ(Module_Play(0), 0);
    EXPECT_EQ(calls.uses("IDirectSoundBuffer::Release"), 1);
}

TEST_F(ModuleTest, TheEndStopsAndFreesAModuleThatPlays) {
    ModulePlayer* player = load();
    Module_Play(0);
    waitForHalves(2);
    Module_SubsystemEnd();
    EXPECT_EQ(calls.uses("IDirectSoundBuffer::Stop"), 1);
    EXPECT_FALSE(devices.sound.hasStream());
    EXPECT_EQ(player->renderRunning, 0);
    EXPECT_EQ(player->module, nullptr);
}

// --- The system's own DirectSound ---

class RealModule : public RealSoundTest {
protected:
    RealModule() {
        Module_SubsystemInit();
        EXPECT_NE(Sound_SubsystemInit(), nullptr);
        player = Module_FromMemory(0, song.data(), song.size());
    }
    ~RealModule() override { Module_SubsystemEnd(); }

    // The loudest sample of a half.
    int level(DWORD offset) {
        void* region;
        DWORD size;
        if (player->streamBuffer->Lock(offset, half, &region, &size, nullptr, nullptr, 0) != DS_OK)
            return 0;
        const auto* samples = static_cast<const int16_t*>(region);
        const int loudest = *std::max_element(samples, samples + size / 2);
        player->streamBuffer->Unlock(region, size, nullptr, 0);
        return loudest;
    }
    void silence(DWORD offset) {
        void* region;
        DWORD size;
        player->streamBuffer->Lock(offset, half, &region, &size, nullptr, nullptr, 0);
        memset(region, 0, size);
        player->streamBuffer->Unlock(region, size, nullptr, 0);
    }

    TinyModule song{TinyModule::jumpsBack};
    ModulePlayer* player = nullptr;
};

TEST_F(RealModule, KeepsBothHalvesFilledAsTheCursorGoesRound) {
    ASSERT_NE(player, nullptr);
    silence(0);
    silence(half);
    EXPECT_EQ(Module_Play(0), 1);
    EXPECT_GT(level(0), 1000);
    for (int turn = 0; turn < 2; ++turn)
        for (const DWORD offset : {DWORD{half}, DWORD{0}}) {
            EXPECT_TRUE(waitUntil([&] { return level(offset) > 1000; })) << turn << offset;
            silence(offset);
        }
    Module_Stop(0);
    DWORD status = DSBSTATUS_PLAYING;
    player->streamBuffer->GetStatus(&status);
    EXPECT_EQ(status & DSBSTATUS_PLAYING, 0u);
    EXPECT_EQ(player->renderRunning, 0);
}

TEST(ModulePlayer, TheEndDoesNothingWithoutASetUp) { Module_SubsystemEnd(); }

} // namespace
