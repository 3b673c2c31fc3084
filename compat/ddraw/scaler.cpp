#include "compat/ddraw/scaler.h"

#include "compat/ddraw/memory.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace {

constexpr DWORD unchanged = ~DWORD{0};

// A pixel, row or column, of the target: `weight` 256ths of the source's `first` + 1, and the rest
// of `first`.
struct Mix {
    DWORD first;
    DWORD weight;
};

// The source's pixel that begins inside of the target's pixel counts as far as it reaches into it.
Mix meanOfCovered(DWORD at, DWORD source, DWORD target) {
    const uint64_t begin = uint64_t{at} * source, end = begin + source;
    const auto first = static_cast<DWORD>(begin / target);
    const uint64_t edge = (uint64_t{first} + 1) * target;
    return {first, end <= edge ? 0 : static_cast<DWORD>((end - edge) * 256 / source)};
}

// For targets smaller than the source: the two pixels around the center.
Mix nearestTwo(DWORD at, DWORD source, DWORD target) {
    const uint64_t center = (uint64_t{2} * at + 1) * source * 128 / target - 128;
    return {static_cast<DWORD>(center / 256), static_cast<DWORD>(center % 256)};
}

void fillMixes(Mix* mixes, DWORD source, DWORD target) {
    for (DWORD at = 0; at < target; ++at) {
        mixes[at] =
            target < source ? nearestTwo(at, source, target) : meanOfCovered(at, source, target);
        if (mixes[at].first + 1 >= source) // there is no next pixel
            mixes[at] = {source - 1, 0};
    }
}

uint32_t from565(uint32_t pixel) {
    const uint32_t red = pixel >> 11, green = pixel >> 5 & 63, blue = pixel & 31;
    return (red << 3 | red >> 2) << 16 | (green << 2 | green >> 4) << 8 | (blue << 3 | blue >> 2);
}

void expand(uint32_t* to, const uint8_t* row, DWORD width, DWORD depth) {
    if (depth == 32) {
        memcpy(to, row, size_t{width} * 4);
        return;
    }
    const auto* from = reinterpret_cast<const uint16_t*>(row);
    for (DWORD x = 0; x < width; ++x)
        to[x] = from565(from[x]);
}

// Two channels at a time; the sums stay within 16 bits each.
uint32_t mixPixels(uint32_t first, uint32_t second, uint32_t weight) {
    constexpr uint32_t even = 0x00FF00FF, half = 0x00800080;
    const uint32_t rest = 256 - weight;
    const uint32_t redBlue = (first & even) * rest + (second & even) * weight + half;
    const uint32_t green = (first >> 8 & even) * rest + (second >> 8 & even) * weight + half;
    return (redBlue >> 8 & even) | (green & ~even);
}

void mixColumns(uint32_t* to, const uint32_t* from, const Mix* mixes, DWORD width) {
    for (DWORD x = 0; x < width; ++x)
        to[x] = mixPixels(from[mixes[x].first], from[mixes[x].first + 1], mixes[x].weight);
}

void mixRows(uint8_t* to, const uint8_t* first, const uint8_t* second, DWORD bytes, DWORD weight) {
    const auto rest = static_cast<uint16_t>(256 - weight);
    const auto part = static_cast<uint16_t>(weight);
    for (DWORD at = 0; at < bytes; ++at)
        to[at] = static_cast<uint8_t>((first[at] * rest + second[at] * part + 128) >> 8);
}

} // namespace

struct Scaler {
    DWORD width, height, depth; // of the source
    DWORD targetWidth, targetHeight;
    DWORD rowBytes;       // of the source
    Mix* columns;         // one for each column of the target
    Mix* rows;            // one for each row of the target
    uint8_t* last;        // the source as it was scaled last
    bool hasLast;         // false before the first time
    uint32_t* expanded;   // one row of the source in 32 bits, and one pixel more
    uint32_t* wide[2];    // two rows of the source in the target's width
    DWORD wideSources[2]; // which rows these are, or `unchanged` for none
};

