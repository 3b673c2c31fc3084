// Texts joined in the accumulator.
#pragma once

#include "runtime/text.h"

// The parts as one argument of a call, popped at the end of the statement. It must not be read
// before all arguments of the call are built, because building moves the accumulator.
class JoinedText {
public:
    JoinedText(const char* first, const char* second) : restorePoint(TextPosition) {
        Text_Append(first);
        Text_Append(second);
        TextPosition += 1; // over the terminator, so that the next temporary spares it
    }
    ~JoinedText() { TextPosition = restorePoint; }
    JoinedText(const JoinedText&) = delete;
    JoinedText& operator=(const JoinedText&) = delete;
    operator const char*() const { return TextBase + restorePoint; }

private:
    int64_t restorePoint;
};

// Stores the parts in the variable as one text.
template <typename... Parts>
void JoinedText_Assign(TextVariable* variable, Parts... parts) {
    const int32_t start = Text_Here();
    (Text_Append(parts), ...);
    Text_Store(variable, start);
}
