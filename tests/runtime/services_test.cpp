#include "runtime/services.h"

#include "display/draw.h"
#include "tests/support/call_recorder.h"

namespace {

TEST(ColorRgb, PutsRedInTheLowByteAndBlueAtTheTop) {
    EXPECT_EQ(Color_Rgb(0x11, 0x22, 0x33), 0x332211);
    EXPECT_EQ(Color_Rgb(0, 0, 0), 0);
    EXPECT_EQ(Color_Rgb(255, 255, 255), 0xFFFFFF);
}

TEST(ColorRgb, LetsAValueAbove255RunIntoItsNeighbour) {
    EXPECT_EQ(Color_Rgb(0x101, 0, 0), 0x101);
    EXPECT_EQ(Color_Rgb(0x101, 1, 0), 0x101) << "joined, not added";
    EXPECT_EQ(Color_Rgb(0, 0x102, 0), 0x10200);
    EXPECT_EQ(Color_Rgb(0, 0x102, 1), 0x10200) << "joined, not added";
}

TEST(ColorRgb, IsASigned64BitValue) {
    EXPECT_EQ(Color_Rgb(0, 0, 0x7FFFFFFF), 0x7FFFFFFF0000);
    EXPECT_EQ(Color_Rgb(-1, 0, 0), -1);
    EXPECT_EQ(Color_Rgb(0, 0, -1), -0x10000);
    static_assert(sizeof(Color_Rgb(0, 0, 0)) == 8);
}

TEST(TimeDelay, SleepsForItsTime) {
    CallRecorder calls;
    Time_Delay(1);
    Time_Delay(25);
    EXPECT_TRUE(calls.match("Sleep(1)\n Sleep(25)"));
}

} // namespace
