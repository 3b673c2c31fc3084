#include "launcher/variables.h"

#include "runtime/program.h"

void Variables_Clear() {
    GeneralHeap = nullptr;
    ProgramInstance = nullptr;
    Launcher = {};
}
