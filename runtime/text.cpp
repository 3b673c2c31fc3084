#include "runtime/text.h"

#include <cstdlib>
#include <cstring>
#include <windows.h>

namespace {

constexpr int64_t firstCapacity = 16; // this first block alone has no slack behind it
constexpr int64_t growthStep = 16384; // fixed, not proportional: growth is rare and never undone
constexpr int32_t slack = 5;          // the terminator, and the overrun of Text_CopyBlocks

int32_t lengthOf(const char* text) { return static_cast<int32_t>(std::strlen(text)); }

const char* orEmpty(const char* text) { return text ? text : ""; }

// Resizing in place is how a variable is overwritten: assigning never leaks.
void resizeBlock(TextVariable* variable, int32_t length) {
    const auto size = static_cast<SIZE_T>(length + slack);
    void* block = *variable ? HeapReAlloc(TextHeap, HEAP_NO_SERIALIZE, *variable, size)
                            : HeapAlloc(TextHeap, HEAP_NO_SERIALIZE, size);
    *variable = static_cast<char*>(block);
}

struct Needle {
    const char* text;
    size_t length;
    bool ignoreCase;
};

bool equalsAt(const char* at, const Needle& needle) {
    return (needle.ignoreCase ? _strnicmp(at, needle.text, needle.length)
                              : std::strncmp(at, needle.text, needle.length)) == 0;
}

// The look at the first byte is a shortcut, and it is also why an empty needle is never found.
bool matchesAt(const char* at, const Needle& needle) {
    return (needle.ignoreCase || *at == *needle.text) && equalsAt(at, needle);
}

int32_t countMatches(const char* at, const Needle& needle) {
    int32_t count = 0;
    while (*at) {
        if (matchesAt(at, needle)) {
            ++count;
            at += needle.length;
        } else {
            ++at;
        }
    }
    return count;
}

void writeReplaced(char* out, const char* at, const Needle& needle, const char* replacement) {
    const size_t replacementLength = std::strlen(replacement);
    while (*at) {
        if (matchesAt(at, needle)) {
            std::memcpy(out, replacement, replacementLength);
            out += replacementLength;
            at += needle.length;
        } else {
            *out++ = *at++;
        }
    }
    *out = 0;
}

void replaceAt(const char* text, const Needle& needle, const char* replacement, int32_t start,
               int32_t place) {
    const int32_t before = start - 1;
    const int32_t count = countMatches(text + before, needle);
    const int32_t difference = lengthOf(replacement) - static_cast<int32_t>(needle.length);
    const int32_t newLength = lengthOf(text) + difference * count;
    char* out = Text_Reserve(newLength, place);
    if (count == 0) {
        std::strcpy(out, text);
        return;
    }
    std::strncpy(out, text, static_cast<size_t>(before));
    writeReplaced(out + before, text + before, needle, replacement);
}

// Meant for a needle and a replacement of one length. With unequal lengths the cursors drift apart
// and nothing moves to make room: that is what this form does, and callers may rely on it.
void replaceInPlace(char* write, const Needle& needle, const char* replacement) {
    if (needle.length == 0)
        return;
    const size_t replacementLength = std::strlen(replacement);
    const char* stop = write;
    while (*stop) {
        if (equalsAt(write, needle)) {
            std::memcpy(write, replacement, replacementLength);
            write += replacementLength;
            stop += needle.length;
        } else {
            ++write;
            ++stop;
        }
    }
}

// A text that stays readable while the accumulator is written to: one that lies in there is
// duplicated, since the result may overwrite or move the very place where it stands.
class SteadyText {
public:
    explicit SteadyText(const char* text)
        : duplicate(Text_InBuffer(text) ? _strdup(text) : nullptr) {
        steady = duplicate ? duplicate : text;
    }
    ~SteadyText() { std::free(duplicate); }
    SteadyText(const SteadyText&) = delete;
    SteadyText& operator=(const SteadyText&) = delete;
    operator const char*() const { return steady; }

private:
    char* duplicate;
    const char* steady;
};

} // namespace

