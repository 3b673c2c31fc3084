// Running an intro and coming back: what the program is for.
#pragma once

// Stops the music, gives the screen back, runs the intro to its end and lets the music go on. The
// screen is closed afterwards. An intro that cannot be started is waited for without end.
void Launch_Intro(const char* exeName);
