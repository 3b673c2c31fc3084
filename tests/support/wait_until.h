// Waiting for another thread or process without guessing how long it takes.
#pragma once

#include "tests/support/call_recorder.h"

// Whether `condition` came true within ten seconds. Its calls and its sleeps are not recorded.
template <typename Condition>
bool waitUntil(Condition condition) {
    const QuietScope quiet;
    for (int turn = 0; turn < 10000; ++turn) {
        if (condition())
            return true;
        Sleep(1);
    }
    return condition();
}