void Text_SubsystemInit() {
    TextHeap = HeapCreate(HEAP_NO_SERIALIZE, 4096, 0);
    TextPosition = 0;
    TextCapacity = firstCapacity;
    TextBase = static_cast<char*>(HeapAlloc(TextHeap, HEAP_NO_SERIALIZE, firstCapacity));
}

// The test looks at TextPosition and not at the place: a caller that reserves again at a place
// below it gets more room than it needs, never less.
char* Text_Reserve(int32_t length, int32_t place) {
    const auto end = static_cast<int32_t>(TextPosition + length);
    if (end >= TextCapacity - 4) {
        TextCapacity = end + growthStep;
        const auto size = static_cast<SIZE_T>(TextCapacity + slack);
        TextBase = static_cast<char*>(HeapReAlloc(TextHeap, HEAP_NO_SERIALIZE, TextBase, size));
    }
    TextPosition = place + length;
    return TextBase + place;
}

void Text_Shrink(int32_t count) { TextPosition -= count; }

// Reading and writing past the length, in whole units, is the point: the slack of every text block
// stands behind it, and the terminator cuts the surplus off.
__attribute__((no_sanitize_address)) void Text_CopyBlocks(char* destination, const char* source,
                                                          int32_t length) {
    typedef uint32_t Unit __attribute__((aligned(1), may_alias));
    for (int32_t done = 0; done < length; done += 4)
        *reinterpret_cast<Unit*>(destination + done) =
            *reinterpret_cast<const Unit*>(source + done);
    destination[length] = 0;
}

void Text_Append(const char* text) {
    if (!text) {
        TextBase[TextPosition] = 0;
        return;
    }
    const int32_t length = lengthOf(text);
    Text_CopyBlocks(Text_Reserve(length, Text_Here()), text, length);
}

void Text_Store(TextVariable* variable, int32_t start) {
    const auto count = static_cast<int32_t>(TextPosition - start);
    resizeBlock(variable, count);
    Text_CopyBlocks(*variable, TextBase + start, count);
    TextPosition = start;
}

int32_t Text_Assign(TextVariable* variable, const char* text) {
    if (!text) {
        if (*variable)
            HeapFree(TextHeap, HEAP_NO_SERIALIZE, *variable);
        *variable = nullptr;
        return 1;
    }
    const int32_t length = lengthOf(text);
    resizeBlock(variable, length);
    Text_CopyBlocks(*variable, text, length);
    return length + 1;
}

int64_t Text_Equal(const char* a, const char* b) {
    return std::strcmp(orEmpty(a), orEmpty(b)) == 0 ? 1 : 0;
}

int64_t Text_InBuffer(const char* pointer) {
    if (pointer < TextBase || pointer > TextBase + TextPosition)
        return 0;
    return pointer - TextBase + 1;
}

void Text_Replace(const char* text, const char* find, const char* replacement, int32_t mode,
                  int32_t start, int32_t place) {
    const int32_t first = start < 1 ? 1 : start;
    const bool ignoreCase = (mode & Replace_IgnoreCase) != 0;
    find = orEmpty(find);
    replacement = orEmpty(replacement);
    if (mode & Replace_InPlace) {
        if (text)
            replaceInPlace(const_cast<char*>(text) + first - 1,
                           {find, std::strlen(find), ignoreCase}, replacement);
        return;
    }
    const SteadyText source(orEmpty(text)), needle(find), insert(replacement);
    replaceAt(source, {needle, std::strlen(needle), ignoreCase}, insert, first, place);
}

void Text_ReplaceMode(const char* text, const char* find, const char* replacement, int32_t mode,
                      int32_t place) {
    Text_Replace(text, find, replacement, mode, 0, place);
}

void Text_ReplaceAll(const char* text, const char* find, const char* replacement, int32_t place) {
    Text_Replace(text, find, replacement, 0, 0, place);
}
