// Where everything is on the two pages of the menu, in pixels, and in which fonts.
#pragma once

#include "runtime/object_registry.h"

#include <cstdint>

struct MenuFont {
    ObjectId number;
    const char* face;
    int32_t points;
};

constexpr ObjectId Layout_RowFont = 0;
constexpr ObjectId Layout_WelcomeFont = 1;
constexpr ObjectId Layout_InfoFont = 2;
constexpr MenuFont Layout_Fonts[] = {
    {Layout_RowFont, "Arial", 14},
    {Layout_WelcomeFont, "Arial", 10},
    {Layout_InfoFont, "Terminal", 10},
};

constexpr ObjectId Layout_BannerImage = 0;
constexpr int32_t Layout_BannerX = 192;

constexpr int64_t Layout_Top = 145; // y of the first row or line

constexpr int64_t Layout_LeftColumnX = 100;
constexpr int64_t Layout_RightColumnX = 600;
constexpr int64_t Layout_RowStep = 30;

constexpr int32_t Layout_WelcomeX = 100;

struct WelcomeLine {
    int32_t y;
    const char* text;
};

constexpr WelcomeLine Layout_WelcomeLines[] = {
    {620, "Welcome to my Tessel Intros Keldara 2009!"},
    {640, "It contains almost all of the intros that I created With the Tessel Forge in 2009."},
    {660, "Select an Intro using the cursor keys and press the Enter Key To execute it. "
          "Press ESC To quit the intro or this program."},
    {680, "Cheers! Ilmar aka Ostrik."},
};

constexpr int64_t Layout_InfoX = 100;
constexpr int64_t Layout_InfoLineStep = 10;
constexpr int64_t Layout_InfoPageSize = 60; // lines
