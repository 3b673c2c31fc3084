// A runtime that is fresh for each test: its three private heaps, the accumulator and nothing else.
#pragma once

#include "runtime/heap.h"
#include "runtime/heap_state.h"
#include "runtime/program.h"
#include "runtime/text.h"
#include "tests/support/call_recorder.h"
#include "tests/support/child_run.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

class RuntimeTest : public testing::Test {
protected:
    RuntimeTest() {
        GeneralHeap = HeapCreate(0, 4096, 0);
        Heap_SubsystemInit();
        Text_SubsystemInit();
    }
    ~RuntimeTest() override {
        HeapDestroy(TextHeap);
        HeapDestroy(LooseHeap);
        HeapDestroy(GeneralHeap);
    }
    RuntimeTest(const RuntimeTest&) = delete;
    RuntimeTest& operator=(const RuntimeTest&) = delete;
};

// A recorder that knows the three heaps by name and shows their calls alone.
class HeapRecorder : public CallRecorder {
public:
    HeapRecorder() {
        name(GeneralHeap, "general");
        name(LooseHeap, "loose");
        name(TextHeap, "text");
        only({"HeapCreate", "HeapAlloc", "HeapReAlloc", "HeapFree", "HeapDestroy"});
    }
};

// Makes every reallocation from here on move its block, as the system may do at any time.
inline void moveOnReallocation(CallRecorder& calls) {
    calls.replace<hook::HeapReAlloc>([](HANDLE heap, DWORD flags, void* old, SIZE_T size) {
        const QuietScope quiet;
        const SIZE_T oldSize = HeapSize(heap, 0, old);
        void* moved = HeapAlloc(heap, flags, size);
        memcpy(moved, old, oldSize < size ? oldSize : size);
        memset(old, '#', oldSize); // whoever still reads the old place finds this
        HeapFree(heap, 0, old);
        return moved;
    });
}

// The text that an operation built in the accumulator at `place`.
inline std::string textAt(int32_t place) { return TextBase + place; }
