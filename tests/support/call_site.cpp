#include "tests/support/call_site.h"

#include "tests/support/call_hook.h"
#include "tests/support/call_names.h"
#include "tests/support/recording.h"

#include <algorithm>
#include <cstdio>

namespace {

SRWLOCK lock = SRWLOCK_INIT;
uint64_t lastLine = 0;

// Made before any call is watched: making it calls watched functions.
const DWORD quietSlot = TlsAlloc();

intptr_t quietDepth() { return reinterpret_cast<intptr_t>(TlsGetValue(quietSlot)); }

void setQuietDepth(intptr_t depth) { TlsSetValue(quietSlot, reinterpret_cast<void*>(depth)); }

bool isListed(const std::vector<std::string>& list, const CallSite& site) {
    return std::any_of(list.begin(), list.end(), [&site](const std::string& entry) {
        return entry == site.name || entry == site.family;
    });
}

// The C and C++ libraries in this program call these at times of their own.
const std::vector<std::string> onlyWhenNamed = {"EnterCriticalSection", "LeaveCriticalSection",
                                                "InitializeCriticalSection"};

bool isRecorded(const CallSite& site) {
    const bool isIncluded = recording.included.empty() ? !isListed(onlyWhenNamed, site)
                                                       : isListed(recording.included, site);
    return isIncluded && !isListed(recording.excluded, site);
}

// By the real function: this program's own calls of it come by a hook, too.
bool isFollowedThread() { return hook::GetCurrentThreadId::real() == recording.followedThread; }

std::vector<RecordedLine>& linesOfThisThread() {
    return isFollowedThread() ? recording.lines : recording.otherThreads;
}

std::string lineText(const CallSite& site, const ShownArguments& arguments) {
    std::string text = std::string(site.name) + "(";
    for (size_t at = 0; at < arguments.texts.size(); ++at)
        text += (at > 0 ? ", " : "") + arguments.texts[at];
    return text + ")";
}

void echoLine(const std::string& text) {
    if (!recording.isEchoing || !isFollowedThread())
        return;
    printf("%s\n", text.c_str());
    fflush(stdout);
}

bool isHeapBlock(const CallSite& site) { return std::string_view(site.result.kind) == "block"; }

// Nothing happens where the line was taken while its call still ran.
void replaceLine(std::vector<RecordedLine>& lines, uint64_t id, const std::string& text) {
    const auto found = std::find_if(lines.rbegin(), lines.rend(),
                                    [id](const RecordedLine& line) { return line.id <= id; });
    if (found != lines.rend() && found->id == id)
        found->text = text;
}

} // namespace

RecordingLock::RecordingLock() { AcquireSRWLockExclusive(&lock); }
RecordingLock::~RecordingLock() { ReleaseSRWLockExclusive(&lock); }

QuietScope::QuietScope() { setQuietDepth(quietDepth() + 1); }
QuietScope::~QuietScope() { setQuietDepth(quietDepth() - 1); }

bool WatchedCall::isWanted() {
    if (currentRecorder == 0)
        return false;
    const DWORD lastError = GetLastError();
    const bool isQuiet = quietDepth() > 0;
    SetLastError(lastError);
    return !isQuiet;
}

WatchedCall::WatchedCall(CallSite& called)
    : site(called), recorder(currentRecorder), lastError(GetLastError()) {}

void WatchedCall::begin(const ShownArguments& arguments) {
    {
        const RecordingLock locked;
        use = ++site.uses;
        if (isRecorded(site)) {
            line = ++lastLine;
            linesOfThisThread().push_back({line, lineText(site, arguments)});
            echoLine(linesOfThisThread().back().text);
        }
    }
    runActions(true);
    findFailure();
    SetLastError(lastError);
}

void WatchedCall::findFailure() {
    const RecordingLock locked;
    for (const PlannedFailure& planned : site.failures)
        if (planned.atUse == 0 || planned.atUse == use) {
            failing = true;
            failure = planned;
        }
}

void WatchedCall::happened() { lastError = failing ? failure.lastError : GetLastError(); }

void WatchedCall::noteNames(const ShownArguments& arguments, uint64_t rawResult) const {
    if (failing)
        return;
    const ClosingRole& closing = site.closing;
    const bool closes = closing.argument >= 0 && !(closing.onlyAtZero && rawResult != 0);
    if (closes)
        call_names::close(arguments.raw[static_cast<size_t>(closing.argument)]);
    if (!site.result.kind)
        return;
    const uint64_t first = arguments.raw[0];
    if (site.result.opened)
        call_names::open(rawResult, site.result.kind, isHeapBlock(site) ? first : 0);
    else if (site.result.byArgument)
        call_names::give(rawResult, site.result.kind + std::to_string(first));
    else
        call_names::of(rawResult, site.result.kind);
}

void WatchedCall::end(const ShownArguments& arguments, const std::string& resultText) {
    {
        const RecordingLock locked;
        std::string text = lineText(site, arguments) + (resultText.empty() ? "" : " -> ");
        text += resultText;
        if (recorder == currentRecorder)
            replaceLine(linesOfThisThread(), line, text);
    }
    runActions(false);
    SetLastError(lastError);
}

void WatchedCall::runActions(bool isBefore) const {
    std::vector<std::function<void()>> due;
    {
        const RecordingLock locked;
        for (const PlannedAction& planned : site.actions)
            if (recorder == currentRecorder && planned.isBefore == isBefore && planned.atUse == use)
                due.push_back(planned.action);
    }
    for (const auto& action : due)
        action();
}
