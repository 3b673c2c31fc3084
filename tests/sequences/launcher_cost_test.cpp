// What the promises about cost say: a frame builds no text and allocates nothing, and the render
// loop allocates nothing.

#include "tests/support/launcher_stage.h"

#include "input/keyboard.h"
#include "runtime/text.h"

#include <algorithm>

namespace {

constexpr int framesWatched = 20;

bool isHeapCall(const std::string& line) {
    return line.starts_with("Heap") || line.starts_with("Global");
}

// Lines of `calls` between the `first` flip from now and framesWatched flips later.
void watchFrames(LauncherStage& stage, int first, std::vector<std::string>* lines,
                 std::vector<std::string>* threadLines) {
    stage.calls.before("IDirectDrawSurface7::Flip", first, [&stage] {
        stage.calls.take();
        stage.calls.takeOtherThreads();
    });
    stage.calls.before("IDirectDrawSurface7::Flip", first + framesWatched,
                       [&stage, lines, threadLines] {
                           *lines = stage.calls.take();
                           *threadLines = stage.calls.takeOtherThreads();
                       });
}

void expectNoHeapCalls(const std::vector<std::string>& lines) {
    ASSERT_FALSE(lines.empty());
    EXPECT_EQ(std::find_if(lines.begin(), lines.end(), isHeapCall), lines.end());
}

} // namespace

TEST(FrameCost, CataloguePageAllocatesNothingAndBuildsNoText) {
    onStage([](LauncherStage& stage) {
        std::vector<std::string> lines, threadLines;
        stage.devices.input.rest(framesWatched + 4);
        watchFrames(stage, 2, &lines, &threadLines);
        stage.run();
        expectNoHeapCalls(lines);
        EXPECT_EQ(TextPosition, 0);
    });
}

TEST(FrameCost, InfoPageAllocatesNothing) {
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
        std::vector<std::string> lines, threadLines;
        watchFrames(stage, 12, &lines, &threadLines);
        stage.run();
        expectNoHeapCalls(lines);
        EXPECT_NE(std::find_if(lines.begin(), lines.end(),
                               [](const std::string& line) {
                                   return line.find("\"line 60\"") != std::string::npos;
                               }),
                  lines.end())
            << "the second page was shown";
    });
}

TEST(FrameCost, EachFrameClearsPollsDrawsFlipsAndSleepsOnce) {
    onStage([](LauncherStage& stage) {
        std::vector<std::string> lines, threadLines;
        stage.devices.input.rest(framesWatched + 4);
        watchFrames(stage, 2, &lines, &threadLines);
        stage.run();
        const auto count = [&](const char* call) {
            return std::count_if(lines.begin(), lines.end(),
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
