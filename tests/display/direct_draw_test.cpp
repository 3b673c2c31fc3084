#include "display/direct_draw.h"

#include "display/screen_device.h"
#include "tests/support/screen_fixture.h"

namespace {

using DirectDraw = ScreenTest;

TEST_F(DirectDraw, IsLoadedWhenItIsFirstAsked) {
    IDirectDraw7* ddraw = DirectDraw_Acquire();
    EXPECT_NE(ddraw, nullptr);
    EXPECT_EQ(ddraw, Screen.ddraw);
    EXPECT_EQ(Screen.ddrawUsers, 1);
    EXPECT_TRUE(calls.match(R"(
        LoadLibraryA("DDRAW.DLL") -> library1
        GetProcAddress(library1, "DirectDrawCreateEx") -> routine
        DirectDrawCreateEx(null, &ddraw1, IID_IDirectDraw7, null) -> 0
    )"));
    DirectDraw_Release();
}

TEST_F(DirectDraw, HasTheIdentityThatWindowsPublishes) {
    const GUID expected = {
        0x15E65EC0, 0x3B9C, 0x11D2, {0xB9, 0x2F, 0x00, 0x60, 0x97, 0x97, 0xEA, 0x5B}};
    GUID asked{};
    calls.replace<hook::DirectDrawCreateEx>(
        [&](GUID*, LPVOID*, const GUID& interfaceId, IUnknown*) {
            asked = interfaceId;
            return E_FAIL;
        });
    DirectDraw_Acquire();
    EXPECT_TRUE(IsEqualGUID(asked, expected));
    DirectDraw_Release();
}

TEST_F(DirectDraw, IsSharedByItsUsers) {
    IDirectDraw7* first = DirectDraw_Acquire();
    calls.take();
    EXPECT_EQ(DirectDraw_Acquire(), first);
    EXPECT_TRUE(calls.match(""));
    EXPECT_EQ(Screen.ddrawUsers, 2);
    DirectDraw_Release();
    EXPECT_TRUE(calls.match(""));
    EXPECT_EQ(Screen.ddraw, first);
    EXPECT_EQ(Screen.ddrawUsers, 1);
    DirectDraw_Release();
    EXPECT_TRUE(calls.match(R"(
        IDirectDraw7::Release(ddraw1) -> 0
        FreeLibrary(library1) -> 1
    )"));
    EXPECT_EQ(Screen.ddraw, nullptr);
    EXPECT_EQ(Screen.ddrawUsers, 0);
    EXPECT_EQ(devices.loads("DDRAW.DLL"), 0);
}

TEST_F(DirectDraw, IsLoadedAnewAfterItsLastUser) {
    DirectDraw_Acquire();
    DirectDraw_Release();
    EXPECT_NE(DirectDraw_Acquire(), nullptr);
    EXPECT_EQ(devices.ddraw.made(), 2);
    DirectDraw_Release();
}

TEST_F(DirectDraw, StaysWhereItWasReleasedTooOften) {
    DirectDraw_Release();
    DirectDraw_Acquire();
    DirectDraw_Release();
    EXPECT_NE(Screen.ddraw, nullptr) << "the count is below 0, not at it";
    EXPECT_EQ(Screen.ddrawUsers, -1);
    DirectDraw_Acquire();
    DirectDraw_Acquire();
    DirectDraw_Release();
    EXPECT_EQ(Screen.ddraw, nullptr);
}

// A failed attempt counts its user, too, and giving that user back releases nothing.
void expectUserOfNothing(CallRecorder& calls) {
    EXPECT_EQ(Screen.ddraw, nullptr);
    EXPECT_EQ(Screen.ddrawUsers, 1);
    calls.take();
    DirectDraw_Release();
    EXPECT_TRUE(calls.match(""));
    EXPECT_EQ(Screen.ddrawUsers, 0);
}

TEST_F(DirectDraw, WithoutItsLibraryCountsAUserAllTheSame) {
    calls.fail("LoadLibraryA", 1, 0);
    EXPECT_EQ(DirectDraw_Acquire(), nullptr);
    EXPECT_TRUE(calls.match(R"(LoadLibraryA("DDRAW.DLL") -> null)"));
    expectUserOfNothing(calls);
}

TEST_F(DirectDraw, WithoutItsEntryFreesTheLibrary) {
    calls.fail("GetProcAddress", 1, 0);
    EXPECT_EQ(DirectDraw_Acquire(), nullptr);
    EXPECT_TRUE(calls.match(R"(
        LoadLibraryA("DDRAW.DLL") -> library1
        GetProcAddress(library1, "DirectDrawCreateEx") -> null
        FreeLibrary(library1) -> 1
    )"));
    expectUserOfNothing(calls);
}

TEST_F(DirectDraw, ThatGivesNoObjectFreesTheLibrary) {
    calls.fail("DirectDrawCreateEx", 1, E_FAIL);
    EXPECT_EQ(DirectDraw_Acquire(), nullptr);
    EXPECT_TRUE(calls.match(R"(
        LoadLibraryA("DDRAW.DLL") -> library1
        GetProcAddress(library1, "DirectDrawCreateEx") -> routine
        DirectDrawCreateEx(null, *, IID_IDirectDraw7, null) -> *
        FreeLibrary(library1) -> 1
    )"));
    expectUserOfNothing(calls);
}

TEST_F(DirectDraw, ThatFailedIsTriedAgainForTheNextUser) {
    calls.fail("DirectDrawCreateEx", 1, E_FAIL);
    DirectDraw_Acquire();
    EXPECT_NE(DirectDraw_Acquire(), nullptr);
    EXPECT_EQ(Screen.ddrawUsers, 2);
    DirectDraw_Release();
    EXPECT_NE(Screen.ddraw, nullptr);
    DirectDraw_Release();
    EXPECT_EQ(Screen.ddraw, nullptr);
    EXPECT_EQ(StandInDevices::liveObjects(), 0);
}

} // namespace
