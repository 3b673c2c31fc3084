// Comparing recorded lines with expected ones; the rules are told in call_recorder.h.
#pragma once

#include <string>
#include <string_view>
#include <vector>

// The lines that count: trimmed, without blank lines and comments.
std::vector<std::string> expectedLines(std::string_view text);

bool lineMatches(std::string_view expected, std::string_view recorded);

// Empty when the lines match; else what differs, with the lines around it.
std::string lineDifference(const std::vector<std::string>& expected,
                           const std::vector<std::string>& recorded);
