// Putting all hooks in and taking them out again.
#pragma once

#include "tests/support/call_site.h"

#include <string_view>

// Puts every hook into the program's import table, with no plans and no replacements. Interfaces
// follow as they are handed out.
void installHooks();

// Restores every place that installHooks and watchMethods wrote to.
void removeHooks();

// The call of that name, or null. A method is named "Interface::Method".
CallSite* findCall(std::string_view name);

// Whether calls of that function can come by a hook: it is imported, fetched at run time, or a
// method.
bool isHooked(std::string_view name);

// Runs over all calls.
void forEachCall(void (*visit)(CallSite&));

// How many places of the import table hold a hook.
size_t hooksInImportTable();
