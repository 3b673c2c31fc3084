// The library as the render thread uses it, far ahead of any clock: what becomes of a song at its
// end, and what rendering costs.

#include "assets/assets.h"
#include "audio/module_player.h"

#include "audio/module_player_state.h"
#include "audio/sound_device.h"
#include "audio/sound_device_state.h"
#include "tests/support/device_fixture.h"
#include "tests/support/import_table.h"
#include "tests/support/tiny_module.h"
#include "tests/support/wait_until.h"

#include <algorithm>
#include <cstdio>

namespace {

constexpr DWORD half = 102400;
constexpr double halfSeconds = half / 176400.0;

using Samples = std::vector<int16_t>;

double secondsOf(size_t samples) { return static_cast<double>(samples) / 88200.0; }

// Runs the render thread's routine on this thread, with a cursor that leaves each half as soon as
// it was rendered.
class SongTest : public DeviceTest {
protected:
    SongTest() {
        Module_SubsystemInit();
        Sound_SubsystemInit();
    }
    ~SongTest() override { Module_SubsystemEnd(); }

    // Hands every half to `see`.
    template <typename See>
    void renderAhead(ModulePlayer* player, int halves, See see) {
        int done = 0, seen = 0;
        calls.except({"IDirectSoundBuffer", "Sleep"});
        calls.replace<hook::Sleep>([&](DWORD) {
            devices.sound.moveCursor(done % 2 == 0 ? 0 : half + 1);
            if (++done == halves)
                player->playing = 0;
        });
        calls.replace<hook::IDirectSoundBuffer_Unlock>(
            [&](IDirectSoundBuffer*, void* region, DWORD size, void*, DWORD) {
                ++seen;
                see(Samples(static_cast<int16_t*>(region),
                            static_cast<int16_t*>(region) + size / sizeof(int16_t)));
                return DS_OK;
            });
        player->playing = 1;
        Module_RenderThread(player);
        EXPECT_EQ(done, halves);
        EXPECT_EQ(seen, halves) << "a look at the cursor without a rendering";
    }

    Samples allOf(ModulePlayer* player, int halves) {
        Samples all;
        renderAhead(player, halves, [&all](const Samples& samples) {
            all.insert(all.end(), samples.begin(), samples.end());
        });
        return all;
    }

    static ModulePlayer* load(const TinyModule& song) {
        return Module_FromMemory(0, song.data(), song.size());
    }
    static ModulePlayer* loadTheProgramsSong() {
        return Module_FromMemory(0, ModuleData, static_cast<int32_t>(ModuleDataEnd - ModuleData));
    }
};

int loudest(Samples::const_iterator start, Samples::const_iterator end) {
    int peak = 0;
    for (; start != end; ++start)
        peak = std::max(peak, std::abs(int{*start}));
    return peak;
}

// --- The song's end ---

TEST_F(SongTest, WithAJumpBackSoundsOnFarBeyondItsFortiethRepeat) {
    const Samples all = allOf(load(TinyModule(TinyModule::jumpsBack)), 20);
    const double repeats = 20 * halfSeconds * 1000 / TinyModule::milliseconds;
    EXPECT_GT(repeats, 140);
    const size_t song = 88200 * TinyModule::milliseconds / 1000;
    for (size_t at = 0; at + song <= all.size(); at += song)
        EXPECT_GT(loudest(all.begin() + static_cast<int64_t>(at),
                          all.begin() + static_cast<int64_t>(at + song)),
                  1000)
            << "repeat " << at / song;
}

TEST_F(SongTest, WithoutAJumpBackIsHeardOnceAndThenSilent) {
    const Samples all = allOf(load(TinyModule(TinyModule::runsOff)), 4);
    const auto last = std::find_if(all.rbegin(), all.rend(), [](int16_t at) { return at != 0; });
    const double length = secondsOf(static_cast<size_t>(all.rend() - last));
    EXPECT_GT(length, TinyModule::milliseconds / 1000.0);
    EXPECT_LT(length, TinyModule::milliseconds / 1000.0 + 0.15) << "a fade of 100 ms, no more";
}

TEST_F(SongTest, StaysSilentWhenItIsPlayedAgainAfterItsEnd) {
    ModulePlayer* player = load(TinyModule(TinyModule::runsOff));
    allOf(player, 2);
    const Samples again = allOf(player, 2);
    EXPECT_EQ(loudest(again.begin(), again.end()), 0);
}

TEST_F(SongTest, FadesAndDoesNotBreakOffAtItsEnd) {
    const Samples all = allOf(load(TinyModule(TinyModule::runsOff)), 1);
    const auto level = [&all](int milliseconds) {
        const auto start = all.begin() + 88200 * milliseconds / 1000 / 2 * 2;
        return loudest(start, start + 882);
    };
    const int end = TinyModule::milliseconds;
    EXPECT_GT(level(end - 20), level(end + 60));
    EXPECT_GT(level(end + 60), 0);
}

// A repeat of the program's song takes 69.12 s: 9 patterns of 64 rows of 6 ticks of 20 ms.
TEST_F(SongTest, OfTheProgramSoundsOnAfterItsFortiethRepeat) {
    const double seconds = 40 * 69.12 + 90;
    int silentHalves = 0;
    renderAhead(loadTheProgramsSong(), static_cast<int>(seconds / halfSeconds),
                [&](const Samples& samples) {
                    silentHalves += loudest(samples.begin(), samples.end()) < 100;
                });
    EXPECT_EQ(silentHalves, 0);
}

// --- What rendering costs ---

// Counts what this thread asks the C library's heap for.
class AllocationCount {
public:
    AllocationCount() {
        thread = GetCurrentThreadId();
        put("malloc", reinterpret_cast<void*>(countedMalloc), &realMalloc);
        put("calloc", reinterpret_cast<void*>(countedCalloc), &realCalloc);
        put("realloc", reinterpret_cast<void*>(countedRealloc), &realRealloc);
        count = 0;
    }
    ~AllocationCount() {
        for (const auto& [place, routine] : before)
            writeProtected(place, routine);
    }
    AllocationCount(const AllocationCount&) = delete;
    AllocationCount& operator=(const AllocationCount&) = delete;

