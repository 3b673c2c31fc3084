#include "runtime/file_system.h"

#include "runtime/library.h"
#include "runtime/text.h"

#include <cstring>

namespace {

constexpr int32_t pathLength = 260;

struct PathBuffer {
    char text[pathLength + 1];
};

void cutInto(PathBuffer* buffer, const char* path) {
    const size_t length = strnlen(path, pathLength);
    std::memcpy(buffer->text, path, length);
    buffer->text[length] = 0;
}

// Whether the two texts fit; what does not fit is not written.
bool join(PathBuffer* buffer, const char* first, const char* second) {
    const size_t firstLength = std::strlen(first);
    const size_t secondLength = std::strlen(second);
    if (firstLength + secondLength > pathLength)
        return false;
    std::memcpy(buffer->text, first, firstLength);
    std::memcpy(buffer->text + firstLength, second, secondLength + 1);
    return true;
}

bool isEmpty(const char* text) { return !text || !*text; }

using LongPathFunction = DWORD(WINAPI*)(LPCSTR, LPSTR, DWORD);

// The new length. 0 if the system refuses, and that stands: the text comes out empty.
int32_t lengthenInPlace(char* path, int32_t length) {
    HMODULE library = LoadLibraryA("Kernel32.DLL");
    if (!library)
        return length;
    if (auto toLongPath = Library_Find<LongPathFunction>(library, "GetLongPathNameA"))
        length = static_cast<int32_t>(toLongPath(path, path, pathLength));
    FreeLibrary(library);
    return length;
}

void finishText(char* text, int32_t length) {
    Text_Shrink(pathLength - length);
    text[length] = 0;
}

// The third character is not looked at.
bool isDrive(const char* path) {
    const size_t length = std::strlen(path);
    return (length == 2 || length == 3) && path[1] == ':';
}

int64_t driveSize(PathBuffer* path) {
    if (!path->text[2])
        std::strcat(path->text, "\\");
    const UINT type = GetDriveTypeA(path->text);
    return type == DRIVE_UNKNOWN || type == DRIVE_NO_ROOT_DIR ? FsSize_Nothing : FsSize_Folder;
}

void cutTrailing(char* path, const char* characters) {
    size_t length = std::strlen(path);
    while (length > 0 && std::strchr(characters, path[length - 1]))
        path[--length] = 0;
}

bool isFolder(DWORD attributes) { return (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0; }

// A share's root cannot be enumerated; a file there would have been found.
int64_t shareSize(const char* path) {
    const DWORD attributes = GetFileAttributesA(path);
    return attributes != INVALID_FILE_ATTRIBUTES && isFolder(attributes) ? FsSize_Folder
                                                                         : FsSize_Nothing;
}

int64_t foundSize(const WIN32_FIND_DATAA& found) {
    if (isFolder(found.dwFileAttributes))
        return FsSize_Folder;
    return (static_cast<int64_t>(found.nFileSizeHigh) << 32) + found.nFileSizeLow;
}

bool isSelfOrParent(const char* name) {
    return std::strcmp(name, ".") == 0 || std::strcmp(name, "..") == 0;
}

void deleteFile(const char* path, int32_t flags) {
    if (flags & DeleteTree_Force)
        SetFileAttributesA(path, FILE_ATTRIBUTE_NORMAL);
    DeleteFileA(path);
}

void deleteEntry(PathBuffer* work, const char* base, const WIN32_FIND_DATAA& entry,
                 const char* pattern, int32_t flags) {
    // A path too long to be named cannot be deleted: it stays, and so does its folder.
    if (!join(work, base, entry.cFileName))
        return;
    if (!isFolder(entry.dwFileAttributes))
        deleteFile(work->text, flags);
    else if ((flags & DeleteTree_Recurse) && !isSelfOrParent(entry.cFileName))
        Fs_DeleteTree(work->text, pattern, flags);
}

// 0 if the enumeration found nothing at all.
bool deleteMatches(const char* base, const char* pattern, int32_t flags) {
    PathBuffer work;
    if (!join(&work, base, pattern))
        return false;
    WIN32_FIND_DATAA entry;
    HANDLE search = FindFirstFileA(work.text, &entry);
    if (search == INVALID_HANDLE_VALUE)
        return false;
    do
        deleteEntry(&work, base, entry, pattern, flags);
    while (FindNextFileA(search, &entry));
    FindClose(search);
    return true;
}

// False where there is no room for the backslash.
bool makeBase(PathBuffer* base, const char* folder) {
    cutInto(base, folder);
    const size_t length = std::strlen(base->text);
    if (base->text[length - 1] == '\\')
        return true;
    if (length == pathLength)
        return false;
    std::strcpy(base->text + length, "\\");
    return true;
}

} // namespace

void Fs_CurrentDir(int32_t place) {
    char* text = Text_Reserve(pathLength, place);
    auto length = static_cast<int32_t>(GetCurrentDirectoryA(pathLength, text));
    if (length != 0 && text[length - 1] != '\\')
        text[length++] = '\\';
    finishText(text, length);
}

void Fs_TempDir(int32_t place) {
    char* text = Text_Reserve(pathLength, place);
    const auto length = static_cast<int32_t>(GetTempPathA(pathLength, text));
    finishText(text, lengthenInPlace(text, length));
}

int64_t Fs_Size(const char* path) {
    if (isEmpty(path))
        return FsSize_Nothing;
    PathBuffer work;
    cutInto(&work, path);
    if (isDrive(work.text))
        return driveSize(&work);
    cutTrailing(work.text, "\\");
    WIN32_FIND_DATAA found;
    HANDLE search = FindFirstFileA(work.text, &found);
    if (search != INVALID_HANDLE_VALUE) {
        FindClose(search);
        return foundSize(found);
    }
    return std::strncmp(work.text, "\\\\", 2) == 0 ? shareSize(work.text) : FsSize_Nothing;
}

int64_t Fs_CreateDir(const char* path) {
    if (!path)
        return 0;
    PathBuffer work;
    cutInto(&work, path);
    cutTrailing(work.text, " \\/");
    return CreateDirectoryA(work.text, nullptr);
}

int64_t Fs_Copy(const char* source, const char* destination) {
    return source && destination ? CopyFileA(source, destination, FALSE) : 0;
}

int64_t Fs_DeleteTree(const char* folder, const char* pattern, int32_t flags) {
    if (isEmpty(folder))
        return 0;
    PathBuffer base;
    if (!makeBase(&base, folder) ||
        !deleteMatches(base.text, isEmpty(pattern) ? "*.*" : pattern, flags))
        return 0;
    if (flags & DeleteTree_Force)
        SetFileAttributesA(base.text, FILE_ATTRIBUTE_NORMAL);
    return RemoveDirectoryA(base.text);
}
