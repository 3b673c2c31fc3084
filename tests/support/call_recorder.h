// A CallRecorder watches what the code under test asks of Windows, without any hook in that code:
// from its construction to its destruction the test program's import table, the functions handed
// out by GetProcAddress and the method tables of the DirectX interfaces lead through it. It writes
// one line a call, in order, and can make a call fail, replace it, or act just before or after it.
//
//     TEST(DrawText, GivesBothColoursToThisCallAlone) {
//         DrawTarget target = targetOn(memoryDc);
//         CallRecorder calls;
//         calls.name(memoryDc, "dc");             // else it would be "dc1", by order of appearance
//         Draw_Begin(&target);
//         calls.take();                           // forget what was recorded up to here
//         Draw_Text(10, 20, "row", 0xFFFFFF, 0);
//         EXPECT_TRUE(calls.match(R"(
//             SetTextColor(dc, 0xFFFFFF) -> 0
//             SetBkColor(dc, 0)
//             MoveToEx(dc, 10, 20, null) -> 1
//             TextOutA(dc, 0, 0, "row", 3) -> *
//             ...
//         )"));
//     }
//
// Expected lines: numbers are compared by value, so 0xFF and 255 are the same; `*` stands for
// anything within a line; without ` -> ` any result will do; a line `...` stands for any number of
// lines; blank lines and lines that begin with // are for the reader. Texts are quoted, structures
// stand in braces with the fields that the callers set, what a call wrote through a pointer is
// shown as &value, other memory as `ptr`. Methods read
// `IDirectDrawSurface7::Flip(surface1, null, 1) -> 0`. Whatever a call hands out gets a name with
// the lowest free number (brush1, heap2, surface1) until it is given back, so that the same steps
// leave the same lines; live() counts what was not given back.
//
//     calls.fail("CreateFontA", 2, 0);                         // the second use from now gives 0
//     calls.fail("IDirectDraw7::SetDisplayMode", 1, DDERR_UNSUPPORTED);
//     calls.failAlways("HeapAlloc", 0);
//     calls.replace<hook::MessageBoxA>([](HWND, LPCSTR, LPCSTR, UINT) { return IDOK; });
//     calls.before("IDirectDrawSurface7::Flip", 3, [&] { devices.ddraw.loseSurfaces(); });
//
// Calls are named as in hooked_functions.inc and hooked_methods.inc; a name that is not there, or
// that this program does not import, fails the test. Lines and take() are of the thread that made
// the recorder; what other threads call is kept apart (takeOtherThreads). One recorder at a time.
#pragma once

#include "tests/support/call_hook.h"

#include <gtest/gtest.h>

#include <functional>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

class CallRecorder {
public:
    CallRecorder();
    ~CallRecorder();
    CallRecorder(const CallRecorder&) = delete;
    CallRecorder& operator=(const CallRecorder&) = delete;

    // --- Looking at what was called ---

    // Compares what was recorded since the last look with `expected`, and forgets it. On failure
    // the message shows the first line that differs and its neighbours.
    testing::AssertionResult match(std::string_view expected);

    // What was recorded since the last look; forgets it.
    std::vector<std::string> take();
    std::vector<std::string> takeOtherThreads();

    // How often the call was made since construction, recorded or not, on any thread.
    int uses(std::string_view call) const;

    // Record only these, or all but these. An entry is a call ("Sleep", "IDirectDraw7::Release")
    // or a family: a library ("GDI32") or an interface ("IDirectDraw7"). The critical section
    // functions are recorded only when named here, since the C library calls them as well.
    void only(std::initializer_list<const char*> callsOrFamilies);
    void except(std::initializer_list<const char*> callsOrFamilies);

    // Gives a handle or an address its name in the lines.
    template <typename T>
    void name(T* value, const char* text) {
        nameAddress(reinterpret_cast<uint64_t>(value), text);
    }

    // Also writes every call of take()'s thread to the standard output as it begins: for a run that
    // will not come back.
    void echo();

    // The thread whose calls take() gives; at first the one that made the recorder.
    void follow(DWORD threadId);

    // --- Changing what a call does ---

    // The `nth` use from now does not happen: it gives `result` and sets the last error. A routine
    // without a result just does nothing.
    void fail(std::string_view call, int nth, int64_t result, DWORD lastError = 0);
    void failAlways(std::string_view call, int64_t result, DWORD lastError = 0);
    // No call fails any more.
    void failNothing();

    // Runs `action` just before or just after the `nth` use from now, on the calling thread.
    void before(std::string_view call, int nth, std::function<void()> action);
    void after(std::string_view call, int nth, std::function<void()> action);

    // Every use goes to `routine` from here on. It may call original<Hook>() itself.
    template <typename Hook, typename Routine>
    void replace(Routine routine) {
        requireHook(Hook::name);
        Hook::replacement = std::move(routine);
    }
    // The same, where it does not matter whether this program imports the function: for stand-ins.
    template <typename Hook, typename Routine>
    void substitute(Routine routine) {
        Hook::replacement = std::move(routine);
    }
    template <typename Hook>
    static auto original() {
        return Hook::real;
    }

    // --- Counting what was handed out and not given back ---

    // Of one kind ("brush", "pen", "font", "bitmap", "icon", "dc", "heap", "block", "global",
    // "file", "search", "library", "thread", "process", "pipe", "handle", "surface", ...).
    size_t live(std::string_view kind) const;
    // All of them by name, in order of name: for printing and comparing.
    std::vector<std::string> liveNames() const;

private:
    void nameAddress(uint64_t value, const char* text);
    static void requireHook(std::string_view call);
};
