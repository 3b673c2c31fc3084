// What the module player asks of the library and of the stream buffer, call by call. The library's
// six functions are played by the test, and the render thread's routine runs on the test's thread,
// with a play cursor for each of its passes.

#include "audio/module_player.h"

#include "audio/module_player_state.h"
#include "audio/sound_device.h"
#include "tests/support/device_fixture.h"
#include "tests/support/line_difference.h"

#include <libmodplug/modplug.h>

struct _ModPlugFile {
    int volume;
};

namespace {

constexpr DWORD half = 102400;

struct Library {
    std::function<void(const std::string&)> note;
    ModPlug_Settings settings{};
    ModPlugFile file{};
    bool loads = true;
    uint8_t sound = 0;  // what the next rendering is filled with
    bool ended = false; // a rendering is told as none
};

Library library;

} // namespace

void ModPlug_GetSettings(ModPlug_Settings* settings) {
    library.note("ModPlug_GetSettings()");
    *settings = library.settings;
}

void ModPlug_SetSettings(const ModPlug_Settings* settings) {
    library.note("ModPlug_SetSettings()");
    library.settings = *settings;
}

ModPlugFile* ModPlug_Load(const void* data, int size) {
    library.note("ModPlug_Load(\"" + std::string(static_cast<const char*>(data)) + "\", " +
                 std::to_string(size) + ")");
    return library.loads ? &library.file : nullptr;
}

void ModPlug_Unload(ModPlugFile* file) {
    library.note(file == &library.file ? "ModPlug_Unload(module)" : "ModPlug_Unload(?)");
}

int ModPlug_Read(ModPlugFile* file, void* buffer, int size) {
    EXPECT_EQ(file, &library.file);
    library.note("ModPlug_Read(" + std::to_string(size) + ")");
    memset(buffer, ++library.sound, static_cast<size_t>(size));
    return library.ended ? 0 : size;
}

void ModPlug_SetMasterVolume(ModPlugFile* file, unsigned int volume) {
    EXPECT_EQ(file, &library.file);
    library.note("ModPlug_SetMasterVolume(" + std::to_string(volume) + ")");
}

namespace {

class ModuleSequence : public DeviceTest {
protected:
    ModuleSequence() {
        library = {};
        library.note = [this](const std::string& line) {
            takeCalls();
            story.push_back(line);
        };
        calls.replace<hook::CreateThread>([](auto...) -> HANDLE {
            const QuietScope quiet;
            return CreateEventA(nullptr, TRUE, FALSE, nullptr);
        });
        Sound_SubsystemInit();
        Module_SubsystemInit();
        forget();
    }

    ModulePlayer* load() {
        ModulePlayer* player = Module_FromMemory(0, "song", 5);
        calls.name(player, "record");
        forget();
        return player;
    }

    ModulePlayer* play() {
        ModulePlayer* player = load();
        Module_Play(0);
        forget();
        return player;
    }

    // Runs the render thread's routine, a pass for each cursor.
    void render(ModulePlayer* player, const std::vector<DWORD>& cursors) {
        size_t pass = 0;
        calls.replace<hook::Sleep>([&](DWORD) {
            EXPECT_EQ(player->renderRunning, 1);
            devices.sound.moveCursor(cursors.at(pass));
            if (++pass == cursors.size())
                player->playing = 0;
        });
        EXPECT_EQ(Module_RenderThread(player), 0u);
        EXPECT_EQ(pass, cursors.size());
        EXPECT_EQ(player->renderRunning, 0);
    }

    // The offsets of the halves that were rendered, by what lies in the buffer now: 0 stands for
    // a half that was not written to.
    std::pair<int, int> halves() const {
        const std::vector<uint8_t> bytes = devices.sound.bytes();
        return {filling(bytes, 0), filling(bytes, half)};
    }

    testing::AssertionResult match(std::string_view expected) {
        takeCalls();
        const std::string difference = lineDifference(expectedLines(expected), story);
        story.clear();
        if (difference.empty())
            return testing::AssertionSuccess();
        return testing::AssertionFailure() << difference;
    }

