#include "launcher/menu.h"

#include "display/draw.h"
#include "display/font.h"
#include "display/image.h"
#include "input/keyboard.h"
#include "launcher/end.h"
#include "launcher/info_text.h"
#include "launcher/launch.h"
#include "launcher/layout.h"
#include "launcher/staging.h"
#include "launcher/variables.h"

namespace {

constexpr auto white = static_cast<uint32_t>(Color_Rgb(255, 255, 255));
constexpr auto black = static_cast<uint32_t>(Color_Rgb(0, 0, 0));
constexpr auto red = static_cast<uint32_t>(Color_Rgb(255, 0, 0));
constexpr auto cyan = static_cast<uint32_t>(Color_Rgb(0, 255, 255));

void drawLine(const char* text, uint32_t background) {
    Draw_Text(static_cast<int32_t>(Launcher.DrawX), static_cast<int32_t>(Launcher.DrawY), text,
              white, background);
}

void drawRow() {
    Launcher.DrawX =
        Launcher.RowIndex >= Catalogue_ColumnRows ? Layout_RightColumnX : Layout_LeftColumnX;
    if (Launcher.RowIndex == Catalogue_ColumnRows)
        Launcher.DrawY = Launcher.MenuTop;
    IntroEntry& row = Launcher.IntroCatalogue[Launcher.RowIndex];
    drawLine(row.Title, Launcher.RowIndex == Launcher.SelectedRow ? red : black);
    row.X = static_cast<int32_t>(Launcher.DrawX);
    row.Y = static_cast<int32_t>(Launcher.DrawY);
    Launcher.DrawY += Layout_RowStep;
}

void drawWelcome() {
    Draw_SetFont(Font_Handle(Layout_WelcomeFont));
    for (const WelcomeLine& line : Layout_WelcomeLines)
        Draw_Text(Layout_WelcomeX, line.y, line.text, cyan, black);
}

void drawCataloguePage() {
    Draw_Image(Image_Handle(Layout_BannerImage), Layout_BannerX, 0);
    Draw_SetFont(Font_Handle(Layout_RowFont));
    for (Launcher.RowIndex = 0; Launcher.RowIndex < Catalogue_RowCount; ++Launcher.RowIndex)
        drawRow();
    drawWelcome();
}

void drawInfoLine() {
    if (Launcher.RowIndex >= Launcher.InfoLineCount)
        return;
    List_SelectElement(Launcher.InfoLines, Launcher.RowIndex);
    drawLine(InfoText_CurrentLine(), black);
    Launcher.DrawY += Layout_InfoLineStep;
}

void drawInfoPage() {
    Draw_Image(Image_Handle(Layout_BannerImage), Layout_BannerX, 0);
    Launcher.DrawX = Layout_InfoX;
    Draw_SetFont(Font_Handle(Layout_InfoFont));
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
    if (isReleased(Key_Up))
        isOnInfoPage() ? turnPageBack() : selectRowAbove();
    if (isReleased(Key_Down))
        isOnInfoPage() ? turnPage() : selectRowBelow();
    if (isReleased(Key_Left) && !isOnInfoPage())
        selectOtherColumn();
    if (isReleased(Key_Right) && !isOnInfoPage())
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
    Launch_Intro(exeName);
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
    if (isReleased(Key_Return) && !isOnInfoPage() && !actOnSelectedRow())
        return false;
    if (isReleased(Key_Escape))
        actOnEscape();
    return true;
}
