// What the living recorder has seen so far: shared by the recorder, which reads it, and the watched
// calls, which write it. Touched only under a RecordingLock.
#pragma once

#include "tests/support/call_site.h"

#include <atomic>
#include <string>
#include <vector>

struct RecordedLine {
    uint64_t id; // ascending
    std::string text;
};

struct Recording {
    DWORD followedThread = 0;
    std::vector<RecordedLine> lines;        // of the followed thread
    std::vector<RecordedLine> otherThreads; // of all others
    std::vector<std::string> included;      // calls and families; empty: all
    std::vector<std::string> excluded;
    bool isEchoing = false;
};

inline Recording recording;

// The number of the living recorder, or 0. A call that outlives its recorder leaves no trace.
inline std::atomic<uint64_t> currentRecorder = 0;

// Neither a mutex nor a thread-local of the C++ library: both make calls of their own. Quiet, since
// what the library does under the lock may be a watched call.
class RecordingLock {
public:
    RecordingLock();
    ~RecordingLock();
    RecordingLock(const RecordingLock&) = delete;
    RecordingLock& operator=(const RecordingLock&) = delete;

private:
    QuietScope quiet;
};
