// The removal of a folder with all that is in it.
#include "runtime/file_system.h"

#include "tests/support/runtime_fixture.h"
#include "tests/support/scratch_folder.h"

#include <map>
#include <vector>

namespace {

constexpr int32_t both = DeleteTree_Recurse | DeleteTree_Force;

class FsDeleteTree : public testing::Test {
protected:
    // A folder with a file and a subfolder that holds a file as well.
    FsDeleteTree() {
        CreateDirectoryA("tree", nullptr);
        CreateDirectoryA("tree\\sub", nullptr);
        ScratchFolder::write("tree\\file.txt", "x");
        ScratchFolder::write("tree\\sub\\inner.txt", "x");
    }

    static bool exists(const std::string& name) { return ScratchFolder::exists(name); }

    ScratchFolder folder;
};

TEST_F(FsDeleteTree, RemovesAllWhenItRecurses) {
    EXPECT_NE(Fs_DeleteTree("tree", "*.*", DeleteTree_Recurse), 0);
    EXPECT_FALSE(exists("tree"));
    EXPECT_EQ(DeleteTree_Recurse, 1);
    EXPECT_EQ(DeleteTree_Force, 2);
}

TEST_F(FsDeleteTree, GivesTheSameWithABackslashBehindTheFolder) {
    EXPECT_NE(Fs_DeleteTree("tree\\", "*.*", DeleteTree_Recurse), 0);
    EXPECT_FALSE(exists("tree"));
}

TEST_F(FsDeleteTree, TakesANullOrEmptyPatternForEverything) {
    EXPECT_NE(Fs_DeleteTree("tree\\sub", nullptr, 0), 0);
    EXPECT_FALSE(exists("tree\\sub"));
    EXPECT_NE(Fs_DeleteTree("tree", "", 0), 0);
    EXPECT_FALSE(exists("tree"));
}

TEST_F(FsDeleteTree, KeepsSubfoldersAndItselfWithoutRecursion) {
    EXPECT_EQ(Fs_DeleteTree("tree", "*.*", 0), 0);
    EXPECT_FALSE(exists("tree\\file.txt"));
    EXPECT_TRUE(exists("tree\\sub\\inner.txt"));
    EXPECT_EQ(Fs_DeleteTree("tree", "*.*", DeleteTree_Force), 0);
    EXPECT_TRUE(exists("tree\\sub\\inner.txt"));
}

TEST_F(FsDeleteTree, OfAMissingFolderDoesNothing) {
    CallRecorder calls;
    EXPECT_EQ(Fs_DeleteTree("nowhere", "*.*", both), 0);
    EXPECT_TRUE(calls.match("FindFirstFileA(\"nowhere\\\\*.*\", *)"));
}

TEST_F(FsDeleteTree, OfANullOrEmptyFolderDoesNothing) {
    CallRecorder calls;
    EXPECT_EQ(Fs_DeleteTree(nullptr, "*.*", both), 0);
    EXPECT_EQ(Fs_DeleteTree("", "*.*", both), 0);
    EXPECT_TRUE(calls.match(""));
}

TEST_F(FsDeleteTree, LeavesAFolderInWhichNothingMatches) {
    CreateDirectoryA("empty", nullptr);
    EXPECT_EQ(Fs_DeleteTree("empty", "*.txt", both), 0);
    EXPECT_TRUE(exists("empty"));
    EXPECT_NE(Fs_DeleteTree("empty", "*.*", 0), 0) << "the folder's own entries match this one";
    EXPECT_FALSE(exists("empty"));
}

TEST_F(FsDeleteTree, DeletesWhatMatchesThePatternAlone) {
    ScratchFolder::write("tree\\file.bin", "x");
    EXPECT_EQ(Fs_DeleteTree("tree", "*.txt", both), 0);
    EXPECT_FALSE(exists("tree\\file.txt"));
    EXPECT_TRUE(exists("tree\\file.bin"));
    EXPECT_TRUE(exists("tree\\sub\\inner.txt")) << "the subfolder's name does not match";
}

TEST_F(FsDeleteTree, EntersTheSubfoldersThatMatchWithTheSamePattern) {
    CreateDirectoryA("tree\\sub.txt", nullptr);
    ScratchFolder::write("tree\\sub.txt\\inner.txt", "x");
    CreateDirectoryA("tree\\also.txt", nullptr);
    ScratchFolder::write("tree\\also.txt\\inner.txt", "x");
    ScratchFolder::write("tree\\also.txt\\inner.bin", "x");
    EXPECT_EQ(Fs_DeleteTree("tree", "*.txt", DeleteTree_Recurse), 0);
    EXPECT_FALSE(exists("tree\\sub.txt"));
    EXPECT_FALSE(exists("tree\\also.txt\\inner.txt"));
    EXPECT_TRUE(exists("tree\\also.txt\\inner.bin"));
}

TEST_F(FsDeleteTree, LeavesAReadOnlyFileWithTheFoldersAboveIt) {
    SetFileAttributesA("tree\\sub\\inner.txt", FILE_ATTRIBUTE_READONLY);
    ScratchFolder::write("tree\\sub\\other.txt", "x");
    EXPECT_EQ(Fs_DeleteTree("tree", "*.*", DeleteTree_Recurse), 0);
    EXPECT_TRUE(exists("tree\\sub\\inner.txt"));
    EXPECT_FALSE(exists("tree\\sub\\other.txt"));
    EXPECT_FALSE(exists("tree\\file.txt"));
}

TEST_F(FsDeleteTree, RemovesReadOnlyFilesAndFoldersByForce) {
    SetFileAttributesA("tree\\sub\\inner.txt", FILE_ATTRIBUTE_READONLY);
    SetFileAttributesA("tree\\sub", FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_DIRECTORY);
    EXPECT_NE(Fs_DeleteTree("tree", "*.*", both), 0);
    EXPECT_FALSE(exists("tree"));
}

TEST_F(FsDeleteTree, CarriesOnOverAFileThatCannotBeDeleted) {
    ScratchFolder::write("tree\\second.txt", "x");
    CallRecorder calls;
    calls.fail("DeleteFileA", 1, 0);
    EXPECT_EQ(Fs_DeleteTree("tree", "*.*", DeleteTree_Recurse), 0);
    EXPECT_EQ(calls.uses("DeleteFileA"), 3);
    EXPECT_EQ(calls.uses("RemoveDirectoryA"), 2);
}

TEST_F(FsDeleteTree, IgnoresThatAnAttributeCannotBeSet) {
    CallRecorder calls;
    calls.failAlways("SetFileAttributesA", 0);
    EXPECT_NE(Fs_DeleteTree("tree", "*.*", both), 0);
    EXPECT_FALSE(exists("tree"));
}

TEST_F(FsDeleteTree, IgnoresWhatASubfolderGave) {
    CallRecorder calls;
    calls.fail("RemoveDirectoryA", 1, 1); // the subfolder's, which stays
    EXPECT_EQ(Fs_DeleteTree("tree", "*.*", DeleteTree_Recurse), 0);
    calls.fail("RemoveDirectoryA", 1, 0);
    calls.fail("RemoveDirectoryA", 2, 5);
    EXPECT_EQ(Fs_DeleteTree("tree", "*.*", DeleteTree_Recurse), 5);
}

TEST_F(FsDeleteTree, GivesZeroWhenTheFolderCannotBeRemoved) {
    CallRecorder calls;
    calls.fail("RemoveDirectoryA", 2, 0);
    EXPECT_EQ(Fs_DeleteTree("tree", "*.*", DeleteTree_Recurse), 0);
    EXPECT_TRUE(exists("tree"));
    EXPECT_EQ(calls.live("search"), 0u);
}

// --- Order of calls, on folders whose entries come in the order that the test chooses ---

class FsDeleteTreeCalls : public testing::Test {
protected:
    struct Entry {
        std::string name;
        DWORD attributes = FILE_ATTRIBUTE_NORMAL;
    };

