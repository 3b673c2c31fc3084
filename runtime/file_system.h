// Stateless operations on paths: byte strings in the system's code page with backslashes. An input
// path is cut to its first 260 characters before it is worked on. None tells why it failed.
#pragma once

#include <cstdint>

// The current folder at `place` in the text accumulator, ending in a backslash; empty on failure.
void Fs_CurrentDir(int32_t place);

// The temp folder at `place`, in its long form and as the system ends it, in a backslash; empty if
// the long form cannot be had.
void Fs_TempDir(int32_t place);

constexpr int64_t FsSize_Nothing = -1;
constexpr int64_t FsSize_Folder = -2;

// A file's size in bytes; FsSize_Nothing if there is nothing, FsSize_Folder for a folder or a
// drive's root. The first match of a wildcard decides.
int64_t Fs_Size(const char* path);

// Makes one level, without the path's trailing blanks and slashes. 0 on failure, also where the
// folder exists.
int64_t Fs_CreateDir(const char* path);

// Overwrites. 0 on failure.
int64_t Fs_Copy(const char* source, const char* destination);

// Flags of Fs_DeleteTree.
constexpr int32_t DeleteTree_Recurse = 1;
constexpr int32_t DeleteTree_Force = 2; // read-only files and folders go as well

// Deletes what matches the pattern in the folder (null or empty: "*.*"), then the folder itself.
// Not 0 only if that was removed, which needs it to be empty by then.
int64_t Fs_DeleteTree(const char* folder, const char* pattern, int32_t flags);
