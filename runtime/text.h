// Texts are zero-terminated byte strings without an encoding of their own. All building happens in
// one shared buffer, the accumulator, used as a stack of unfinished texts; a finished text is
// stored into a variable or handed to an operation as a pointer for one call. A place in the
// accumulator is an offset and never a pointer, since the buffer moves when it grows.
//
// A null text is the empty text everywhere. Main thread only: nothing here is locked, and the
// text heap is not serialised. Failed allocations are not noticed.
//
// To build a text for a variable: note TextPosition, append and call text-giving operations at the
// current place, Text_Store. To hand a built text to an operation: note TextPosition, build, add 1
// to TextPosition so that the next temporary spares the terminator, form the pointer from TextBase
// only when all arguments stand, call, and set TextPosition back to what was noted.
#pragma once

#include <cstdint>

// A text variable: null, or the owner of one block of TextHeap. Variables also stand in packed
// records, so no more than 4-byte alignment is promised.
typedef char* TextVariable __attribute__((aligned(4)));

inline void* TextHeap = nullptr; // holds every stored text and the accumulator
inline char* TextBase = nullptr; // start of the accumulator; moves when it grows
inline int64_t TextPosition = 0; // offset of the first free byte
inline int64_t TextCapacity = 0;

void Text_SubsystemInit();

// TextPosition in the width in which places are handed over.
inline int32_t Text_Here() { return static_cast<int32_t>(TextPosition); }

// Makes room for `length` bytes at `place`, puts TextPosition behind them and gives their address,
// which is good until the next reserve.
char* Text_Reserve(int32_t length, int32_t place);

// Takes `count` off TextPosition.
void Text_Shrink(int32_t count);

// Copies in units of 4 bytes and terminates at `length`: reads and writes up to 3 bytes further
// than that. Every block of text has the slack for it. A length of 0 or less only terminates.
void Text_CopyBlocks(char* destination, const char* source, int32_t length);

// Adds `text` at TextPosition; null adds nothing but leaves a terminated text. `text` must not lie
// in the accumulator: making room may move it away.
void Text_Append(const char* text);

// Ends the text that begins at `start`: copies it into the variable and pops it.
void Text_Store(TextVariable* variable, int32_t start);

// Assigns a text that is not in the accumulator; null frees the variable's text. Gives the text's
// length + 1.
int32_t Text_Assign(TextVariable* variable, const char* text);

// 1 if the bytes are the same, else 0.
int64_t Text_Equal(const char* a, const char* b);

// 0, or the pointer's offset + 1 if it lies in the used part of the accumulator, the first free
// byte included.
int64_t Text_InBuffer(const char* pointer);

// Bits of a replacement's mode.
constexpr int32_t Replace_IgnoreCase = 1;
constexpr int32_t Replace_InPlace = 2;

// Replaces every occurrence of `find` from the 1-based `start` on, left to right, never
// overlapping. The result stands at `place`, and any of the texts may lie in the accumulator.
// `start` is not checked against the text's length. With Replace_IgnoreCase, `find` must not be
// empty. With Replace_InPlace the text itself is written over and `place` is ignored.
void Text_Replace(const char* text, const char* find, const char* replacement, int32_t mode,
                  int32_t start, int32_t place);
void Text_ReplaceMode(const char* text, const char* find, const char* replacement, int32_t mode,
                      int32_t place);
void Text_ReplaceAll(const char* text, const char* find, const char* replacement, int32_t place);
