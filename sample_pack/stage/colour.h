// A colour is red, green and blue in one word, as the window takes it: 0x00RRGGBB.
#pragma once

#include "number.h"

using Colour = uint32_t;

// From shares of 0 to 1; what is beyond is cut off.
inline Colour Colour_Make(float red, float green, float blue) {
    const auto byte = [](float share) { return uint32_t(Num_Clamp(share) * 255.0f); };
    return byte(red) << 16 | byte(green) << 8 | byte(blue);
}

// Round the rainbow in one turn, red first.
inline Colour Colour_Hue(float turns, float light = 1.0f) {
    const auto part = [=](float shift) { return light * (0.5f + 0.5f * Num_Cos(turns - shift)); };
    return Colour_Make(part(0.0f), part(1.0f / 3.0f), part(2.0f / 3.0f));
}

// Red and blue are handled in one multiplication, as there are 8 free bits between them.
inline Colour Colour_Scale(Colour colour, float share) {
    const uint32_t factor = uint32_t(Num_Clamp(share) * 256.0f);
    return ((colour & 0xFF00FFu) * factor >> 8 & 0xFF00FFu) |
           ((colour & 0x00FF00u) * factor >> 8 & 0x00FF00u);
}

inline Colour Colour_Mix(Colour from, Colour to, float share) {
    const uint32_t factor = uint32_t(Num_Clamp(share) * 256.0f), rest = 256 - factor;
    return (((from & 0xFF00FFu) * rest + (to & 0xFF00FFu) * factor) >> 8 & 0xFF00FFu) |
           (((from & 0x00FF00u) * rest + (to & 0x00FF00u) * factor) >> 8 & 0x00FF00u);
}

// Light upon light: each part stops at full.
inline Colour Colour_Add(Colour one, Colour other) {
    const uint32_t half = (one & other) + (((one ^ other) & 0xFEFEFEu) >> 1);
    const uint32_t full = (half & 0x808080u) * 2 - ((half & 0x808080u) >> 7);
    return (one + other - ((half & 0x808080u) << 1)) | full;
}

// A colour between neighbours of a list that runs evenly from 0 to 1.
template <int Count>
Colour Colour_Ramp(const Colour (&list)[Count], float share) {
    const float place = Num_Clamp(share) * float(Count - 1);
    const int index = place < float(Count - 2) ? int(place) : Count - 2;
    return Colour_Mix(list[index], list[index + 1], place - float(index));
}
