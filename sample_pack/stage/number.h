// Small numbers for pictures: everything is float, angles are counted in turns (1 is once round).
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>

constexpr float Num_Turn = 6.2831853f; // one turn in radians, for the C library's functions

inline float Num_Floor(float value) {
    const int whole = int(value);
    return float(whole - (value < float(whole)));
}

inline float Num_Fract(float value) { return value - Num_Floor(value); }

inline float Num_Clamp(float value, float least = 0.0f, float most = 1.0f) {
    return value < least ? least : value > most ? most : value;
}

inline float Num_Mix(float from, float to, float share) { return from + (to - from) * share; }

// 0 at `from` and below, 1 at `to` and above, without a corner in between.
inline float Num_Smooth(float from, float to, float value) {
    const float share = Num_Clamp((value - from) / (to - from));
    return share * share * (3.0f - 2.0f * share);
}

// Sine by two parabolas, good to a thousandth: the C library's is too dear for every pixel.
inline float Num_Sin(float turns) {
    const float half = Num_Fract(turns) - 0.5f;
    const float arch = -8.0f * half * (1.0f - 2.0f * std::fabs(half));
    return arch * (0.775f + 0.225f * std::fabs(arch));
}

inline float Num_Cos(float turns) { return Num_Sin(turns + 0.25f); }

// Between four neighbours of a grid, two in each of two rows.
inline float Num_Between(const float* upper, const float* lower, float across, float down) {
    return Num_Mix(Num_Mix(upper[0], upper[1], across), Num_Mix(lower[0], lower[1], across), down);
}

// A number from 0 to 1 that is always the same for the same place, and looks like chance.
inline float Num_Hash(int x, int y = 0) {
    uint32_t bits = uint32_t(x) * 0x9E3779B1u ^ uint32_t(y) * 0x85EBCA77u;
    bits = (bits ^ bits >> 15) * 0x2C1B3C6Du;
    bits = (bits ^ bits >> 13) * 0x297A2D39u;
    return float((bits ^ bits >> 16) >> 8) / 16777216.0f;
}

// Hills and valleys from 0 to 1, one to a unit square.
inline float Num_Noise(float x, float y) {
    const float left = Num_Floor(x), top = Num_Floor(y);
    const int column = int(left), row = int(top);
    const float upper[] = {Num_Hash(column, row), Num_Hash(column + 1, row)};
    const float lower[] = {Num_Hash(column, row + 1), Num_Hash(column + 1, row + 1)};
    return Num_Between(upper, lower, Num_Smooth(0.0f, 1.0f, x - left),
                       Num_Smooth(0.0f, 1.0f, y - top));
}

// The same with finer hills upon the hills.
inline float Num_Clouds(float x, float y, int layers) {
    float sum = 0.0f, weight = 0.5f;
    for (int layer = 0; layer < layers; ++layer, weight *= 0.5f) {
        sum += weight * Num_Noise(x, y);
        x = 2.0f * x + 17.3f;
        y = 2.0f * y + 5.7f;
    }
    return sum;
}

// The same on a square whose borders meet: at its end it fades into what lies before its beginning.
inline float Num_ClosedClouds(float x, float y, float size, float grain, int layers) {
    const auto cloud = [=](float u, float v) { return Num_Clouds(u / grain, v / grain, layers); };
    const float upper[] = {cloud(x, y), cloud(x - size, y)};
    const float lower[] = {cloud(x, y - size), cloud(x - size, y - size)};
    const float start = 0.8f * size;
    return Num_Between(upper, lower, Num_Smooth(start, size, x), Num_Smooth(start, size, y));
}
