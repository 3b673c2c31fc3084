#include "display/frame.h"

#include "display/screen_device.h"
#include "tests/support/screen_fixture.h"

#include <climits>

namespace {

class FrameLimiter : public OpenScreenTest {
protected:
    static constexpr int64_t refuse = INT64_MIN;

    // The counter gives these values one after the other; `refuse` makes it fail. A wait that wants
    // more is ended by force.
    void setCounter(std::vector<int64_t> values) {
        counter = std::move(values);
        next = 0;
        calls.replace<hook::QueryPerformanceCounter>([this](LARGE_INTEGER* now) {
            if (next == counter.size()) {
                ADD_FAILURE() << "the wait does not end";
                Screen.limiterTicks = INT_MIN;
                return TRUE;
            }
            now->QuadPart = counter[next++];
            return now->QuadPart == refuse ? FALSE : TRUE;
        });
    }
    int32_t wait(int32_t stamp, int32_t ticks, std::vector<int64_t> values) {
        Screen.limiterStamp = stamp;
        Screen.limiterTicks = ticks;
        setCounter(std::move(values));
        const int32_t passes = Screen_WaitFrame();
        EXPECT_EQ(next, counter.size()) << "values left";
        return passes;
    }

    std::vector<int64_t> counter;
    size_t next = 0;
};

TEST_F(FrameLimiter, IsArmedWithTheTicksOfAFrame) {
    calls.replace<hook::QueryPerformanceFrequency>([](LARGE_INTEGER* frequency) {
        frequency->QuadPart = 1000000;
        return TRUE;
    });
    Screen.limiterStamp = 5;
    EXPECT_EQ(Screen_SetFrameRate(60), 1);
    EXPECT_EQ(Screen.limiterRate, 60);
    EXPECT_EQ(Screen.limiterTicks, 1000000 / 61);
    EXPECT_EQ(Screen.limiterStamp, 0);
    EXPECT_EQ(Screen_SetFrameRate(0), 1);
    EXPECT_EQ(Screen.limiterRate, 0);
    EXPECT_EQ(Screen.limiterTicks, 1000000);
}

TEST_F(FrameLimiter, IsNotArmedWithoutACounter) {
    Screen.limiterRate = 1;
    Screen.limiterTicks = 2;
    Screen.limiterStamp = 3;
    calls.fail("QueryPerformanceFrequency", 1, 0);
    EXPECT_EQ(Screen_SetFrameRate(60), 0);
    EXPECT_EQ(Screen.limiterRate, 1);
    EXPECT_EQ(Screen.limiterTicks, 2);
    EXPECT_EQ(Screen.limiterStamp, 3);
}

TEST_F(FrameLimiter, SpinsUntilMoreThanAFrameHasPassed) {
    EXPECT_EQ(wait(1000, 100, {1001, 1099, 1100, 1101}), 3);
    EXPECT_EQ(Screen.limiterStamp, 1101);
    EXPECT_EQ(calls.uses("Sleep"), 0);
}

TEST_F(FrameLimiter, ReturnsAtOnceAfterALongFrame) {
    EXPECT_EQ(wait(1000, 100, {5000}), 0);
    EXPECT_EQ(Screen.limiterStamp, 5000);
}

TEST_F(FrameLimiter, TakesTheLowWordOfTheCounterWithItsSign) {
    EXPECT_EQ(wait(1000, 100, {0x7000003E8 + 101}), 0);
    EXPECT_EQ(Screen.limiterStamp, 1101);
    EXPECT_EQ(wait(-1000, 100, {0x5FFFFFC18 + 101}), 0);
    EXPECT_EQ(Screen.limiterStamp, -899);
}

TEST_F(FrameLimiter, AsksACounterThatFailsAgain) {
    EXPECT_EQ(wait(1000, 100, {refuse, refuse, 1050, refuse, 1101}), 1);
}

TEST_F(FrameLimiter, BeginsAnewWhenTheLowWordHasWrapped) {
    EXPECT_EQ(wait(0x7FFFFFF0, 100, {-2000, -1900, -1899}), 2);
    EXPECT_EQ(Screen.limiterStamp, -1899);
    EXPECT_EQ(wait(-5, 100, {2000, 2100, 2101}), 2);
    EXPECT_EQ(Screen.limiterStamp, 2101);
}

TEST_F(FrameLimiter, BeginsAnewFromAStampOfZeroEitherWay) {
    EXPECT_EQ(wait(0, 100, {2000, 2101}), 1);
    EXPECT_EQ(wait(0, 100, {-2000, -1899}), 1);
}

TEST_F(FrameLimiter, DoesNotBeginAnewAtACounterOfZero) {
    EXPECT_EQ(wait(-101, 100, {0}), 0);
    EXPECT_EQ(Screen.limiterStamp, 0);
    EXPECT_EQ(wait(5, 100, {0, 104, 106}), 2);
}

TEST_F(FrameLimiter, BeginsAnewAtTheFirstTickOfTheOtherSign) {
    EXPECT_EQ(wait(0, 0, {1, 2}), 1);
    EXPECT_EQ(wait(0, -1, {-1}), 0);
    EXPECT_EQ(Screen.limiterStamp, -1);
}

TEST_F(FrameLimiter, DoesNotBeginAnewWithinOneSign) {
    EXPECT_EQ(wait(1, 100, {102}), 0);
    EXPECT_EQ(wait(-102, 100, {-1}), 0);
}

class LimitedPresent : public FrameLimiter {
protected:
    // How often Screen_Present looked at the counter.
    int looks(int32_t rate, DWORD monitor, int32_t refresh, int32_t active) {
        Screen.limiterRate = rate;
        Screen.monitorFrequency = monitor;
        Screen.refreshRate = refresh;
        Screen.active = active;
        Screen.limiterStamp = 1;
        Screen.limiterTicks = 1;
        setCounter({100});
        Screen_Present(1);
        return static_cast<int>(next);
    }
};

TEST_F(LimitedPresent, WaitsWhileTheDisplaysRateIsItsOwn) {
    EXPECT_EQ(looks(60, 75, 0, 1), 1);
    EXPECT_EQ(looks(60, 0, 75, 1), 1);
    EXPECT_EQ(looks(-1, 75, 0, 1), 1);
}

TEST_F(LimitedPresent, WaitsWhileInactiveToo) { EXPECT_EQ(looks(60, 75, 0, 0), 1); }

TEST_F(LimitedPresent, DoesNotWaitUnlessItIsArmed) { EXPECT_EQ(looks(0, 75, 0, 1), 0); }

TEST_F(LimitedPresent, DoesNotWaitWhereTheRateIsTheProgramsChoice) {
    EXPECT_EQ(looks(60, 75, 75, 1), 0);
    EXPECT_EQ(looks(60, 0, 0, 1), 0);
}

TEST_F(LimitedPresent, WaitsAfterTheFlip) {
    int flipsAtWait = -1;
    Screen.limiterRate = 60;
    Screen.limiterStamp = 1;
    Screen.limiterTicks = 1;
    setCounter({100});
    calls.before("QueryPerformanceCounter", 1, [&] { flipsAtWait = devices.ddraw.flips(); });
    Screen_Present(1);
    EXPECT_EQ(flipsAtWait, 1);
}

} // namespace
