// Of the programs of tests this one imports the least: here the recorder can be seen to refuse a
// function that it knows and that the program does not import.

#include "tests/support/call_hooks.h"
#include "tests/support/call_recorder.h"

TEST(UnimportedCall, IsNotHooked) {
    EXPECT_TRUE(isHooked("Sleep"));
    EXPECT_NE(findCall("SetStretchBltMode"), nullptr);
    EXPECT_FALSE(isHooked("SetStretchBltMode"));
}
