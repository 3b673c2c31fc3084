// Renders a module as the menu's player does: the library's own sound, in the same settings and
// the same pieces, as the yardstick for what is heard.
//   render MODULE PIECES OUT

#include <cstdio>
#include <cstdlib>
#include <libmodplug/modplug.h>
#include <vector>

namespace {
constexpr int pieceBytes = 102400;
constexpr int masterVolume = 512;

std::vector<char> readFile(const char* path) {
    std::vector<char> bytes;
    FILE* file = fopen(path, "rb");
    for (int byte; file && (byte = fgetc(file)) != EOF;)
        bytes.push_back(static_cast<char>(byte));
    return bytes;
}

void repeatForEver() {
    ModPlug_Settings settings;
    ModPlug_GetSettings(&settings);
    settings.mLoopCount = -1;
    ModPlug_SetSettings(&settings);
}
} // namespace

int main(int count, char** words) {
    if (count != 4)
        return 1;
    std::vector<char> bytes = readFile(words[1]);
    repeatForEver();
    ModPlugFile* module = ModPlug_Load(bytes.data(), static_cast<int>(bytes.size()));
    FILE* out = fopen(words[3], "wb");
    if (!module || !out)
        return 1;
    ModPlug_SetMasterVolume(module, masterVolume);
    static char piece[pieceBytes];
    for (int pieces = atoi(words[2]); pieces > 0; --pieces) {
        ModPlug_Read(module, piece, pieceBytes);
        fwrite(piece, 1, pieceBytes, out);
    }
    return fclose(out);
}