    FsDeleteTreeCalls() {
        calls.replace<hook::FindFirstFileA>([this](LPCSTR pattern, LPWIN32_FIND_DATAA found) {
            const auto at = folders.find(pattern);
            if (at == folders.end())
                return INVALID_HANDLE_VALUE;
            searches.push_back({&at->second, 0});
            show(searches.back(), found);
            return reinterpret_cast<HANDLE>(0x1000 + searches.size());
        });
        calls.replace<hook::FindNextFileA>([this](HANDLE handle, LPWIN32_FIND_DATAA found) -> BOOL {
            Search& search = searches[reinterpret_cast<uint64_t>(handle) - 0x1001];
            if (++search.at == search.entries->size())
                return FALSE;
            show(search, found);
            return TRUE;
        });
        for (const char* call : {"FindClose", "DeleteFileA", "SetFileAttributesA"})
            calls.failAlways(call, 1);
        calls.failAlways("RemoveDirectoryA", 7);
    }

    std::map<std::string, std::vector<Entry>> folders; // by pattern
    CallRecorder calls;

private:
    struct Search {
        const std::vector<Entry>* entries;
        size_t at;
    };

    static void show(const Search& search, LPWIN32_FIND_DATAA found) {
        const Entry& entry = (*search.entries)[search.at];
        *found = {};
        found->dwFileAttributes = entry.attributes;
        strcpy(found->cFileName, entry.name.c_str());
    }