    static inline int count = 0;

private:
    static inline DWORD thread = 0;
    static inline void* realMalloc;
    static inline void* realCalloc;
    static inline void* realRealloc;

    static void note() { count += GetCurrentThreadId() == thread; }
    static void* countedMalloc(size_t size) {
        note();
        return reinterpret_cast<void* (*)(size_t)>(realMalloc)(size);
    }
    static void* countedCalloc(size_t number, size_t size) {
        note();
        return reinterpret_cast<void* (*)(size_t, size_t)>(realCalloc)(number, size);
    }
    static void* countedRealloc(void* block, size_t size) {
        note();
        return reinterpret_cast<void* (*)(void*, size_t)>(realRealloc)(block, size);
    }

    void put(const char* name, void* routine, void** real) {
        for (void** place : importPlaces(name)) {
            *real = *place;
            before.emplace_back(place, *place);
            writeProtected(place, routine);
        }
    }

    std::vector<std::pair<void**, void*>> before;
};

// A render thread on stand-in sound alone: no recorder takes a part of its stack or of its heap.
class RenderCost : public RuntimeTest {
protected:
    RenderCost() {
        Module_SubsystemInit();
        StandIn_DirectSoundCreate(nullptr, &Sound.directSound, nullptr);
        Sound.directSound->SetCooperativeLevel(reinterpret_cast<HWND>(1), DSSCL_PRIORITY);
        player = Module_FromMemory(0, ModuleData, static_cast<int32_t>(ModuleDataEnd - ModuleData));
        current = this;
    }
    ~RenderCost() override { Module_SubsystemEnd(); }

    // Lets the thread go through the whole song once, and a bit more.
    void followThread() {
        const int halves = static_cast<int>(80 / halfSeconds);
        EXPECT_TRUE(waitUntil([&] {
            sound.moveCursor(sound.unlocks() % 2 == 0 ? 0 : half + 1);
            return sound.unlocks() >= halves;
        }));
        player->playing = 0;
    }

    StandInDSound sound;
    ModulePlayer* player;
    static inline RenderCost* current;
};

TEST_F(RenderCost, IsNoAllocation) {
    static int allocations;
    static int loading;
    const LPTHREAD_START_ROUTINE counted = [](void* record) -> DWORD {
        const AllocationCount counter;
        Module_RenderThread(record);
        allocations = AllocationCount::count;
        Module_Free(0);
        const TinyModule song(TinyModule::jumpsBack);
        AllocationCount::count = 0;
        Module_FromMemory(0, song.data(), song.size());
        loading = AllocationCount::count;
        return 0;
    };
    player->playing = 1;
    HANDLE thread = CreateThread(nullptr, 8192, counted, player, 0, nullptr);
    followThread();
    WaitForSingleObject(thread, INFINITE);
    CloseHandle(thread);
    EXPECT_EQ(allocations, 0);
    EXPECT_GT(loading, 0) << "the counter must be able to count";
}

// Fills the stack below its caller with a pattern, and tells later how deep it was used.
class PaintedStack {
public:
    [[gnu::noinline]] void paint() {
        auto* area = static_cast<volatile uint8_t*>(__builtin_alloca(size));
        for (size_t at = 0; at < size; ++at)
            area[at] = colour;
        bottom = area;
    }
    size_t depth() const {
        size_t clean = 0;
        while (clean < size && bottom[clean] == colour)
            ++clean;
        return size - clean;
    }

    static constexpr size_t size = 256 * 1024;

private:
    static constexpr uint8_t colour = 0xA5;
    const volatile uint8_t* bottom = nullptr;
};

size_t reservedStack() {
    const auto* image = reinterpret_cast<const uint8_t*>(GetModuleHandleA(nullptr));
    const auto* dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(image);
    const auto* headers = reinterpret_cast<const IMAGE_NT_HEADERS*>(image + dos->e_lfanew);
    return headers->OptionalHeader.SizeOfStackReserve;
}

// The 8192 bytes that CreateThread is given are what is committed at first. What the thread may use
// is what the program file's header reserves for every thread, 2 MB. Measured over the whole song:
// 1,050 bytes with gcc, 984 with clang.
TEST_F(RenderCost, IsASmallPartOfTheReservedStack) {
    static size_t depth;
    const LPTHREAD_START_ROUTINE measured = [](void* record) -> DWORD {
        PaintedStack stack;
        stack.paint();
        Module_RenderThread(record);
        depth = stack.depth();
        return 0;
    };
    player->playing = 1;
    HANDLE thread = CreateThread(nullptr, 8192, measured, player, 0, nullptr);
    followThread();
    WaitForSingleObject(thread, INFINITE);
    CloseHandle(thread);
    printf("the render thread's stack: %zu bytes of %zu\n", depth, reservedStack());
    EXPECT_GT(depth, 500u) << "the library has not been run on this stack";
    EXPECT_LT(depth, PaintedStack::size) << "deeper than was painted";
    EXPECT_LT(depth, reservedStack() / 16);
}

} // namespace
