#include "runtime/file.h"

#include "runtime/file_state.h"
#include "runtime/program.h"
#include "runtime/text.h"

#include <cstring>
#include <windows.h>

namespace {

constexpr int32_t bufferBytes = 4096;
constexpr int32_t lineStep = 4096;
constexpr int32_t registryStep = 16;

FileHandleRec* lookUp(ObjectId id) {
    return static_cast<FileHandleRec*>(Registry_Lookup(fileRegistry, id));
}

HANDLE openFile(const char* name, DWORD access, DWORD creation, DWORD attributes) {
    return CreateFileA(name, access, FILE_SHARE_READ, nullptr, creation, attributes, nullptr);
}

bool isOpen(HANDLE handle) { return handle != INVALID_HANDLE_VALUE && handle; }

HANDLE openToRead(const char* name) {
    return openFile(name, GENERIC_READ, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL);
}

HANDLE openToReadAndWrite(const char* name) {
    return openFile(name, GENERIC_READ | GENERIC_WRITE, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL);
}

HANDLE createEmpty(const char* name) {
    HANDLE handle =
        openFile(name, GENERIC_READ | GENERIC_WRITE, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL);
    return isOpen(handle) ? handle : openFile(name, GENERIC_WRITE, TRUNCATE_EXISTING, 0);
}

HANDLE openByMode(const char* name, int32_t mode) {
    switch (mode) {
    case FileMode_Read: return openToRead(name);
    case FileMode_ReadWrite: return openToReadAndWrite(name);
    case FileMode_Create: return createEmpty(name);
    default: return INVALID_HANDLE_VALUE;
    }
}

// The result of an open: what is kept of a handle or an address is a truth value.
int64_t cutToSigned32(const void* value) {
    return static_cast<int32_t>(reinterpret_cast<int64_t>(value));
}

int32_t readDirectly(const FileHandleRec* file, void* destination, int32_t size) {
    DWORD count = 0;
    ReadFile(file->handle, destination, static_cast<DWORD>(size), &count, nullptr);
    return static_cast<int32_t>(count);
}

// A size of one byte is what a line is read by, so it goes as one move.
void take(FileHandleRec* file, void* destination, int32_t size) {
    const char* unread = file->buffer + file->bufferFill - file->bufferLeft;
    switch (size) {
    case 1: std::memcpy(destination, unread, 1); break;
    case 2: std::memcpy(destination, unread, 2); break;
    case 4: std::memcpy(destination, unread, 4); break;
    default: std::memcpy(destination, unread, static_cast<size_t>(size));
    }
    file->bufferLeft -= size;
}

void refill(FileHandleRec* file) {
    file->bufferFill = readDirectly(file, file->buffer, file->bufferSize);
    file->bufferLeft = file->bufferFill;
}

bool readByte(FileHandleRec* file, char* ch) {
    return (file->buffer ? File_ReadBytes(file, ch, 1) : readDirectly(file, ch, 1)) == 1;
}

// Without a buffer: here alone a read that says it failed counts as none.
bool lookAhead(const FileHandleRec* file, char* ch) {
    DWORD count = 0;
    return ReadFile(file->handle, ch, 1, &count, nullptr) && count == 1;
}

// Gives a byte back. At the very end of a file there was none to give back, and the next read takes
// what stands in front of the buffer's content; it is made a 0 within the buffer, so that a file
// that ends in a lone CR has one empty line more and nothing is read from outside.
void pushBack(FileHandleRec* file) {
    if (!file->buffer) {
        SetFilePointer(file->handle, -1, nullptr, FILE_CURRENT);
        return;
    }
    if (file->bufferFill == 0) {
        file->buffer[0] = 0;
        file->bufferFill = 1;
    }
    file->bufferLeft += 1;
}

bool isLineEnd(char ch) { return ch == '\r' || ch == '\n'; }

// Behind a CR: the LF of the pair is taken too, any other byte stays.
void skipLineFeed(FileHandleRec* file) {
    char ch = '\r';
    const bool came = readByte(file, &ch);
    // Without a buffer, moving back over a byte that never came would find the CR again for ever.
    if (ch != '\n' && (came || file->buffer))
        pushBack(file);
}

// The growing room of one line in the accumulator.
struct Line {
    int32_t place;
    int32_t capacity;
    int32_t length;
    char* text;
};

void reserve(Line* line, int32_t capacity) {
    line->capacity = capacity;
    line->text = Text_Reserve(capacity, line->place); // the text may have moved
}

void append(Line* line, char ch) {
    line->text[line->length++] = ch;
    if (line->length == line->capacity)
        reserve(line, line->capacity + lineStep);
}

void readInto(Line* line, FileHandleRec* file) {
    for (;;) {
        char ch = 0;
        readByte(file, &ch);
        if (ch == 0) // the end of the file, or a NUL byte in it
            return;
        append(line, ch);
        if (isLineEnd(ch)) {
            line->length -= 1;
            if (ch == '\r')
                skipLineFeed(file);
            return;
        }
    }
}

int64_t finishOpen(ObjectId id, FileHandleRec* file, HANDLE handle) {
    if (!isOpen(handle)) {
        Registry_GiveUp(fileRegistry, id, file);
        return 0;
    }
    file->handle = handle;
    file->buffer = static_cast<char*>(HeapAlloc(GeneralHeap, 0, bufferBytes));
    file->bufferSize = bufferBytes;
    file->bufferLeft = 0;
    file->readMode = 1;
    return cutToSigned32(id == ObjectId_Any ? static_cast<void*>(file) : handle);
}

FileHandleRec* claim(ObjectId id) {
    return static_cast<FileHandleRec*>(Registry_Claim(fileRegistry, id));
}

} // namespace

