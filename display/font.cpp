#include "display/font.h"

#include "display/font_state.h"

#include <windows.h>

namespace {

constexpr int32_t registryStep = 16;

FontObject* lookUp(ObjectId id) {
    return static_cast<FontObject*>(Registry_Lookup(fontRegistry, id));
}

// Negative, to ask for a character height and not a cell height: so the points hold.
int characterHeight(HDC display, int32_t points) {
    return -MulDiv(points, GetDeviceCaps(display, LOGPIXELSY), 72);
}

HFONT makeFont(int height, const char* face, int32_t flags) {
    return CreateFontA(height, 0, 0, 0, flags & FontStyle_Bold ? FW_BOLD : FW_NORMAL,
                       flags & FontStyle_Italic ? 1 : 0, flags & FontStyle_Underline ? 1 : 0,
                       flags & FontStyle_StrikeOut ? 1 : 0, DEFAULT_CHARSET, OUT_DEFAULT_PRECIS,
                       CLIP_DEFAULT_PRECIS,
                       flags & FontStyle_Proof ? PROOF_QUALITY : DEFAULT_QUALITY,
                       DEFAULT_PITCH | FF_DONTCARE, face);
}

} // namespace

void Font_SubsystemInit() {
    fontRegistry = Registry_New(sizeof(FontObject), registryStep, Font_Free);
}

int64_t Font_Create(ObjectId id, const char* face, int32_t points, int32_t flags) {
    auto* record = static_cast<FontObject*>(Registry_Claim(fontRegistry, id));
    if (!record)
        return 0;
    HDC display = CreateDCA("DISPLAY", nullptr, nullptr, nullptr);
    HFONT font = display ? makeFont(characterHeight(display, points), face, flags) : nullptr;
    int64_t result = 0;
    if (font) {
        record->handle = reinterpret_cast<int64_t>(font);
        result = id == ObjectId_Any ? reinterpret_cast<int64_t>(record) : record->handle;
    } else {
        Registry_GiveUp(fontRegistry, id, record);
    }
    if (display)
        DeleteDC(display);
    return result;
}

int64_t Font_Load(ObjectId id, const char* face, int32_t points) {
    return Font_Create(id, face, points, 0);
}

int64_t Font_Handle(ObjectId id) {
    const FontObject* font = lookUp(id);
    return font ? font->handle : 0;
}

void Font_Free(ObjectId id) {
    const FontObject* font = lookUp(id);
    if (!font)
        return;
    DeleteObject(reinterpret_cast<HGDIOBJ>(font->handle));
    Registry_Release(fontRegistry, id);
}

void Font_SubsystemEnd() { Registry_FreeAll(fontRegistry); }
