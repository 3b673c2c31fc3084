#include "compat/ddraw/scaler.h"

#include <gtest/gtest.h>

namespace {

constexpr uint32_t red = 0xFF0000, green = 0x00FF00, blue = 0x0000FF, white = 0xFFFFFF;

class ScalerRun : public testing::Test {
protected:
    ~ScalerRun() override {
        Scaler_Free(scaler);
        Pixels_Free(source);
        Pixels_Free(target);
    }

    void make(DWORD width, DWORD height, DWORD depth, DWORD targetWidth, DWORD targetHeight) {
        source = Pixels_Make(width, height, depth);
        target = Pixels_Make(targetWidth, targetHeight, 32);
        scaler = Scaler_Make(width, height, depth, targetWidth, targetHeight);
    }
    void set(DWORD x, DWORD y, uint32_t value) const {
        memcpy(Pixels_At(*source, x, y), &value, source->depth / 8);
    }
    uint32_t scaled(DWORD x, DWORD y) const {
        uint32_t value = 0;
        memcpy(&value, Pixels_At(*target, x, y), sizeof value);
        return value & white;
    }
    ScaledRows run() const { return Scaler_Run(scaler, *source, *target); }

    Pixels* source = nullptr;
    Pixels* target = nullptr;
    Scaler* scaler = nullptr;
};

TEST_F(ScalerRun, KeepsAPictureOfTheSameSize) {
    make(3, 2, 32, 3, 2);
    set(0, 0, red);
    set(2, 1, blue);
    run();
    EXPECT_EQ(scaled(0, 0), red);
    EXPECT_EQ(scaled(1, 0), 0u);
    EXPECT_EQ(scaled(2, 1), blue);
}

TEST_F(ScalerRun, RepeatsPixelsForAWholeFactor) {
    make(2, 2, 32, 6, 6);
    set(1, 0, red);
    set(0, 1, blue);
    run();
    for (DWORD y = 0; y < 6; ++y)
        for (DWORD x = 0; x < 6; ++x)
            EXPECT_EQ(scaled(x, y), x / 3 == y / 3 ? 0 : y < 3 ? red : blue) << x << " " << y;
}

TEST_F(ScalerRun, TakesTheMeanOfWhatAPixelCovers) {
    make(4, 4, 32, 5, 5);
    for (DWORD y = 0; y < 4; ++y)
        set(1, y, white);
    run();
    const uint32_t gray[] = {0, 0xBFBFBF, 0x808080, 0, 0}; // 3/4 and 1/2 of white, rounded
    for (DWORD x = 0; x < 5; ++x)
        EXPECT_EQ(scaled(x, 2), gray[x]) << x;
}

TEST_F(ScalerRun, ExpandsFiveSixFiveAsGdiDoes) {
    make(4, 1, 16, 4, 1);
    const uint32_t values[] = {0xF800, 0x07E0, 0x001F, 0x8410};
    for (DWORD x = 0; x < 4; ++x)
        set(x, 0, values[x]);
    run();
    EXPECT_EQ(scaled(0, 0), red);
    EXPECT_EQ(scaled(1, 0), green);
    EXPECT_EQ(scaled(2, 0), blue);
    EXPECT_EQ(scaled(3, 0), 0x848284u);
}

TEST_F(ScalerRun, ReportsTheRowsThatChanged) {
    make(8, 8, 16, 16, 16);
    const ScaledRows first = run();
    EXPECT_EQ(first.top, 0u);
    EXPECT_EQ(first.bottom, 16u);
    const ScaledRows none = run();
    EXPECT_EQ(none.top, none.bottom);
    set(3, 2, 0xFFFF);
    set(3, 4, 0xFFFF);
    const ScaledRows some = run();
    EXPECT_EQ(some.top, 4u);
    EXPECT_EQ(some.bottom, 10u);
    EXPECT_EQ(scaled(7, 9), white);
}

TEST_F(ScalerRun, KeepsAPlainPictureAtEveryFactor) {
    const SIZE sizes[] = {{7, 5}, {8, 8}, {15, 9}, {31, 64}, {100, 77}};
    for (const SIZE& size : sizes) {
        make(10, 8, 16, static_cast<DWORD>(size.cx), static_cast<DWORD>(size.cy));
        Pixels_Fill(*source, {0, 0, 10, 8}, 0xF800);
        run();
        for (DWORD y = 0; y < target->height; ++y)
            for (DWORD x = 0; x < target->width; ++x)
                ASSERT_EQ(scaled(x, y), red) << size.cx << ": " << x << " " << y;
        Scaler_Free(scaler);
        Pixels_Free(source);
        Pixels_Free(target);
    }
    scaler = nullptr;
    source = target = nullptr;
}

TEST(ScalerFit, KeepsProportionsAndPrefersWholeFactors) {
    const struct {
        DWORD screen[2];
        LONG fit[2];
    } rows[] = {{{1024, 768}, {1024, 768}},   {{1280, 1024}, {1280, 960}},
                {{1920, 1080}, {1440, 1080}}, {{1366, 768}, {1024, 768}},
                {{1280, 800}, {1024, 768}},   {{2560, 1600}, {2048, 1536}},
                {{3840, 2160}, {2880, 2160}}, {{800, 600}, {800, 600}},
                {{600, 800}, {600, 450}},     {{1, 1}, {1, 1}}};
    for (const auto& row : rows) {
        const SIZE fit = Scaler_Fit(1024, 768, row.screen[0], row.screen[1]);
        EXPECT_EQ(fit.cx, row.fit[0]) << row.screen[0];
        EXPECT_EQ(fit.cy, row.fit[1]) << row.screen[0];
    }
}

} // namespace
