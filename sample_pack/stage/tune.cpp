#include "tune.h"

#include "number.h"

#include <cstring>

namespace {
constexpr int wholeTicks = 192, beatTicks = wholeTicks / 4;
constexpr int maxStatements = 200, maxRepeats = 4;

struct Text {
    const char *at, *end;
};

// What one section lets one instrument play.
struct Part {
    char section;
    int instrument;
    Text notes;
};

struct Parser {
    Tune& tune;
    Part parts[maxStatements];
    int partCount;
    Text order;
};

// An option of an instrument and the fields that its numbers go to, each with its unit.
using InstrumentField = float Instrument::*;
struct Option {
    const char* word;
    InstrumentField fields[4];
    float units[4];
};

using I = Instrument;
constexpr float milli = 0.001f, percent = 0.01f, cents = 0.01f;
constexpr Option options[] = {
    {"adsr", {&I::attack, &I::decay, &I::sustain, &I::release}, {milli, milli, percent, milli}},
    {"level", {&I::level}, {percent}},
    {"pan", {&I::pan}, {percent}},
    {"delay", {&I::delaySend}, {percent}},
    {"reverb", {&I::reverbSend}, {percent}},
    {"lowpass", {&I::cutoff, &I::resonance}, {1, percent}},
    {"bandpass", {&I::cutoff, &I::resonance}, {1, percent}},
    {"highpass", {&I::cutoff, &I::resonance}, {1, percent}},
    {"track", {&I::track}, {1}},
    {"sweep", {&I::sweep, &I::sweepTime}, {1, milli}},
    {"wobble", {&I::wobbleRate, &I::wobble}, {1, 1}},
    {"drop", {&I::drop, &I::dropTime}, {1, milli}},
    {"vibrato", {&I::vibratoRate, &I::vibrato}, {1, cents}},
    {"tremolo", {&I::tremoloRate, &I::tremolo}, {1, percent}},
    {"hold", {&I::holdRate, &I::hold}, {1, 1}},
    {"detune", {&I::detune}, {cents}},
    {"fm", {&I::ratio, &I::index, &I::fade}, {1, 1, milli}},
    {"breath", {&I::breath}, {percent}},
    {"glide", {&I::glide}, {milli}},
    {"arpeggio", {&I::arpeggio}, {1}},
    {"width", {&I::width}, {percent}}};

constexpr const char* waves[] = {"sine", "triangle", "saw", "pulse", "noise"};
constexpr const char* filters[] = {"", "lowpass", "bandpass", "highpass"};

constexpr const char* settingWords[] = {"tempo", "swing", "volume", "reverb"};
using TuneField = float Tune::*;
constexpr TuneField settings[] = {&Tune::tempo, &Tune::swing, &Tune::volume, &Tune::reverb};
constexpr float settingUnits[] = {1, percent, percent, percent};

void reportFault(Tune& tune, const char* at) {
    if (tune.faults++ == 0)
        tune.fault = at;
}

bool isSpace(char letter) { return letter == ' ' || letter == '\n'; }
bool isDigit(char letter) { return letter >= '0' && letter <= '9'; }

void skipSpace(Text& text) {
    for (; text.at < text.end; ++text.at) {
        if (text.at[0] == '/' && text.at + 1 < text.end && text.at[1] == '/')
            while (text.at + 1 < text.end && *text.at != '\n')
                ++text.at;
        if (!isSpace(*text.at))
            return;
    }
}

// Returns the next character without taking it, or 0 at the end.
char peek(const Text& text) { return text.at < text.end ? *text.at : '\0'; }

bool take(Text& text, char letter) {
    if (peek(text) != letter)
        return false;
    ++text.at;
    return true;
}

Text takeWord(Text& text) {
    skipSpace(text);
    const Text word = {text.at, text.at};
    while (text.at < text.end && !isSpace(*text.at))
        ++text.at;
    return {word.at, text.at};
}

bool isWord(const Text& text, const char* word) {
    const size_t length = size_t(text.end - text.at);
    return std::strlen(word) == length && std::memcmp(text.at, word, length) == 0;
}

// Returns the index of a word in a list, or -1.
template <int Count>
int findWord(const Text& word, const char* const (&list)[Count]) {
    for (int index = 0; index < Count; ++index)
        if (isWord(word, list[index]))
            return index;
    return -1;
}

// Returns `fallback` if there is no number.
int takeWhole(Text& text, int fallback) {
    if (!isDigit(peek(text)))
        return fallback;
    int value = 0;
    while (isDigit(peek(text)))
        value = value * 10 + (*text.at++ - '0');
    return value;
}

bool startsNumber(const Text& text) { return isDigit(peek(text)) || peek(text) == '-'; }

float takeNumber(Tune& tune, Text& text) {
    skipSpace(text);
    if (!startsNumber(text))
        reportFault(tune, text.at);
    const float sign = take(text, '-') ? -1.0f : 1.0f;
    float value = float(takeWhole(text, 0)), unit = 0.1f;
    if (take(text, '.'))
        for (; isDigit(peek(text)); unit *= 0.1f)
            value += unit * float(*text.at++ - '0');
    return sign * value;
}

// Returns semitones above c, or -1 if no note begins here.
int takeLetter(Text& text) {
    constexpr int semitones[] = {9, 11, 0, 2, 4, 5, 7}; // from a to g
    const char letter = peek(text);
    if (letter < 'a' || letter > 'g')
        return -1;
    ++text.at;
    int pitch = semitones[letter - 'a'];
    pitch += take(text, '+') ? 1 : take(text, '-') ? -1 : 0;
    return pitch + 12; // b flat below c stays above 0
}

int findInstrument(const Tune& tune, const Text& word) {
    for (int number = tune.instrumentCount - 1; number >= 0; --number)
        if (isWord(word, tune.instruments[number].name))
            return number;
    return -1;
}

// Notes.

struct Repeat {
    const char* start;
    int left; // -1 before the number of times is known
};

struct Player {
    Tune& tune;
    const Part& part;
    int start, transpose; // of the section
    bool isCounting;      // only the length is asked for
    int tick, octave, length;
    float velocity;
    Repeat repeats[maxRepeats];
    int depth;
};

int frameOf(const Tune& tune, int tick) {
    const int half = beatTicks / 2, within = tick % beatTicks;
    const float first = 2 * tune.swing, second = 2 - first;
    const float moved =
        within < half ? float(within) * first : float(half) * first + float(within - half) * second;
    const double ticks = double(tick - within) + double(moved);
    return int(ticks * 60.0 * Tune_Rate / (double(tune.tempo) * beatTicks) + 0.5);
}

int takeTicks(Player& player, Text& text) {
    const char* at = text.at;
    const int number = takeWhole(text, 0);
    int ticks = number > 0 ? wholeTicks / number : player.length;
    if (number > 0 && wholeTicks % number != 0)
        reportFault(player.tune, at);
    for (int dot = ticks / 2; take(text, '.'); dot /= 2)
        ticks += dot;
    return ticks;
}

int takeLength(Player& player, Text& text) {
    int ticks = takeTicks(player, text);
    while (take(text, '^'))
        ticks += takeTicks(player, text);
    return ticks;
}

// Adds a note of the pitches, or one for each of them if they are no arpeggio.
void addNotes(Player& player, const uint8_t* pitches, int count, int ticks) {
    Tune& tune = player.tune;
    const int first = player.start + player.tick;
    player.tick += ticks;
    if (player.isCounting)
        return;
    const bool isTogether = tune.instruments[player.part.instrument].arpeggio > 0;
    for (int number = 0; number < (isTogether ? 1 : count); ++number) {
        if (tune.noteCount == Tune_MaxNotes)
            return reportFault(tune, player.part.notes.at);
        Note& note = tune.notes[tune.noteCount++];
        note.start = frameOf(tune, first);
        note.length = frameOf(tune, first + ticks) - note.start;
        note.velocity = player.velocity;
        note.instrument = int8_t(player.part.instrument);
        note.pitchCount = int8_t(isTogether ? count : 1);
        for (int pitch = 0; pitch < note.pitchCount; ++pitch)
            note.pitches[pitch] = uint8_t(pitches[number + pitch] + player.transpose);
    }
}

void playChord(Player& player, Text& text) {
    uint8_t pitches[Tune_MaxChord];
    int count = 0;
    const int octave = player.octave; // a change within the chord ends with it
    while (skipSpace(text), !take(text, ')')) {
        const char* at = text.at;
        const int pitch = takeLetter(text);
        if (pitch >= 0 && count < Tune_MaxChord)
            pitches[count++] = uint8_t(pitch + 12 * player.octave);
        else if (take(text, '>'))
            ++player.octave;
        else if (take(text, '<'))
            --player.octave;
        else
            return reportFault(player.tune, at);
    }
    player.octave = octave;
    addNotes(player, pitches, count, takeLength(player, text));
}

// Goes back to the matching [ until the number after ] has been played.
void endRepeat(Player& player, Text& text) {
    const int times = takeWhole(text, 2);
    if (player.depth == 0)
        return reportFault(player.tune, text.at);
    Repeat& repeat = player.repeats[player.depth - 1];
    repeat.left = (repeat.left < 0 ? times : repeat.left) - 1;
    if (repeat.left > 0)
        text.at = repeat.start;
    else
        --player.depth;
}

void checkBar(Player& player, const char* at) {
    if (player.tick % player.tune.barTicks != 0)
        reportFault(player.tune, at);
}

void playCommand(Player& player, Text& text) {
    const char* at = text.at++;
    switch (*at) {
    case 'r': player.tick += takeLength(player, text); break;
    case 'x': {
        const uint8_t pitch =
            uint8_t(player.tune.instruments[player.part.instrument].key - player.transpose);
        addNotes(player, &pitch, 1, takeLength(player, text));
        break;
    }
    case 'o': player.octave = takeWhole(text, 4); break;
    case '>': ++player.octave; break;
    case '<': --player.octave; break;
    case 'l': player.length = takeTicks(player, text); break;
    case 'v': player.velocity = percent * float(takeWhole(text, 80)); break;
    case '(': playChord(player, text); break;
    case '|': checkBar(player, at); break;
    case '[':
        if (player.depth < maxRepeats)
            player.repeats[player.depth++] = {text.at, -1};
        break;
    case ']': endRepeat(player, text); break;
    default: reportFault(player.tune, at);
    }
}

// Plays the part once, from the player's tick on.
void playOnce(Player& player) {
    Text text = player.part.notes;
    player.octave = 4;
    player.length = beatTicks;
    player.velocity = 0.8f;
    player.depth = 0;
    while (skipSpace(text), text.at < text.end) {
        const int pitch = takeLetter(text);
        if (pitch < 0) {
            playCommand(player, text);
            continue;
        }
        const uint8_t pitches[] = {uint8_t(pitch + 12 * player.octave)};
        addNotes(player, pitches, 1, takeLength(player, text));
    }
}

int countTicks(Tune& tune, const Part& part) {
    Player player = {tune, part, 0, 0, true, 0, 0, 0, 0, {}, 0};
    playOnce(player);
    return player.tick;
}

// Plays a section and returns its length in ticks: that of its longest part.
int playSection(Parser& parser, char section, int start, int transpose) {
    Tune& tune = parser.tune;
    int length = 0;
    for (const Part* part = parser.parts; part < parser.parts + parser.partCount; ++part)
        if (part->section == section)
            length = std::max(length, countTicks(tune, *part));
    for (const Part* part = parser.parts; part < parser.parts + parser.partCount; ++part) {
        if (part->section != section)
            continue;
        Player player = {tune, *part, start, transpose, false, 0, 0, 0, 0, {}, 0};
        do
            playOnce(player);
        while (player.tick > 0 && player.tick < length);
        if (player.tick != length)
            reportFault(tune, part->notes.at);
    }
    return length;
}

// Statements.

void setOption(Tune& tune, Instrument& instrument, const Text& word, Text& text) {
    for (const Option& option : options)
        if (isWord(word, option.word)) {
            for (int field = 0; field < 4 && option.fields[field]; ++field)
                instrument.*option.fields[field] = option.units[field] * takeNumber(tune, text);
            const int filter = findWord(word, filters);
            instrument.filter = filter > 0 ? Filter(filter) : instrument.filter;
            return;
        }
    if (!isWord(word, "key"))
        return reportFault(tune, word.at);
    skipSpace(text);
    const int pitch = takeLetter(text);
    instrument.key = pitch + 12 * takeWhole(text, 4);
}

void define(Tune& tune, const Text& name, Text text) {
    const Text kind = takeWord(text);
    const int base = findInstrument(tune, kind), wave = findWord(kind, waves);
    const size_t length = size_t(name.end - name.at);
    if (tune.instrumentCount == Tune_MaxInstruments || length >= sizeof tune.instruments[0].name ||
        (base < 0 && wave < 0))
        return reportFault(tune, name.at);
    Instrument& instrument = tune.instruments[tune.instrumentCount++];
    instrument = {};
    instrument.width = instrument.level = 0.5f;
    instrument.sustain = 1.0f;
    instrument.attack = instrument.release = 0.01f;
    instrument.key = 60;
    if (base >= 0)
        instrument = tune.instruments[base];
    else
        instrument.wave = Wave(wave);
    std::memset(instrument.name, 0, sizeof instrument.name);
    std::memcpy(instrument.name, name.at, length);
    for (Text word = takeWord(text); word.at < word.end; word = takeWord(text))
        setOption(tune, instrument, word, text);
}

// Returns beats from a fraction of a whole note, such as 3/16.
float takeFraction(Tune& tune, Text& text) {
    const float upper = takeNumber(tune, text);
    if (!take(text, '/'))
        reportFault(tune, text.at);
    return 4.0f * upper / std::max(takeNumber(tune, text), 1.0f);
}

void readStatement(Parser& parser, Text text) {
    Tune& tune = parser.tune;
    const Text word = takeWord(text);
    const int setting = findWord(word, settingWords);
    Text rest = text;
    if (isWord(takeWord(rest), "=")) {
        define(tune, word, rest);
    } else if (word.end - word.at == 1 && parser.partCount < maxStatements) {
        const int instrument = findInstrument(tune, takeWord(text));
        if (instrument < 0)
            return reportFault(tune, word.at);
        parser.parts[parser.partCount++] = {*word.at, instrument, text};
    } else if (setting >= 0) {
        tune.*settings[setting] = settingUnits[setting] * takeNumber(tune, text);
    } else if (isWord(word, "meter")) {
        tune.barTicks = int(float(beatTicks) * takeFraction(tune, text) + 0.5f);
    } else if (isWord(word, "delay")) {
        tune.delayBeats = takeFraction(tune, text);
        tune.feedback = percent * takeNumber(tune, text);
    } else if (isWord(word, "play")) {
        parser.order = text;
    } else {
        reportFault(tune, word.at);
    }
}

// A statement ends where a line begins that is not indented.
Text takeStatement(Text& text) {
    skipSpace(text);
    const Text statement = text;
    while (text.at < text.end && !(text.at[0] == '\n' && text.at[1] != ' '))
        ++text.at;
    return {statement.at, text.at};
}

void playOrder(Parser& parser) {
    Tune& tune = parser.tune;
    int tick = 0;
    for (skipSpace(parser.order); parser.order.at < parser.order.end; skipSpace(parser.order)) {
        const Text word = takeWord(parser.order);
        if (isWord(word, "|:")) {
            tune.loopStart = frameOf(tune, tick);
            continue;
        }
        Text shift = {word.at + 1, word.end};
        const int up = take(shift, '+') ? 1 : take(shift, '-') ? -1 : 0;
        const int length = playSection(parser, *word.at, tick, up * takeWhole(shift, 0));
        if (length == 0)
            reportFault(tune, word.at);
        tick += length;
    }
    tune.length = frameOf(tune, tick);
    std::sort(tune.notes, tune.notes + tune.noteCount, [](const Note& a, const Note& b) {
        return a.start != b.start             ? a.start < b.start
               : a.instrument != b.instrument ? a.instrument < b.instrument
                                              : a.pitches[0] < b.pitches[0];
    });
}

// Returns the frame of the tune at a time, and how often it has been repeated by then.
int64_t foldTime(const Tune& tune, float time, int& passes) {
    const int64_t frame = int64_t(double(time) * Tune_Rate);
    const int64_t loop = std::max(tune.length - tune.loopStart, 1);
    passes = frame < tune.length ? 0 : int((frame - tune.loopStart) / loop);
    return frame - passes * loop;
}
} // namespace