    std::vector<Search> searches;
};

constexpr DWORD isFolder = FILE_ATTRIBUTE_DIRECTORY;

TEST_F(FsDeleteTreeCalls, FinishASubfolderBeforeTheNextEntry) {
    folders["base\\*.*"] = {{".", isFolder}, {"..", isFolder}, {"a"}, {"sub", isFolder}, {"z"}};
    folders["base\\sub\\*.*"] = {{".", isFolder}, {"..", isFolder}, {"inner"}};
    EXPECT_EQ(Fs_DeleteTree("base", "*.*", DeleteTree_Recurse), 7);
    EXPECT_TRUE(calls.match(R"(
        FindFirstFileA("base\\*.*", *)
        FindNextFileA(*, *) -> 1
        FindNextFileA(*, *) -> 1
        DeleteFileA("base\\a")
        FindNextFileA(*, *) -> 1
        FindFirstFileA("base\\sub\\*.*", *)
        FindNextFileA(*, *) -> 1
        FindNextFileA(*, *) -> 1
        DeleteFileA("base\\sub\\inner")
        FindNextFileA(*, *) -> 0
        FindClose(*)
        RemoveDirectoryA("base\\sub\\") -> 7
        FindNextFileA(*, *) -> 1
        DeleteFileA("base\\z")
        FindNextFileA(*, *) -> 0
        FindClose(*)
        RemoveDirectoryA("base\\") -> 7
    )"));
}

TEST_F(FsDeleteTreeCalls, SetAttributesByForceBeforeEachRemoval) {
    folders["base\\*.*"] = {{"file", FILE_ATTRIBUTE_READONLY}, {"sub", isFolder}};
    folders["base\\sub\\*.*"] = {{".", isFolder}};
    EXPECT_EQ(Fs_DeleteTree("base\\", nullptr, both), 7);
    EXPECT_TRUE(calls.match(R"(
        FindFirstFileA("base\\*.*", *)
        SetFileAttributesA("base\\file", 128)
        DeleteFileA("base\\file")
        FindNextFileA(*, *) -> 1
        FindFirstFileA("base\\sub\\*.*", *)
        FindNextFileA(*, *) -> 0
        FindClose(*)
        SetFileAttributesA("base\\sub\\", 128)
        RemoveDirectoryA("base\\sub\\")
        FindNextFileA(*, *) -> 0
        FindClose(*)
        SetFileAttributesA("base\\", 128)
        RemoveDirectoryA("base\\")
    )"));
}

TEST_F(FsDeleteTreeCalls, KeepTheirFlagsAtEveryDepth) {
    folders["base\\*.*"] = {{"sub", isFolder}};
    folders["base\\sub\\*.*"] = {{"deep", isFolder}};
    folders["base\\sub\\deep\\*.*"] = {{"file"}};
    EXPECT_EQ(Fs_DeleteTree("base", "*.*", both), 7);
    EXPECT_TRUE(calls.match(R"(
        FindFirstFileA("base\\*.*", *)
        FindFirstFileA("base\\sub\\*.*", *)
        FindFirstFileA("base\\sub\\deep\\*.*", *)
        SetFileAttributesA("base\\sub\\deep\\file", 128)
        DeleteFileA("base\\sub\\deep\\file")
        FindNextFileA(*, *) -> 0
        FindClose(*)
        SetFileAttributesA("base\\sub\\deep\\", 128)
        RemoveDirectoryA("base\\sub\\deep\\")
        FindNextFileA(*, *) -> 0
        FindClose(*)
        SetFileAttributesA("base\\sub\\", 128)
        RemoveDirectoryA("base\\sub\\")
        FindNextFileA(*, *) -> 0
        FindClose(*)
        SetFileAttributesA("base\\", 128)
        RemoveDirectoryA("base\\")
    )"));
}

TEST_F(FsDeleteTreeCalls, PassASubfolderByWithoutRecursion) {
    folders["base\\*.*"] = {{"sub", isFolder}, {"file"}};
    folders["base\\sub\\*.*"] = {{"inner"}};
    Fs_DeleteTree("base", "*.*", DeleteTree_Force);
    EXPECT_TRUE(calls.match(R"(
        FindFirstFileA("base\\*.*", *)
        FindNextFileA(*, *) -> 1
        SetFileAttributesA("base\\file", 128)
        DeleteFileA("base\\file")
        FindNextFileA(*, *) -> 0
        FindClose(*)
        SetFileAttributesA("base\\", 128)
        RemoveDirectoryA("base\\")
    )"));
}

TEST_F(FsDeleteTreeCalls, TakeTheWholeNameForItselfAndItsParent) {
    folders["base\\*.*"] = {{"...", isFolder}, {".a", isFolder}, {"..a", isFolder}};
    Fs_DeleteTree("base", "*.*", DeleteTree_Recurse);
    EXPECT_EQ(calls.uses("FindFirstFileA"), 4);
}

TEST_F(FsDeleteTreeCalls, TellAFolderByItsAttributeAmongOthers) {
    folders["base\\*.*"] = {{"hidden", isFolder | FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_READONLY},
                            {"file", ~isFolder}};
    Fs_DeleteTree("base", "*.*", 0);
    EXPECT_EQ(calls.uses("DeleteFileA"), 1);
}

TEST_F(FsDeleteTreeCalls, RemoveNoFolderThatCouldNotBeSearched) {
    EXPECT_EQ(Fs_DeleteTree("base", "*.*", both), 0);
    EXPECT_TRUE(calls.match("FindFirstFileA(\"base\\\\*.*\", *)"));
}

// --- Paths at the limit of 260 characters ---

TEST_F(FsDeleteTreeCalls, LeaveAFileWhoseFullPathIsTooLong) {
    const std::string base = std::string(249, 'b') + "\\"; // 250
    folders[base + "*.*"] = {{std::string(11, 'x')}, {std::string(10, 'y')}};
    Fs_DeleteTree(base.c_str(), "*.*", both);
    EXPECT_EQ(calls.uses("DeleteFileA"), 1);
    EXPECT_TRUE(calls.match("...\n DeleteFileA(\"" + std::string(249, 'b') + "\\\\" +
                            std::string(10, 'y') + "\")\n ..."));
}

TEST_F(FsDeleteTreeCalls, HaveRoomForAPatternUpToTheLimit) {
    const std::string fits(256, 'b'); // 260 with "\*.*"
    folders[fits + "\\*.*"] = {{"x"}};
    EXPECT_EQ(Fs_DeleteTree(fits.c_str(), "*.*", 0), 7);
    const std::string tooLong(257, 'b');
    folders[tooLong + "\\*.*"] = {{"x"}};
    EXPECT_EQ(Fs_DeleteTree(tooLong.c_str(), "*.*", 0), 0);
    EXPECT_EQ(calls.uses("FindFirstFileA"), 1);
}

TEST_F(FsDeleteTreeCalls, CutTheFolderTo260CharactersFirst) {
    const std::string base(259, 'b');
    folders[base + "\\p"] = {{"x"}};
    folders[base + "\\"] = {{"x"}};
    EXPECT_EQ(Fs_DeleteTree((base + "\\further").c_str(), "p", 0), 0) << "no room for a pattern";
    EXPECT_EQ(Fs_DeleteTree((base + "xfurther").c_str(), "p", 0), 0) << "nor for a backslash";
    EXPECT_TRUE(calls.match(""));
}

} // namespace
