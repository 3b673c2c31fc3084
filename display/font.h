// A font is a numbered object around a GDI font, made by face and point size. Fonts are independent
// of the screen and last over every re-opening. One thread.
#pragma once

#include "runtime/object_registry.h"

#include <cstdint>

struct FontObject {
    int64_t handle; // the GDI font
};
static_assert(sizeof(FontObject) == 8);

// Style flags of Font_Create; all other bits are ignored.
constexpr int32_t FontStyle_Underline = 0x4;
constexpr int32_t FontStyle_StrikeOut = 0x8;
constexpr int32_t FontStyle_Proof = 0x10; // proof quality
constexpr int32_t FontStyle_Bold = 0x100;
constexpr int32_t FontStyle_Italic = 0x200;

void Font_SubsystemInit();

// Makes a font, after freeing the one under that number. `points` holds at the display's resolution
// at that moment. Gives the GDI font, for ObjectId_Any the record's address, 0 on failure. A face
// that is not on the system is no failure: a substitute is picked.
int64_t Font_Create(ObjectId id, const char* face, int32_t points, int32_t flags);

// Font_Create without a style.
int64_t Font_Load(ObjectId id, const char* face, int32_t points);

// The GDI font, or 0.
int64_t Font_Handle(ObjectId id);

void Font_Free(ObjectId id);
void Font_SubsystemEnd();
