// A runtime with files, in an empty folder.
#pragma once

#include "runtime/file.h"
#include "tests/support/runtime_fixture.h"
#include "tests/support/scratch_folder.h"

class FileTest : public RuntimeTest {
protected:
    ~FileTest() override { File_SubsystemEnd(); }

    // Makes a file of that content and opens it as file `id`.
    static void openNew(ObjectId id, const std::string& content, const char* name = "file") {
        ScratchFolder::write(name, content);
        EXPECT_NE(File_OpenRead(id, name), 0);
    }

    // The same, as if the heap had been exhausted just then: the file has no buffer.
    static void openNewWithoutBuffer(ObjectId id, const std::string& content) {
        CallRecorder calls;
        calls.fail("HeapAlloc", 1, 0);
        openNew(id, content);
    }

    FileHandleRec* record(ObjectId id) const {
        return static_cast<FileHandleRec*>(Registry_Lookup(registry, id));
    }

    ScratchFolder folder;
    ObjectRegistry* registry = File_SubsystemInit();
};

// A recorder that shows the calls about files and heaps alone.
class FileRecorder : public HeapRecorder {
public:
    FileRecorder() {
        only({"CreateFileA", "ReadFile", "WriteFile", "SetFilePointer", "CloseHandle", "HeapAlloc",
              "HeapReAlloc", "HeapFree"});
    }
};
