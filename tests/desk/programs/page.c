/* Draws a page by GDI alone, from a list of what stands where, as the yardstick for what the
   menu shows. The list's lines, words parted by tabs:
     font  FACE  POINTS
     text  X  Y  RRGGBB  RRGGBB  WORDS     (foreground, background)
     bitmap  X  Y  FILE
   The page is 1024 by 768 in 5-6-5 bits, since letters are blended in the depth of their
   surface, and is written out bare, row by row from the top. */

#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <windows.h>

enum { width = 1024, height = 768, longestLine = 16384 };

static HDC page;
static char line[longestLine];

static WORD* makePage(void) {
    struct {
        BITMAPINFOHEADER header;
        DWORD masks[3];
    } info = {{sizeof(BITMAPINFOHEADER), width, -height, 1, 16, BI_BITFIELDS, 0, 0, 0, 0, 0},
              {0xF800, 0x07E0, 0x001F}};
    void* bits = NULL;
    page = CreateCompatibleDC(NULL);
    SelectObject(page, CreateDIBSection(page, (BITMAPINFO*)&info, DIB_RGB_COLORS, &bits, NULL, 0));
    return bits;
}

static COLORREF colour(const char* word) {
    unsigned long value = strtoul(word, NULL, 16);
    return RGB(value >> 16, value >> 8 & 255, value & 255);
}

static void selectFont(char** word) {
    int size = -MulDiv(atoi(word[2]), GetDeviceCaps(page, LOGPIXELSY), 72);
    SelectObject(
        page, CreateFontA(size, 0, 0, 0, FW_NORMAL, 0, 0, 0, DEFAULT_CHARSET, 0, 0, 0, 0, word[1]));
}

static void drawText(char** word) {
    SetTextColor(page, colour(word[3]));
    SetBkColor(page, colour(word[4]));
    TextOutA(page, atoi(word[1]), atoi(word[2]), word[5], (int)strlen(word[5]));
}

static void drawBitmap(char** word) {
    HBITMAP bitmap =
        LoadImageA(NULL, word[3], IMAGE_BITMAP, 0, 0, LR_LOADFROMFILE | LR_CREATEDIBSECTION);
    BITMAP size;
    HDC source = CreateCompatibleDC(page);
    GetObjectA(bitmap, sizeof size, &size);
    SelectObject(source, bitmap);
    BitBlt(page, atoi(word[1]), atoi(word[2]), size.bmWidth, size.bmHeight, source, 0, 0, SRCCOPY);
}

static void drawLine(void) {
    char* word[6] = {line};
    for (int n = 1; n < 6 && word[n - 1]; ++n) {
        word[n] = strchr(word[n - 1], '\t');
        if (word[n])
            *word[n]++ = 0;
    }
    if (strcmp(word[0], "font") == 0)
        selectFont(word);
    else if (strcmp(word[0], "text") == 0)
        drawText(word);
    else if (strcmp(word[0], "bitmap") == 0)
        drawBitmap(word);
}

int main(int count, char** words) {
    FILE* list = count == 3 ? fopen(words[1], "rb") : NULL;
    FILE* out = count == 3 ? fopen(words[2], "wb") : NULL;
    WORD* bits = makePage();
    if (!list || !out || !bits)
        return 1;
    while (fgets(line, sizeof line, list)) {
        line[strcspn(line, "\n")] = 0;
        drawLine();
    }
    GdiFlush();
    return fwrite(bits, 2, width * height, out) == width * height ? 0 : 1;
}
