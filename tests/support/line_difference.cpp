#include "tests/support/line_difference.h"

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <cstdlib>

namespace {

constexpr std::string_view resultArrow = " -> ";
constexpr std::string_view anyLines = "...";
constexpr size_t linesBefore = 4;
constexpr size_t linesAfter = 6;

std::string_view trimmed(std::string_view line) {
    const char* blanks = " \t\r";
    const size_t first = line.find_first_not_of(blanks);
    if (first == std::string_view::npos)
        return {};
    return line.substr(first, line.find_last_not_of(blanks) - first + 1);
}

bool isWordPart(char letter) {
    return isalnum(static_cast<unsigned char>(letter)) != 0 || letter == '_';
}

bool isDigit(char letter) { return letter >= '0' && letter <= '9'; }

// 0xFFFFFFFF and -1 are one value: calls hand 32-bit numbers around with and without sign.
uint64_t numberValue(const char* text, char** end) {
    if (*text != '-')
        return strtoull(text, end, 0);
    const auto value = static_cast<int64_t>(strtoll(text, end, 0));
    return value >= INT32_MIN ? static_cast<uint32_t>(value) : static_cast<uint64_t>(value);
}

bool beginsNumber(const std::string& line, size_t at) {
    const bool afterWord = at > 0 && isWordPart(line[at - 1]);
    const bool isNegative = line[at] == '-' && at + 1 < line.size() && isDigit(line[at + 1]);
    return !afterWord && (isDigit(line[at]) || isNegative);
}

// The line with every number outside of quotes in one form.
std::string withPlainNumbers(std::string_view text) {
    const std::string line(text);
    std::string result;
    bool isQuoted = false;
    for (size_t at = 0; at < line.size();) {
        if (!isQuoted && beginsNumber(line, at)) {
            char* end = nullptr;
            result += std::to_string(numberValue(line.c_str() + at, &end));
            at = static_cast<size_t>(end - line.c_str());
            continue;
        }
        const bool isEscaped = isQuoted && line[at] == '\\' && at + 1 < line.size();
        if (line[at] == '"')
            isQuoted = !isQuoted;
        result.append(line, at, isEscaped ? 2 : 1);
        at += isEscaped ? 2 : 1;
    }
    return result;
}

bool matchesPattern(std::string_view pattern, std::string_view text) {
    if (pattern.empty())
        return text.empty();
    if (pattern[0] == '*') {
        for (size_t skip = 0; skip <= text.size(); ++skip)
            if (matchesPattern(pattern.substr(1), text.substr(skip)))
                return true;
        return false;
    }
    return !text.empty() && pattern[0] == text[0] &&
           matchesPattern(pattern.substr(1), text.substr(1));
}

using Lines = std::vector<std::string>;

// How many lines match before the first that does not, and how many of the recorded lines that
// took. With `...` the reading that gets furthest counts.
struct Progress {
    size_t expected = 0;
    size_t recorded = 0;
    bool isWhole = false;
};

Progress further(const Progress& one, const Progress& other) {
    if (one.isWhole != other.isWhole)
        return one.isWhole ? one : other;
    return other.expected > one.expected ? other : one;
}

Progress compare(const Lines& expected, size_t e, const Lines& recorded, size_t r) {
    for (; e < expected.size() && expected[e] != anyLines; ++e, ++r)
        if (r >= recorded.size() || !lineMatches(expected[e], recorded[r]))
            return {e, r, false};
    if (e == expected.size())
        return {e, r, r == recorded.size()};
    Progress best{e, r, e + 1 == expected.size()};
    for (; r <= recorded.size() && !best.isWhole; ++r)
        best = further(best, compare(expected, e + 1, recorded, r));
    return best;
}

void appendLines(std::string& text, const char* mark, const Lines& lines, size_t from, size_t to) {
    for (size_t at = from; at < std::min(to, lines.size()); ++at)
        text += mark + lines[at] + "\n";
}

} // namespace

std::vector<std::string> expectedLines(std::string_view text) {
    Lines lines;
    while (!text.empty()) {
        const size_t end = std::min(text.find('\n'), text.size());
        const std::string_view line = trimmed(text.substr(0, end));
        if (!line.empty() && !line.starts_with("//"))
            lines.emplace_back(line);
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return lines;
}

bool lineMatches(std::string_view expected, std::string_view recorded) {
    if (expected.find(resultArrow) == std::string_view::npos)
        recorded = recorded.substr(0, recorded.rfind(resultArrow));
    return matchesPattern(withPlainNumbers(expected), withPlainNumbers(recorded));
}

std::string lineDifference(const Lines& expected, const Lines& recorded) {
    const Progress reached = compare(expected, 0, recorded, 0);
    if (reached.isWhole)
        return "";
    const size_t from = reached.recorded - std::min(reached.recorded, linesBefore);
    std::string text = "calls differ at recorded line " + std::to_string(reached.recorded + 1) +
                       " of " + std::to_string(recorded.size()) + ", expected line " +
                       std::to_string(reached.expected + 1) + " of " +
                       std::to_string(expected.size()) + ":\n";
    appendLines(text, "    ", recorded, from, reached.recorded);
    if (reached.expected >= expected.size())
        text += "  expected: no further call\n";
    appendLines(text, "  expected: ", expected, reached.expected, reached.expected + 1);
    if (reached.recorded >= recorded.size())
        text += "  recorded: no further call\n";
    appendLines(text, "  recorded: ", recorded, reached.recorded, reached.recorded + 1);
    appendLines(text, "    ", recorded, reached.recorded + 1, reached.recorded + linesAfter);
    return text;
}
