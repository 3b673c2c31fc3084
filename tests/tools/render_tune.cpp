// Renders tunes without a sound device. Arguments: a folder, how many seconds, and names of text
// files in it. For each NAME.txt it writes NAME.raw (16 bits, stereo), NAME.loop (one second on
// either side of the first repetition) and NAME.notes (a line per note: start, length, instrument,
// attack and release in milliseconds, pitch). Prints name, faults, loop start and length in frames.

#include "synth.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {
Tune tune;
Synth synth;
char text[65536];
int16_t samples[2 * Synth_Block];

FILE* openFile(const char* folder, const char* name, const char* kind, const char* mode) {
    char path[1024];
    std::snprintf(path, sizeof path, "%s/%s.%s", folder, name, kind);
    FILE* file = std::fopen(path, mode);
    if (!file)
        std::exit(2);
    return file;
}

void readText(const char* folder, const char* name) {
    FILE* file = openFile(folder, name, "txt", "rb");
    text[std::fread(text, 1, sizeof text - 1, file)] = '\0';
    std::fclose(file);
}

void writeNotes(const char* folder, const char* name) {
    FILE* file = openFile(folder, name, "notes", "w");
    for (const Note* note = tune.notes; note < tune.notes + tune.noteCount; ++note) {
        const Instrument& instrument = tune.instruments[note->instrument];
        const bool isTonal = instrument.wave != Wave::Noise && instrument.hold == 0 &&
                             instrument.drop == 0 && instrument.arpeggio == 0 &&
                             instrument.ratio == float(int(instrument.ratio));
        std::fprintf(file, "%d %d %.0f %d %d\n", note->start, note->length,
                     1000.0 * double(instrument.attack), isTonal, note->pitches[0]);
    }
    std::fclose(file);
}

void writeSound(const char* folder, const char* name, int frames, bool withLoop) {
    FILE* start = openFile(folder, name, "raw", "wb");
    FILE* loop = openFile(folder, name, "loop", "wb");
    const int last = withLoop ? std::max(frames, tune.length + Tune_Rate) : frames;
    for (int frame = 0; frame < last; frame += Synth_Block) {
        Synth_Render(synth, samples, Synth_Block);
        if (frame < frames)
            std::fwrite(samples, sizeof samples, 1, start);
        if (std::abs(frame - tune.length) < Tune_Rate)
            std::fwrite(samples, sizeof samples, 1, loop);
    }
    std::fclose(start);
    std::fclose(loop);
}
} // namespace

int main(int count, char** words) {
    for (int number = 4; number < count; ++number) {
        std::memset(&tune, 0, sizeof tune);
        std::memset(&synth, 0, sizeof synth);
        readText(words[1], words[number]);
        Tune_Parse(tune, text);
        std::printf("%s %d %d %d\n", words[number], tune.faults, tune.loopStart, tune.length);
        writeNotes(words[1], words[number]);
        if (tune.noteCount == 0)
            continue;
        Synth_Start(synth, tune);
        writeSound(words[1], words[number], int(std::atof(words[2]) * Tune_Rate), *words[3] == '1');
    }
    return 0;
}