ObjectRegistry* File_SubsystemInit() {
    fileRegistry = Registry_New(sizeof(FileHandleRec), registryStep, File_Close);
    return fileRegistry;
}

void File_SubsystemEnd() { Registry_FreeAll(fileRegistry); }

int64_t File_OpenMode(ObjectId id, const char* name, int32_t mode) {
    FileHandleRec* file = claim(id);
    return finishOpen(id, file, openByMode(name, mode));
}

int64_t File_OpenRead(ObjectId id, const char* name) {
    return File_OpenMode(id, name, FileMode_Read);
}

int64_t File_Open(ObjectId id, const char* name) {
    FileHandleRec* file = claim(id);
    return finishOpen(id, file, openToReadAndWrite(name));
}

int64_t File_Create(ObjectId id, const char* name) {
    FileHandleRec* file = claim(id);
    return finishOpen(id, file, createEmpty(name));
}

int64_t File_ReadBytes(FileHandleRec* file, void* destination, int32_t size) {
    if (!file->readMode) {
        File_Flush(file);
        file->readMode = 1;
        file->bufferLeft = 0;
    }
    if (file->bufferLeft >= size) {
        take(file, destination, size);
        return size;
    }
    const int32_t head = file->bufferLeft;
    take(file, destination, head);
    char* rest = static_cast<char*>(destination) + head;
    const int32_t left = size - head;
    if (left >= file->bufferSize)
        return head + readDirectly(file, rest, left);
    refill(file);
    const int32_t part = left < file->bufferLeft ? left : file->bufferLeft;
    take(file, rest, part);
    return head + part;
}

int64_t File_Flush(FileHandleRec* file) {
    if (file->readMode)
        return 0;
    DWORD written = 0;
    const auto waiting = static_cast<DWORD>(file->bufferSize - file->bufferLeft);
    WriteFile(file->handle, file->buffer, waiting, &written, nullptr);
    file->bufferLeft = file->bufferSize;
    return written;
}

int64_t File_IsEof(ObjectId id) {
    FileHandleRec* file = lookUp(id);
    if (!file)
        return 0;
    char ch;
    if (!(file->buffer ? readByte(file, &ch) : lookAhead(file, &ch)))
        return file->buffer ? 1 : -1; // the unbuffered form has a value of its own, true as well
    pushBack(file);
    return 0;
}

void File_ReadLine(ObjectId id, int32_t place) {
    Line line{place, 0, 0, nullptr};
    reserve(&line, lineStep);
    if (FileHandleRec* file = lookUp(id))
        readInto(&line, file);
    line.text[line.length] = 0;
    Text_Shrink(line.capacity - line.length);
}

void File_Close(ObjectId id) {
    if (id == ObjectId_Any)
        return;
    FileHandleRec* file = lookUp(id);
    if (!file)
        return;
    if (file->buffer) {
        File_Flush(file);
        HeapFree(GeneralHeap, 0, file->buffer);
    }
    CloseHandle(file->handle);
    Registry_Release(fileRegistry, id);
}
