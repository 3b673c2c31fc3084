#include "tests/support/call_recorder.h"

#include "tests/support/call_hooks.h"
#include "tests/support/call_names.h"
#include "tests/support/line_difference.h"

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstdlib>

namespace {

struct Line {
    uint64_t id;
    std::string text;
};

struct Recording {
    DWORD followedThread = 0;
    std::vector<Line> lines;
    std::vector<Line> otherThreads;
    std::vector<std::string> included;
    std::vector<std::string> excluded;
    bool isEchoing = false;
};

// Neither a mutex nor a thread-local of the C++ library: both make calls of their own.
SRWLOCK lock = SRWLOCK_INIT;
std::atomic<uint64_t> current = 0; // the number of the living recorder, or 0
uint64_t lastRecorder = 0;
uint64_t lastLine = 0;
Recording recording;
CallSite unknownCall{"", "", {}, {}}; // takes the plans for misspelt calls

// Quiet, since what the C++ library does on the way may be a watched call.
class Locked {
public:
    Locked() { AcquireSRWLockExclusive(&lock); }
    ~Locked() { ReleaseSRWLockExclusive(&lock); }
    Locked(const Locked&) = delete;
    Locked& operator=(const Locked&) = delete;

private:
    QuietScope quiet;
};

DWORD quietSlot() {
    static const DWORD slot = TlsAlloc();
    return slot;
}

intptr_t quietDepth() { return reinterpret_cast<intptr_t>(TlsGetValue(quietSlot())); }

void setQuietDepth(intptr_t depth) { TlsSetValue(quietSlot(), reinterpret_cast<void*>(depth)); }

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
std::vector<Line>& linesOfThisThread() {
    const DWORD thread = hook::GetCurrentThreadId::real();
    return thread == recording.followedThread ? recording.lines : recording.otherThreads;
}

std::string lineText(const CallSite& site, const ShownArguments& arguments) {
    std::string text = std::string(site.name) + "(";
    for (size_t at = 0; at < arguments.texts.size(); ++at)
        text += (at > 0 ? ", " : "") + arguments.texts[at];
    return text + ")";
}

void echoLine(const std::string& text) {
    if (!recording.isEchoing)
        return;
    printf("%s\n", text.c_str());
    fflush(stdout);
}

bool isHeapBlock(const CallSite& site) { return std::string_view(site.result.kind) == "block"; }

// Nothing happens where the line was taken while its call still ran.
void replaceLine(std::vector<Line>& lines, uint64_t id, const std::string& text) {
    const auto found = std::find_if(lines.rbegin(), lines.rend(),
                                    [id](const Line& line) { return line.id <= id; });
    if (found != lines.rend() && found->id == id)
        found->text = text;
}

std::vector<std::string> takeLines(std::vector<Line>& lines) {
    const Locked locked;
    std::vector<std::string> texts;
    for (const Line& line : lines)
        texts.push_back(line.text);
    lines.clear();
    return texts;
}

CallSite& siteOf(std::string_view call) {
    CallSite* site = findCall(call);
    return site ? *site : unknownCall;
}

} // namespace

QuietScope::QuietScope() { setQuietDepth(quietDepth() + 1); }
QuietScope::~QuietScope() { setQuietDepth(quietDepth() - 1); }

bool WatchedCall::isWanted() {
    if (current == 0)
        return false;
    const DWORD lastError = GetLastError();
    const bool isQuiet = quietDepth() > 0;
    SetLastError(lastError);
    return !isQuiet;
}

WatchedCall::WatchedCall(CallSite& called)
    : site(called), recorder(current), lastError(GetLastError()) {}

void WatchedCall::begin(const ShownArguments& arguments) {
    {
        const Locked locked;
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
    const Locked locked;
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
        const Locked locked;
        std::string text = lineText(site, arguments) + (resultText.empty() ? "" : " -> ");
        text += resultText;
        if (recorder == current)
            replaceLine(linesOfThisThread(), line, text);
    }
    runActions(false);
    SetLastError(lastError);
}

void WatchedCall::runActions(bool isBefore) const {
    std::vector<std::function<void()>> due;
    {
        const Locked locked;
        for (const PlannedAction& planned : site.actions)
            if (recorder == current && planned.isBefore == isBefore && planned.atUse == use)
                due.push_back(planned.action);
    }
    for (const auto& action : due)
        action();
}

CallRecorder::CallRecorder() {
    if (current != 0) {
        fprintf(stderr, "There is a CallRecorder already: only one at a time.\n");
        abort();
    }
    recording = Recording();
    recording.followedThread = GetCurrentThreadId();
    call_names::clear();
    forEachCall([](CallSite& site) {
        site.uses = 0;
        site.failures.clear();
        site.actions.clear();
    });
    quietSlot();
    installHooks();
    current = ++lastRecorder;
}

CallRecorder::~CallRecorder() {
    removeHooks();
    current = 0;
}

testing::AssertionResult CallRecorder::match(std::string_view expected) {
    const QuietScope quiet;
    const std::string difference = lineDifference(expectedLines(expected), take());
    if (difference.empty())
        return testing::AssertionSuccess();
    return testing::AssertionFailure() << difference;
}

std::vector<std::string> CallRecorder::take() { return takeLines(recording.lines); }

std::vector<std::string> CallRecorder::takeOtherThreads() {
    return takeLines(recording.otherThreads);
}

int CallRecorder::uses(std::string_view call) const {
    requireHook(call);
    const Locked locked;
    return siteOf(call).uses;
}

void CallRecorder::only(std::initializer_list<const char*> callsOrFamilies) {
    const Locked locked;
    recording.included.assign(callsOrFamilies.begin(), callsOrFamilies.end());
}

void CallRecorder::except(std::initializer_list<const char*> callsOrFamilies) {
    const Locked locked;
    recording.excluded.assign(callsOrFamilies.begin(), callsOrFamilies.end());
}

void CallRecorder::echo() { recording.isEchoing = true; }

void CallRecorder::follow(DWORD threadId) {
    const Locked locked;
    recording.followedThread = threadId;
}

void CallRecorder::fail(std::string_view call, int nth, int64_t result, DWORD lastError) {
    requireHook(call);
    const Locked locked;
    CallSite& site = siteOf(call);
    site.failures.push_back({site.uses + nth, result, lastError});
}

void CallRecorder::failAlways(std::string_view call, int64_t result, DWORD lastError) {
    requireHook(call);
    const Locked locked;
    siteOf(call).failures.push_back({0, result, lastError});
}

void CallRecorder::failNothing() {
    const Locked locked;
    forEachCall([](CallSite& site) { site.failures.clear(); });
}

void CallRecorder::before(std::string_view call, int nth, std::function<void()> action) {
    requireHook(call);
    const Locked locked;
    CallSite& site = siteOf(call);
    site.actions.push_back({site.uses + nth, true, std::move(action)});
}

void CallRecorder::after(std::string_view call, int nth, std::function<void()> action) {
    requireHook(call);
    const Locked locked;
    CallSite& site = siteOf(call);
    site.actions.push_back({site.uses + nth, false, std::move(action)});
}

size_t CallRecorder::live(std::string_view kind) const { return call_names::live(kind); }

std::vector<std::string> CallRecorder::liveNames() const { return call_names::liveNames(); }

void CallRecorder::nameAddress(uint64_t value, const char* text) { call_names::give(value, text); }

void CallRecorder::requireHook(std::string_view call) {
    const QuietScope quiet;
    if (!isHooked(call))
        ADD_FAILURE() << call
                      << " is not watched: it has no hook, or this program does not import it";
}
