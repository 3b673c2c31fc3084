#include "compat/ddraw/vertical_blank.h"

#include <algorithm>

namespace {

constexpr DWORD usualRate = 60;
constexpr DWORD slowestRate = 10; // less is no rate: 0 and 1 mean the device's default
constexpr DWORD highResolutionTimer = 2;
constexpr LONGLONG timerTicks = 10'000'000; // per second
constexpr DWORD blankLines = 40;            // after 1,000 lines; the usual timings have 3 to 5 %

LONGLONG now() {
    LARGE_INTEGER counter;
    QueryPerformanceCounter(&counter);
    return counter.QuadPart;
}

// Systems before Windows 10 have no timer of high resolution.
HANDLE makeTimer() {
    HANDLE timer = CreateWaitableTimerExW(nullptr, nullptr, highResolutionTimer, TIMER_ALL_ACCESS);
    return timer ? timer : CreateWaitableTimerExW(nullptr, nullptr, 0, TIMER_ALL_ACCESS);
}

void sleepUntil(VerticalBlank* blank, LONGLONG due) {
    if (!blank->timer)
        blank->timer = makeTimer();
    LARGE_INTEGER span; // negative: from now on
    span.QuadPart = -((due - now()) * timerTicks / blank->frequency);
    if (span.QuadPart < 0 && SetWaitableTimer(blank->timer, &span, 0, nullptr, nullptr, FALSE))
        WaitForSingleObject(blank->timer, INFINITE);
}

void waitForTimer(VerticalBlank* blank) {
    const LONGLONG passed = (now() - blank->last) / blank->period;
    blank->last += (passed + 1) * blank->period;
    sleepUntil(blank, blank->last);
}

// Returns whether it waited. Wine's compositor does not wait at all, and one that serves a faster
// monitor returns too early for this one.
bool waitForCompositor(VerticalBlank* blank) {
    if (!blank->waitForComposition || blank->waitForComposition() != S_OK)
        return false;
    const LONGLONG end = now();
    if (end - blank->last < blank->period * 3 / 4)
        return false;
    blank->last = end;
    return true;
}

} // namespace

void VerticalBlank_Start(VerticalBlank* blank, DWORD rate) {
    LARGE_INTEGER frequency;
    QueryPerformanceFrequency(&frequency);
    blank->frequency = frequency.QuadPart;
    blank->period = frequency.QuadPart / rate;
    blank->last = now();
    if (!blank->library)
        blank->library = LoadLibraryExA("dwmapi.dll", nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
    if (blank->library)
        blank->waitForComposition = reinterpret_cast<HRESULT(WINAPI*)()>(
            reinterpret_cast<void*>(GetProcAddress(blank->library, "DwmFlush")));
}

void VerticalBlank_End(VerticalBlank* blank) {
    if (blank->timer)
        CloseHandle(blank->timer);
    if (blank->library)
        FreeLibrary(blank->library);
    *blank = {};
}

void VerticalBlank_Wait(VerticalBlank* blank) {
    if (!waitForCompositor(blank))
        waitForTimer(blank);
}

DWORD VerticalBlank_ScanLine(const VerticalBlank& blank, DWORD height) {
    const LONGLONG since = (now() - blank.last) % blank.period;
    const DWORD lines = height + std::max(height * blankLines / 1000, DWORD{1});
    return static_cast<DWORD>(since * lines / blank.period);
}

DWORD VerticalBlank_RateOf(HMONITOR monitor) {
    MONITORINFOEXW info{};
    info.cbSize = sizeof info;
    DEVMODEW mode{};
    mode.dmSize = sizeof mode;
    if (!GetMonitorInfoW(monitor, reinterpret_cast<MONITORINFO*>(&info)) ||
        !EnumDisplaySettingsW(info.szDevice, ENUM_CURRENT_SETTINGS, &mode))
        return usualRate;
    return mode.dmDisplayFrequency < slowestRate ? usualRate : mode.dmDisplayFrequency;
}
