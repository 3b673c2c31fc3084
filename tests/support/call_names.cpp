#include "tests/support/call_names.h"

#include <windows.h>

#include <algorithm>
#include <map>
#include <set>

namespace {

struct Entry {
    std::string name;
    std::string kind;
    int number = 0; // 0: the name is the test's own
    bool open = false;
    uint64_t owner = 0;
};

struct Names {
    std::map<uint64_t, Entry> entries;
    std::map<std::string, std::set<int>> numbers; // in use, by kind
};

// Not a std::mutex: its calls would be seen by the recorder.
SRWLOCK lock = SRWLOCK_INIT;
Names names;

class Locked {
public:
    Locked() { AcquireSRWLockExclusive(&lock); }
    ~Locked() { ReleaseSRWLockExclusive(&lock); }
};

int lowestFree(const std::set<int>& used) {
    int number = 1;
    while (used.count(number) != 0)
        ++number;
    return number;
}

Entry& numbered(uint64_t value, const char* kind) {
    auto found = names.entries.find(value);
    if (found != names.entries.end())
        return found->second;
    std::set<int>& used = names.numbers[kind];
    const int number = lowestFree(used);
    used.insert(number);
    Entry& entry = names.entries[value];
    entry.name = kind + std::to_string(number);
    entry.kind = kind;
    entry.number = number;
    return entry;
}

void forget(std::map<uint64_t, Entry>::iterator at) {
    if (at->second.number == 0) {
        at->second.open = false;
        return;
    }
    names.numbers[at->second.kind].erase(at->second.number);
    names.entries.erase(at);
}

} // namespace

namespace call_names {

std::string of(uint64_t value, const char* kind) {
    if (value == 0)
        return "null";
    const Locked locked;
    auto found = names.entries.find(value);
    if (found != names.entries.end())
        return found->second.name;
    return kind ? numbered(value, kind).name : "ptr";
}

void give(uint64_t value, std::string_view name) {
    const Locked locked;
    Entry& entry = names.entries[value];
    if (entry.number != 0)
        names.numbers[entry.kind].erase(entry.number);
    entry.name = name;
    entry.number = 0;
}

void open(uint64_t value, const char* kind, uint64_t owner) {
    if (value == 0 || value == UINT64_MAX)
        return;
    const Locked locked;
    Entry& entry = numbered(value, kind);
    entry.kind = kind;
    entry.open = true;
    entry.owner = owner;
}

void close(uint64_t value) {
    const Locked locked;
    auto found = names.entries.find(value);
    if (found == names.entries.end())
        return;
    forget(found);
    for (auto at = names.entries.begin(); at != names.entries.end();) {
        const auto next = std::next(at);
        if (at->second.owner == value)
            forget(at);
        at = next;
    }
}

size_t live(std::string_view kind) {
    const Locked locked;
    return static_cast<size_t>(
        std::count_if(names.entries.begin(), names.entries.end(), [kind](const auto& entry) {
            return entry.second.open && entry.second.kind == kind;
        }));
}

std::vector<std::string> liveNames() {
    const Locked locked;
    std::vector<std::string> list;
    for (const auto& [value, entry] : names.entries)
        if (entry.open)
            list.push_back(entry.name);
    std::sort(list.begin(), list.end());
    return list;
}

void clear() {
    const Locked locked;
    names = Names();
}

} // namespace call_names