namespace {

bool allocate(Scaler* scaler) {
    scaler->columns = static_cast<Mix*>(Memory_Allocate(scaler->targetWidth * sizeof(Mix)));
    scaler->rows = static_cast<Mix*>(Memory_Allocate(scaler->targetHeight * sizeof(Mix)));
    scaler->last =
        static_cast<uint8_t*>(Memory_Allocate(size_t{scaler->rowBytes} * scaler->height));
    scaler->expanded = static_cast<uint32_t*>(Memory_Allocate((size_t{scaler->width} + 1) * 4));
    for (uint32_t*& row : scaler->wide)
        row = static_cast<uint32_t*>(Memory_Allocate(size_t{scaler->targetWidth} * 4));
    return scaler->columns && scaler->rows && scaler->last && scaler->expanded && scaler->wide[0] &&
           scaler->wide[1];
}

// Copies the source's rows. Returns the first and one past the last that changed.
ScaledRows takeChanges(Scaler* scaler, const Pixels& source) {
    ScaledRows changed{scaler->height, 0};
    for (DWORD y = 0; y < scaler->height; ++y) {
        uint8_t* last = scaler->last + size_t{y} * scaler->rowBytes;
        const uint8_t* row = Pixels_At(source, 0, y);
        if (scaler->hasLast && memcmp(last, row, scaler->rowBytes) == 0)
            continue;
        memcpy(last, row, scaler->rowBytes);
        changed.top = std::min(changed.top, y);
        changed.bottom = y + 1;
    }
    scaler->hasLast = true;
    return changed;
}

const uint32_t* wideRow(Scaler* scaler, DWORD source) {
    const int slot = source & 1; // the two rows of a mix are neighbors
    if (scaler->wideSources[slot] != source) {
        expand(scaler->expanded, scaler->last + size_t{source} * scaler->rowBytes, scaler->width,
               scaler->depth);
        mixColumns(scaler->wide[slot], scaler->expanded, scaler->columns, scaler->targetWidth);
        scaler->wideSources[slot] = source;
    }
    return scaler->wide[slot];
}

void scaleRow(Scaler* scaler, DWORD y, uint8_t* to) {
    const Mix mix = scaler->rows[y];
    const DWORD bytes = scaler->targetWidth * 4;
    const uint32_t* first = wideRow(scaler, mix.first);
    if (mix.weight == 0) {
        memcpy(to, first, bytes);
        return;
    }
    const uint32_t* second = wideRow(scaler, mix.first + 1);
    mixRows(to, reinterpret_cast<const uint8_t*>(first), reinterpret_cast<const uint8_t*>(second),
            bytes, mix.weight);
}

bool isTouched(const Mix& mix, const ScaledRows& changed) {
    return mix.first < changed.bottom && mix.first + (mix.weight ? 1 : 0) >= changed.top;
}

} // namespace

Scaler* Scaler_Make(DWORD width, DWORD height, DWORD depth, DWORD targetWidth, DWORD targetHeight) {
    auto* scaler = Memory_New<Scaler>();
    if (!scaler)
        return nullptr;
    scaler->width = width;
    scaler->height = height;
    scaler->depth = depth;
    scaler->targetWidth = targetWidth;
    scaler->targetHeight = targetHeight;
    scaler->rowBytes = width * (depth / 8);
    if (!allocate(scaler)) {
        Scaler_Free(scaler);
        return nullptr;
    }
    fillMixes(scaler->columns, width, targetWidth);
    fillMixes(scaler->rows, height, targetHeight);
    return scaler;
}

void Scaler_Free(Scaler* scaler) {
    if (!scaler)
        return;
    Memory_Free(scaler->columns);
    Memory_Free(scaler->rows);
    Memory_Free(scaler->last);
    Memory_Free(scaler->expanded);
    Memory_Free(scaler->wide[0]);
    Memory_Free(scaler->wide[1]);
    Memory_Free(scaler);
}

ScaledRows Scaler_Run(Scaler* scaler, const Pixels& source, const Pixels& target) {
    const ScaledRows changed = takeChanges(scaler, source);
    scaler->wideSources[0] = scaler->wideSources[1] = unchanged;
    ScaledRows scaled{scaler->targetHeight, 0};
    for (DWORD y = 0; y < scaler->targetHeight; ++y) {
        if (!isTouched(scaler->rows[y], changed))
            continue;
        scaleRow(scaler, y, Pixels_At(target, 0, y));
        scaled.top = std::min(scaled.top, y);
        scaled.bottom = y + 1;
    }
    scaled.top = std::min(scaled.top, scaled.bottom);
    return scaled;
}

SIZE Scaler_Fit(DWORD width, DWORD height, DWORD screenWidth, DWORD screenHeight) {
    const DWORD whole = std::min(screenWidth / width, screenHeight / height);
    const bool isWide = uint64_t{screenWidth} * height > uint64_t{screenHeight} * width;
    SIZE fit{static_cast<LONG>(screenWidth), static_cast<LONG>(screenHeight)};
    if (isWide)
        fit.cx = static_cast<LONG>(uint64_t{screenHeight} * width / height);
    else
        fit.cy = static_cast<LONG>(uint64_t{screenWidth} * height / width);
    const auto wholeWidth = static_cast<LONG>(whole * width);
    if (int64_t{wholeWidth} * 10 > int64_t{fit.cx} * 9)
        return {wholeWidth, static_cast<LONG>(whole * height)};
    return {std::max(fit.cx, LONG{1}), std::max(fit.cy, LONG{1})};
}
