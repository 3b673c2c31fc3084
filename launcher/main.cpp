// The program from its first instruction to its end: the start order, the outer loop, which opens
// the screen, and the frame loop inside it. Results that are not tested here are ignored by design.

#include "assets/assets.h"
#include "audio/module_player.h"
#include "audio/sound_device.h"
#include "desktop/message_box.h"
#include "desktop/process.h"
#include "display/draw.h"
#include "display/font.h"
#include "display/frame.h"
#include "display/image.h"
#include "display/image_decoder.h"
#include "display/screen.h"
#include "input/keyboard.h"
#include "input/mouse.h"
#include "launcher/catalogue.h"
#include "launcher/end.h"
#include "launcher/info_text.h"
#include "launcher/layout.h"
#include "launcher/menu.h"
#include "launcher/staging.h"
#include "launcher/variables.h"
#include "runtime/file.h"
#include "runtime/program.h"
#include "runtime/services.h"

#include <windows.h>

namespace {

void makeGeneralHeap() {
    Variables_Clear();
    ProgramInstance = GetModuleHandleA(nullptr);
    GeneralHeap = HeapCreate(0, 4096, 0);
}

void setUpSubsystems() {
    Text_SubsystemInit();
    Heap_SubsystemInit();
    Draw_SubsystemInit();
    File_SubsystemInit();
    Font_SubsystemInit();
    Image_DecoderInit();
    Image_SubsystemInit();
    Module_SubsystemInit();
    Proc_SubsystemInit();
    Desk_SubsystemInit();
}

// Stops at the first device that cannot be had. A machine without sound or mouse does not run the
// program.
void setUpDevices() {
    if (Screen_SubsystemInit() && Keyboard_SubsystemInit() && Mouse_SubsystemInit() &&
        Sound_SubsystemInit())
        return;
    Desk_MessageBox("Error", "Can't initialize system", 0);
    Launcher_End();
}

void readContent() {
    InfoText_New();
    Catalogue_New();
    InfoText_Read();
    Catalogue_Fill();
}

void startMusic() {
    Launcher.ModuleNumber = 0;
    Module_FromMemory(Launcher.ModuleNumber, ModuleData,
                      static_cast<int32_t>(ModuleDataEnd - ModuleData));
    Module_Play(Launcher.ModuleNumber);
}

void loadPictures() {
    Image_FromMemory(Layout_BannerImage, BannerData);
    for (const MenuFont& font : Layout_Fonts)
        Font_Load(font.number, font.face, font.points);
}

// Set once: all four survive the run of an intro.
void resetMenu() {
    Launcher.MenuMode = MenuMode_Catalogue;
    Launcher.InfoFirstLine = 0;
    Launcher.InfoPageSize = Layout_InfoPageSize;
    Launcher.SelectedRow = 0;
}

void openScreen() {
    Screen_Open(1024, 768, 16, "Ostrik Tessel Intros 2009 Keldara");
    Launcher.MenuTop = Layout_Top;
}

void drawFrame() {
    Draw_Begin(Screen_BackBuffer());
    Draw_SetMode(0);
    Menu_DrawPage();
    Draw_End();
    Screen_Flip();
}

// False once an intro has run; such a frame ends without its delay.
bool runFrame() {
    Screen_Clear(static_cast<uint32_t>(Color_Rgb(0, 0, 0)));
    Launcher.DrawY = Launcher.MenuTop;
    Keyboard_Poll(); // the one snapshot that all key tests of this frame read
    drawFrame();
    if (!Menu_ActOnKeys())
        return false;
    Time_Delay(1);
    return true;
}

} // namespace

int WINAPI WinMain(HINSTANCE, HINSTANCE, LPSTR, int) {
    makeGeneralHeap();
    setUpSubsystems();
    setUpDevices();
    readContent();
    Staging_BuildPaths();
    Staging_Run();
    startMusic();
    loadPictures();
    resetMenu();
    for (;;) {
        openScreen();
        while (runFrame()) {
        }
    }
}
