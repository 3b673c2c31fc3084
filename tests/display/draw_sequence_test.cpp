#include "display/draw.h"

#include "display/draw_state.h"
#include "display/draw_target.h"
#include "tests/support/draw_fixture.h"

namespace {

constexpr COLORREF white = 0xFFFFFF;
constexpr COLORREF black = 0;

TEST_F(DrawSequence, SetUpMakesTheDefaults) {
    Draw_SubsystemInit();
    EXPECT_TRUE(calls.match(R"(
        CreateSolidBrush(0) -> brush1
        CreatePen(0, 0, 0) -> pen1
    )"));
    EXPECT_EQ(calls.liveNames(), (std::vector<std::string>{"brush1", "pen1"}));
}

// --- Begin and end ---

TEST_F(DrawSequence, BeginPutsTheContextInOrder) {
    begin();
    EXPECT_TRUE(calls.match(R"(
        SetTextAlign(dc, 1)
        SelectObject(dc, defaultBrush) -> dcBrush
        SelectObject(dc, defaultPen) -> dcPen
        CreateSolidBrush(0) -> brush1
        SetTextColor(dc, 0)
    )"));
}

TEST_F(DrawSequence, BeginOnNothingCallsNothing) {
    EXPECT_EQ(Draw_Begin(nullptr), nullptr);
    const DrawTarget target = targetOf(DrawTarget_Surface, nullptr);
    EXPECT_EQ(Draw_Begin(&target), nullptr);
    EXPECT_TRUE(calls.match(""));
}

TEST_F(DrawSequence, BeginEndsThePassBefore) {
    beginUnseen();
    begin();
    EXPECT_TRUE(calls.match(R"(
        SelectObject(dc, dcBrush) -> defaultBrush
        SelectObject(dc, dcPen) -> defaultPen
        DeleteObject(brush) -> 1
        // the release routine:
        MulDiv(7, 1, 1)
        SetTextAlign(dc, 1)
        ...
        SetTextColor(dc, 0)
    )"));
}

TEST_F(DrawSequence, ACompletePassGivesBackWhatItTook) {
    begin();
    Draw_End();
    EXPECT_TRUE(calls.match(R"(
        SetTextAlign(dc, 1)
        SelectObject(dc, defaultBrush) -> dcBrush
        SelectObject(dc, defaultPen) -> dcPen
        CreateSolidBrush(0) -> brush1
        SetTextColor(dc, 0)
        SelectObject(dc, dcBrush) -> defaultBrush
        SelectObject(dc, dcPen) -> defaultPen
        DeleteObject(brush1) -> 1
        MulDiv(7, 1, 1)
    )"));
    EXPECT_EQ(calls.live("brush"), 0u);
}

TEST_F(DrawSequence, EndDeletesThePassesPenAfterItsBrush) {
    beginUnseen();
    Pass.pen = CreatePen(PS_SOLID, 1, 0xFF);
    calls.take();
    Draw_End();
    EXPECT_TRUE(calls.match(R"(
        SelectObject(dc, dcBrush)
        SelectObject(dc, dcPen)
        DeleteObject(brush)
        DeleteObject(pen1) -> 1
        MulDiv(7, 1, 1)
    )"));
}

TEST_F(DrawSequence, EndWithoutABrushDeletesNone) {
    calls.fail("CreateSolidBrush", 1, 0);
    begin();
    calls.take();
    Draw_End();
    EXPECT_TRUE(calls.match(R"(
        SelectObject(dc, dcBrush)
        SelectObject(dc, dcPen)
        MulDiv(7, 1, 1)
    )"));
}

TEST_F(DrawSequence, APassOnAWindowTakesAndReleasesItsContext) {
    HWND window =
        CreateWindowExA(0, "STATIC", "", WS_POPUP, 0, 0, 8, 8, nullptr, nullptr, nullptr, nullptr);
    calls.name(window, "owner");
    DrawTarget target = targetOf(DrawTarget_Window);
    target.window = window;
    calls.take();
    Draw_Begin(&target);
    Draw_End();
    EXPECT_TRUE(calls.match(R"(
        GetDC(owner) -> dc1
        SetTextAlign(dc1, 1)
        ...
        DeleteObject(brush1) -> 1
        ReleaseDC(owner, dc1) -> 1
    )"));
    DestroyWindow(window);
}

TEST_F(DrawSequence, APassOnAWindowWithoutAContextIsEmpty) {
    calls.fail("GetDC", 1, 0);
    DrawTarget target = targetOf(DrawTarget_Window);
    EXPECT_EQ(Draw_Begin(&target), nullptr);
    Draw_End();
    EXPECT_TRUE(calls.match("GetDC(null) -> null"));
}

TEST_F(DrawSequence, APassOnAContextHandedOverDeletesIt) {
    const DrawTarget target = targetOf(0, CreateCompatibleDC(nullptr));
    calls.take();
    Draw_Begin(&target);
    Draw_End();
    EXPECT_TRUE(calls.match(R"(
        SetTextAlign(dc1, 1)
        ...
        DeleteObject(brush1) -> 1
        DeleteDC(dc1) -> 1
    )"));
}

// --- Mode ---

struct ModeCalls {
    int32_t mode;
    const char* expected;
};

void PrintTo(const ModeCalls& parameter, std::ostream* out) { *out << "mode " << parameter.mode; }

class ModeSequence : public DrawSequence, public testing::WithParamInterface<ModeCalls> {};

TEST_P(ModeSequence, SetsMixBrushAndBackground) {
    beginUnseen();
    Draw_SetMode(GetParam().mode);
    EXPECT_TRUE(calls.match(GetParam().expected)) << "mode " << GetParam().mode;
}

const ModeCalls modes[] = {
    {0, "SetROP2(dc, 13)\n SelectObject(dc, brush)\n SetBkMode(dc, 2)"},
    {1, "SetROP2(dc, 13)\n SelectObject(dc, brush)\n SetBkMode(dc, 1)"},
    {2, "SetROP2(dc, 6)\n SelectObject(dc, brush)\n SetBkMode(dc, 2)"},
    {3, "SetROP2(dc, 6)\n SelectObject(dc, brush)\n SetBkMode(dc, 1)"},
    {4, "SetROP2(dc, 13)\n GetStockObject(5)\n SelectObject(dc, stock5)\n SetBkMode(dc, 2)"},
    {5, "SetROP2(dc, 13)\n GetStockObject(5)\n SelectObject(dc, stock5)\n SetBkMode(dc, 1)"},
    {6, "SetROP2(dc, 6)\n GetStockObject(5)\n SelectObject(dc, stock5)\n SetBkMode(dc, 2)"},
    {7, "SetROP2(dc, 6)\n GetStockObject(5)\n SelectObject(dc, stock5)\n SetBkMode(dc, 1)"},
    {8, "SetROP2(dc, 13)\n SelectObject(dc, brush)\n SetBkMode(dc, 2)"},
};

INSTANTIATE_TEST_SUITE_P(Bits, ModeSequence, testing::ValuesIn(modes));

// --- Font ---

TEST_F(DrawSequence, SetFontSelectsIt) {
    HFONT font = CreateFontA(-13, 0, 0, 0, 400, 0, 0, 0, 1, 0, 0, 0, 0, "Arial");
    beginUnseen();
    Draw_SetFont(reinterpret_cast<int64_t>(font));
    EXPECT_TRUE(calls.match("SelectObject(dc, font1) -> dcFont"));
    Draw_SetFont(-1);
    EXPECT_TRUE(calls.match("GetStockObject(13)\n SelectObject(dc, stock13) -> font1"));
    Draw_SetFont(0);
    EXPECT_TRUE(calls.match("SelectObject(dc, null) -> null"));
    Draw_End();
    DeleteObject(font);
}

// --- Text ---

TEST_F(DrawSequence, TextChangesBothColoursForItselfAlone) {
    beginUnseen();
    Draw_Text(10, 20, "row", white, 0x112233);
    EXPECT_TRUE(calls.match(R"(
        SetTextColor(dc, 0xFFFFFF) -> 0
        SetBkColor(dc, 0x112233) -> 0xFFFFFF
        MoveToEx(dc, 10, 20, null) -> 1
        TextOutA(dc, 0, 0, "row", 3) -> 1
        SetBkColor(dc, 0xFFFFFF) -> 0x112233
        SetTextColor(dc, 0) -> 0xFFFFFF
        MoveToEx(dc, 0, 0, &{*, 20}) -> 1
    )"));
}

TEST_F(DrawSequence, BlackTextSetsNoTextColour) {
    beginUnseen();
    Draw_Text(10, 20, "row", black, 0x112233);
    EXPECT_TRUE(calls.match(R"(
        SetBkColor(dc, 0x112233) -> 0xFFFFFF
        MoveToEx(dc, 10, 20, null)
        TextOutA(dc, 0, 0, "row", 3)
        SetBkColor(dc, 0xFFFFFF) -> 0x112233
        MoveToEx(dc, 0, 0, &{*, 20})
    )"));
}

TEST_F(DrawSequence, EmptyTextIsNotWritten) {
    beginUnseen();
    for (const char* text : {"", static_cast<const char*>(nullptr)}) {
        EXPECT_EQ(Draw_Text(10, 20, text, white, 0x112233), 10);
        EXPECT_TRUE(calls.match(R"(
            SetTextColor(dc, 0xFFFFFF)
            SetBkColor(dc, 0x112233)
            MoveToEx(dc, 10, 20, null)
            SetBkColor(dc, 0xFFFFFF)
            SetTextColor(dc, 0)
            MoveToEx(dc, 0, 0, &{10, 20})
        )"));
    }
}

TEST_F(DrawSequence, TextSetsTheBackgroundInTransparentModeToo) {
    beginUnseen();
    Draw_SetMode(DrawMode_Transparent);
    calls.take();
    Draw_Text(1, 2, "a", black, 0x112233);
    EXPECT_TRUE(calls.match(R"(
        SetBkColor(dc, 0x112233)
        MoveToEx(dc, 1, 2, null)
        TextOutA(dc, 0, 0, "a", 1)
        SetBkColor(dc, 0xFFFFFF)
        MoveToEx(dc, 0, 0, &{*, 2})
    )"));
}

// --- After pixel work ---

class ResumeSequence : public DrawSequence {
protected:
    ResumeSequence() {
        resumed = canvas.dc();
        DrawTarget target = targetOf(DrawTarget_Surface);
        target.resume = resume;
        Draw_Begin(&target);
        calls.name(Pass.brush, "brush");
    }
    static HDC resume() {
        leaveMark(8);
        return resumed;
    }
    static inline HDC resumed = nullptr;
};

TEST_F(ResumeSequence, RebuildsTheContextInOrder) {
    Pass.textColor = 0x010203;
    Pass.dcState = -1;
    calls.take();
    Draw_ResumeDc();
    EXPECT_TRUE(calls.match(R"(
        MulDiv(8, 1, 1)
        SetTextColor(dc, 0x010203)
        SetTextAlign(dc, 1)
        SetBkColor(dc, 0xFFFFFF)
        SelectObject(dc, brush)
        SelectObject(dc, null)
        SelectObject(dc, null)
    )"));
}

TEST_F(ResumeSequence, SetsAModeOfThePass) {
    Draw_SetMode(DrawMode_Invert);
    Pass.font = static_cast<HFONT>(selected(OBJ_FONT));
    Pass.dcState = -1;
    calls.take();
    Draw_ResumeDc();
    EXPECT_TRUE(calls.match(R"(
        MulDiv(8, 1, 1)
        SetTextColor(dc, 0)
        SetTextAlign(dc, 1)
        SetBkColor(dc, 0xFFFFFF)
        SetROP2(dc, 6)
        SelectObject(dc, brush)
        SetBkMode(dc, 2)
        SelectObject(dc, null)
        SelectObject(dc, dcFont)
    )"));
}

TEST_F(ResumeSequence, ComesBeforeANewMode) {
    Draw_SetMode(DrawMode_Invert);
    Pass.dcState = -1;
    calls.take();
    Draw_SetMode(DrawMode_Transparent);
    EXPECT_TRUE(calls.match(R"(
        MulDiv(8, 1, 1)
        ...
        SetROP2(dc, 6)
        SelectObject(dc, brush)
        SetBkMode(dc, 2)
        SelectObject(dc, null)
        SelectObject(dc, null)
        SetROP2(dc, 13)
        SelectObject(dc, brush)
        SetBkMode(dc, 1)
    )"));
}

TEST_F(ResumeSequence, ComesBeforeANewFont) {
    Pass.font = static_cast<HFONT>(selected(OBJ_FONT));
    Pass.dcState = -1;
    calls.take();
    Draw_SetFont(0);
    EXPECT_TRUE(calls.match(R"(
        MulDiv(8, 1, 1)
        ...
        SelectObject(dc, dcFont)
        SelectObject(dc, null)
    )"));
}

TEST_F(ResumeSequence, IsNoCallAtAllWhileTheContextIsThere) {
    calls.take();
    Draw_ResumeDc();
    EXPECT_TRUE(calls.match(""));
}

// --- Failing calls ---

class FailedDrawCall : public DrawSequence, public testing::WithParamInterface<const char*> {
protected:
    std::vector<std::string> callsOfAPass() {
        begin();
        Draw_SetMode(DrawMode_Invert);
        Draw_SetFont(DrawFont_System);
        Draw_Text(1, 2, "row", 1, 2);
        Draw_End();
        std::vector<std::string> names = calls.take();
        for (std::string& line : names)
            line.resize(line.find('('));
        return names;
    }
};

TEST_P(FailedDrawCall, SkipsNothingThatFollows) {
    const std::vector<std::string> whole = callsOfAPass();
    calls.fail(GetParam(), 1, 0);
    EXPECT_EQ(callsOfAPass(), whole);
}

INSTANTIATE_TEST_SUITE_P(Calls, FailedDrawCall,
                         testing::Values("SetTextAlign", "SelectObject", "SetTextColor", "SetROP2",
                                         "SetBkMode", "GetStockObject", "SetBkColor", "MoveToEx",
                                         "TextOutA"));

} // namespace
