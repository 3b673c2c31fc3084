#include "launcher/end.h"

#include "audio/module_player.h"
#include "audio/sound_device.h"
#include "display/font.h"
#include "display/image.h"
#include "display/screen.h"
#include "display/window.h"
#include "input/keyboard.h"
#include "input/mouse.h"
#include "launcher/variables.h"
#include "runtime/file.h"
#include "runtime/program.h"

#include <windows.h>

// The catalogue, the texts and the info lines are not freed one by one: they go with the process.
void Launcher_End() {
    Mouse_SubsystemEnd();
    Module_SubsystemEnd();
    Sound_SubsystemEnd();
    Keyboard_SubsystemEnd();
    Screen_SubsystemEnd();
    Screen_SubsystemEnd2();
    Window_SubsystemEnd();
    Image_SubsystemEnd();
    Font_SubsystemEnd();
    File_SubsystemEnd();
    Heap_SubsystemEnd();
    HeapDestroy(GeneralHeap);
    ExitProcess(static_cast<UINT>(Launcher.ExitCode));
}
