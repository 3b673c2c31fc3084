#include "display/draw.h"

#include "display/draw_state.h"
#include "display/packed_dib.h"

#include <cstring>

namespace {

constexpr DWORD copyPixels = SRCCOPY;
constexpr DWORD invertPixels = NOTSRCERASE;

HGDIOBJ asGdiObject(int64_t handle) { return reinterpret_cast<HGDIOBJ>(handle); }

void copySurfaceFields(const DrawTarget& target) {
    Pass.buffer = target.buffer;
    Pass.bufferInfo = target.bufferInfo;
    Pass.width = target.width;
    Pass.height = target.height;
    Pass.depth = target.depth;
    Pass.format = target.format;
    Pass.resume = target.resume;
    Pass.lock = target.lock;
}

void prepareContext() {
    SetTextAlign(Pass.dc, TA_UPDATECP);
    Pass.savedBrush = SelectObject(Pass.dc, Pass.defaultBrush);
    Pass.savedPen = SelectObject(Pass.dc, Pass.defaultPen);
    Pass.font = nullptr;
    Pass.textColor = 0;
    Pass.backColor = 0xFFFFFF;
    Pass.brush = CreateSolidBrush(0);
    SetTextColor(Pass.dc, 0);
}

template <typename Handle>
void deleteOwned(Handle* object) {
    if (*object)
        DeleteObject(*object);
    *object = nullptr;
}

void giveContextBack() {
    switch (Pass.kind) {
    case DrawTarget_Window: ReleaseDC(Pass.window, Pass.dc); break;
    case DrawTarget_Context:
    case DrawTarget_Bits:
    case DrawTarget_Surface: Pass.release(); break;
    default: DeleteDC(Pass.dc);
    }
}

struct Rectangle {
    int32_t x, y, width, height;
};

struct BitmapSize {
    int32_t width, height;
};

void drawAsBits(HGDIOBJ image, const Rectangle& to, const BitmapSize& source, DWORD operation) {
    HGLOBAL dib = Bitmap_ToPackedDib(static_cast<HBITMAP>(image), nullptr);
    if (!dib)
        return;
    const auto* header = static_cast<const BITMAPINFO*>(dib);
    const void* bits = static_cast<const char*>(dib) + sizeof(BITMAPINFOHEADER);
    SetStretchBltMode(Pass.dc, COLORONCOLOR);
    StretchDIBits(Pass.dc, to.x, to.y, to.width, to.height, 0, 0, source.width, source.height, bits,
                  header, DIB_RGB_COLORS, operation);
    GlobalFree(dib);
}

void drawFromMemory(HDC memory, HGDIOBJ image, const Rectangle& to, const BitmapSize& source,
                    DWORD operation) {
    SelectObject(memory, image);
    if (to.width == source.width && to.height == source.height) {
        BitBlt(Pass.dc, to.x, to.y, to.width, to.height, memory, 0, 0, operation);
        return;
    }
    SetStretchBltMode(Pass.dc, HALFTONE);
    StretchBlt(Pass.dc, to.x, to.y, to.width, to.height, memory, 0, 0, source.width, source.height,
               operation);
}

void drawBitmap(HGDIOBJ image, Rectangle to) {
    HDC memory = CreateCompatibleDC(Pass.dc);
    if (!memory)
        return;
    BITMAP bitmap{};
    GetObjectA(image, sizeof bitmap, &bitmap);
    const BitmapSize source{bitmap.bmWidth, bitmap.bmHeight};
    const DWORD operation = Pass.mode & DrawMode_Invert ? invertPixels : copyPixels;
    if (to.width == 0 || to.height == 0) {
        to.width = source.width;
        to.height = source.height;
    }
    if (Pass.kind == DrawTarget_Bits)
        drawAsBits(image, to, source, operation);
    else
        drawFromMemory(memory, image, to, source, operation);
    DeleteDC(memory); // with the image still selected, which does it no harm
}

bool isEmpty(const char* text) { return !text || !*text; }

} // namespace

void Draw_SubsystemInit() {
    Pass = {};
    Pass.defaultBrush = CreateSolidBrush(0);
    Pass.defaultPen = CreatePen(PS_SOLID, 0, 0);
}