    void forget() {
        calls.take();
        story.clear();
    }

private:
    void takeCalls() {
        for (std::string& line : calls.take())
            story.push_back(std::move(line));
    }

    static int filling(const std::vector<uint8_t>& bytes, size_t offset) {
        const auto start = bytes.begin() + static_cast<int64_t>(offset);
        EXPECT_EQ(std::count(start, start + half, *start), int64_t{half}) << "a part was written";
        return *start == StandInDSound::newBytes ? 0 : *start;
    }

    std::vector<std::string> story;
};

// --- Set-up, loading, freeing ---

TEST_F(ModuleSequence, OfTheSetUp) {
    library.settings.mFrequency = 48000;
    library.settings.mLoopCount = 5;
    Module_SubsystemInit();
    EXPECT_TRUE(match(R"(
        HeapAlloc(general, 8, 56) -> block*
        HeapAlloc(general, 8, 512) -> block*
        ModPlug_GetSettings()
        ModPlug_SetSettings()
    )"));
    EXPECT_EQ(library.settings.mLoopCount, -1);
    EXPECT_EQ(library.settings.mFrequency, 48000) << "everything else stays";
}

TEST_F(ModuleSequence, OfLoading) {
    Module_FromMemory(0, "song", 5);
    EXPECT_TRUE(match(R"(
        ModPlug_Load("song", 5)
        ModPlug_SetMasterVolume(512)
        IDirectSound::CreateSoundBuffer(sound1, {40, flags 0x180E2, bytes 204800, 0, {1, 2, 44100, 176400, 4, 16}}, &buffer2, null) -> 0
    )"));
}

TEST_F(ModuleSequence, OfLoadingWhatIsNoModule) {
    library.loads = false;
    EXPECT_EQ(Module_FromMemory(0, "song", 5), nullptr);
    EXPECT_TRUE(match("ModPlug_Load(\"song\", 5)"));
}

TEST_F(ModuleSequence, OfLoadingWithoutAStreamBuffer) {
    calls.fail("IDirectSound::CreateSoundBuffer", 1, DSERR_OUTOFMEMORY);
    EXPECT_EQ(Module_FromMemory(0, "song", 5), nullptr);
    EXPECT_TRUE(match(R"(
        ModPlug_Load("song", 5)
        ModPlug_SetMasterVolume(512)
        IDirectSound::CreateSoundBuffer(*)
        ModPlug_Unload(module)
    )"));
    Module_Play(0);
    Module_Stop(0);
    Module_Free(0);
    Module_SubsystemEnd();
    EXPECT_TRUE(match("")) << "the number is empty";
}

TEST_F(ModuleSequence, OfLoadingIntoANumberThatPlays) {
    play();
    Module_FromMemory(0, "next", 5);
    EXPECT_TRUE(match(R"(
        IDirectSoundBuffer::Stop(buffer2) -> 0
        ModPlug_Unload(module)
        IDirectSoundBuffer::Release(buffer2) -> 0
        ModPlug_Load("next", 5)
        ...
    )"));
}

TEST_F(ModuleSequence, OfFreeing) {
    load();
    Module_Free(0);
    EXPECT_TRUE(match(R"(
        ModPlug_Unload(module)
        IDirectSoundBuffer::Release(buffer2) -> 0
    )"));
}

TEST_F(ModuleSequence, OfTheEndWhileAModulePlays) {
    ModulePlayer* player = play();
    player->renderRunning = 1;
    calls.replace<hook::Sleep>([player](DWORD) { player->renderRunning = 0; });
    Module_SubsystemEnd();
    EXPECT_TRUE(match(R"(
        IDirectSoundBuffer::Stop(buffer2) -> 0
        Sleep(10)
        ModPlug_Unload(module)
        IDirectSoundBuffer::Release(buffer2) -> 0
    )"));
}

// --- Playing and stopping ---

TEST_F(ModuleSequence, OfPlaying) {
    ModulePlayer* player = load();
    calls.before("IDirectSoundBuffer::Lock", 1, [player] { EXPECT_EQ(player->playing, 1); });
    EXPECT_EQ(Module_Play(0), 1);
    EXPECT_TRUE(match(R"(
        IDirectSoundBuffer::Lock(buffer2, 0, 102400, *, &102400, null, null, 0) -> 0
        ModPlug_Read(102400)
        IDirectSoundBuffer::Unlock(buffer2, *, 102400, null, 0) -> 0
        CreateThread(null, 8192, routine, record, 0, null) -> thread1
        CloseHandle(thread1) -> 1
        IDirectSoundBuffer::SetCurrentPosition(buffer2, 0) -> 0
        IDirectSoundBuffer::Play(buffer2, 0, 0, 1) -> 0
    )"));
    EXPECT_EQ(halves(), std::pair(1, 0));
    EXPECT_EQ(player->renderRunning, 0) << "the thread alone sets it";
}

TEST_F(ModuleSequence, OfPlayingStartsTheRenderThread) {
    load();
    LPTHREAD_START_ROUTINE routine = nullptr;
    calls.replace<hook::CreateThread>([&](auto, auto, auto given, auto...) -> HANDLE {
        routine = given;
        return nullptr;
    });
    Module_Play(0);
    EXPECT_EQ(routine, Module_RenderThread);
}

TEST_F(ModuleSequence, OfPlayingWhatPlays) {
    ModulePlayer* player = play();
    player->renderRunning = 1;
    calls.replace<hook::Sleep>([player](DWORD) { player->renderRunning = 0; });
    Module_Play(0);
    EXPECT_TRUE(match(R"(
        IDirectSoundBuffer::Stop(buffer2) -> 0
        Sleep(10)
        IDirectSoundBuffer::Lock(buffer2, 0, 102400, *)
        ModPlug_Read(102400)
        IDirectSoundBuffer::Unlock(*)
        CreateThread(*)
        CloseHandle(*)
        IDirectSoundBuffer::SetCurrentPosition(buffer2, 0)
        IDirectSoundBuffer::Play(buffer2, 0, 0, 1)
    )"));
}

TEST_F(ModuleSequence, OfPlayingWhereTheBufferCannotBeLocked) {
    load();
    calls.fail("IDirectSoundBuffer::Lock", 1, DSERR_BUFFERLOST);
    EXPECT_EQ(Module_Play(0), 1);
    EXPECT_TRUE(match(R"(
        IDirectSoundBuffer::Lock(buffer2, 0, 102400, *)
        CreateThread(*)
        CloseHandle(*)
        IDirectSoundBuffer::SetCurrentPosition(buffer2, 0)
        IDirectSoundBuffer::Play(buffer2, 0, 0, 1)
    )"));
}

TEST_F(ModuleSequence, OfPlayingWhereNoThreadCanBeMade) {
    load();
    calls.fail("CreateThread", 1, 0);
    EXPECT_EQ(Module_Play(0), 0);
    EXPECT_TRUE(match(R"(
        IDirectSoundBuffer::Lock(buffer2, 0, 102400, *)
        ModPlug_Read(102400)
        IDirectSoundBuffer::Unlock(*)
        CreateThread(*) -> null
        IDirectSoundBuffer::SetCurrentPosition(buffer2, 0)
        IDirectSoundBuffer::Play(buffer2, 0, 0, 1)
    )"));
}

TEST_F(ModuleSequence, OfAnUnknownNumberIsEmpty) {
    EXPECT_EQ(Module_Play(0), 0);
    Module_Stop(0);
    Module_Free(0);
    EXPECT_TRUE(match(""));
}

TEST_F(ModuleSequence, OfStoppingWaitsForTheThread) {
    ModulePlayer* player = play();
    player->renderRunning = 1;
    int sleeps = 0;
    calls.replace<hook::Sleep>([&](DWORD) { player->renderRunning = ++sleeps < 3; });
    calls.before("IDirectSoundBuffer::Stop", 1, [player] { EXPECT_EQ(player->playing, 0); });
    Module_Stop(0);
    EXPECT_TRUE(match(R"(
        IDirectSoundBuffer::Stop(buffer2) -> 0
        Sleep(10)
        Sleep(10)
        Sleep(10)
    )"));
    EXPECT_EQ(player->playing, 0);
}

TEST_F(ModuleSequence, OfStoppingWhatDoesNotPlayIsEmpty) {
    ModulePlayer* player = load();
    player->renderRunning = 1; // nobody looks
    Module_Stop(0);
    EXPECT_TRUE(match(""));
    player->renderRunning = 0;
}

TEST_F(ModuleSequence, OfStoppingEveryModuleTakesNumbersUpwardsAndThenLooseOnes) {
    for (const ObjectId number : {ObjectId{3}, ObjectId{1}, ObjectId_Any})
        Module_FromMemory(number, "song", 5)->playing = 1;
    forget();
    Module_Stop(ObjectId_Any);
    EXPECT_TRUE(match(R"(
        IDirectSoundBuffer::Stop(buffer3) -> 0
        IDirectSoundBuffer::Stop(buffer2) -> 0
        IDirectSoundBuffer::Stop(buffer4) -> 0
    )"));
}

// --- Rendering ---

TEST_F(ModuleSequence, OfTheFirstPassAndAnIdleOne) {
    render(play(), {0, half});
    EXPECT_TRUE(match(R"(
        Sleep(10)
        IDirectSoundBuffer::GetCurrentPosition(buffer2, &0, null) -> 0
        IDirectSoundBuffer::Lock(buffer2, 102400, 102400, *, &102400, null, null, 0) -> 0
        ModPlug_Read(102400)
        IDirectSoundBuffer::Unlock(buffer2, *, 102400, null, 0) -> 0
        Sleep(10)
        IDirectSoundBuffer::GetCurrentPosition(buffer2, &102400, null) -> 0
    )"));
    EXPECT_EQ(halves(), std::pair(1, 2));
}

TEST_F(ModuleSequence, RendersTheSecondHalfWhileTheCursorIsBelowTheMiddle) {
    ModulePlayer* player = play();
    render(player, {half - 1});
    EXPECT_EQ(halves(), std::pair(1, 2));
    player->playing = 1;
    render(player, {half});
    EXPECT_EQ(halves(), std::pair(1, 2)) << "exactly on the middle triggers nothing";
    player->playing = 1;
    render(player, {half + 1});
    EXPECT_EQ(halves(), std::pair(1, 2)) << "the first half is not due yet";
}

TEST_F(ModuleSequence, RendersTheFirstHalfOnceTheCursorIsBeyondTheMiddle) {
    ModulePlayer* player = play();
    render(player, {0, half, half});
    EXPECT_EQ(halves(), std::pair(1, 2)) << "exactly on the middle triggers nothing";
    player->playing = 1;
    render(player, {0, half + 1});
    EXPECT_EQ(halves(), std::pair(4, 3));
}

TEST_F(ModuleSequence, RendersEachHalfOnceATurn) {
    ModulePlayer* player = play();
    render(player, {0, 10, half - 1, half + 1, half + 2, 2 * half - 1, 0, 5, half + 1});
    EXPECT_EQ(library.sound, 5);
    EXPECT_EQ(halves(), std::pair(5, 4));
}

TEST_F(ModuleSequence, StartsEveryThreadWithTheSecondHalf) {
    ModulePlayer* player = play();
    render(player, {0});
    Module_Play(0);
    render(player, {0});
    EXPECT_EQ(halves(), std::pair(3, 4));
}

TEST_F(ModuleSequence, GoesFromHalfToHalfBehindTheSongsEnd) {
    ModulePlayer* player = play();
    library.ended = true;
    render(player, {0, half + 1, 0});
    EXPECT_EQ(halves(), std::pair(3, 4));
}

// The library fills whatever it is given: the record's number alone tells where the middle lies.
TEST_F(ModuleSequence, TakesHalfOfWhateverTheRecordSaysThatTheBufferHolds) {
    ModulePlayer* player = load();
    player->bufferBytes = 2000;
    calls.only({"IDirectSoundBuffer::Lock"});
    Module_Play(0);
    render(player, {999, 1001});
    EXPECT_TRUE(match(R"(
        IDirectSoundBuffer::Lock(buffer2, 0, 1000, *) -> 0
        ModPlug_Read(1000)
        IDirectSoundBuffer::Lock(buffer2, 1000, 1000, *) -> 0
        ModPlug_Read(1000)
        IDirectSoundBuffer::Lock(buffer2, 0, 1000, *) -> 0
        ModPlug_Read(1000)
    )"));
}

TEST_F(ModuleSequence, TriesALockThatFailedAgainWhateverTheCursorSays) {
    ModulePlayer* player = play();
    calls.fail("IDirectSoundBuffer::Lock", 1, DSERR_BUFFERLOST);
    calls.fail("IDirectSoundBuffer::Lock", 2, DSERR_BUFFERLOST);
    render(player, {0, half + 1, half, half, half + 1});
    EXPECT_TRUE(match(R"(
        Sleep(10)
        IDirectSoundBuffer::GetCurrentPosition(buffer2, &0, null)
        IDirectSoundBuffer::Lock(buffer2, 102400, 102400, *)
        Sleep(10)
        IDirectSoundBuffer::GetCurrentPosition(*)
        IDirectSoundBuffer::Lock(buffer2, 102400, 102400, *)
        Sleep(10)
        IDirectSoundBuffer::GetCurrentPosition(*)
        IDirectSoundBuffer::Lock(buffer2, 102400, 102400, *) -> 0
        ModPlug_Read(102400)
        IDirectSoundBuffer::Unlock(*)
        Sleep(10)
        IDirectSoundBuffer::GetCurrentPosition(*)
        Sleep(10)
        IDirectSoundBuffer::GetCurrentPosition(*)
        IDirectSoundBuffer::Lock(buffer2, 0, 102400, *) -> 0
        ModPlug_Read(102400)
        IDirectSoundBuffer::Unlock(*)
    )"));
    EXPECT_EQ(halves(), std::pair(3, 2));
}

TEST_F(ModuleSequence, TriesALockOfTheFirstHalfAgainAsWell) {
    ModulePlayer* player = play();
    calls.fail("IDirectSoundBuffer::Lock", 2, DSERR_BUFFERLOST);
    render(player, {0, half + 1, 0});
    EXPECT_EQ(halves(), std::pair(3, 2));
}

TEST_F(ModuleSequence, TakesOnlyZeroForALock) {
    ModulePlayer* player = play();
    calls.fail("IDirectSoundBuffer::Lock", 1, S_FALSE);
    render(player, {0});
    EXPECT_EQ(halves(), std::pair(1, 0));
    EXPECT_EQ(calls.uses("IDirectSoundBuffer::Unlock"), 1) << "the first half's";
}

TEST_F(ModuleSequence, GivesTheRegionBackThatItGot) {
    std::vector<uint8_t> memory(half);
    void* returned = nullptr;
    DWORD returnedBytes = 0;
    load();
    calls.replace<hook::IDirectSoundBuffer_Lock>(
        [&](auto, auto, auto, void** region, DWORD* size, auto...) {
            *region = memory.data();
            *size = 1000;
            return DS_OK;
        });
    calls.replace<hook::IDirectSoundBuffer_Unlock>([&](auto, void* region, DWORD size, auto...) {
        returned = region;
        returnedBytes = size;
        return DS_OK;
    });
    Module_Play(0);
    EXPECT_EQ(returned, memory.data());
    EXPECT_EQ(returnedBytes, 1000u);
    EXPECT_EQ(memory, std::vector<uint8_t>(half, 1)) << "a half is rendered all the same";
}

TEST_F(ModuleSequence, TheThreadEndsAtOnceWhereNothingPlays) {
    ModulePlayer* player = play();
    player->playing = 0;
    EXPECT_EQ(Module_RenderThread(player), 0u);
    EXPECT_TRUE(match(""));
    player->playing = 2;
    EXPECT_EQ(Module_RenderThread(player), 0u);
    EXPECT_TRUE(match("")) << "only 1 is playing";
    EXPECT_EQ(player->renderRunning, 0);
}

} // namespace
