// Names for the handles and addresses that recorded calls hand around. What a call opens gets the
// lowest free number of its kind and gives it back when it is closed, so that the same steps leave
// the same names whatever values the system chose. Any thread may use these.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace call_names {

// The name of a value: "null", its name, a new one of `kind`, or "ptr" where `kind` is null.
std::string of(uint64_t value, const char* kind);

// The test's own name for a value; it stays until clear().
void give(uint64_t value, std::string_view name);

// A call handed the value out. `owner` is the heap of a block, or 0.
void open(uint64_t value, const char* kind, uint64_t owner = 0);

// A call took the value back, with all that it owns.
void close(uint64_t value);

size_t live(std::string_view kind);
std::vector<std::string> liveNames();

void clear();

} // namespace call_names