void Tune_Parse(Tune& tune, const char* text) {
    Parser parser = {tune, {}, 0, {}};
    tune.tempo = 120;
    tune.swing = 0.5f;
    tune.volume = 1;
    tune.reverb = 0.5f;
    tune.barTicks = wholeTicks;
    Text rest = {text, text + std::strlen(text)};
    for (skipSpace(rest); rest.at < rest.end; skipSpace(rest))
        readStatement(parser, takeStatement(rest));
    playOrder(parser);
}

float Tune_LoopSeconds(const Tune& tune) {
    return float(tune.length - tune.loopStart) / float(Tune_Rate);
}

float Tune_EnvelopeAt(const Instrument& instrument, float age, float held) {
    constexpr float toPercent = -4.60517f; // exp of this is 1 %
    const float on = std::min(age, held), down = on - instrument.attack;
    const float fall = instrument.decay > 0 ? std::exp(toPercent * down / instrument.decay) : 0;
    const float level =
        down < 0 ? on / instrument.attack : instrument.sustain + (1 - instrument.sustain) * fall;
    if (age <= held)
        return level;
    return level * std::exp(toPercent * (age - held) / std::max(instrument.release, 0.001f));
}

NoteState Tune_NoteAt(const Tune& tune, const char* instrument, float time) {
    int passes;
    const int64_t frame = foldTime(tune, time, passes);
    const Note* latest = nullptr;
    const Note* last = nullptr;
    int before = 0, inLoop = 0;
    for (const Note* note = tune.notes; note < tune.notes + tune.noteCount; ++note) {
        if (std::strcmp(tune.instruments[note->instrument].name, instrument) != 0)
            continue;
        last = note;
        inLoop += note->start >= tune.loopStart;
        if (note->start <= frame) {
            latest = note;
            ++before;
        }
    }
    const int64_t loop = tune.length - tune.loopStart;
    const Note* note = latest ? latest : passes > 0 ? last : nullptr;
    if (!note)
        return {};
    const int64_t age = frame - note->start + (latest ? 0 : loop);
    const float seconds = float(age) / float(Tune_Rate);
    const float held = float(note->length) / float(Tune_Rate);
    const Instrument& played = tune.instruments[note->instrument];
    return {before + passes * inLoop, note->pitches[0], seconds,
            note->velocity * Tune_EnvelopeAt(played, seconds, held)};
}
