#include "display/surfaces.h"

#include "display/screen_device.h"
#include "runtime/heap_state.h"
#include "tests/support/screen_fixture.h"

#include <cstddef>

namespace {

class SurfacesTest : public OpenScreenTest {
protected:
    static constexpr int16_t w = 5; // an odd width: the pitch of 16-bit rows is 12
    static constexpr int16_t h = 4;

    // A surface in display memory under a number, filled with `pixel`.
    ScreenSurface* make(ObjectId id, DWORD pixel = 0xFFFF) {
        DDSURFACEDESC2 desc{};
        desc.dwSize = sizeof desc;
        desc.dwFlags = DDSD_CAPS | DDSD_WIDTH | DDSD_HEIGHT;
        desc.dwWidth = w;
        desc.dwHeight = h;
        desc.ddsCaps.dwCaps = DDSCAPS_OFFSCREENPLAIN | DDSCAPS_VIDEOMEMORY;
        auto* record = static_cast<ScreenSurface*>(Registry_Claim(Screen.surfaces, id));
        IDirectDrawSurface7* surface = nullptr;
        EXPECT_EQ(Screen.ddraw->CreateSurface(&desc, &surface, nullptr), DD_OK);
        *record = {surface, 0, nullptr, w, h};
        fill(record, pixel);
        calls.take();
        return record;
    }

    static IDirectDrawSurface7* surfaceOf(const ScreenSurface* record) {
        return static_cast<IDirectDrawSurface7*>(record->surface);
    }

    static void fill(const ScreenSurface* record, DWORD pixel) {
        const QuietScope quiet;
        DDBLTFX effects{};
        effects.dwSize = sizeof effects;
        effects.dwFillColor = pixel;
        EXPECT_EQ(surfaceOf(record)->Blt(nullptr, nullptr, nullptr, DDBLT_COLORFILL, &effects),
                  DD_OK);
    }

    // Calls the routine with the surface's pixels, row by row.
    template <typename Visit>
    static void visitRows(const ScreenSurface* record, Visit visit) {
        const QuietScope quiet;
        DDSURFACEDESC2 desc{};
        desc.dwSize = sizeof desc;
        ASSERT_EQ(surfaceOf(record)->Lock(nullptr, &desc, DDLOCK_WAIT, nullptr), DD_OK);
        for (int y = 0; y < h; ++y)
            visit(y, reinterpret_cast<uint16_t*>(static_cast<char*>(desc.lpSurface) +
                                                 y * desc.lPitch));
        surfaceOf(record)->Unlock(nullptr);
    }

