#include "launcher/menu.h"

#include "display/draw.h"
#include "display/font.h"
#include "display/image.h"
#include "input/keyboard.h"
#include "launcher/end.h"
#include "launcher/info_text.h"
#include "launcher/staging.h"
#include "launcher/variables.h"
#include "runtime/services.h"

namespace {

constexpr auto white = static_cast<COLORREF>(Color_Rgb(255, 255, 255));
constexpr auto black = static_cast<COLORREF>(Color_Rgb(0, 0, 0));
constexpr auto red = static_cast<COLORREF>(Color_Rgb(255, 0, 0));
constexpr auto cyan = static_cast<COLORREF>(Color_Rgb(0, 255, 255));

constexpr ObjectId bannerImage = 0;
constexpr int32_t bannerX = 192;

constexpr ObjectId rowFont = 0;
constexpr int64_t leftColumnX = 100;
constexpr int64_t rightColumnX = 600;
constexpr int64_t rowStep = 30;

constexpr ObjectId welcomeFont = 1;
constexpr int32_t welcomeX = 100;

constexpr ObjectId infoFont = 2;
constexpr int64_t infoX = 100;
constexpr int64_t infoLineStep = 10;

struct WelcomeLine {
    int32_t y;
    const char* text;
};

constexpr WelcomeLine welcomeLines[] = {
    {620, "Welcome to my Tessel Intros Keldara 2009!"},
    {640, "It contains almost all of the intros that I created With the Tessel Forge in 2009."},
    {660, "Select an Intro using the cursor keys and press the Enter Key To execute it. "
          "Press ESC To quit the intro or this program."},
    {680, "Cheers! Ilmar aka Ostrik."},
};

void drawLine(const char* text, COLORREF background) {
    Draw_Text(static_cast<int32_t>(Launcher.DrawX), static_cast<int32_t>(Launcher.DrawY), text,
              white, background);
}

void drawRow() {
    Launcher.DrawX = Launcher.RowIndex >= Catalogue_ColumnRows ? rightColumnX : leftColumnX;
    if (Launcher.RowIndex == Catalogue_ColumnRows)
        Launcher.DrawY = Launcher.MenuTop;
    IntroEntry& row = Launcher.IntroCatalogue[Launcher.RowIndex];
    drawLine(row.Title, Launcher.RowIndex == Launcher.SelectedRow ? red : black);
    row.X = static_cast<int32_t>(Launcher.DrawX);
    row.Y = static_cast<int32_t>(Launcher.DrawY);
    Launcher.DrawY += rowStep;
}

void drawWelcome() {
    Draw_SetFont(Font_Handle(welcomeFont));
    for (const WelcomeLine& line : welcomeLines)
        Draw_Text(welcomeX, line.y, line.text, cyan, black);
}

void drawCataloguePage() {
    Draw_Image(Image_Handle(bannerImage), bannerX, 0);
    Draw_SetFont(Font_Handle(rowFont));
    for (Launcher.RowIndex = 0; Launcher.RowIndex < Catalogue_RowCount; ++Launcher.RowIndex)
        drawRow();
    drawWelcome();
}

void drawInfoLine() {
    if (Launcher.RowIndex >= Launcher.InfoLineCount)
        return;
    List_SelectElement(Launcher.InfoLines, Launcher.RowIndex);
    drawLine(InfoText_CurrentLine(), black);
    Launcher.DrawY += infoLineStep;
}

void drawInfoPage() {
    Draw_Image(Image_Handle(bannerImage), bannerX, 0);
    Launcher.DrawX = infoX;
    Draw_SetFont(Font_Handle(infoFont));
    Launcher.RowIndex = Launcher.InfoFirstLine;
    for (; Launcher.RowIndex <= Launcher.InfoFirstLine + Launcher.InfoPageSize - 1;
         ++Launcher.RowIndex)
        drawInfoLine();
}

bool isReleased(int32_t scanCode) { return Keyboard_IsReleased(scanCode) != 0; }

bool isOnInfoPage() { return Launcher.MenuMode == MenuMode_Info; }

bool isFirstOfColumn(int64_t row) { return row % Catalogue_ColumnRows == 0; }

// Each column wraps within itself.
void selectRowAbove() {
    Launcher.SelectedRow += isFirstOfColumn(Launcher.SelectedRow) ? Catalogue_ColumnRows - 1 : -1;
}

void selectRowBelow() {
    Launcher.SelectedRow +=
        isFirstOfColumn(Launcher.SelectedRow + 1) ? 1 - Catalogue_ColumnRows : 1;
}

// Left and right are the same toggle: neither stops at an edge, and both let go at once move the
// selection there and back.
void selectOtherColumn() {
    Launcher.SelectedRow +=
        Launcher.SelectedRow < Catalogue_ColumnRows ? Catalogue_ColumnRows : -Catalogue_ColumnRows;
}

void turnPageBack() {
    Launcher.InfoFirstLine -= Launcher.InfoPageSize;
    if (Launcher.InfoFirstLine < 0)
        Launcher.InfoFirstLine = 0;
}

void turnPage() {
    if (Launcher.InfoFirstLine + Launcher.InfoPageSize < Launcher.InfoLineCount)
        Launcher.InfoFirstLine += Launcher.InfoPageSize;
}

void actOnCursorKeys() {
    if (isReleased(DIK_UP))
        isOnInfoPage() ? turnPageBack() : selectRowAbove();
    if (isReleased(DIK_DOWN))
        isOnInfoPage() ? turnPage() : selectRowBelow();
    if (isReleased(DIK_LEFT) && !isOnInfoPage())
        selectOtherColumn();
    if (isReleased(DIK_RIGHT) && !isOnInfoPage())
        selectOtherColumn();
}

// False once an intro has run. This way out leaves the staging folder where it is, unlike Escape's;
// the next start removes it. The difference is meant to be so.
bool actOnSelectedRow() {
    const char* exeName = Launcher.IntroCatalogue[Launcher.SelectedRow].ExeName;
    if (Text_Equal(exeName, Catalogue_QuitKeyword))
        Launcher_End();
    if (Text_Equal(exeName, Catalogue_InfoKeyword)) {
        Launcher.MenuMode = MenuMode_Info;
        return true;
    }
    Staging_LaunchIntro(exeName);
    return false;
}

void actOnEscape() {
    if (!isOnInfoPage()) {
        Staging_RemoveFolder();
        Launcher_End();
    }
    Launcher.MenuMode = MenuMode_Catalogue;
}

} // namespace

void Menu_DrawPage() {
    if (Launcher.MenuMode == MenuMode_Catalogue)
        drawCataloguePage();
    if (Launcher.MenuMode == MenuMode_Info)
        drawInfoPage();
}

// Every key is asked for in every frame, whatever the page: a query keeps the key's history.
bool Menu_ActOnKeys() {
    actOnCursorKeys();
    if (isReleased(DIK_RETURN) && !isOnInfoPage() && !actOnSelectedRow())
        return false;
    if (isReleased(DIK_ESCAPE))
        actOnEscape();
    return true;
}
