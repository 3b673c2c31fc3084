// The two pages of the menu and what the keys do on them. Every frame draws the whole page from the
// state; there is no animation and no mouse.
#pragma once

// Draws the page of MenuMode, from DrawY on, inside an open drawing pass.
void Menu_DrawPage();

// Acts on the keys that were let go, in a fixed order. False once an intro has run: the screen is
// closed then. Does not come back when the user leaves the program.
bool Menu_ActOnKeys();