void* Draw_Begin(const DrawTarget* target) {
    Draw_End();
    if (!target)
        return Pass.dc;
    Pass.kind = target->kind;
    Pass.window = target->window;
    Pass.release = target->release;
    Pass.mode = 0;
    Pass.dc = target->kind == DrawTarget_Window ? GetDC(target->window) : target->dc;
    if (target->kind == DrawTarget_Surface)
        copySurfaceFields(*target);
    Pass.dcState = 1;
    if (Pass.dc)
        prepareContext();
    return Pass.dc;
}

// The font stays selected: fonts outlive every pass.
void Draw_End() {
    if (!Pass.dc)
        return;
    SelectObject(Pass.dc, Pass.savedBrush);
    SelectObject(Pass.dc, Pass.savedPen);
    deleteOwned(&Pass.brush);
    deleteOwned(&Pass.pen);
    giveContextBack();
    Pass.dc = nullptr;
}

void Draw_SetMode(int32_t mode) {
    if (!Pass.dc)
        return;
    Draw_ResumeDc();
    Pass.mode = mode;
    SetROP2(Pass.dc, mode & DrawMode_Invert ? R2_NOT : R2_COPYPEN);
    SelectObject(Pass.dc, mode & DrawMode_Unfilled ? GetStockObject(NULL_BRUSH) : Pass.brush);
    SetBkMode(Pass.dc, mode & DrawMode_Transparent ? TRANSPARENT : OPAQUE);
}

void Draw_SetFont(int64_t font) {
    if (!Pass.dc)
        return;
    Draw_ResumeDc();
    Pass.font = static_cast<HFONT>(font == DrawFont_System ? GetStockObject(SYSTEM_FONT)
                                                           : asGdiObject(font));
    SelectObject(Pass.dc, Pass.font);
}

void Draw_Image(int64_t image, int32_t x, int32_t y) { Draw_ImageSized(image, x, y, 0, 0); }

void Draw_ImageSized(int64_t image, int32_t x, int32_t y, int32_t width, int32_t height) {
    if (!Pass.dc)
        return;
    Draw_ResumeDc();
    HGDIOBJ object = asGdiObject(image);
    if (GetObjectType(object) == OBJ_BITMAP)
        drawBitmap(object, {x, y, width, height});
    else
        DrawIconEx(Pass.dc, x, y, static_cast<HICON>(object), width, height, 0, nullptr, DI_NORMAL);
}

int32_t Draw_Text(int32_t x, int32_t y, const char* text, uint32_t foreground,
                  uint32_t background) {
    if (!Pass.dc)
        return 0;
    Draw_ResumeDc();
    if (foreground != Pass.textColor)
        SetTextColor(Pass.dc, foreground);
    const COLORREF oldBackground = SetBkColor(Pass.dc, background);
    MoveToEx(Pass.dc, x, y, nullptr);
    if (!isEmpty(text))
        TextOutA(Pass.dc, 0, 0, text, static_cast<int>(std::strlen(text)));
    SetBkColor(Pass.dc, oldBackground);
    if (foreground != Pass.textColor)
        SetTextColor(Pass.dc, Pass.textColor);
    POINT end{};
    MoveToEx(Pass.dc, 0, 0, &end);
    return end.x;
}

// Nothing sets dcState to -1 yet; the test stands so that direct pixel work can come between
// drawing operations.
void Draw_ResumeDc() {
    if (Pass.kind != DrawTarget_Surface || Pass.dcState != -1)
        return;
    Pass.dcState = 1;
    Pass.dc = Pass.resume();
    SetTextColor(Pass.dc, Pass.textColor);
    SetTextAlign(Pass.dc, TA_UPDATECP);
    SetBkColor(Pass.dc, Pass.backColor);
    if (Pass.mode != 0)
        Draw_SetMode(Pass.mode);
    else
        SelectObject(Pass.dc, Pass.brush);
    SelectObject(Pass.dc, Pass.pen);
    SelectObject(Pass.dc, Pass.font);
}
