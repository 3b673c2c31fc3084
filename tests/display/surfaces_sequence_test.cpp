#include "display/surfaces.h"

#include "tests/support/screen_fixture.h"

namespace {

class SavedSurfaceSequence : public OpenScreenTest {
protected:
    SavedSurfaceSequence() {
        first = addSurface(0, "first");
        second = addSurface(9, "second");
        calls.take();
    }

    ScreenSurface* first;
    ScreenSurface* second;
};

TEST_F(SavedSurfaceSequence, ASurfaceIsCopiedByWayOfSystemMemory) {
    second->kind = SurfaceKind_Memory;
    Screen_SaveSurfaces();
    EXPECT_TRUE(calls.match(R"(
        IDirectDraw7::CreateSurface(ddraw1, {136, flags 7, width 5, height 3, caps 0x840}, &surface1, null) -> 0
        IDirectDrawSurface7::Blt(surface1, null, first, null, 0x1000000, null) -> 0
        IDirectDrawSurface7::Lock(surface1, null, copyDesc, 1, null) -> 0
        HeapAlloc(general, 0, 40) -> *
        IDirectDrawSurface7::Unlock(surface1, null) -> 0
        IDirectDrawSurface7::Release(surface1) -> 0
    )"));
    second->kind = 0;
}

TEST_F(SavedSurfaceSequence, EverySurfaceIsCopiedInOrderOfNumber) {
    calls.only({"IDirectDrawSurface7::Blt"});
    Screen_SaveSurfaces();
    EXPECT_TRUE(calls.match(R"(
        IDirectDrawSurface7::Blt(surface1, null, first, null, 0x1000000, null)
        IDirectDrawSurface7::Blt(surface1, null, second, null, 0x1000000, null)
    )"));
}

TEST_F(SavedSurfaceSequence, PlainMemoryHoldsUpNoSurfaceBehindIt) {
    first->kind = SurfaceKind_Memory;
    Screen_SaveSurfaces();
    EXPECT_NE(second->saved, nullptr);
    devices.ddraw.loseSurfaces();
    Screen_RestoreSurfaces();
    EXPECT_EQ(second->saved, nullptr);
    first->kind = 0;
}

TEST_F(SavedSurfaceSequence, ACopyThatIsThereHoldsUpNoSurfaceBehindIt) {
    calls.fail("IDirectDraw7::CreateSurface", 2, DDERR_OUTOFMEMORY);
    Screen_SaveSurfaces();
    EXPECT_NE(first->saved, nullptr);
    EXPECT_EQ(second->saved, nullptr);
    Screen_SaveSurfaces();
    EXPECT_NE(second->saved, nullptr);
}

TEST_F(SavedSurfaceSequence, ACopyThatCannotBeMadeIsSkipped) {
    calls.fail("IDirectDraw7::CreateSurface", 1, DDERR_OUTOFMEMORY);
    calls.fail("IDirectDrawSurface7::Blt", 1, DDERR_SURFACELOST);
    Screen_SaveSurfaces();
    EXPECT_TRUE(calls.match(R"(
        IDirectDraw7::CreateSurface(*) -> *
        IDirectDraw7::CreateSurface(*) -> 0
        IDirectDrawSurface7::Blt(surface1, null, second, null, 0x1000000, null) -> 0x887601C2
        IDirectDrawSurface7::Release(surface1) -> 0
    )"));
}

TEST_F(SavedSurfaceSequence, ACopyWithoutMemoryIsUnlockedAndReleased) {
    second->kind = SurfaceKind_Memory;
    calls.fail("HeapAlloc", 1, 0);
    Screen_SaveSurfaces();
    EXPECT_TRUE(calls.match(R"(
        ...
        HeapAlloc(general, 0, 40) -> null
        IDirectDrawSurface7::Unlock(surface1, null)
        IDirectDrawSurface7::Release(surface1) -> 0
    )"));
    second->kind = 0;
}

TEST_F(SavedSurfaceSequence, LostSurfacesAreRestoredAndWrittenBack) {
    Screen_SaveSurfaces();
    calls.name(first->saved, "firstCopy");
    calls.name(second->saved, "secondCopy");
    devices.ddraw.loseSurfaces();
    calls.take();
    Screen_RestoreSurfaces();
    EXPECT_TRUE(calls.match(R"(
        IDirectDrawSurface7::IsLost(first) -> 0x887601C2
        IDirectDrawSurface7::Restore(first) -> 0
        IDirectDrawSurface7::Lock(first, null, copyDesc, 1, null) -> 0
        IDirectDrawSurface7::Unlock(first, null) -> 0
        HeapFree(general, 0, firstCopy) -> 1
        IDirectDrawSurface7::IsLost(second) -> 0x887601C2
        IDirectDrawSurface7::Restore(second) -> 0
        IDirectDrawSurface7::Lock(second, null, copyDesc, 1, null) -> 0
        IDirectDrawSurface7::Unlock(second, null) -> 0
        HeapFree(general, 0, secondCopy) -> 1
    )"));
}

TEST_F(SavedSurfaceSequence, SurfacesWithoutCopiesAreOnlyRestored) {
    second->kind = SurfaceKind_Memory;
    devices.ddraw.loseSurfaces();
    Screen_RestoreSurfaces();
    EXPECT_TRUE(calls.match(R"(
        IDirectDrawSurface7::IsLost(first) -> 0x887601C2
        IDirectDrawSurface7::Restore(first) -> 0
    )"));
    Screen_RestoreSurfaces();
    EXPECT_TRUE(calls.match("IDirectDrawSurface7::IsLost(first) -> 0"));
    second->kind = 0;
}

TEST_F(SavedSurfaceSequence, TheRecoveryRestoresThemAfterTheWindowIsShown) {
    Screen_SaveSurfaces();
    devices.ddraw.loseSurfaces();
    calls.take();
    Screen_Flip();
    EXPECT_TRUE(calls.match(R"(
        ...
        IDirectDraw7::RestoreAllSurfaces(ddraw1) -> 0
        ShowWindow(window, 3)
        // not lost any more:
        IDirectDrawSurface7::IsLost(first) -> 0
        IDirectDrawSurface7::Lock(first, *) -> 0
        IDirectDrawSurface7::Unlock(first, null)
        HeapFree(general, 0, *)
        IDirectDrawSurface7::IsLost(second) -> 0
        IDirectDrawSurface7::Lock(second, *) -> 0
        IDirectDrawSurface7::Unlock(second, null)
        HeapFree(general, 0, *)
    )"));
}

} // namespace
