#pragma once

#include "nvf/String.h"

namespace nvf {

/// Acts on a failed assertion in the modes that stop the program: one class for each mode.
class AssertHandler {
public:
    virtual ~AssertHandler() = default;

    /// True when the caller is to break into the debugger; may not return at all.
    virtual bool handle(const String& fileName, int lineNumber, const char* expression,
                        const char* message) = 0;
};

/// Writes a line to the standard error stream; without a debugger the process then aborts.
class AssertHandlerConsole : public AssertHandler {
public:
    bool handle(const String& fileName, int lineNumber, const char* expression,
                const char* message) override;
};

/// Asks in a message box what to do. A platform without one passes no function; the handler then
/// does what the console handler does.
class AssertHandlerWinDialog : public AssertHandler {
public:
    enum class Button { ABORT, RETRY, IGNORE };

    /// Shows a task-modal error box with the buttons Abort, Retry and Ignore in the foreground.
    using MessageBox = Button (*)(const String& title, const String& text);

    explicit AssertHandlerWinDialog(MessageBox messageBox = nullptr) : m_messageBox(messageBox) {}

    /// Shows the box on a thread of its own and waits for it. Ignore gives false, Retry true; Abort
    /// ends the process with exit code 3.
    bool handle(const String& fileName, int lineNumber, const char* expression,
                const char* message) override;

private:
    MessageBox m_messageBox;
};

}  // namespace nvf
