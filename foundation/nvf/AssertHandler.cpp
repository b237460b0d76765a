#include "nvf/AssertHandler.h"

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <thread>

namespace nvf {
namespace {

constexpr std::size_t kMostDialogCharacters = 2048;

// The kernel names the tracing process in the status of the traced one; 0 means none.
bool isDebuggerAttached() {
    std::ifstream status("/proc/self/status");
    const std::string key = "TracerPid:";
    for (std::string line; std::getline(status, line);) {
        if (line.starts_with(key)) return String(line.substr(key.size())).toInt() != 0;
    }
    return false;
}

String dialogText(const String& fileName, int lineNumber, const char* expression,
                  const char* message) {
    String text = "Assertion failed\n\nFile: " + fileName;
    if (lineNumber >= 0) text += String("\nLine: ") + String::number(lineNumber);
    if (expression) text += String("\n\nExpression: ") + expression;
    if (message) text += String("\n\n") + message;
    text += "\n\n(Press Retry to debug application)";
    return String(text.text().substr(0, kMostDialogCharacters));
}

}  // namespace

bool AssertHandlerConsole::handle(const String& fileName, int lineNumber, const char* expression,
                                  const char* message) {
    String line = "Assertion failed:";
    if (expression) line += String(" (") + expression + ")";
    if (message) line += String(" '") + message + "'";
    if (expression || message) line += ",";
    line += String(" file ") + fileName + ", line " + String::number(lineNumber) + "\n";
    std::fputs(line.toUtf8().c_str(), stderr);
    std::fflush(stderr);
    if (!isDebuggerAttached()) std::abort();
    return true;
}

bool AssertHandlerWinDialog::handle(const String& fileName, int lineNumber, const char* expression,
                                    const char* message) {
    if (!m_messageBox) {
        return AssertHandlerConsole().handle(fileName, lineNumber, expression, message);
    }
    const String text = dialogText(fileName, lineNumber, expression, message);
    Button pressed = Button::ABORT;
    std::thread([&] { pressed = m_messageBox("Assertion Failed", text); }).join();
    if (pressed == Button::ABORT) {
        std::raise(SIGABRT);
        std::_Exit(3);
    }
    return pressed == Button::RETRY;
}

}  // namespace nvf
