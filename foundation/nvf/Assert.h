#pragma once

#include <new>
#include <stdexcept>

#include "nvf/Logger.h"
#include "nvf/SourceLocation.h"
#include "nvf/String.h"

namespace nvf {

/// What a failed assertion does once it has been logged.
enum class AssertReportMode : int { CONTINUE = 0, CONSOLE = 1, DIALOG = 2, EXCEPTION = 3 };

/// Thrown by a failed assertion in exception mode; its text names the place.
class AssertException : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Selects what failed assertions do, for the whole process. The default is to go on, so that no
/// host is ended that has not asked for it.
void setReportMode(AssertReportMode mode);

/// Logs a failed assertion and acts by the report mode. `expression` and `message` may be null.
/// True when the caller is to break into the debugger.
bool reportFailedAssert(const char* fileName, int lineNumber, const char* expression,
                        const char* message);

/// Reports a failed assertion of the calling line; breaks into the debugger when asked to.
void assertionFailed(const char* expression, const char* message,
                     SourceLocation where = SourceLocation::current());

/// Reports a failed assertion of an operation's caller: the text, or for lack of memory the message
/// with its placeholders. The expression may be null.
void reportMisuse(const char* expression, const String& text, const LocatedText& message);

/// Whether the caller of an operation keeps to a rule. Where he does not, reports a failed
/// assertion with the expression and with a message that begins with the operation's name, its
/// placeholders filled with `values` in order.
template <typename... Values>
bool requireThat(const char* expression, bool isKept, LocatedText message,
                 const Values&... values) {
    if (isKept || !NUO_ASSERTIONS) return isKept;
    String text;
    try {
        text = Logger::composed(message, values...);
    } catch (const std::bad_alloc&) {
        text = String();
    }
    reportMisuse(expression, text, message);
    return false;
}

/// The same where the message says all.
///
///     if (!require(row < 4, "setRow: row %1 is none of 0 to 3", row)) return false;
template <typename... Values>
bool require(bool isKept, LocatedText message, const Values&... values) {
    return requireThat(nullptr, isKept, message, values...);
}

}  // namespace nvf

/// NVF_ASSERT(expression) reports a programming error when the expression is false; the code after
/// it copes with that. NVF_FAIL(message) reports one that has no expression. Macros, for the text
/// of the expression and to vanish without NUO_ASSERTIONS.
#if NUO_ASSERTIONS
#define NVF_ASSERT(expression) \
    (static_cast<bool>(expression) ? void() : nvf::assertionFailed(#expression, nullptr))
#define NVF_ASSERT_MESSAGE(expression, message) \
    (static_cast<bool>(expression) ? void() : nvf::assertionFailed(#expression, message))
#define NVF_FAIL(message) nvf::assertionFailed(nullptr, message)
#else
#define NVF_ASSERT(expression) static_cast<void>(sizeof(static_cast<bool>(expression)))
#define NVF_ASSERT_MESSAGE(expression, message) NVF_ASSERT(expression)
#define NVF_FAIL(message) static_cast<void>(message)
#endif
