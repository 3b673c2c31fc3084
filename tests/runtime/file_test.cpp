#include "runtime/file.h"

#include "tests/support/file_fixture.h"

#include <cstddef>

namespace {

// --- Records and registry ---

TEST(FileHandleRec, HoldsItsFieldsInOrder) {
    EXPECT_EQ(offsetof(FileHandleRec, handle), 0u);
    EXPECT_EQ(offsetof(FileHandleRec, buffer), 8u);
    EXPECT_EQ(offsetof(FileHandleRec, bufferSize), 16u);
    EXPECT_EQ(offsetof(FileHandleRec, bufferLeft), 20u);
    EXPECT_EQ(offsetof(FileHandleRec, bufferFill), 24u);
    EXPECT_EQ(offsetof(FileHandleRec, readMode), 28u);
    EXPECT_EQ(sizeof(FileHandleRec), 32u);
}

using FileSubsystemInit = FileTest;

TEST_F(FileSubsystemInit, MakesTheRegistryOfTheKind) {
    HeapRecorder calls;
    ObjectRegistry* const made = File_SubsystemInit();
    EXPECT_TRUE(calls.match(R"(
        HeapAlloc(general, 8, 56) -> block1
        HeapAlloc(general, 8, 512) -> block2
    )"));
    EXPECT_EQ(made->recordSize, 32);
    EXPECT_EQ(made->growthStep, 16);
    EXPECT_EQ(made->onFree, File_Close);
}

using FileSubsystemEnd = FileTest;

TEST_F(FileSubsystemEnd, ClosesEveryFile) {
    ScratchFolder::write("file", "x");
    FileRecorder calls;
    File_OpenRead(3, "file");
    File_OpenRead(20, "file");
    File_OpenRead(ObjectId_Any, "file");
    EXPECT_EQ(calls.live("file"), 3u);
    File_SubsystemEnd();
    EXPECT_EQ(calls.live("file"), 0u);
    EXPECT_EQ(record(3), nullptr);
    EXPECT_EQ(registry->looseHead, nullptr);
}

// --- Opening ---

using FileOpen = FileTest;

TEST_F(FileOpen, ByMode1ReadsAnExistingFile) {
    ScratchFolder::write("file", "x");
    FileRecorder calls;
    EXPECT_NE(File_OpenMode(0, "file", 1), 0);
    EXPECT_TRUE(calls.match(R"(
        CreateFileA("file", 0x80000000, 1, null, 3, 128, null) -> file1
        HeapAlloc(general, 0, 4096) -> block1
    )"));
    EXPECT_EQ(FileMode_Read, 1);
}

TEST_F(FileOpen, ByMode2OpensOrMakesTheFile) {
    FileRecorder calls;
    EXPECT_NE(File_OpenMode(0, "new", 2), 0);
    EXPECT_TRUE(calls.match(R"(
        CreateFileA("new", 0xC0000000, 1, null, 4, 128, null) -> file1
        HeapAlloc(general, 0, 4096) -> block1
    )"));
    EXPECT_TRUE(ScratchFolder::exists("new"));
    EXPECT_EQ(FileMode_ReadWrite, 2);
}

TEST_F(FileOpen, ByMode2KeepsWhatTheFileHolds) {
    ScratchFolder::write("old", "text");
    EXPECT_NE(File_OpenMode(0, "old", 2), 0);
    File_Close(0);
    EXPECT_EQ(ScratchFolder::read("old"), "text");
}

TEST_F(FileOpen, ByMode3EmptiesOrMakesTheFile) {
    ScratchFolder::write("old", "text");
    FileRecorder calls;
    EXPECT_NE(File_OpenMode(0, "old", 3), 0);
    EXPECT_TRUE(calls.match(R"(
        CreateFileA("old", 0xC0000000, 1, null, 2, 128, null) -> file1
        HeapAlloc(general, 0, 4096) -> block1
    )"));
    File_Close(0);
    EXPECT_EQ(ScratchFolder::read("old"), "");
    EXPECT_EQ(FileMode_Create, 3);
}

TEST_F(FileOpen, ByMode3TriesAgainToTruncate) {
    ScratchFolder::write("old", "text");
    FileRecorder calls;
    calls.fail("CreateFileA", 1, -1);
    EXPECT_NE(File_OpenMode(0, "old", 3), 0);
    EXPECT_TRUE(calls.match(R"(
        CreateFileA("old", 0xC0000000, 1, null, 2, 128, null)
        CreateFileA("old", 0x40000000, 1, null, 5, 0, null) -> file1
        HeapAlloc(general, 0, 4096) -> block1
    )"));
    File_Close(0);
    EXPECT_EQ(ScratchFolder::read("old"), "");
}

TEST_F(FileOpen, ByMode3TriesAgainAfterAHandleOfZero) {
    ScratchFolder::write("old", "text");
    FileRecorder calls;
    calls.fail("CreateFileA", 1, 0);
    EXPECT_NE(File_OpenMode(0, "old", 3), 0);
    EXPECT_EQ(calls.uses("CreateFileA"), 2);
}

// Wine lets root write to read-only files, so that the refusal is staged.
TEST_F(FileOpen, ByMode3FailsTwiceOnAReadOnlyFile) {
    ScratchFolder::write("old", "text");
    FileRecorder calls;
    calls.failAlways("CreateFileA", -1, ERROR_ACCESS_DENIED);
    EXPECT_EQ(File_OpenMode(0, "old", 3), 0);
    EXPECT_EQ(calls.uses("CreateFileA"), 2);
    EXPECT_EQ(record(0), nullptr);
}

TEST_F(FileOpen, ByMode3FailsTwiceOnAFolder) {
    CreateDirectoryA("sub", nullptr);
    FileRecorder calls;
    EXPECT_EQ(File_OpenMode(0, "sub", 3), 0);
    EXPECT_EQ(calls.uses("CreateFileA"), 2);
    EXPECT_EQ(record(0), nullptr);
}

TEST_F(FileOpen, ByAnotherModeOpensNothing) {
    ScratchFolder::write("file", "x");
    FileRecorder calls;
    EXPECT_EQ(File_OpenMode(0, "file", 0), 0);
    EXPECT_EQ(File_OpenMode(0, "file", 4), 0);
    EXPECT_TRUE(calls.match(""));
}

TEST_F(FileOpen, ReadIsMode1) {
    ScratchFolder::write("file", "x");
    FileRecorder calls;
    EXPECT_NE(File_OpenRead(0, "file"), 0);
    EXPECT_TRUE(calls.match(R"(
        CreateFileA("file", 0x80000000, 1, null, 3, 128, null) -> file1
        HeapAlloc(general, 0, 4096) -> block1
    )"));
}

TEST_F(FileOpen, ByItselfIsMode2) {
    FileRecorder calls;
    EXPECT_NE(File_Open(0, "new"), 0);
    EXPECT_TRUE(calls.match(R"(
        CreateFileA("new", 0xC0000000, 1, null, 4, 128, null) -> file1
        HeapAlloc(general, 0, 4096) -> block1
    )"));
    EXPECT_NE(record(0), nullptr);
}

TEST_F(FileOpen, CreateIsMode3) {
    ScratchFolder::write("old", "text");
    FileRecorder calls;
    EXPECT_NE(File_Create(0, "old"), 0);
    EXPECT_TRUE(calls.match(R"(
        CreateFileA("old", 0xC0000000, 1, null, 2, 128, null) -> file1
        HeapAlloc(general, 0, 4096) -> block1
    )"));
}

TEST_F(FileOpen, CreateTriesAgainToTruncate) {
    ScratchFolder::write("old", "text");
    FileRecorder calls;
    calls.fail("CreateFileA", 1, -1);
    EXPECT_NE(File_Create(0, "old"), 0);
    EXPECT_TRUE(calls.match(R"(
        CreateFileA("old", 0xC0000000, 1, null, 2, 128, null)
        CreateFileA("old", 0x40000000, 1, null, 5, 0, null) -> file1
        HeapAlloc(general, 0, 4096) -> block1
    )"));
}

TEST_F(FileOpen, FillsInTheRecord) {
    openNew(0, "text");
    EXPECT_NE(record(0)->handle, nullptr);
    EXPECT_NE(record(0)->buffer, nullptr);
    EXPECT_EQ(record(0)->bufferSize, 4096);
    EXPECT_EQ(record(0)->bufferLeft, 0);
    EXPECT_EQ(record(0)->bufferFill, 0);
    EXPECT_EQ(record(0)->readMode, 1);
}

TEST_F(FileOpen, LetsOthersReadAndNotWrite) {
    openNew(0, "text");
    HANDLE other =
        CreateFileA("file", GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
    EXPECT_NE(other, INVALID_HANDLE_VALUE);
    CloseHandle(other);
    EXPECT_EQ(CreateFileA("file", GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                          OPEN_EXISTING, 0, nullptr),
              INVALID_HANDLE_VALUE);
}

TEST_F(FileOpen, OfAMissingFileGivesZeroAndLeavesTheRecordEmpty) {
    FileRecorder calls;
    EXPECT_EQ(File_OpenRead(0, "nowhere"), 0);
    EXPECT_EQ(record(0), nullptr);
    EXPECT_EQ(calls.take().size(), 1u) << "no buffer is made";
}

TEST_F(FileOpen, TakesAHandleOfZeroForAFailure) {
    FileRecorder calls;
    calls.fail("CreateFileA", 1, 0);
    EXPECT_EQ(File_OpenRead(0, "file"), 0);
    EXPECT_EQ(record(0), nullptr);
}

TEST_F(FileOpen, OfAMissingFileReleasesTheLooseRecord) {
    FileRecorder calls;
    EXPECT_EQ(File_OpenRead(ObjectId_Any, "nowhere"), 0);
    EXPECT_TRUE(calls.match(R"(
        HeapAlloc(loose, 8, 48) -> block1
        CreateFileA("nowhere", 0x80000000, 1, null, 3, 128, null)
        HeapFree(loose, 0, block1) -> 1
    )"));
    EXPECT_EQ(registry->looseHead, nullptr);
}

// A handle of the test's own, since real ones are small.
int64_t openedWithHandle(uint64_t handle) {
    CallRecorder calls;
    calls.fail("CreateFileA", 1, static_cast<int64_t>(handle));
    return File_OpenRead(0, "file");
}

TEST_F(FileOpen, GivesTheHandlesLow32BitsWithTheirSign) {
    EXPECT_EQ(openedWithHandle(0x1234), 0x1234);
    EXPECT_EQ(openedWithHandle(0x123456789), 0x23456789);
    EXPECT_EQ(openedWithHandle(0x180000000), -0x80000000LL);
}

TEST_F(FileOpen, CutsTheAddressOfALooseRecordTheSameWay) {
    ScratchFolder::write("file", "x");
    const int64_t result = File_OpenRead(ObjectId_Any, "file");
    const auto address = reinterpret_cast<int64_t>(registry->looseHead + 1);
    EXPECT_EQ(result, static_cast<int32_t>(address));
    EXPECT_NE(record(address), nullptr);
}

TEST_F(FileOpen, OfANumberInUseClosesTheEarlierFileFirst) {
    ScratchFolder::write("one", "1");
    ScratchFolder::write("two", "2");
    FileRecorder calls;
    File_OpenRead(3, "one");
    calls.take();
    File_OpenRead(3, "two");
    EXPECT_TRUE(calls.match(R"(
        HeapFree(general, 0, block1) -> 1
        CloseHandle(file1) -> 1
        CreateFileA("two", 0x80000000, 1, null, 3, 128, null) -> file1
        HeapAlloc(general, 0, 4096) -> block1
    )"));
    EXPECT_EQ(calls.live("file"), 1u);
    File_ReadLine(3, 0);
    EXPECT_EQ(textAt(0), "2");
}

TEST_F(FileOpen, OfANumberInUseClosesTheEarlierFileFirstInEveryForm) {
    FileRecorder calls;
    File_Create(3, "file");
    for (const auto open : {File_Create, File_Open}) {
        calls.take();
        EXPECT_NE(open(3, "file"), 0) << "no file of its own stands in its way";
        EXPECT_TRUE(calls.match(R"(
            HeapFree(general, 0, block1) -> 1
            CloseHandle(file1) -> 1
            CreateFileA("file", *) -> file1
            HeapAlloc(general, 0, 4096) -> block1
        )"));
    }
}

// --- Reading bytes ---

class FileReadBytes : public FileTest {
protected:
    // The content is a pattern in which every place can be told from its neighbours.
    static std::string content(size_t size) {
        std::string text(size, ' ');
        for (size_t n = 0; n < size; ++n)
            text[n] = static_cast<char>('A' + (n * 7 + n / 26) % 53);
        return text;
    }

    std::string read(int32_t size) {
        std::string destination(static_cast<size_t>(size) + 1, '#');
        const int64_t count = File_ReadBytes(record(0), destination.data(), size);
        EXPECT_LE(count, size);
        EXPECT_EQ(destination.substr(static_cast<size_t>(count)),
                  std::string(destination.size() - static_cast<size_t>(count), '#'));
        return destination.substr(0, static_cast<size_t>(count));
    }
};

TEST_F(FileReadBytes, FillsTheBufferOnceAndTakesFromIt) {
    const std::string text = content(5000);
    openNew(0, text);
    FileRecorder calls;
    calls.name(record(0)->handle, "file");
    calls.name(record(0)->buffer, "buffer");
    EXPECT_EQ(read(1), text.substr(0, 1));
    EXPECT_TRUE(calls.match("ReadFile(file, buffer, 4096, &4096, null) -> 1"));
    EXPECT_EQ(record(0)->bufferFill, 4096);
    EXPECT_EQ(record(0)->bufferLeft, 4095);
    size_t at = 1;
    for (const int32_t size : {1, 2, 4, 3, 5, 100, 0}) {
        EXPECT_EQ(read(size), text.substr(at, static_cast<size_t>(size)));
        at += static_cast<size_t>(size);
        EXPECT_EQ(record(0)->bufferLeft, 4096 - static_cast<int32_t>(at));
    }
    EXPECT_TRUE(calls.match(""));
}

TEST_F(FileReadBytes, TakesAllThatIsLeftWithoutARefill) {
    const std::string text = content(5000);
    openNew(0, text);
    read(4);
    FileRecorder calls;
    EXPECT_EQ(read(4092), text.substr(4, 4092));
    EXPECT_TRUE(calls.match(""));
    EXPECT_EQ(record(0)->bufferLeft, 0);
}

TEST_F(FileReadBytes, JoinsTheRestOfTheBufferAndTheNextLoad) {
    const std::string text = content(5000);
    openNew(0, text);
    read(4);
    FileRecorder calls;
    EXPECT_EQ(read(4093), text.substr(4, 4093));
    EXPECT_TRUE(calls.match("ReadFile(*, *, 4096, &904, null) -> 1"));
    EXPECT_EQ(record(0)->bufferFill, 904);
    EXPECT_EQ(record(0)->bufferLeft, 903);
    EXPECT_EQ(read(10), text.substr(4097, 10));
}

TEST_F(FileReadBytes, PassesTheBufferByFromItsOwnSizeOn) {
    const std::string text = content(9000);
    openNew(0, text);
    FileRecorder calls;
    EXPECT_EQ(read(4096), text.substr(0, 4096));
    EXPECT_TRUE(calls.match("ReadFile(*, *, 4096, &4096, null) -> 1"));
    EXPECT_EQ(record(0)->bufferFill, 0);
    EXPECT_EQ(record(0)->bufferLeft, 0);
    EXPECT_EQ(read(4097), text.substr(4096, 4097));
    EXPECT_TRUE(calls.match("ReadFile(*, *, 4097, &4097, null) -> 1"));
}

TEST_F(FileReadBytes, RefillsJustBelowTheBuffersSize) {
    const std::string text = content(9000);
    openNew(0, text);
    EXPECT_EQ(read(4095), text.substr(0, 4095));
    EXPECT_EQ(record(0)->bufferFill, 4096);
    EXPECT_EQ(record(0)->bufferLeft, 1);
}

TEST_F(FileReadBytes, PassesTheBufferByForALargeRest) {
    const std::string text = content(20000);
    openNew(0, text);
    read(10);
    FileRecorder calls;
    EXPECT_EQ(read(8182), text.substr(10, 8182)) << "4086 left, and 4096 from the file";
    EXPECT_TRUE(calls.match("ReadFile(*, *, 4096, &4096, null) -> 1"));
    EXPECT_EQ(record(0)->bufferLeft, 0);
    EXPECT_EQ(read(3), text.substr(8192, 3));
}

TEST_F(FileReadBytes, GivesLessAtTheEndOfTheFile) {
    openNew(0, "abc");
    EXPECT_EQ(read(5), "abc");
    EXPECT_EQ(record(0)->bufferLeft, 0);
    EXPECT_EQ(read(5), "");
    EXPECT_EQ(read(1), "");
}

TEST_F(FileReadBytes, GivesLessAtTheEndAlsoPastTheBuffer) {
    const std::string text = content(5000);
    openNew(0, text);
    read(10);
    EXPECT_EQ(read(10000), text.substr(10));
    EXPECT_EQ(read(10000), "");
}

TEST_F(FileReadBytes, TakesAReadErrorForTheEndOfTheFile) {
    openNew(0, content(9000));
    read(10);
    FileRecorder calls;
    calls.failAlways("ReadFile", 0, ERROR_READ_FAULT);
    EXPECT_EQ(read(5000).size(), 4086u);
    EXPECT_EQ(read(1), "");
    EXPECT_EQ(read(5000), "");
    EXPECT_EQ(File_IsEof(0), 1);
}

TEST_F(FileReadBytes, FlushesFirstWhatIsToBeWritten) {
    ScratchFolder::write("file", "0123456789");
    File_OpenMode(0, "file", 2);
    FileHandleRec* const file = record(0);
    memcpy(file->buffer, "abc", 3);
    file->bufferLeft = 4093;
    file->readMode = 0;
    FileRecorder calls;
    EXPECT_EQ(read(2), "34");
    EXPECT_TRUE(calls.match(R"(
        WriteFile(*, *, 3, &3, null) -> 1
        ReadFile(*, *, 4096, &7, null) -> 1
    )"));
    EXPECT_EQ(file->readMode, 1);
    EXPECT_EQ(file->bufferLeft, 5);
}

// --- Flushing ---

using FileFlush = FileTest;

TEST_F(FileFlush, FindsNothingToDoWhileReading) {
    openNew(0, "text");
    File_IsEof(0);
    FileRecorder calls;
    EXPECT_EQ(File_Flush(record(0)), 0);
    EXPECT_TRUE(calls.match(""));
    EXPECT_EQ(record(0)->bufferLeft, 4);
}

TEST_F(FileFlush, WritesWhatTheBufferHolds) {
    File_Create(0, "new");
    FileHandleRec* const file = record(0);
    memcpy(file->buffer, "hello", 5);
    file->bufferLeft = 4091;
    file->readMode = 0;
    FileRecorder calls;
    calls.name(file->handle, "file");
    calls.name(file->buffer, "buffer");
    EXPECT_EQ(File_Flush(file), 5);
    EXPECT_TRUE(calls.match("WriteFile(file, buffer, 5, &5, null) -> 1"));
    EXPECT_EQ(file->bufferLeft, 4096);
    EXPECT_EQ(file->readMode, 0);
    File_Close(0);
    EXPECT_EQ(ScratchFolder::read("new"), "hello");
}

TEST_F(FileFlush, GivesZeroWhenNothingCouldBeWritten) {
    File_Create(0, "new");
    record(0)->bufferLeft = 4091;
    record(0)->readMode = 0;
    FileRecorder calls;
    calls.fail("WriteFile", 1, 0);
    EXPECT_EQ(File_Flush(record(0)), 0);
    EXPECT_EQ(record(0)->bufferLeft, 4096);
}

// --- The end of the file ---

using FileReadResult = FileTest;

// Delivers a byte, and says that it has failed.
BOOL readAndRefuse(HANDLE, void* destination, DWORD, DWORD* count, OVERLAPPED*) {
    *static_cast<char*>(destination) = 'x';
    *count = 1;
    return FALSE;
}

TEST_F(FileReadResult, IsNotLookedAtByARead) {
    openNew(0, "");
    FileRecorder calls;
    calls.replace<hook::ReadFile>(readAndRefuse);
    char byte = 0;
    EXPECT_EQ(File_ReadBytes(record(0), &byte, 1), 1);
    EXPECT_EQ(byte, 'x');
}

TEST_F(FileReadResult, IsNotLookedAtByTheLookAhead) {
    openNew(0, "");
    FileRecorder calls;
    calls.replace<hook::ReadFile>(readAndRefuse);
    EXPECT_EQ(File_IsEof(0), 0);
}

TEST_F(FileReadResult, IsLookedAtByTheLookAheadWithoutABuffer) {
    openNewWithoutBuffer(0, "");
    FileRecorder calls;
    calls.replace<hook::ReadFile>(readAndRefuse);
    EXPECT_EQ(File_IsEof(0), -1);
    EXPECT_EQ(calls.uses("SetFilePointer"), 0);
}

using FileIsEof = FileTest;

TEST_F(FileIsEof, GivesZeroForAnUnknownFile) {
    EXPECT_EQ(File_IsEof(0), 0);
    EXPECT_EQ(File_IsEof(5), 0);
}

TEST_F(FileIsEof, GivesOneAtOnceForAnEmptyFile) {
    openNew(0, "");
    EXPECT_EQ(File_IsEof(0), 1);
}

TEST_F(FileIsEof, LooksAheadWithoutLosingTheByte) {
    openNew(0, "ab");
    EXPECT_EQ(File_IsEof(0), 0);
    EXPECT_EQ(File_IsEof(0), 0);
    EXPECT_EQ(record(0)->bufferLeft, 2);
    char bytes[2];
    EXPECT_EQ(File_ReadBytes(record(0), bytes, 2), 2);
    EXPECT_EQ(std::string(bytes, 2), "ab");
    EXPECT_EQ(File_IsEof(0), 1);
}

TEST_F(FileIsEof, IsNotTheEndOfTheBuffer) {
    openNew(0, std::string(4096, 'x') + "y");
    char bytes[4096];
    File_ReadBytes(record(0), bytes, 1);
    File_ReadBytes(record(0), bytes, 4095);
    EXPECT_EQ(record(0)->bufferLeft, 0);
    EXPECT_EQ(File_IsEof(0), 0);
    EXPECT_EQ(record(0)->bufferFill, 1);
}

TEST_F(FileIsEof, WithoutABufferMovesTheFileBackByOne) {
    openNewWithoutBuffer(0, "ab");
    FileRecorder calls;
    calls.name(record(0)->handle, "file");
    EXPECT_EQ(File_IsEof(0), 0);
    EXPECT_TRUE(calls.match(R"(
        ReadFile(file, *, 1, &1, null) -> 1
        SetFilePointer(file, -1, null, 1) -> 0
    )"));
}

TEST_F(FileIsEof, WithoutABufferGivesMinusOne) {
    openNewWithoutBuffer(0, "");
    FileRecorder calls;
    EXPECT_EQ(File_IsEof(0), -1);
    EXPECT_EQ(calls.uses("SetFilePointer"), 0);
}

TEST_F(FileIsEof, WithoutABufferGivesMinusOneForAReadError) {
    openNewWithoutBuffer(0, "ab");
    FileRecorder calls;
    calls.fail("ReadFile", 1, 0);
    EXPECT_EQ(File_IsEof(0), -1);
}

// --- Closing ---

using FileClose = FileTest;

TEST_F(FileClose, FreesTheBufferAndClosesTheHandle) {
    ScratchFolder::write("file", "x");
    FileRecorder calls;
    File_OpenRead(0, "file");
    calls.take();
    File_Close(0);
    EXPECT_TRUE(calls.match(R"(
        HeapFree(general, 0, block1) -> 1
        CloseHandle(file1) -> 1
    )"));
    EXPECT_EQ(record(0), nullptr);
}

TEST_F(FileClose, MayBeCalledTwice) {
    openNew(0, "x");
    File_Close(0);
    FileRecorder calls;
    File_Close(0);
    EXPECT_TRUE(calls.match(""));
}

TEST_F(FileClose, DoesNothingForAnUnknownFile) {
    FileRecorder calls;
    File_Close(0);
    File_Close(15);
    EXPECT_TRUE(calls.match(""));
}

TEST_F(FileClose, IgnoresAny) {
    ScratchFolder::write("file", "x");
    File_OpenRead(ObjectId_Any, "file");
    FileRecorder calls;
    File_Close(ObjectId_Any);
    EXPECT_TRUE(calls.match(""));
    EXPECT_NE(registry->looseHead, nullptr);
}

TEST_F(FileClose, ReleasesALooseRecordLast) {
    ScratchFolder::write("file", "x");
    FileRecorder calls;
    File_OpenRead(ObjectId_Any, "file");
    calls.take();
    File_Close(reinterpret_cast<ObjectId>(registry->looseHead + 1));
    EXPECT_TRUE(calls.match(R"(
        HeapFree(general, 0, block2) -> 1
        CloseHandle(file1) -> 1
        HeapFree(loose, 0, block1) -> 1
    )"));
}

TEST_F(FileClose, WritesOutWhatIsStillToBeWritten) {
    File_Create(0, "new");
    memcpy(record(0)->buffer, "hello", 5);
    record(0)->bufferLeft = 4091;
    record(0)->readMode = 0;
    FileRecorder calls;
    File_Close(0);
    EXPECT_TRUE(calls.match(R"(
        WriteFile(*, *, 5, &5, null) -> 1
        HeapFree(general, 0, *) -> 1
        CloseHandle(*) -> 1
    )"));
}

TEST_F(FileClose, WithoutABufferOnlyClosesTheHandle) {
    openNewWithoutBuffer(0, "x");
    FileRecorder calls;
    File_Close(0);
    EXPECT_TRUE(calls.match("CloseHandle(*) -> 1"));
    EXPECT_EQ(record(0), nullptr);
}

// --- A file without a number ---

TEST_F(FileOpen, WithoutANumberIsReadAndAskedForItsEnd) {
    ScratchFolder::write("file", "ab");
    const int64_t opened = File_OpenRead(ObjectId_Any, "file");
    ObjectId id = 0;
    Registry_IterStart(registry);
    ASSERT_NE(Registry_IterNext(registry, &id), nullptr);
    EXPECT_EQ(static_cast<int32_t>(id), opened);
    EXPECT_EQ(File_IsEof(id), 0);
    File_ReadLine(id, 0);
    EXPECT_EQ(textAt(0), "ab");
    EXPECT_NE(File_IsEof(id), 0);
    File_Close(id);
}

TEST_F(FileOpen, ThatFailsOnANumberInUseLeavesItEmpty) {
    openNew(3, "ab");
    EXPECT_EQ(File_OpenRead(3, "nowhere"), 0);
    EXPECT_EQ(record(3), nullptr);
    EXPECT_EQ(File_IsEof(3), 0);
}

TEST_F(FileOpen, ToReadAndWriteMayFail) {
    EXPECT_EQ(File_Open(3, "no folder\\file"), 0);
    EXPECT_EQ(record(3), nullptr);
}

TEST_F(FileOpen, ToCreateFailsAfterTwoTries) {
    CallRecorder calls;
    EXPECT_EQ(File_Create(3, "no folder\\file"), 0);
    EXPECT_EQ(calls.uses("CreateFileA"), 2);
    EXPECT_EQ(record(3), nullptr);
}

} // namespace
