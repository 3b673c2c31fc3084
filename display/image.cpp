#include "display/image.h"

#include "display/icon.h"
#include "display/image_bitmap.h"
#include "display/image_decoder.h"
#include "display/image_state.h"

#include <cstring>

namespace {

constexpr int32_t registryStep = 16;
constexpr int64_t unknownLength = 10000000; // stands where a length belongs; nothing checks it
constexpr uint16_t bmpSignature = 0x4D42;   // "BM"
constexpr size_t pixelOffsetField = 10;
constexpr size_t infoHeader = 14;
constexpr size_t widthField = 18;
constexpr size_t heightField = 22;
constexpr int32_t sectionBits = 32;

ImageObject* lookUp(ObjectId id) {
    return static_cast<ImageObject*>(Registry_Lookup(imageRegistry, id));
}

template <typename Value>
Value readAt(const void* data, size_t offset) {
    Value value;
    std::memcpy(&value, static_cast<const char*>(data) + offset, sizeof value);
    return value;
}

// If this fails the image exists all the same and stays blank.
void setBmpPixels(HBITMAP bitmap, const void* data) {
    HDC dc = CreateCompatibleDC(nullptr);
    if (!dc)
        return;
    const char* bytes = static_cast<const char*>(data);
    const auto lines = readAt<uint32_t>(data, heightField);
    SetDIBits(dc, bitmap, 0, lines, bytes + readAt<uint32_t>(data, pixelOffsetField),
              reinterpret_cast<const BITMAPINFO*>(bytes + infoHeader), DIB_RGB_COLORS);
    DeleteDC(dc);
}

// A native image and what GDI tells of its bitmap.
struct NativeImage {
    HANDLE handle;
    BITMAP bitmap;
};

NativeImage describe(HBITMAP bitmap) {
    NativeImage image{bitmap, {}};
    if (bitmap)
        GetObjectA(bitmap, sizeof image.bitmap, &image.bitmap);
    return image;
}

NativeImage loadBmp(const void* data, int32_t flags) {
    HBITMAP bitmap = Image_MakeBitmap(readAt<int32_t>(data, widthField),
                                      readAt<int32_t>(data, heightField), flags, sectionBits);
    if (bitmap)
        setBmpPixels(bitmap, data);
    return describe(bitmap);
}

NativeImage describeIcon(HICON icon) {
    ICONINFO info;
    if (!GetIconInfo(icon, &info))
        return {};
    NativeImage image{icon, {}};
    GetObjectA(info.hbmColor, sizeof image.bitmap, &image.bitmap);
    DeleteObject(info.hbmMask);
    DeleteObject(info.hbmColor);
    return image;
}

NativeImage decode(const void* data, int64_t length, int32_t flags) {
    const int32_t format = Image_PickDecoder(length, data);
    return format ? describe(Image_DecodeToBitmap(format, flags)) : NativeImage{};
}

NativeImage loadAny(const void* data, int64_t length, int32_t flags) {
    if (readAt<uint16_t>(data, 0) == bmpSignature)
        return loadBmp(data, flags);
    if (HICON icon = Icon_FromMemory(data))
        return describeIcon(icon);
    return decode(data, length, flags);
}

HBITMAP makeSection(HDC dc, int32_t width, int32_t height, int32_t bits) {
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof info.bmiHeader;
    info.bmiHeader.biWidth = width;
    info.bmiHeader.biHeight = height;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = static_cast<WORD>(bits);
    info.bmiHeader.biCompression = BI_RGB;
    void* pixels;
    return CreateDIBSection(dc, &info, DIB_RGB_COLORS, &pixels, nullptr, 0);
}

} // namespace

void Image_SubsystemInit() {
    imageRegistry = Registry_New(sizeof(ImageObject), registryStep, Image_Free);
}

int64_t Image_Load(ObjectId id, const void* data, int64_t length, int32_t flags) {
    auto* record = static_cast<ImageObject*>(Registry_Claim(imageRegistry, id));
    const NativeImage image = loadAny(data, length, flags);
    if (!image.handle) {
        Registry_GiveUp(imageRegistry, id, record);
        return 0;
    }
    record->handle = reinterpret_cast<int64_t>(image.handle);
    record->width = static_cast<int16_t>(image.bitmap.bmWidth);
    record->height = static_cast<int16_t>(image.bitmap.bmHeight);
    record->depth = static_cast<int8_t>(image.bitmap.bmBitsPixel);
    record->flags = static_cast<uint8_t>(flags);
    return id == ObjectId_Any ? reinterpret_cast<int64_t>(record) : record->handle;
}

int64_t Image_FromMemory(ObjectId id, const void* data) {
    return Image_Load(id, data, unknownLength, 0);
}

int64_t Image_Handle(ObjectId id) {
    const ImageObject* image = lookUp(id);
    return image ? image->handle : 0;
}

int64_t Image_Width(ObjectId id) {
    const ImageObject* image = lookUp(id);
    return image ? image->width : 0;
}

int64_t Image_Height(ObjectId id) {
    const ImageObject* image = lookUp(id);
    return image ? image->height : 0;
}

int64_t Image_Depth(ObjectId id) {
    const ImageObject* image = lookUp(id);
    return image ? image->depth : 0;
}

void Image_Free(ObjectId id) {
    if (id == ObjectId_Any)
        return;
    const ImageObject* image = lookUp(id);
    if (!image)
        return;
    HANDLE handle = reinterpret_cast<HANDLE>(image->handle);
    if (GetObjectType(handle) == OBJ_BITMAP)
        DeleteObject(handle);
    else
        DestroyIcon(static_cast<HICON>(handle));
    Registry_Release(imageRegistry, id);
}

void Image_SubsystemEnd() { Registry_FreeAll(imageRegistry); }

HBITMAP Image_MakeBitmap(int32_t width, int32_t height, int32_t flags, int32_t bits) {
    HDC display = CreateDCA("DISPLAY", nullptr, nullptr, nullptr);
    if (!display)
        return nullptr;
    HBITMAP bitmap = flags & ImageFlag_DisplayForm ? CreateCompatibleBitmap(display, width, height)
                                                   : makeSection(display, width, height, bits);
    DeleteDC(display);
    return bitmap;
}
