// The state of draw.cpp, for that file and its tests only.
#pragma once

#include "display/draw_target.h"

// The pass between Draw_Begin and Draw_End.
struct DrawPass {
    HDC dc;              // null: no pass
    COLORREF textColor;  // standing text colour, black
    int32_t mode;        // bits of Draw_SetMode
    int32_t dcState;     // 1; -1 once the context was given up for pixel work
    COLORREF backColor;  // white
    HBRUSH brush;        // owned by the pass
    HPEN pen;            // owned by the pass; none is made here
    HFONT font;          // not owned
    HBRUSH defaultBrush; // black, for the life of the process
    HPEN defaultPen;     // black hairline, for the life of the process
    HGDIOBJ savedBrush;  // what the context held before
    HGDIOBJ savedPen;
    int32_t kind; // from here on as in DrawTarget
    HWND window;
    TargetRelease release;
    void* buffer;
    int32_t bufferInfo;
    int32_t width;
    int32_t height;
    int32_t depth;
    int32_t format;
    TargetResume resume;
    TargetLock lock;
};

inline DrawPass Pass = {};