    // A different value in every pixel.
    static void draw(const ScreenSurface* record) {
        visitRows(record, [](int y, uint16_t* row) {
            for (int x = 0; x < w; ++x)
                row[x] = static_cast<uint16_t>(1000 * y + x + 1);
        });
    }
    static int drawnPixels(const ScreenSurface* record) {
        int found = 0;
        visitRows(record, [&found](int y, const uint16_t* row) {
            for (int x = 0; x < w; ++x)
                found += row[x] == 1000 * y + x + 1 ? 1 : 0;
        });
        return found;
    }
    static constexpr int allPixels = w * h;
};

TEST(ScreenSurfaceRecord, HasItsFieldsInOrder) {
    EXPECT_EQ(sizeof(ScreenSurface), 32u);
    EXPECT_EQ(offsetof(ScreenSurface, surface), 0u);
    EXPECT_EQ(offsetof(ScreenSurface, kind), 8u);
    EXPECT_EQ(offsetof(ScreenSurface, saved), 16u);
    EXPECT_EQ(offsetof(ScreenSurface, width), 24u);
    EXPECT_EQ(offsetof(ScreenSurface, height), 26u);
    EXPECT_EQ(SurfaceKind_Memory, -2);
}

// --- Saving ---

using ScreenSaveSurfaces = SurfacesTest;

TEST_F(ScreenSaveSurfaces, KeepsPitchAndRows) {
    ScreenSurface* record = make(0);
    draw(record);
    Screen_SaveSurfaces();
    ASSERT_NE(record->saved, nullptr);
    int32_t pitch = 0;
    memcpy(&pitch, record->saved, 4);
    EXPECT_EQ(pitch, 12);
    EXPECT_EQ(HeapSize(GeneralHeap, 0, record->saved), 12u * h + 4);
    const auto* rows = static_cast<const char*>(record->saved) + 4;
    for (int y = 0; y < h; ++y) {
        uint16_t row[w];
        memcpy(row, rows + y * pitch, sizeof row);
        EXPECT_EQ(row[0], 1000 * y + 1);
        EXPECT_EQ(row[w - 1], 1000 * y + w);
    }
}

TEST_F(ScreenSaveSurfaces, TakesEverySurfaceWhateverHappensToOthers) {
    ScreenSurface* first = make(0);
    ScreenSurface* second = make(40);
    ScreenSurface* loose = make(ObjectId_Any);
    calls.fail("IDirectDraw7::CreateSurface", 1, DDERR_OUTOFMEMORY);
    Screen_SaveSurfaces();
    EXPECT_EQ(first->saved, nullptr);
    EXPECT_NE(second->saved, nullptr);
    EXPECT_NE(loose->saved, nullptr);
}

TEST_F(ScreenSaveSurfaces, KeepsACopyThatIsThere) {
    ScreenSurface* record = make(0);
    Screen_SaveSurfaces();
    void* first = record->saved;
    calls.take();
    Screen_SaveSurfaces();
    EXPECT_EQ(record->saved, first);
    EXPECT_TRUE(calls.match(""));
}

TEST_F(ScreenSaveSurfaces, SkipsPlainMemory) {
    ScreenSurface* record = make(0);
    IDirectDrawSurface7* surface = surfaceOf(record);
    record->kind = SurfaceKind_Memory;
    Screen_SaveSurfaces();
    EXPECT_TRUE(calls.match(""));
    EXPECT_EQ(record->saved, nullptr);
    record->kind = 0;
    record->surface = surface;
}

TEST_F(ScreenSaveSurfaces, TakesEveryOtherKind) {
    ScreenSurface* record = make(0);
    for (const int16_t kind : std::initializer_list<int16_t>{-3, -1, 0, 2}) {
        record->kind = kind;
        Screen_SaveSurfaces();
        EXPECT_NE(record->saved, nullptr) << "kind " << kind;
        HeapFree(GeneralHeap, 0, record->saved);
        record->saved = nullptr;
    }
}

TEST_F(ScreenSaveSurfaces, LeavesNoMemorySurfaceBehind) {
    make(0);
    const size_t before = devices.ddraw.surfaceCount();
    Screen_SaveSurfaces();
    EXPECT_EQ(devices.ddraw.surfaceCount(), before);
}

class FailedSave : public SurfacesTest, public testing::WithParamInterface<std::string> {};

TEST_P(FailedSave, LeavesNoCopyAndNothingBehind) {
    ScreenSurface* record = make(0);
    const size_t surfaces = devices.ddraw.surfaceCount();
    const size_t blocks = calls.live("block");
    calls.fail(GetParam(), 1, GetParam() == "HeapAlloc" ? 0 : DDERR_GENERIC);
    Screen_SaveSurfaces();
    EXPECT_EQ(record->saved, nullptr);
    EXPECT_EQ(devices.ddraw.surfaceCount(), surfaces);
    EXPECT_EQ(calls.live("block"), blocks);
    Screen_SaveSurfaces();
    EXPECT_NE(record->saved, nullptr) << "the next notice tries again";
}

INSTANTIATE_TEST_SUITE_P(Calls, FailedSave,
                         testing::Values("IDirectDraw7::CreateSurface", "IDirectDrawSurface7::Blt",
                                         "IDirectDrawSurface7::Lock", "HeapAlloc"));

// --- Restoring ---

using ScreenRestoreSurfaces = SurfacesTest;

TEST_F(ScreenRestoreSurfaces, BringsThePixelsBack) {
    ScreenSurface* record = make(0);
    draw(record);
    Screen_SaveSurfaces();
    devices.ddraw.loseSurfaces();
    Screen_RestoreSurfaces();
    EXPECT_EQ(drawnPixels(record), allPixels);
    EXPECT_EQ(record->saved, nullptr);
}

TEST_F(ScreenRestoreSurfaces, FreesTheCopy) {
    make(0);
    const size_t blocks = calls.live("block");
    Screen_SaveSurfaces();
    EXPECT_EQ(calls.live("block"), blocks + 1);
    Screen_RestoreSurfaces();
    EXPECT_EQ(calls.live("block"), blocks);
}

TEST_F(ScreenRestoreSurfaces, WritesRowsOfTheSavedPitchAtTheSurfacesOwn) {
    ScreenSurface* record = make(0, 0);
    const int32_t savedPitch = 6; // three pixels, and the surface's pitch is 12
    auto* saved = static_cast<char*>(HeapAlloc(GeneralHeap, 0, 4 + savedPitch * h));
    memcpy(saved, &savedPitch, 4);
    memset(saved + 4, 0x11, static_cast<size_t>(savedPitch * h));
    record->saved = saved;
    Screen_RestoreSurfaces();
    visitRows(record, [](int, const uint16_t* row) {
        EXPECT_EQ(row[0], 0x1111);
        EXPECT_EQ(row[2], 0x1111);
        EXPECT_EQ(row[3], 0);
        EXPECT_EQ(row[4], 0);
    });
}

TEST_F(ScreenRestoreSurfaces, WritesNoRowBehindTheLastOne) {
    ScreenSurface* record = make(0, 0);
    const int32_t pitch = 12;
    const size_t rows = pitch * h;
    record->saved = HeapAlloc(GeneralHeap, 0, 4 + rows + pitch);
    memcpy(record->saved, &pitch, 4);
    memset(static_cast<char*>(record->saved) + 4, 0x11, rows + pitch);
    std::vector<char> memory(rows + pitch, 0);
    calls.replace<hook::IDirectDrawSurface7_Lock>(
        [&](IDirectDrawSurface7*, LPRECT, LPDDSURFACEDESC2 desc, DWORD, HANDLE) {
            desc->lPitch = pitch;
            desc->lpSurface = memory.data();
            return DD_OK;
        });
    char lastByteAtUnlock = 0;
    calls.before("IDirectDrawSurface7::Unlock", 1, [&] { lastByteAtUnlock = memory[rows - 1]; });
    Screen_RestoreSurfaces();
    EXPECT_EQ(lastByteAtUnlock, 0x11);
    EXPECT_EQ(memory[rows], 0);
}

TEST_F(ScreenRestoreSurfaces, WithoutACopyRestoresUndefinedPixels) {
    ScreenSurface* record = make(0);
    draw(record);
    devices.ddraw.loseSurfaces();
    Screen_RestoreSurfaces();
    EXPECT_EQ(surfaceOf(record)->IsLost(), DD_OK);
    EXPECT_EQ(drawnPixels(record), 0);
}

TEST_F(ScreenRestoreSurfaces, RestoresNoSurfaceThatIsNotLost) {
    make(0);
    Screen_RestoreSurfaces();
    EXPECT_EQ(calls.uses("IDirectDrawSurface7::IsLost"), 1);
    EXPECT_EQ(calls.uses("IDirectDrawSurface7::Restore"), 0);
}

TEST_F(ScreenRestoreSurfaces, RestoresOnlyOnTheOneAnswer) {
    make(0);
    calls.fail("IDirectDrawSurface7::IsLost", 1, DDERR_GENERIC);
    Screen_RestoreSurfaces();
    EXPECT_EQ(calls.uses("IDirectDrawSurface7::Restore"), 0);
}

TEST_F(ScreenRestoreSurfaces, WritesBackToASurfaceThatWasNotLostToo) {
    ScreenSurface* record = make(0);
    draw(record);
    Screen_SaveSurfaces();
    fill(record, 0);
    Screen_RestoreSurfaces();
    EXPECT_EQ(drawnPixels(record), allPixels);
}

TEST_F(ScreenRestoreSurfaces, KeepsTheCopyWhileTheSurfaceCannotBeLocked) {
    ScreenSurface* record = make(0);
    ScreenSurface* other = make(1);
    draw(record);
    Screen_SaveSurfaces();
    void* saved = record->saved;
    fill(record, 0);
    calls.fail("IDirectDrawSurface7::Lock", 1, DDERR_SURFACELOST);
    Screen_RestoreSurfaces();
    EXPECT_EQ(record->saved, saved);
    EXPECT_EQ(other->saved, nullptr) << "the walk goes on";
    Screen_RestoreSurfaces();
    EXPECT_EQ(drawnPixels(record), allPixels);
    EXPECT_EQ(record->saved, nullptr);
}

TEST_F(ScreenRestoreSurfaces, KeepsTheCopyWhileTheSurfaceCannotBeRestored) {
    ScreenSurface* record = make(0);
    draw(record);
    Screen_SaveSurfaces();
    void* saved = record->saved;
    devices.ddraw.loseSurfaces();
    calls.fail("IDirectDrawSurface7::Restore", 1, DDERR_WRONGMODE);
    Screen_RestoreSurfaces();
    EXPECT_EQ(record->saved, saved);
    EXPECT_EQ(calls.uses("IDirectDrawSurface7::Restore"), 1);
    Screen_RestoreSurfaces();
    EXPECT_EQ(drawnPixels(record), allPixels);
    EXPECT_EQ(record->saved, nullptr);
}

TEST_F(ScreenRestoreSurfaces, IsDoneWithTheCopyThoughTheUnlockFails) {
    ScreenSurface* record = make(0);
    draw(record);
    Screen_SaveSurfaces();
    calls.fail("IDirectDrawSurface7::Unlock", 1, DDERR_GENERIC);
    Screen_RestoreSurfaces();
    EXPECT_EQ(record->saved, nullptr);
    surfaceOf(record)->Unlock(nullptr);
}

TEST_F(ScreenRestoreSurfaces, SkipsPlainMemory) {
    ScreenSurface* record = make(0);
    record->kind = SurfaceKind_Memory;
    Screen_RestoreSurfaces();
    EXPECT_TRUE(calls.match(""));
    record->kind = 0;
}

TEST_F(ScreenRestoreSurfaces, TakesLooseSurfaces) {
    ScreenSurface* record = make(ObjectId_Any);
    draw(record);
    Screen_SaveSurfaces();
    devices.ddraw.loseSurfaces();
    Screen_RestoreSurfaces();
    EXPECT_EQ(drawnPixels(record), allPixels);
}

// A loose record is walked to from its claim on, before anything stands in it.
TEST_F(ScreenRestoreSurfaces, PassesOverALooseRecordThatIsStillEmpty) {
    void* empty = Registry_Claim(Screen.surfaces, ObjectId_Any);
    ScreenSurface* record = make(ObjectId_Any);
    draw(record);
    Screen_SaveSurfaces();
    EXPECT_NE(record->saved, nullptr);
    devices.ddraw.loseSurfaces();
    Screen_RestoreSurfaces();
    EXPECT_EQ(drawnPixels(record), allPixels);
    Registry_Release(Screen.surfaces, reinterpret_cast<ObjectId>(empty));
}

// --- Freeing ---

using ScreenFreeSurfaceTest = SurfacesTest;

TEST_F(ScreenFreeSurfaceTest, ReleasesASurfaceAndItsCopy) {
    ScreenSurface* record = make(3);
    const size_t blocks = calls.live("block");
    Screen_SaveSurfaces();
    calls.name(record->surface, "surface");
    calls.name(record->saved, "copy");
    calls.take();
    Screen_FreeSurface(3);
    EXPECT_TRUE(calls.match(R"(
        IDirectDrawSurface7::Release(surface) -> 0
        HeapFree(general, 0, copy) -> 1
    )"));
    EXPECT_EQ(calls.live("block"), blocks);
    EXPECT_EQ(Registry_Lookup(Screen.surfaces, 3), nullptr);
    EXPECT_EQ(devices.ddraw.surfaceCount(), 2u);
}

TEST_F(ScreenFreeSurfaceTest, WithoutACopyOnlyReleases) {
    ScreenSurface* record = make(3);
    calls.name(record->surface, "surface");
    Screen_FreeSurface(3);
    EXPECT_TRUE(calls.match("IDirectDrawSurface7::Release(surface) -> 0"));
}

TEST_F(ScreenFreeSurfaceTest, FreesPlainMemoryOfALooseRecord) {
    auto* record = static_cast<ScreenSurface*>(Registry_Claim(Screen.surfaces, ObjectId_Any));
    *record = {HeapAlloc(GeneralHeap, 0, 8), SurfaceKind_Memory, HeapAlloc(GeneralHeap, 0, 16), w,
               h};
    calls.take();
    calls.only({"HeapFree", "IDirectDrawSurface7"});
    Screen_FreeSurface(reinterpret_cast<ObjectId>(record));
    EXPECT_TRUE(calls.match(R"(
        HeapFree(general, *)
        HeapFree(general, *)
        HeapFree(*)
    )"));
}

TEST_F(ScreenFreeSurfaceTest, FreesPlainMemory) {
    auto* record = static_cast<ScreenSurface*>(Registry_Claim(Screen.surfaces, 3));
    *record = {HeapAlloc(GeneralHeap, 0, 8), SurfaceKind_Memory, nullptr, w, h};
    calls.name(record->surface, "pixels");
    calls.take();
    Screen_FreeSurface(3);
    EXPECT_TRUE(calls.match("HeapFree(general, 0, pixels) -> 1"));
    EXPECT_EQ(Registry_Lookup(Screen.surfaces, 3), nullptr);
}

TEST_F(ScreenFreeSurfaceTest, OfNothingDoesNothing) {
    Screen_FreeSurface(3);
    EXPECT_TRUE(calls.match(""));
}

TEST_F(ScreenFreeSurfaceTest, GivesALooseRecordBack) {
    ScreenSurface* record = make(ObjectId_Any);
    calls.name(LooseHeap, "loose");
    calls.name(record->surface, "surface");
    Screen_FreeSurface(reinterpret_cast<ObjectId>(record));
    EXPECT_TRUE(calls.match(R"(
        IDirectDrawSurface7::Release(surface) -> 0
        HeapFree(loose, 0, *) -> 1
    )"));
}

TEST_F(ScreenFreeSurfaceTest, ComesBeforeAClaimOfTheSameNumber) {
    make(3);
    Registry_Claim(Screen.surfaces, 3);
    EXPECT_EQ(devices.ddraw.surfaceCount(), 2u);
}

} // namespace
