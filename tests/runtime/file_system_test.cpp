#include "runtime/file_system.h"

#include "tests/support/runtime_fixture.h"
#include "tests/support/scratch_folder.h"

namespace {

class FileSystemTest : public RuntimeTest {
protected:
    ScratchFolder folder;
};

// --- The current folder ---

using FsCurrentDir = FileSystemTest;

TEST_F(FsCurrentDir, EndsInABackslash) {
    Fs_CurrentDir(0);
    EXPECT_EQ(textAt(0), folder.path() + "\\");
    EXPECT_EQ(TextPosition, static_cast<int64_t>(folder.path().size()) + 1);
}

TEST_F(FsCurrentDir, OfADrivesRootHasOneBackslash) {
    SetCurrentDirectoryA("C:\\");
    Fs_CurrentDir(0);
    EXPECT_EQ(textAt(0), "C:\\");
    EXPECT_EQ(TextPosition, 3);
}

TEST_F(FsCurrentDir, StandsAtItsPlace) {
    Text_Append("at ");
    Fs_CurrentDir(3);
    EXPECT_EQ(textAt(0), "at " + folder.path() + "\\");
}

TEST_F(FsCurrentDir, ReservesRoomFor260Bytes) {
    CallRecorder calls;
    calls.only({"HeapReAlloc", "GetCurrentDirectoryA"});
    Fs_CurrentDir(0);
    EXPECT_TRUE(calls.match(R"(
        HeapReAlloc(*, 1, *, 16649)
        GetCurrentDirectoryA(260, *)
    )"));
}

TEST_F(FsCurrentDir, MayFillTheWholeRoom) {
    const std::string longest(259, 'x');
    CallRecorder calls;
    calls.replace<hook::GetCurrentDirectoryA>([&](DWORD, LPSTR text) -> DWORD {
        strcpy(text, longest.c_str());
        return 259;
    });
    Fs_CurrentDir(0);
    EXPECT_EQ(textAt(0), longest + "\\");
    EXPECT_EQ(TextPosition, 260);
}

TEST_F(FsCurrentDir, IsEmptyWhenTheSystemFails) {
    Text_Append("before");
    memset(TextBase + 6, 'x', 6);
    CallRecorder calls;
    calls.fail("GetCurrentDirectoryA", 1, 0);
    Fs_CurrentDir(6);
    EXPECT_EQ(textAt(0), "before");
    EXPECT_EQ(TextPosition, 6);
}

// --- The temp folder ---

using FsTempDir = FileSystemTest;

TEST_F(FsTempDir, IsTheSystemsInItsLongForm) {
    char expected[260];
    GetTempPathA(sizeof expected, expected);
    GetLongPathNameA(expected, expected, sizeof expected);
    Fs_TempDir(0);
    EXPECT_EQ(textAt(0), expected);
    EXPECT_EQ(textAt(0).back(), '\\');
    EXPECT_EQ(TextPosition, static_cast<int64_t>(strlen(expected)));
}

TEST_F(FsTempDir, LooksTheLongFormUpAtRunTime) {
    CallRecorder calls;
    calls.except({"HeapReAlloc"});
    Fs_TempDir(0);
    EXPECT_TRUE(calls.match(R"(
        GetTempPathA(260, *)
        LoadLibraryA("Kernel32.DLL") -> library1
        GetProcAddress(library1, "GetLongPathNameA") -> routine
        GetLongPathNameA(*, *, 260)
        FreeLibrary(library1) -> 1
    )"));
}

TEST_F(FsTempDir, ReservesRoomFor260BytesAtItsPlace) {
    Text_Append("at ");
    CallRecorder calls;
    calls.only({"HeapReAlloc"});
    Fs_TempDir(3);
    EXPECT_TRUE(calls.match("HeapReAlloc(*, 1, *, 16652)"));
    EXPECT_EQ(textAt(0).substr(0, 6), "at C:\\");
}

void giveShortTempPath(CallRecorder& calls) {
    calls.replace<hook::GetTempPathA>([](DWORD, LPSTR text) -> DWORD {
        strcpy(text, "C:\\TEMPOR~1\\");
        return 12;
    });
}

TEST_F(FsTempDir, TakesItsLengthFromTheLongForm) {
    CallRecorder calls;
    giveShortTempPath(calls);
    calls.replace<hook::GetLongPathNameA>([](LPCSTR path, LPSTR text, DWORD) -> DWORD {
        EXPECT_EQ(path, text) << "in place";
        EXPECT_STREQ(path, "C:\\TEMPOR~1\\");
        strcpy(text, "C:\\temporary folder\\");
        return 20;
    });
    Fs_TempDir(0);
    EXPECT_EQ(textAt(0), "C:\\temporary folder\\");
    EXPECT_EQ(TextPosition, 20);
}

TEST_F(FsTempDir, IsEmptyWhenTheLongFormFails) {
    CallRecorder calls;
    calls.fail("GetLongPathNameA", 1, 0);
    Fs_TempDir(0);
    EXPECT_EQ(textAt(0), "");
    EXPECT_EQ(TextPosition, 0);
    EXPECT_EQ(calls.uses("FreeLibrary"), 1);
}

TEST_F(FsTempDir, AsksForTheLongFormOfWhatStandsThereWhenTheTempPathFails) {
    Text_Append("C:\\windows");
    CallRecorder calls;
    calls.fail("GetTempPathA", 1, 0);
    Fs_TempDir(0);
    EXPECT_EQ(textAt(0), "C:\\windows");
    EXPECT_EQ(TextPosition, 10);
    calls.fail("GetTempPathA", 1, 0);
    strcpy(TextBase, "nowhere at all");
    Fs_TempDir(0);
    EXPECT_EQ(textAt(0), "");
    EXPECT_EQ(TextPosition, 0);
}

TEST_F(FsTempDir, StaysAsItIsWithoutTheFunction) {
    CallRecorder calls;
    giveShortTempPath(calls);
    calls.fail("GetProcAddress", 1, 0);
    Fs_TempDir(0);
    EXPECT_EQ(textAt(0), "C:\\TEMPOR~1\\");
    EXPECT_EQ(TextPosition, 12);
    EXPECT_EQ(calls.uses("FreeLibrary"), 1);
}

TEST_F(FsTempDir, StaysAsItIsWithoutTheLibrary) {
    CallRecorder calls;
    giveShortTempPath(calls);
    calls.fail("LoadLibraryA", 1, 0);
    Fs_TempDir(0);
    EXPECT_EQ(textAt(0), "C:\\TEMPOR~1\\");
    EXPECT_EQ(TextPosition, 12);
    EXPECT_EQ(calls.uses("GetProcAddress"), 0);
    EXPECT_EQ(calls.uses("FreeLibrary"), 0);
}

// --- Size ---

using FsSize = FileSystemTest;

TEST_F(FsSize, GivesAFilesBytes) {
    ScratchFolder::write("empty", "");
    ScratchFolder::write("five", "12345");
    EXPECT_EQ(Fs_Size("empty"), 0);
    EXPECT_EQ(Fs_Size("five"), 5);
    EXPECT_EQ(Fs_Size((folder.path() + "\\five").c_str()), 5);
}

TEST_F(FsSize, GivesMinusOneForNothing) {
    EXPECT_EQ(Fs_Size("nowhere"), -1);
    EXPECT_EQ(Fs_Size("no folder\\nowhere"), -1);
    EXPECT_EQ(FsSize_Nothing, -1);
}

TEST_F(FsSize, GivesMinusOneForAnEmptyOrNullPath) {
    CallRecorder calls;
    EXPECT_EQ(Fs_Size(nullptr), -1);
    EXPECT_EQ(Fs_Size(""), -1);
    EXPECT_TRUE(calls.match(""));
}

TEST_F(FsSize, GivesMinusTwoForAFolderWithAnyBackslashesBehindIt) {
    CreateDirectoryA("sub", nullptr);
    EXPECT_EQ(Fs_Size("sub"), -2);
    EXPECT_EQ(Fs_Size("sub\\"), -2);
    EXPECT_EQ(Fs_Size("sub\\\\\\"), -2);
    EXPECT_EQ(FsSize_Folder, -2);
}

TEST_F(FsSize, CutsBackslashesAloneFromTheEnd) {
    CallRecorder calls;
    calls.only({"FindFirstFileA"});
    Fs_Size("\\some\\folder\\\\");
    Fs_Size("some/folder/");
    EXPECT_TRUE(calls.match(R"(
        FindFirstFileA("\\some\\folder", *)
        FindFirstFileA("some/folder/", *)
    )"));
}

TEST_F(FsSize, GivesMinusOneForBackslashesOnly) {
    EXPECT_EQ(Fs_Size("\\"), -1);
    EXPECT_EQ(Fs_Size("\\\\"), -1);
    EXPECT_EQ(Fs_Size("\\\\\\\\"), -1);
}

TEST_F(FsSize, OfAFileOf4GiBIsAllOfIt) {
    HANDLE file =
        CreateFileA("large", GENERIC_WRITE, 0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr);
    LARGE_INTEGER size;
    size.QuadPart = 0x100000000;
    SetFilePointerEx(file, size, nullptr, FILE_BEGIN);
    ASSERT_TRUE(SetEndOfFile(file));
    CloseHandle(file);
    EXPECT_EQ(Fs_Size("large"), 4294967296);
}

// Lets every search find one entry.
void find(CallRecorder& calls, DWORD attributes, DWORD high, DWORD low) {
    calls.replace<hook::FindFirstFileA>([=](LPCSTR, LPWIN32_FIND_DATAA entry) -> HANDLE {
        *entry = {};
        entry->dwFileAttributes = attributes;
        entry->nFileSizeHigh = high;
        entry->nFileSizeLow = low;
        return reinterpret_cast<HANDLE>(0x5EA4C4);
    });
    calls.replace<hook::FindClose>([](HANDLE search) -> BOOL {
        EXPECT_EQ(search, reinterpret_cast<HANDLE>(0x5EA4C4));
        return TRUE;
    });
}

TEST_F(FsSize, JoinsTheWhole64BitsOfTheEntry) {
    CallRecorder calls;
    find(calls, FILE_ATTRIBUTE_NORMAL, 1, 5);
    EXPECT_EQ(Fs_Size("x"), 0x100000005);
    find(calls, FILE_ATTRIBUTE_NORMAL, 0, 0xFFFFFFFF);
    EXPECT_EQ(Fs_Size("x"), 0xFFFFFFFF);
    find(calls, FILE_ATTRIBUTE_NORMAL, 0x12345678, 0x9ABCDEF0);
    EXPECT_EQ(Fs_Size("x"), 0x123456789ABCDEF0);
}

TEST_F(FsSize, TellsAFolderByItsAttributeAmongOthers) {
    CallRecorder calls;
    find(calls, FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_READONLY, 0, 9);
    EXPECT_EQ(Fs_Size("x"), -2);
    find(calls, ~static_cast<DWORD>(FILE_ATTRIBUTE_DIRECTORY), 0, 9);
    EXPECT_EQ(Fs_Size("x"), 9);
}

TEST_F(FsSize, ClosesItsSearch) {
    ScratchFolder::write("file", "x");
    CallRecorder calls;
    Fs_Size("file");
    Fs_Size("nowhere");
    EXPECT_EQ(calls.live("search"), 0u);
    EXPECT_EQ(calls.uses("FindClose"), 1);
}

TEST_F(FsSize, OfAWildcardIsThatOfTheFirstMatch) {
    ScratchFolder::write("other.bin", "1");
    ScratchFolder::write("match.txt", "123");
    EXPECT_EQ(Fs_Size("*.txt"), 3);
}

TEST_F(FsSize, CutsThePathTo260Characters) {
    const std::string longest(260, 'x');
    CallRecorder calls;
    calls.only({"FindFirstFileA"});
    EXPECT_EQ(Fs_Size((longest + "yz").c_str()), -1);
    EXPECT_TRUE(calls.match("FindFirstFileA(\"" + longest + "\", *)"));
}

// --- Size: drives ---

using FsSizeOfDrive = FileSystemTest;

TEST_F(FsSizeOfDrive, IsThatOfAFolderForADriveThatExists) {
    EXPECT_EQ(Fs_Size("C:"), -2);
    EXPECT_EQ(Fs_Size("C:\\"), -2);
}

TEST_F(FsSizeOfDrive, IsMinusOneForALetterWithoutADrive) {
    EXPECT_EQ(Fs_Size("Q:"), -1);
    EXPECT_EQ(Fs_Size("Q:\\"), -1);
}

TEST_F(FsSizeOfDrive, AsksForTheDrivesRootAndNothingElse) {
    CallRecorder calls;
    Fs_Size("C:");
    Fs_Size("D:\\");
    EXPECT_TRUE(calls.match(R"(
        GetDriveTypeA("C:\\")
        GetDriveTypeA("D:\\")
    )"));
}

TEST_F(FsSizeOfDrive, DoesNotLookAtTheThirdCharacter) {
    ScratchFolder::write("x", "123");
    CallRecorder calls;
    Fs_Size("C:x");
    EXPECT_TRUE(calls.match("GetDriveTypeA(\"C:x\")"));
}

TEST_F(FsSizeOfDrive, JudgesByTheDrivesType) {
    CallRecorder calls;
    const int64_t expected[] = {-1, -1, -2, -2, -2, -2, -2}; // by type, from DRIVE_UNKNOWN on
    for (int64_t type = 0; type < 7; ++type) {
        calls.fail("GetDriveTypeA", 1, type);
        EXPECT_EQ(Fs_Size("C:"), expected[type]) << type;
    }
}

TEST_F(FsSizeOfDrive, IsAskedForTwoOrThreeCharactersWithAColonOnly) {
    CallRecorder calls;
    for (const char* path : {"C", "::", "ab", "abc", "C:ab", "a:b:", "ab:"})
        Fs_Size(path);
    EXPECT_EQ(calls.uses("GetDriveTypeA"), 1) << "for two colons";
}

TEST_F(FsSizeOfDrive, IsNotAskedForADriveWithMoreThanOneBackslash) {
    CallRecorder calls;
    calls.only({"GetDriveTypeA", "FindFirstFileA"});
    Fs_Size("C:\\\\");
    EXPECT_TRUE(calls.match("FindFirstFileA(\"C:\", *)")) << "backslashes go after the look";
}

// --- Size: network paths ---

class FsSizeOfShare : public FileSystemTest {
protected:
    FsSizeOfShare() {
        calls.failAlways("FindFirstFileA", -1);
        calls.only({"FindFirstFileA", "GetFileAttributesA"});
    }

    int64_t sizeWithAttributes(int64_t attributes) {
        calls.fail("GetFileAttributesA", 1, attributes);
        return Fs_Size("\\\\server\\share");
    }

    CallRecorder calls;
};

TEST_F(FsSizeOfShare, AsksForTheAttributesOfWhatNoSearchCanSee) {
    sizeWithAttributes(FILE_ATTRIBUTE_DIRECTORY);
    EXPECT_TRUE(calls.match(R"(
        FindFirstFileA("\\\\server\\share", *)
        GetFileAttributesA("\\\\server\\share")
    )"));
}

TEST_F(FsSizeOfShare, IsThatOfAFolderByTheFoldersBit) {
    EXPECT_EQ(sizeWithAttributes(FILE_ATTRIBUTE_DIRECTORY), -2);
    EXPECT_EQ(sizeWithAttributes(FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_READONLY), -2);
}

TEST_F(FsSizeOfShare, IsMinusOneForNothing) {
    EXPECT_EQ(sizeWithAttributes(INVALID_FILE_ATTRIBUTES), -1);
    EXPECT_EQ(sizeWithAttributes(-1), -1);
}

TEST_F(FsSizeOfShare, IsMinusOneAlsoForAFile) {
    EXPECT_EQ(sizeWithAttributes(FILE_ATTRIBUTE_NORMAL), -1);
    EXPECT_EQ(sizeWithAttributes(0), -1);
}

TEST_F(FsSizeOfShare, IsAskedForTwoBackslashesInFront) {
    EXPECT_EQ(Fs_Size("\\server\\share"), -1);
    EXPECT_EQ(Fs_Size("server\\\\share"), -1);
    EXPECT_EQ(Fs_Size("/\\server"), -1);
    EXPECT_EQ(calls.uses("GetFileAttributesA"), 0);
}

TEST_F(FsSizeOfShare, IsNotAskedForWhatASearchHasFound) {
    calls.failNothing();
    find(calls, FILE_ATTRIBUTE_NORMAL, 0, 7);
    EXPECT_EQ(Fs_Size("\\\\server\\share\\file"), 7);
    EXPECT_EQ(calls.uses("GetFileAttributesA"), 0);
}

// --- Making folders ---

using FsCreateDir = FileSystemTest;

TEST_F(FsCreateDir, MakesTheFolder) {
    EXPECT_NE(Fs_CreateDir("sub"), 0);
    EXPECT_EQ(Fs_Size("sub"), -2);
}

TEST_F(FsCreateDir, CutsTrailingBlanksAndSlashesOfBothKinds) {
    CallRecorder calls;
    EXPECT_NE(Fs_CreateDir("a\\"), 0);
    EXPECT_NE(Fs_CreateDir("b//"), 0);
    EXPECT_NE(Fs_CreateDir("c  "), 0);
    EXPECT_NE(Fs_CreateDir("a\\ b c \\/ \\"), 0);
    EXPECT_TRUE(calls.match(R"(
        CreateDirectoryA("a", null) -> 1
        CreateDirectoryA("b", null) -> 1
        CreateDirectoryA("c", null) -> 1
        CreateDirectoryA("a\\ b c", null) -> 1
    )"));
}

TEST_F(FsCreateDir, GivesZeroForAFolderThatExists) {
    Fs_CreateDir("sub");
    EXPECT_EQ(Fs_CreateDir("sub"), 0);
    EXPECT_EQ(Fs_CreateDir("sub\\"), 0);
}

TEST_F(FsCreateDir, MakesOneLevelOnly) {
    EXPECT_EQ(Fs_CreateDir("missing\\sub"), 0);
    EXPECT_FALSE(ScratchFolder::exists("missing"));
}

TEST_F(FsCreateDir, GivesZeroForNull) {
    CallRecorder calls;
    EXPECT_EQ(Fs_CreateDir(nullptr), 0);
    EXPECT_TRUE(calls.match(""));
}

TEST_F(FsCreateDir, HasNothingLeftOfSlashesAndBlanksOnly) {
    CallRecorder calls;
    EXPECT_EQ(Fs_CreateDir(" \\/ "), 0);
    EXPECT_EQ(Fs_CreateDir(""), 0);
    EXPECT_TRUE(calls.match(R"(
        CreateDirectoryA("", null) -> 0
        CreateDirectoryA("", null) -> 0
    )"));
}

TEST_F(FsCreateDir, GivesTheSystemsResult) {
    CallRecorder calls;
    calls.fail("CreateDirectoryA", 1, 0);
    EXPECT_EQ(Fs_CreateDir("sub"), 0);
}

TEST_F(FsCreateDir, CutsThePathTo260CharactersBeforeItsEnd) {
    const std::string longest = std::string(257, 'x');
    CallRecorder calls;
    Fs_CreateDir((longest + "///yz").c_str());
    EXPECT_TRUE(calls.match("CreateDirectoryA(\"" + longest + "\", null)"));
}

// --- Copying ---

using FsCopy = FileSystemTest;

TEST_F(FsCopy, CopiesAFile) {
    ScratchFolder::write("from", "text");
    CallRecorder calls;
    EXPECT_NE(Fs_Copy("from", "to"), 0);
    EXPECT_TRUE(calls.match(R"(CopyFileA("from", "to", 0) -> 1)"));
    EXPECT_EQ(ScratchFolder::read("to"), "text");
}

TEST_F(FsCopy, OverwritesTheDestination) {
    ScratchFolder::write("from", "new");
    ScratchFolder::write("to", "the old text");
    EXPECT_NE(Fs_Copy("from", "to"), 0);
    EXPECT_EQ(ScratchFolder::read("to"), "new");
}

TEST_F(FsCopy, GivesZeroWithoutASource) {
    EXPECT_EQ(Fs_Copy("nowhere", "to"), 0);
    EXPECT_FALSE(ScratchFolder::exists("to"));
}

TEST_F(FsCopy, GivesZeroForNull) {
    CallRecorder calls;
    EXPECT_EQ(Fs_Copy(nullptr, "to"), 0);
    EXPECT_EQ(Fs_Copy("from", nullptr), 0);
    EXPECT_EQ(Fs_Copy(nullptr, nullptr), 0);
    EXPECT_TRUE(calls.match(""));
}

TEST_F(FsCopy, PassesItsPathsOnAsTheyAre) {
    const std::string from(300, 'f');
    const std::string to = std::string(300, 't') + " \\";
    CallRecorder calls;
    EXPECT_EQ(Fs_Copy(from.c_str(), to.c_str()), 0);
    EXPECT_TRUE(calls.match("CopyFileA(\"" + from + "\", \"" + to + "\\\", 0) -> 0"));
}

} // namespace
