// The single way out of the program.
#pragma once

// Runs every tear-down step, each of which copes with a subsystem that was never started, and ends
// the process.
[[noreturn]] void Launcher_End();
