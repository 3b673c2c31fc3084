#include "tests/support/product_state.h"

#include "audio/module_player_state.h"
#include "audio/sound_device_state.h"
#include "desktop/message_box_state.h"
#include "desktop/process_state.h"
#include "display/draw_state.h"
#include "display/font_state.h"
#include "display/image_decoder_state.h"
#include "display/image_state.h"
#include "display/screen_device.h"
#include "input/direct_input_state.h"
#include "input/keyboard_state.h"
#include "input/mouse_state.h"
#include "launcher/variables.h"
#include "runtime/file_state.h"
#include "runtime/heap_state.h"
#include "runtime/program.h"
#include "runtime/text.h"

namespace {

// Stand-in windows are no windows of the system's, and their class is not registered there.
void removeWindow(HWND window) {
    char className[64];
    if (!IsWindow(window) || GetClassNameA(window, className, sizeof className) == 0)
        return;
    DestroyWindow(window);
    UnregisterClassA(className, GetModuleHandleA(nullptr));
}

} // namespace

void resetProduct() {
    removeWindow(Screen.hiddenWindow);
    Launcher = {};
    processList = nullptr;
    disabledWindows = nullptr;
    moduleRegistry = nullptr;
    Sound = {};
    Pass = {};
    fontRegistry = nullptr;
    imageRegistry = nullptr;
    ImageDecoders = {};
    Screen = {};
    ScreenLockDesc = {};
    ScreenCopyDesc = {};
    Mouse = {};
    Keyboard = {};
    Loader = {};
    fileRegistry = nullptr;
    LooseHeap = nullptr;
    TextHeap = nullptr;
    TextBase = nullptr;
    TextPosition = 0;
    TextCapacity = 0;
    GeneralHeap = nullptr;
    ProgramInstance = nullptr;
}
