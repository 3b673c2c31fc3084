#include "display/screen.h"

#include "display/font.h"
#include "display/screen_device.h"
#include "display/screen_steps.h"
#include "tests/support/image_fixture.h"
#include "tests/support/screen_fixture.h"

namespace {

constexpr int16_t w = 96;
constexpr int16_t h = 64;

// --- Open ---

using ScreenOpen = ScreenTest;

TEST_F(ScreenOpen, TakesModeWindowAndCursor) {
    setUp();
    EXPECT_EQ(Screen_Open(w, h, 16, "The Title"), 1);
    EXPECT_TRUE(devices.ddraw.isExclusive());
    EXPECT_EQ(devices.ddraw.mode().width, 96u);
    EXPECT_EQ(devices.ddraw.mode().height, 64u);
    EXPECT_EQ(devices.ddraw.mode().depth, 16u);
    EXPECT_EQ(devices.ddraw.mode().refreshRate, 0u);
    EXPECT_EQ(devices.desktop->title(), "The Title");
    EXPECT_EQ(devices.desktop->place().left, 0);
    EXPECT_EQ(devices.desktop->place().top, 0);
    EXPECT_EQ(devices.desktop->place().right, 96);
    EXPECT_EQ(devices.desktop->place().bottom, 64);
    EXPECT_TRUE(devices.desktop->isShown());
    EXPECT_EQ(devices.desktop->cursorCount(), -1);
}

TEST_F(ScreenOpen, FillsTheRecord) {
    setUp();
    devices.ddraw.monitorFrequency = 75;
    Screen_Open(w, h, 16, "");
    EXPECT_EQ(Screen.window, Screen.hiddenWindow);
    EXPECT_EQ(Screen.onFocusLost, &Screen_SaveSurfaces);
    EXPECT_EQ(Screen.targetWidth, 96);
    EXPECT_EQ(Screen.targetHeight, 64);
    EXPECT_EQ(Screen.screenWidth, 96);
    EXPECT_EQ(Screen.screenHeight, 64);
    EXPECT_EQ(Screen.depth, 16);
    EXPECT_EQ(Screen.monitorFrequency, 75u);
    EXPECT_EQ(Screen.present, &Screen_Present);
    EXPECT_EQ(Screen.active, 1);
    EXPECT_EQ(Screen.pixelFormat, PixelFormat_565);
    EXPECT_NE(Screen.backBuffer, nullptr);
    EXPECT_EQ(Screen.target, Screen.backBuffer);
    EXPECT_NE(Screen.primary, Screen.backBuffer);
}

TEST_F(ScreenOpen, KnowsItsSizeBeforeItTakesAnything) {
    setUp();
    int32_t widthThen = 0;
    calls.before("ShowCursor", 1, [&] { widthThen = Screen.screenWidth; });
    Screen_Open(w, h, 16, "");
    EXPECT_EQ(widthThen, 96);
}

TEST_F(ScreenOpen, IsPresentableWhenTheTimerPeriodBegins) {
    setUp();
    int32_t activeThen = 0;
    calls.before("timeBeginPeriod", 1, [&] { activeThen = Screen.active; });
    Screen_Open(w, h, 16, "");
    EXPECT_EQ(activeThen, 1);
}

TEST_F(ScreenOpen, IsReadyForMessagesBeforeItTouchesTheWindow) {
    setUp();
    bool isReady = false;
    calls.before("SetWindowTextA", 1, [&] {
        isReady = Screen.window == Screen.hiddenWindow && Screen.onFocusLost == Screen_SaveSurfaces;
    });
    Screen_Open(w, h, 16, "");
    EXPECT_TRUE(isReady);
}

TEST_F(ScreenOpen, StartsBlackOnBothSurfaces) {
    open();
    for (int y : {0, h - 1})
        for (int x : {0, w - 1}) {
            EXPECT_EQ(devices.ddraw.drawn(x, y), 0u);
            EXPECT_EQ(devices.ddraw.shown(x, y), 0u);
        }
}

TEST_F(ScreenOpen, ActivatesAndLeavesTheLossNotice) {
    setUp();
    Screen.active = 0;
    Screen.lostNotified = 1;
    Screen_Open(w, h, 16, "");
    EXPECT_EQ(Screen.active, 1);
    EXPECT_EQ(Screen.lostNotified, 1);
}

TEST_F(ScreenOpen, ActivatesThoughTheUserSwitchesAwayAsTheWindowIsShown) {
    setUp();
    calls.after("ShowWindow", 1, [this] { devices.switchAway(false); });
    EXPECT_EQ(Screen_Open(w, h, 16, ""), 1);
    EXPECT_EQ(Screen.active, 1);
    EXPECT_EQ(Screen.lostNotified, 1);
}

TEST_F(ScreenOpen, CanBePresentedOnlyOnceItsBuffersAreClear) {
    setUp();
    bool wasPresentable = true;
    calls.before("IDirectDraw7::GetMonitorFrequency", 1,
                 [&] { wasPresentable = Screen.present != nullptr; });
    Screen_Open(w, h, 16, "");
    EXPECT_FALSE(wasPresentable);
}

TEST_F(ScreenOpen, HandsTheRefreshRateOn) {
    setUp();
    Screen.refreshRate = 72;
    Screen_Open(w, h, 16, "");
    EXPECT_EQ(devices.ddraw.mode().refreshRate, 72u);
}

TEST_F(ScreenOpen, OfAnOpenScreenClosesItFirst) {
    open();
    calls.only({"timeEndPeriod", "timeBeginPeriod", "IDirectDrawSurface7::Release",
                "IDirectDraw7::CreateSurface"});
    EXPECT_EQ(Screen_Open(48, 32, 16, "Again"), 1);
    EXPECT_TRUE(calls.match(R"(
        timeEndPeriod(1)
        IDirectDrawSurface7::Release(back) -> 0
        IDirectDrawSurface7::Release(primary) -> 0
        IDirectDraw7::CreateSurface(*) -> 0
        timeBeginPeriod(1)
    )"));
    EXPECT_EQ(Screen.screenWidth, 48);
    EXPECT_EQ(devices.ddraw.surfaceCount(), 2u);
    EXPECT_EQ(devices.desktop->cursorCount(), -1);
}

TEST_F(ScreenOpen, AfterACloseIsAsGoodAsNew) {
    open();
    HWND window = Screen.window;
    for (int pass = 0; pass < 10; ++pass) {
        Screen_Close();
        ASSERT_EQ(Screen_Open(w, h, 16, "Title"), 1);
    }
    EXPECT_EQ(Screen.window, window);
    EXPECT_EQ(Screen.ddrawUsers, 1);
    EXPECT_EQ(devices.ddraw.made(), 1);
    EXPECT_EQ(devices.ddraw.surfaceCount(), 2u);
    EXPECT_EQ(calls.uses("RegisterClassExA"), 1);
    EXPECT_EQ(calls.uses("CreateWindowExA"), 1);
    EXPECT_EQ(calls.uses("timeBeginPeriod"), 11);
    EXPECT_EQ(calls.uses("timeEndPeriod"), 10);
    EXPECT_EQ(devices.desktop->cursorCount(), -1);
}

TEST_F(ScreenOpen, WithoutAWindowFailsBeforeItTakesAnything) {
    setUp();
    Screen.hiddenWindow = nullptr;
    EXPECT_EQ(Screen_Open(w, h, 16, ""), 0);
    EXPECT_EQ(Screen.screenWidth, 0);
    EXPECT_EQ(devices.desktop->cursorCount(), 0);
    EXPECT_EQ(calls.uses("IDirectDraw7::SetDisplayMode"), 0);
}

struct DepthFormat {
    int16_t depth;
    PixelMasks masks;
    PixelFormatCode format;
};

void PrintTo(const DepthFormat& parameter, std::ostream* out) {
    *out << "code " << parameter.format;
}

class ScreenFormat : public ScreenTest, public testing::WithParamInterface<DepthFormat> {};

TEST_P(ScreenFormat, IsFoundByDepthAndMask) {
    devices.ddraw.masks = GetParam().masks;
    setUp();
    EXPECT_EQ(Screen_Open(w, h, GetParam().depth, ""), 1);
    EXPECT_EQ(devices.ddraw.mode().depth, static_cast<DWORD>(GetParam().depth));
    EXPECT_EQ(Screen.depth, GetParam().depth);
    EXPECT_EQ(Screen.pixelFormat, GetParam().format);
}

const DepthFormat formats[] = {
    {8, {}, PixelFormat_Palette},
    {16, {0x7C00, 0x03E0, 0x001F}, PixelFormat_555},
    {16, {0xF800, 0x07E0, 0x001F}, PixelFormat_565},
    {24, {0x0000FF, 0x00FF00, 0xFF0000}, PixelFormat_24RedLow},
    {24, {0xFF0000, 0x00FF00, 0x0000FF}, PixelFormat_24RedHigh},
    {32, {0x0000FF, 0x00FF00, 0xFF0000}, PixelFormat_32RedLow},
    {32, {0xFF0000, 0x00FF00, 0x0000FF}, PixelFormat_32RedHigh},
};

INSTANTIATE_TEST_SUITE_P(Formats, ScreenFormat, testing::ValuesIn(formats));

TEST_F(ScreenOpen, HasFormatCodesFromZeroToSeven) {
    EXPECT_EQ(PixelFormat_Unknown, 0);
    EXPECT_EQ(PixelFormat_Palette, 1);
    EXPECT_EQ(PixelFormat_555, 2);
    EXPECT_EQ(PixelFormat_565, 3);
    EXPECT_EQ(PixelFormat_24RedLow, 4);
    EXPECT_EQ(PixelFormat_24RedHigh, 5);
    EXPECT_EQ(PixelFormat_32RedLow, 6);
    EXPECT_EQ(PixelFormat_32RedHigh, 7);
}

using ScreenDetectFormat = ScreenTest;

TEST_F(ScreenDetectFormat, OfFifteenBitsIsTakenForAPalette) {
    open();
    Screen.depth = 15;
    Screen_DetectFormat();
    EXPECT_EQ(Screen.pixelFormat, PixelFormat_Palette);
}

TEST_F(ScreenDetectFormat, WithoutASurfaceDoesNothing) {
    Screen.pixelFormat = PixelFormat_555;
    Screen_DetectFormat();
    EXPECT_EQ(Screen.pixelFormat, PixelFormat_555);
    EXPECT_TRUE(calls.match(""));
}

TEST_F(ScreenDetectFormat, ThatCannotLockKeepsTheOldFormat) {
    open();
    Screen.pixelFormat = PixelFormat_32RedLow;
    calls.fail("IDirectDrawSurface7::Lock", 1, DDERR_SURFACELOST);
    Screen_DetectFormat();
    EXPECT_EQ(Screen.pixelFormat, PixelFormat_32RedLow);
    EXPECT_TRUE(calls.match("IDirectDrawSurface7::Lock(primary, null, primaryDesc, 1, null)"));
}

// --- Close and end ---

using ScreenClose = ScreenTest;

TEST_F(ScreenClose, GivesTheDesktopBackAndKeepsTheRest) {
    open();
    IDirectDrawSurface7* target = Screen.target;
    Screen_Close();
    EXPECT_EQ(Screen.screenWidth, 0);
    EXPECT_EQ(Screen.screenHeight, 0);
    EXPECT_EQ(Screen.primary, nullptr);
    EXPECT_EQ(Screen.backBuffer, nullptr);
    EXPECT_FALSE(devices.ddraw.isExclusive());
    EXPECT_EQ(devices.ddraw.mode().width, 0u) << "the desktop's own mode";
    EXPECT_EQ(devices.ddraw.surfaceCount(), 0u);
    EXPECT_FALSE(devices.desktop->isShown());
    EXPECT_EQ(devices.desktop->cursorCount(), 0);
    EXPECT_NE(Screen.ddraw, nullptr);
    EXPECT_EQ(Screen.ddrawUsers, 1);
    EXPECT_EQ(Screen.window, Screen.hiddenWindow);
    EXPECT_NE(Screen.window, nullptr);
    EXPECT_EQ(Screen.pixelFormat, PixelFormat_565);
    EXPECT_EQ(Screen.present, &Screen_Present);
    EXPECT_EQ(Screen.target, target) << "stale";
    EXPECT_EQ(Screen.active, 1);
    EXPECT_EQ(Screen.targetWidth, 96);
}

TEST_F(ScreenClose, CountsAsOpenUntilTheDeviceIsGivenUp) {
    open();
    int32_t widthThen = 0;
    calls.before("ShowWindow", 1, [&] { widthThen = Screen.screenWidth; });
    Screen_Close();
    EXPECT_EQ(widthThen, 96);
}

TEST_F(ScreenClose, KeepsTheStateOfTheContext) {
    open();
    Screen.targetDc = 77;
    Screen_Close();
    EXPECT_EQ(Screen.targetDc, 77);
    Screen.targetDc = 0;
}

TEST_F(ScreenClose, ASecondTimeDoesNothing) {
    open();
    Screen_Close();
    calls.take();
    Screen_Close();
    EXPECT_TRUE(calls.match(""));
    EXPECT_EQ(calls.uses("timeBeginPeriod"), calls.uses("timeEndPeriod"));
}

TEST_F(ScreenClose, OfAScreenThatNeverOpenedDoesNothing) {
    setUp();
    Screen_Close();
    EXPECT_TRUE(calls.match(""));
}

TEST_F(ScreenClose, FreesTheNumberedSurfaces) {
    open();
    for (ObjectId id : {ObjectId{0}, ObjectId{70}, ObjectId_Any}) {
        auto* record = static_cast<ScreenSurface*>(Registry_Claim(Screen.surfaces, id));
        record->kind = SurfaceKind_Memory;
        record->surface = HeapAlloc(GeneralHeap, 0, 16);
    }
    const size_t blocks = calls.live("block");
    Screen_Close();
    EXPECT_EQ(calls.live("block"), blocks - 4) << "three pixel blocks and a loose record";
    EXPECT_EQ(Registry_Lookup(Screen.surfaces, 70), nullptr);
}

TEST_F(ScreenClose, LeavesImagesAndFontsAlone) {
    Image_SubsystemInit();
    Font_SubsystemInit();
    const BmpFile bmp{.width = 1, .height = 1, .rows = {255, 0, 0, 0}};
    const int64_t image = Image_FromMemory(0, bmp.build().data());
    const int64_t font = Font_Load(0, "Arial", 10);
    open();
    devices.ddraw.loseSurfaces();
    Screen_Close();
    open();
    EXPECT_EQ(Image_Handle(0), image);
    EXPECT_EQ(Font_Handle(0), font);
    EXPECT_EQ(Canvas(reinterpret_cast<HBITMAP>(image)).at(0, 0), 0xFF0000u);
    EXPECT_EQ(GetObjectType(reinterpret_cast<HGDIOBJ>(font)), static_cast<DWORD>(OBJ_FONT));
    Image_SubsystemEnd();
    Font_SubsystemEnd();
}

using ScreenEnd = ScreenTest;

TEST_F(ScreenEnd, InItsFirstFormDoesNothing) {
    open();
    Screen_SubsystemEnd();
    EXPECT_TRUE(calls.match(""));
    EXPECT_EQ(Screen.screenWidth, 96);
}

TEST_F(ScreenEnd, ClosesAndGivesDirectDrawBack) {
    open();
    Screen_SubsystemEnd2();
    EXPECT_EQ(Screen.ddraw, nullptr);
    EXPECT_EQ(Screen.ddrawUsers, 0);
    EXPECT_EQ(Screen.screenWidth, 0);
    EXPECT_EQ(devices.ddraw.surfaceCount(), 0u);
    EXPECT_EQ(devices.loads("DDRAW.DLL"), 0);
    EXPECT_EQ(Screen.windowMade, 1) << "the window is left to the process's end";
    Screen.initDone = 0;
}

TEST_F(ScreenEnd, WithoutASetUpTouchesNothing) {
    Screen.screenWidth = 96;
    Screen.ddrawUsers = 1;
    Screen_SubsystemEnd2();
    EXPECT_TRUE(calls.match(""));
    EXPECT_EQ(Screen.screenWidth, 96);
    EXPECT_EQ(Screen.ddrawUsers, 1);
}

TEST_F(ScreenEnd, AfterASetUpThatNeverGotToDirectDrawLeavesItAlone) {
    calls.fail("CreateWindowExA", 1, 0);
    Screen_SubsystemInit();
    IDirectDraw7* elsewhere = DirectDraw_Acquire();
    calls.take();
    Screen_SubsystemEnd2();
    EXPECT_TRUE(calls.match(""));
    EXPECT_EQ(Screen.ddraw, elsewhere);
    EXPECT_EQ(Screen.ddrawUsers, 1);
    DirectDraw_Release();
}

// --- Steps ---

TEST_F(ScreenTest, CreateSurfacesGivesOneOrZero) {
    open();
    Screen_ReleaseDevice();
    Screen.ddraw->SetCooperativeLevel(Screen.window, DDSCL_EXCLUSIVE | DDSCL_FULLSCREEN);
    Screen.ddraw->SetDisplayMode(640, 480, 16, 0, 0);
    EXPECT_EQ(Screen_CreateSurfaces(), 1);
    calls.fail("IDirectDraw7::CreateSurface", 1, DDERR_OUTOFVIDEOMEMORY);
    EXPECT_EQ(Screen_CreateSurfaces(), 0);
}

TEST_F(ScreenTest, ClearSurfaceGivesTheResultOfTheContext) {
    open();
    EXPECT_EQ(Screen_ClearSurface(Screen.backBuffer), DD_OK);
    calls.fail("IDirectDrawSurface7::GetDC", 1, DDERR_SURFACELOST);
    EXPECT_EQ(Screen_ClearSurface(Screen.backBuffer), DDERR_SURFACELOST);
}

TEST_F(ScreenTest, ClearSurfacePaintsTheTargetsSizeBlack) {
    open();
    Screen_Clear(0xFFFFFF);
    Screen.targetWidth = 10;
    Screen.targetHeight = 5;
    Screen_ClearSurface(Screen.backBuffer);
    EXPECT_EQ(devices.ddraw.drawn(9, 4), 0u);
    EXPECT_EQ(devices.ddraw.drawn(10, 4), 0xFFFFFFu);
    EXPECT_EQ(devices.ddraw.drawn(9, 5), 0xFFFFFFu);
}

} // namespace
