// Stands in for the stage: draws the first seconds of an intro, sixty pictures to the second, tells
// the processor time that a picture takes, and writes the last one as a bitmap file.
// Arguments: the seconds and, if wanted, the file.

#include "stage.h"

#include <windows.h>

#include <algorithm>
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

void writePicture(const char* path) {
    BITMAPFILEHEADER file = {};
    BITMAPINFOHEADER info = {
        sizeof info, Canvas_Width, -Canvas_Height, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    file.bfType = 0x4D42; // "BM"
    file.bfOffBits = sizeof file + sizeof info;
    file.bfSize = DWORD(file.bfOffBits + sizeof canvas);
    if (FILE* out = std::fopen(path, "wb")) {
        std::fwrite(&file, sizeof file, 1, out);
        std::fwrite(&info, sizeof info, 1, out);
        std::fwrite(&canvas, sizeof canvas, 1, out);
        std::fclose(out);
    }
}

} // namespace

int main(int count, char** words) {
    const int frames = std::max(1, int(60.0 * (count > 1 ? std::atof(words[1]) : 5.0)));
    Intro_Draw(canvas, 0.0f); // makes tables
    const double start = readMilliseconds();
    for (int frame = 1; frame <= frames; ++frame)
        Intro_Draw(canvas, float(frame) / 60.0f);
    std::printf("%5.2f ms a picture  %s\n", (readMilliseconds() - start) / frames, Intro_Title);
    if (count > 2)
        writePicture(words[2]);
    return 0;
}
