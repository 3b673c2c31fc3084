// What the promises about cost say: a frame builds no text and allocates nothing, and the render
// loop allocates nothing.

#include "tests/support/launcher_stage.h"
#include "tests/support/wait_until.h"

#include "input/keyboard.h"
#include "runtime/text.h"

#include <algorithm>

namespace {

constexpr int framesWatched = 20;

bool isHeapCall(const std::string& line) {
    return line.starts_with("Heap") || line.starts_with("Global");
}

constexpr char untouched = 0x5A;

// What framesWatched frames have done.
struct Watched {
    std::vector<std::string> lines;       // calls of the main thread
    std::vector<std::string> threadLines; // calls of the render thread
    bool hasBuiltText = true;             // something was written into the accumulator
};

// Watches from the `first` flip on.
void watchFrames(LauncherStage& stage, int first, Watched* watched) {
    stage.calls.before("IDirectDrawSurface7::Flip", first, [&stage] {
        stage.calls.take();
        stage.calls.takeOtherThreads();
        std::fill_n(TextBase, TextCapacity, untouched);
    });
    stage.calls.before("IDirectDrawSurface7::Flip", first + framesWatched, [&stage, watched] {
        watched->lines = stage.calls.take();
        watched->threadLines = stage.calls.takeOtherThreads();
        watched->hasBuiltText =
            std::count(TextBase, TextBase + TextCapacity, untouched) != TextCapacity;
        TextBase[0] = 0;
    });
}

void expectNoHeapCalls(const std::vector<std::string>& lines) {
    ASSERT_FALSE(lines.empty());
    EXPECT_EQ(std::find_if(lines.begin(), lines.end(), isHeapCall), lines.end());
}

} // namespace

TEST(FrameCost, CataloguePageAllocatesNothingAndBuildsNoText) {
    onStage([](LauncherStage& stage) {
        Watched watched;
        stage.devices.input.rest(framesWatched + 4);
        watchFrames(stage, 2, &watched);
        stage.run();
        expectNoHeapCalls(watched.lines);
        EXPECT_FALSE(watched.hasBuiltText);
    });
}

TEST(FrameCost, RenderThreadAllocatesNothingBesideTheFrames) {
    onStage([](LauncherStage& stage) {
        constexpr DWORD middle = 102400;
        Watched watched;
        stage.devices.input.rest(framesWatched + 4);
        watchFrames(stage, 2, &watched);
        // The cursor leaves the first half while the frames are watched, as soon as the second one
        // is rendered: they wait until the thread has rendered the first one again.
        stage.calls.before("IDirectDrawSurface7::Flip", 3, [&] {
            EXPECT_TRUE(waitUntil([&] { return stage.devices.sound.unlocks() == 2; }));
            stage.devices.sound.moveCursor(middle + 1);
        });
        stage.calls.before("IDirectDrawSurface7::Flip", framesWatched, [&] {
            EXPECT_TRUE(waitUntil([&] { return stage.devices.sound.unlocks() == 3; }));
        });
        stage.run();
        expectNoHeapCalls(watched.threadLines);
    });
}

TEST(FrameCost, InfoPageAllocatesNothingAndBuildsNoText) {
    onStage([](LauncherStage& stage) {
        std::string text;
        for (int line = 0; line < 200; ++line)
            text += "line " + std::to_string(line) + "\r\n";
        stage.writeFile("ostrik.nfo", text);
        stage.devices.input.press(DIK_LEFT);
        stage.devices.input.press(DIK_UP);
        stage.devices.input.press(DIK_UP);
        stage.devices.input.press(DIK_RETURN);
        stage.devices.input.press(DIK_DOWN);
        stage.devices.input.rest(framesWatched + 8);
        Watched watched;
        watchFrames(stage, 12, &watched);
        stage.run();
        expectNoHeapCalls(watched.lines);
        EXPECT_FALSE(watched.hasBuiltText);
        EXPECT_TRUE(std::any_of(
            watched.lines.begin(), watched.lines.end(),
            [](const std::string& line) { return line.find("\"line 60\"") != std::string::npos; }))
            << "the second page was shown";
    });
}

TEST(FrameCost, EachFrameClearsPollsDrawsFlipsAndSleepsOnce) {
    onStage([](LauncherStage& stage) {
        Watched watched;
        stage.devices.input.rest(framesWatched + 4);
        watchFrames(stage, 2, &watched);
        stage.run();
        const auto count = [&](const char* call) {
            return std::count_if(watched.lines.begin(), watched.lines.end(),
                                 [&](const std::string& line) { return line.starts_with(call); });
        };
        for (const char* call :
             {"IDirectDrawSurface7::Blt(", "IDirectInputDevice7A::GetDeviceState(",
              "IDirectDrawSurface7::GetDC(", "IDirectDrawSurface7::ReleaseDC(", "CreateSolidBrush(",
              "DeleteObject(", "Sleep(1)"})
            EXPECT_EQ(count(call), framesWatched) << call;
        EXPECT_EQ(count("Sleep("), framesWatched);
        EXPECT_EQ(count("TextOutA("), framesWatched * 34);
        EXPECT_EQ(count("BitBlt("), framesWatched);
    });
}
