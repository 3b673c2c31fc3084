// Numbered, buffered files, read from their start to their end: nothing seeks. Text is bytes; the
// only byte values with a meaning are 0, 10 and 13.
//
// An unknown file makes an operation do nothing and give 0 or the empty text. A read error looks
// like the end of the file. Main thread only.
#pragma once

#include "runtime/object_registry.h"

#include <cstdint>

struct FileHandleRec {
    void* handle;       // the system's file handle
    char* buffer;       // on the GeneralHeap; null if that was exhausted: then byte by byte
    int32_t bufferSize; // 4096
    int32_t bufferLeft; // reading: bytes not yet taken. Writing: room left
    int32_t bufferFill; // reading: bytes that the last refill brought
    int32_t readMode;   // 1: the buffer holds what was read; 0: what is to be written
};
static_assert(sizeof(FileHandleRec) == 32);

// Modes of File_OpenMode.
constexpr int32_t FileMode_Read = 1;
constexpr int32_t FileMode_ReadWrite = 2; // makes the file if it is not there
constexpr int32_t FileMode_Create = 3;    // empties the file if it is there

ObjectRegistry* File_SubsystemInit();

// Closes every open file.
void File_SubsystemEnd();

// 0 on failure. Otherwise the low 32 bits, sign-extended, of the system's handle or, for
// ObjectId_Any, of the record's address: a truth value, and no ObjectId above 4 GiB. A number in
// use is closed first.
int64_t File_OpenMode(ObjectId id, const char* name, int32_t mode);
int64_t File_OpenRead(ObjectId id, const char* name);
int64_t File_Open(ObjectId id, const char* name);
int64_t File_Create(ObjectId id, const char* name);

// 0 if there is more, and for an unknown file; not 0 at the end. Looks ahead by a byte.
int64_t File_IsEof(ObjectId id);

// The next line at `place` in the text accumulator, without its end: CR LF, LF, CR or a NUL byte.
void File_ReadLine(ObjectId id, int32_t place);

// Gives the bytes delivered; fewer than `size` at the end of the file.
int64_t File_ReadBytes(FileHandleRec* file, void* destination, int32_t size);

// Writes out what the buffer holds to be written, and gives the bytes written.
int64_t File_Flush(FileHandleRec* file);

void File_Close(ObjectId id);
