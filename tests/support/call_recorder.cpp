#include "tests/support/call_recorder.h"

#include "tests/support/call_hooks.h"
#include "tests/support/call_names.h"
#include "tests/support/line_difference.h"
#include "tests/support/recording.h"

#include <cstdio>
#include <cstdlib>

namespace {

uint64_t lastRecorder = 0;
CallSite unknownCall{"", "", {}, {}}; // takes the plans for misspelt calls

std::vector<std::string> takeLines(std::vector<RecordedLine>& lines) {
    const RecordingLock locked;
    std::vector<std::string> texts;
    for (const RecordedLine& line : lines)
        texts.push_back(line.text);
    lines.clear();
    return texts;
}

CallSite& siteOf(std::string_view call) {
    CallSite* site = findCall(call);
    return site ? *site : unknownCall;
}

} // namespace

CallRecorder::CallRecorder() {
    if (currentRecorder != 0) {
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
    installHooks();
    currentRecorder = ++lastRecorder;
}

CallRecorder::~CallRecorder() {
    removeHooks();
    currentRecorder = 0;
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
    const RecordingLock locked;
    return siteOf(call).uses;
}

void CallRecorder::only(std::initializer_list<const char*> callsOrFamilies) {
    const RecordingLock locked;
    recording.included.assign(callsOrFamilies.begin(), callsOrFamilies.end());
}

void CallRecorder::except(std::initializer_list<const char*> callsOrFamilies) {
    const RecordingLock locked;
    recording.excluded.assign(callsOrFamilies.begin(), callsOrFamilies.end());
}

void CallRecorder::echo() { recording.isEchoing = true; }

void CallRecorder::follow(DWORD threadId) {
    const RecordingLock locked;
    recording.followedThread = threadId;
}

void CallRecorder::fail(std::string_view call, int nth, int64_t result, DWORD lastError) {
    requireHook(call);
    const RecordingLock locked;
    CallSite& site = siteOf(call);
    site.failures.push_back({site.uses + nth, result, lastError});
}

void CallRecorder::failAlways(std::string_view call, int64_t result, DWORD lastError) {
    requireHook(call);
    const RecordingLock locked;
    siteOf(call).failures.push_back({0, result, lastError});
}

void CallRecorder::failNothing() {
    const RecordingLock locked;
    forEachCall([](CallSite& site) { site.failures.clear(); });
}

void CallRecorder::before(std::string_view call, int nth, std::function<void()> action) {
    requireHook(call);
    const RecordingLock locked;
    CallSite& site = siteOf(call);
    site.actions.push_back({site.uses + nth, true, std::move(action)});
}

void CallRecorder::after(std::string_view call, int nth, std::function<void()> action) {
    requireHook(call);
    const RecordingLock locked;
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
