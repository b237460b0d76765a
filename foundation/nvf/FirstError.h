#pragma once

#include "nvf/String.h"

namespace nvf {

/// The reasons of failures that programs tell apart. The public interface has them under the same
/// names.
enum class Reason : int {
    NONE,
    INVALID_ARGUMENT,
    NOT_INITIALIZED,
    NOT_OPEN,
    READ_ONLY,
    NOT_FOUND,
    NO_REGULAR_FILE,
    NO_ZRFX_FILE,
    PASSWORD_NEEDED,
    WRONG_PASSWORD,
    DAMAGED,
    IN_USE,
    CHANGED,
    EXISTS,
    NO_PERMISSION,
    DISK_FULL,
    SYSTEM_ERROR,
    OUT_OF_MEMORY,
    TOO_LARGE,
    INVALID_CONTENT,
    INCOMPLETE,
    CANCELLED
};

/// Notes the first error that the calling thread logs while it lives: the root cause, as causes are
/// logged before their consequences. Of several alive in a thread the last one notes.
class FirstError {
public:
    /// `usual` is the reason of errors that are logged without one.
    explicit FirstError(Reason usual);
    ~FirstError();
    FirstError(const FirstError&) = delete;
    FirstError& operator=(const FirstError&) = delete;

    /// NONE when there was no error.
    Reason reason() const { return m_reason; }
    const String& text() const { return m_text; }

    /// Whether one is alive in the calling thread that has no error yet.
    static bool isAwaited();

    /// Takes an error unless there was one before; NONE stands for the usual reason. Throws
    /// nothing: for lack of memory the text stays empty.
    static void note(Reason reason, const String& text) noexcept;

private:
    const Reason m_usual;
    FirstError* const m_outer;
    Reason m_reason = Reason::NONE;
    String m_text;
};

}  // namespace nvf
