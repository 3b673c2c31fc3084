// One hook a watched function and method: hook::CreateFileA, hook::IDirectDraw7_Flip and so on.
// A hook's `call` stands in the import table or in an interface's table of methods; it reports to
// the recorder and goes on to the replacement, if there is one, or to the real routine.
#pragma once

#include "tests/support/call_site.h"
#include "tests/support/call_text.h"

#include <commctrl.h>
#include <mmsystem.h>
#include <objbase.h>

#include <cstring>
#include <functional>
#include <string>
#include <tuple>
#include <type_traits>

namespace hook_detail {

constexpr ResultRole plain{};
constexpr ResultRole opens(const char* kind) { return {kind, true}; }
constexpr ResultRole names(const char* kind) { return {kind, false}; }
constexpr ResultRole namesByArgument(const char* kind) { return {kind, false, true}; }
constexpr ClosingRole keeps{};
constexpr ClosingRole closes(int argument) { return {argument, false}; }
constexpr ClosingRole closesAtZero(int argument) { return {argument, true}; }

// The arguments of a call as they are to be shown; specialised where their types do not tell.
template <typename Hook>
struct ShownAs {
    template <typename... Args>
    static auto of(Args&... args) {
        return std::tie(args...);
    }
};

template <typename T>
uint64_t rawValue(const T& value) {
    if constexpr (std::is_pointer_v<T>)
        return reinterpret_cast<uint64_t>(value);
    else if constexpr (std::is_integral_v<T>)
        return static_cast<uint64_t>(value);
    else
        return 0;
}

// Did the call do what it promises, so that what it writes to is there to be shown?
template <typename R>
bool isSuccess(R result) {
    if constexpr (std::is_same_v<R, HRESULT>)
        return result >= 0;
    else if constexpr (std::is_pointer_v<R>)
        return result != nullptr && reinterpret_cast<int64_t>(result) != -1;
    else
        return result != 0;
}

template <typename R>
R resultFrom(int64_t value) {
    if constexpr (std::is_pointer_v<R>)
        return reinterpret_cast<R>(value);
    else
        return static_cast<R>(value);
}

template <typename Hook, typename... Args>
ShownArguments showArguments(call_text::Known known, Args&... args) {
    const QuietScope quiet;
    ShownArguments shown;
    size_t count = 0;
    ((shown.raw[count++] = rawValue(args)), ...);
    std::apply(
        [&](const auto&... parts) { (shown.texts.push_back(call_text::show(parts, known)), ...); },
        ShownAs<Hook>::of(args...));
    return shown;
}

// As shown before the call, but for what the call has written.
template <typename Hook, typename... Args>
void showWritten(ShownArguments& shown, Args&... args) {
    const QuietScope quiet;
    size_t at = 0;
    const auto update = [&](const auto& part) {
        if constexpr (call_text::isWrittenByCall<std::remove_cvref_t<decltype(part)>>)
            shown.texts[at] = call_text::show(part, call_text::Known::now);
        ++at;
    };
    std::apply([&](const auto&... parts) { (update(parts), ...); }, ShownAs<Hook>::of(args...));
}

template <typename R>
std::string showResult(R result) {
    const QuietScope quiet;
    return call_text::show(result, call_text::Known::now);
}

// The routine that a program gets for `name`: a hook where one is known, which then leads on to
// `real`; else `real` itself.
FARPROC watchFetched(const char* name, FARPROC real);

template <typename Hook, typename R, typename... Args>
R watched(R (*real)(Args...), Args... args) {
    if (!WatchedCall::isWanted())
        return real(args...);
    WatchedCall call(Hook::site);
    const auto goOn = [&] {
        return Hook::replacement ? Hook::replacement(args...) : real(args...);
    };
    ShownArguments shown = showArguments<Hook>(call_text::Known::not_yet, args...);
    call.begin(shown);
    if constexpr (std::is_void_v<R>) {
        if (!call.fails())
            goOn();
        call.happened();
        call.noteNames(shown, 0);
        call.end(shown, "");
    } else {
        R result = call.fails() ? resultFrom<R>(call.failureResult()) : goOn();
        call.happened();
        if (!call.fails() && isSuccess(result))
            showWritten<Hook>(shown, args...);
        if constexpr (std::is_same_v<R, FARPROC>)
            result = watchFetched(reinterpret_cast<const char*>(shown.raw[1]), result);
        call.noteNames(shown, rawValue(result));
        call.end(shown, showResult(result));
        return result;
    }
}

// The bare types: some compilers keep noreturn and noexcept in them.
template <typename R, typename... Args>
using Function = R (*)(Args...);
template <typename R, typename... Args>
Function<R, Args...> bare(R (*)(Args...));
template <typename Interface, typename R, typename... Args>
auto bare(R (Interface::*)(Args...)) -> R (Interface::*)(Args...);

template <typename Hook, typename Function>
struct FunctionHook;

template <typename Hook, typename R, typename... Args>
struct FunctionHook<Hook, R (*)(Args...)> {
    static inline R (*real)(Args...) = nullptr;
    static inline std::function<R(Args...)> replacement;

    static R WINAPI call(Args... args) { return watched<Hook, R, Args...>(real, args...); }
};

// The routine that stood in `slot` of the object's table of methods before it was watched.
void* originalMethod(void* object, size_t slot);

// The number of a virtual method in its table: member pointers hold its offset plus 1.
template <typename Method>
size_t slotOf(Method method) {
    intptr_t offset = 0;
    memcpy(&offset, &method, sizeof offset);
    return static_cast<size_t>(offset - 1) / sizeof(void*);
}

template <typename Hook, typename Method>
struct MethodHook;

template <typename Hook, typename Interface, typename R, typename... Args>
struct MethodHook<Hook, R (Interface::*)(Args...)> {
    using Real = R (*)(Interface*, Args...);
    static inline std::function<R(Interface*, Args...)> replacement;

    static R STDMETHODCALLTYPE call(Interface* self, Args... args) {
        const auto real = reinterpret_cast<Real>(originalMethod(self, slotOf(Hook::method())));
        return watched<Hook, R, Interface*, Args...>(real, self, args...);
    }
};

} // namespace hook_detail

// Puts the hooks of an interface into the table of methods that the object uses.
void watchMethods(void* object, const char* interfaceName);

namespace hook {

using namespace hook_detail;

#define FUNCTION(library, function, role, closing)                                                 \
    struct function : FunctionHook<function, decltype(bare(&::function))> {                        \
        static constexpr const char* name = #function;                                             \
        static CallSite site;                                                                      \
    };
#define FETCHED FUNCTION
#include "tests/support/hooked_functions.inc"
#undef FETCHED
#undef FUNCTION

#define METHOD(interface_, method_, closing)                                                       \
    struct interface_##_##method_                                                                  \
        : MethodHook<interface_##_##method_, decltype(bare(&::interface_::method_))> {             \
        static constexpr const char* name = #interface_ "::" #method_;                             \
        static CallSite site;                                                                      \
        static auto method() { return &::interface_::method_; }                                    \
    };
#include "tests/support/hooked_methods.inc"
#undef METHOD

} // namespace hook
