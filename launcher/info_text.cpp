#include "launcher/info_text.h"

#include "launcher/variables.h"
#include "runtime/file.h"

namespace {

constexpr ObjectId infoFile = 0;
constexpr int32_t elementType = 8;
constexpr FieldMap lineFields[] = {0, FieldMap_End};

TextVariable* addLine() { return static_cast<TextVariable*>(List_AddElement(Launcher.InfoLines)); }

// There are no tab stops: a tab is five blanks wherever it stands. Ignoring case means nothing to a
// tab.
void readLine() {
    TextVariable* line = addLine();
    const int32_t start = Text_Here();
    File_ReadLine(infoFile, start);
    TextPosition += 1;
    Text_Replace(TextBase + start, "\t", "     ", Replace_IgnoreCase, 1, start);
    Text_Store(line, start);
    Launcher.InfoLineCount += 1;
}

void setOnlyLine(const char* text) {
    Text_Assign(addLine(), text);
    Launcher.InfoLineCount = 1;
}

} // namespace

void InfoText_New() {
    Launcher.InfoLines =
        List_New(sizeof(TextVariable), &Launcher.InfoLineCurrent, lineFields, elementType);
    Launcher.InfoLineCount = 0;
}

void InfoText_Read() {
    if (!File_OpenRead(infoFile, "ostrik.nfo")) {
        setOnlyLine("No NFO File Found");
        return;
    }
    while (!File_IsEof(infoFile))
        readLine();
    File_Close(infoFile);
    if (Launcher.InfoLineCount == 0)
        setOnlyLine("NFO File is empty");
}

const char* InfoText_CurrentLine() {
    return *reinterpret_cast<TextVariable*>(Launcher.InfoLineCurrent + 1);
}
