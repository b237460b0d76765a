#include "nvf/Assert.h"

#include <atomic>
#include <csignal>
#include <cstdlib>
#include <new>

#include "nvf/AssertHandler.h"
#include "nvf/LogManager.h"

namespace nvf {
namespace {

std::atomic<AssertReportMode> s_mode{AssertReportMode::CONTINUE};

void logFailedAssert(const char* fileName, int lineNumber, const char* expression,
                     const char* message) {
    try {
        String text = "ASSERT: ";
        if (expression) text += String(" (") + expression + ")";
        if (message) text += String(" '") + message + "'";
        FirstError::note(Reason::INVALID_ARGUMENT, text);
        LogManager::instance()->logger("nuo.nvf")->error(
            text, CodeLocation(fileName, "", "", lineNumber));
    } catch (const std::bad_alloc&) {
        Logger::writeLine(expression ? expression : message ? message : "ASSERT: ");
    }
}

[[noreturn]] void throwFailedAssert(const char* fileName, int lineNumber, const char* expression,
                                    const char* message) {
    String text;
    if (message) text += message;
    if (expression) text += String("\n\nAssertion: ") + expression;
    text += String("\n\nFile: ") + fileName;
    if (lineNumber >= 0) text += String("\nLine: ") + String::number(lineNumber);
    throw AssertException(text.toUtf8());
}

}  // namespace

void setReportMode(AssertReportMode mode) {
    s_mode = mode;
}

bool reportFailedAssert(const char* fileName, int lineNumber, const char* expression,
                        const char* message) {
    logFailedAssert(fileName, lineNumber, expression, message);
    switch (s_mode) {
        case AssertReportMode::CONTINUE:
            return false;
        case AssertReportMode::EXCEPTION:
            throwFailedAssert(fileName, lineNumber, expression, message);
        case AssertReportMode::CONSOLE:
            return AssertHandlerConsole().handle(fileName, lineNumber, expression, message);
        case AssertReportMode::DIALOG:
            return AssertHandlerWinDialog().handle(fileName, lineNumber, expression, message);
    }
    std::abort();
}

void assertionFailed(const char* expression, const char* message, SourceLocation where) {
    const int line = static_cast<int>(where.line());
    if (reportFailedAssert(where.file_name(), line, expression, message)) std::raise(SIGTRAP);
}

void reportMisuse(const char* expression, const String& text, const LocatedText& message) {
    if (text.isEmpty()) return assertionFailed(expression, message.text, message.where);
    assertionFailed(expression, text.toUtf8().c_str(), message.where);
}

}  // namespace nvf
