// A drawing kit that is set up, and a picture of 64 by 48 pixels to draw on.
#pragma once

#include "display/draw.h"
#include "display/draw_state.h"
#include "display/draw_target.h"
#include "tests/support/canvas.h"

#include <gtest/gtest.h>

// Leaves a line among the recorded calls, for what is no call of Windows itself.
inline void leaveMark(int number) { MulDiv(number, 1, 1); }

class DrawTest : public testing::Test {
protected:
    static constexpr COLORREF ground = 0x336699;
    static constexpr int releaseMark = 7;

    DrawTest() : canvas(64, 48, ground) {
        releases = 0;
        Draw_SubsystemInit();
    }
    ~DrawTest() override {
        Draw_End();
        DeleteObject(Pass.defaultBrush);
        DeleteObject(Pass.defaultPen);
    }
    DrawTest(const DrawTest&) = delete;
    DrawTest& operator=(const DrawTest&) = delete;

    DrawTarget targetOf(int32_t kind, HDC dc) const {
        DrawTarget target{};
        target.kind = kind;
        target.dc = dc;
        target.release = countRelease;
        return target;
    }
    DrawTarget targetOf(int32_t kind) const { return targetOf(kind, canvas.dc()); }

    HDC begin(int32_t kind = DrawTarget_Surface) {
        const DrawTarget target = targetOf(kind);
        return static_cast<HDC>(Draw_Begin(&target));
    }

    HGDIOBJ selected(UINT type) const { return GetCurrentObject(canvas.dc(), type); }

    static void countRelease() {
        ++releases;
        leaveMark(releaseMark);
    }

    static inline int releases = 0;
    Canvas canvas;
};

// A drawing test whose calls are recorded, under names for what the context and the pass hold.
class DrawSequence : public DrawTest {
protected:
    DrawSequence() {
        calls.name(canvas.dc(), "dc");
        calls.name(Pass.defaultBrush, "defaultBrush");
        calls.name(Pass.defaultPen, "defaultPen");
        calls.name(selected(OBJ_BRUSH), "dcBrush");
        calls.name(selected(OBJ_PEN), "dcPen");
        calls.name(selected(OBJ_FONT), "dcFont");
    }

    void beginUnseen(int32_t kind = DrawTarget_Surface) {
        begin(kind);
        calls.name(Pass.brush, "brush");
        calls.take();
    }

    CallRecorder calls;
};

// A bitmap that lives as long as the test.
class TestPicture {
public:
    TestPicture(int width, const std::vector<COLORREF>& pixels)
        : bitmap(makePicture(width, pixels)) {}
    ~TestPicture() { DeleteObject(bitmap); }
    TestPicture(const TestPicture&) = delete;
    TestPicture& operator=(const TestPicture&) = delete;

    int64_t handle() const { return reinterpret_cast<int64_t>(bitmap); }
    HBITMAP gdi() const { return bitmap; }

private:
    HBITMAP bitmap;
};
