// Stands in for the stage: draws an intro without a window, sixty pictures to the second of its
// clock, and tells the processor time that a picture takes. Argument: how many seconds.

#include "stage.h"

#include <windows.h>

#include <cstdio>
#include <cstdlib>

namespace {
Canvas canvas;

// Of this program alone: what else runs on the machine does not count.
double readMilliseconds() {
    FILETIME begin, end, system, user;
    GetProcessTimes(GetCurrentProcess(), &begin, &end, &system, &user);
    const uint64_t ticks = uint64_t(user.dwHighDateTime) << 32 | user.dwLowDateTime;
    return double(ticks) / 10000.0;
}
} // namespace

int main(int count, char** words) {
    const int frames = std::max(1, int(60.0 * (count > 1 ? std::atof(words[1]) : 5.0)));
    Intro_Draw(canvas, 0.0f); // makes tables
    const double start = readMilliseconds();
    for (int frame = 1; frame <= frames; ++frame)
        Intro_Draw(canvas, float(frame) / 60.0f);
    std::printf("%5.2f ms a picture  %s\n", (readMilliseconds() - start) / frames, Intro_Title);
    return 0;
}
