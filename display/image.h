// An image is a numbered object around a native GDI bitmap or icon, made from a whole BMP or ICO
// file image in memory. Images are GDI objects, not DirectDraw surfaces: they are made before the
// screen opens and last over every re-opening and every loss of surfaces.
//
// Of a BMP only the few fields needed are read; palette, depth and compression are left to GDI. No
// length is checked: the readers go wherever the file's own fields point. One thread.
#pragma once

#include "runtime/object_registry.h"

#include <cstdint>

struct ImageObject {
    int64_t handle; // a GDI bitmap, or an icon: GetObjectType tells which
    int16_t width;  // pixels; above 32,767 it reads back negative
    int16_t height;
    int8_t depth; // bits per pixel
    uint8_t flags;
};
static_assert(sizeof(ImageObject) == 16);

// Flag of Image_Load: a bitmap in the display's own form, not a device-independent section.
constexpr int32_t ImageFlag_DisplayForm = 0x80;

void Image_SubsystemInit();

// Makes an image, after freeing the one under that number. `length` is for decoders alone. Gives
// the native handle, for ObjectId_Any the record's address, 0 on failure.
int64_t Image_Load(ObjectId id, const void* data, int64_t length, int32_t flags);

// Image_Load for data whose length is not known.
int64_t Image_FromMemory(ObjectId id, const void* data);

// The native handle, or 0.
int64_t Image_Handle(ObjectId id);

// The field, or 0 for an unknown image.
int64_t Image_Width(ObjectId id);
int64_t Image_Height(ObjectId id);
int64_t Image_Depth(ObjectId id);

void Image_Free(ObjectId id);
void Image_SubsystemEnd();
