#include "display/icon.h"

#include <cstddef>
#include <cstring>

namespace {

constexpr DWORD iconFormatVersion = 0x30000;

#pragma pack(push, 1)
struct IconDirectory {
    uint16_t idReserved;
    uint16_t idType;
    uint16_t idCount;
};

struct IconEntry {
    uint8_t bWidth;
    uint8_t bHeight;
    uint8_t bColorCount;
    uint8_t bReserved;
    uint16_t wPlanes;
    uint16_t wBitCount;
    uint32_t dwBytesInRes;
    uint32_t dwImageOffset;
};
#pragma pack(pop)
static_assert(sizeof(IconDirectory) == 6 && sizeof(IconEntry) == 16);

IconEntry entryAt(const void* data, int32_t index) {
    IconEntry entry;
    const char* entries = static_cast<const char*>(data) + sizeof(IconDirectory);
    std::memcpy(&entry, entries + static_cast<size_t>(index) * sizeof entry, sizeof entry);
    return entry;
}

// Entry 0 is read even where the count is 0.
IconEntry chooseEntry(const void* data, int32_t count) {
    IconEntry best = entryAt(data, 0);
    for (int32_t index = 1; index < count; ++index) {
        const IconEntry entry = entryAt(data, index);
        const bool sameSize = entry.bWidth == best.bWidth && entry.bHeight == best.bHeight;
        if (sameSize && entry.wBitCount > best.wBitCount)
            best = entry;
    }
    return best;
}

uint32_t colorTableEntries(const BITMAPINFOHEADER& header) {
    if (header.biClrUsed != 0)
        return header.biClrUsed;
    switch (header.biBitCount) {
    case 1: return 2;
    case 4: return 16;
    case 8: return 256;
    default: return 0;
    }
}

// Kept to 16 bits.
uint16_t colorTableSize(const BITMAPINFOHEADER& header) {
    return static_cast<uint16_t>(colorTableEntries(header) * 4);
}

void derive(IconImage* icon) {
    icon->header = reinterpret_cast<const BITMAPINFOHEADER*>(icon->bits);
    const BITMAPINFOHEADER& header = *icon->header;
    icon->width = header.biWidth;
    icon->height = header.biHeight / 2;
    icon->colors = header.biBitCount * header.biPlanes;
    icon->xorBits = icon->bits + header.biSize + colorTableSize(header);
    const int32_t rowBytes = (icon->colors * icon->width + 31) / 32 * 4;
    icon->andBits = icon->xorBits + static_cast<ptrdiff_t>(rowBytes) * icon->height;
}

BYTE* copyEntryData(const void* data, const IconEntry& entry) {
    auto* bits = static_cast<BYTE*>(GlobalAlloc(GMEM_FIXED, entry.dwBytesInRes));
    if (bits)
        std::memcpy(bits, static_cast<const char*>(data) + entry.dwImageOffset, entry.dwBytesInRes);
    return bits;
}

HICON makeIcon(const IconImage& image) {
    HICON icon = CreateIconFromResourceEx(image.bits, image.size, TRUE, iconFormatVersion,
                                          image.width, image.height, LR_DEFAULTCOLOR);
    // A 16-bit entry gets no second try.
    if (!icon && image.header->biBitCount != 16)
        icon = CreateIconFromResource(image.bits, image.size, TRUE, iconFormatVersion);
    return icon;
}

} // namespace

HICON Icon_FromMemory(const void* data) {
    IconImage* image = Icon_ReadDirectory(data);
    if (!image)
        return nullptr;
    HICON icon = makeIcon(*image);
    GlobalFree(image->bits);
    GlobalFree(image);
    return icon;
}

// These four bytes are the whole test: any block that begins so is taken for an icon file.
IconImage* Icon_ReadDirectory(const void* data) {
    IconDirectory directory;
    std::memcpy(&directory, data, sizeof directory);
    if (directory.idReserved != 0 || directory.idType != 1)
        return nullptr;
    auto* image = static_cast<IconImage*>(GlobalAlloc(GMEM_FIXED, sizeof(IconImage)));
    if (!image)
        return nullptr;
    const IconEntry entry = chooseEntry(data, directory.idCount);
    image->size = entry.dwBytesInRes;
    image->bits = copyEntryData(data, entry);
    if (!image->bits)
        return nullptr; // the record is left behind
    derive(image);
    return image;
}
