#include "nvf/Assert.h"

#include <csignal>
#include <cstdlib>
#include <memory>

#include "nvf/AssertHandler.h"
#include "nvf/LogManager.h"

namespace nvf {
namespace {

struct AssertState {
    AssertReportMode mode = AssertReportMode::DIALOG;
    std::unique_ptr<AssertHandler> handler = std::make_unique<AssertHandlerWinDialog>();
};

// Kept to the end of the process: static objects of the host may still assert when they go.
AssertState& state() {
    static auto* theState = new AssertState;
    return *theState;
}

std::unique_ptr<AssertHandler> handlerFor(AssertReportMode mode) {
    if (mode == AssertReportMode::CONSOLE) return std::make_unique<AssertHandlerConsole>();
    if (mode == AssertReportMode::DIALOG) return std::make_unique<AssertHandlerWinDialog>();
    return nullptr;
}

void logFailedAssert(const char* fileName, int lineNumber, const char* expression,
                     const char* message) {
    String text = "ASSERT: ";
    if (expression) text += String(" (") + expression + ")";
    if (message) text += String(" '") + message + "'";
    LogManager::instance()->logger("nuo.nvf")->error(text,
                                                     CodeLocation(fileName, "", "", lineNumber));
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
    if (mode == state().mode) return;
    state().handler = handlerFor(mode);
    state().mode = mode;
}

bool reportFailedAssert(const char* fileName, int lineNumber, const char* expression,
                        const char* message) {
    logFailedAssert(fileName, lineNumber, expression, message);
    switch (state().mode) {
        case AssertReportMode::CONTINUE:
            return false;
        case AssertReportMode::EXCEPTION:
            throwFailedAssert(fileName, lineNumber, expression, message);
        case AssertReportMode::CONSOLE:
        case AssertReportMode::DIALOG:
            break;
    }
    if (!state().handler) std::abort();
    return state().handler->handle(fileName, lineNumber, expression, message);
}

void assertionFailed(const char* expression, const char* message, SourceLocation where) {
    const int line = static_cast<int>(where.line());
    if (reportFailedAssert(where.file_name(), line, expression, message)) std::raise(SIGTRAP);
}

}  // namespace nvf
