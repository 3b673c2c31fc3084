// Running an intro and coming back: what the program is for.
#pragma once

// Stops the music, closes the screen, runs the intro to its end and resumes the music. The screen
// stays closed. Waits forever for an intro that cannot be started.
void Launch_Intro(const char* exeName);
