#include "launcher/variables.h"

#include "runtime/program.h"

LauncherVariables Launcher;

void Variables_Clear() {
    GeneralHeap = nullptr;
    ProgramInstance = nullptr;
    Launcher = {};
}
