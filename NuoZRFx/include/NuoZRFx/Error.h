#pragma once

#include "NuoCore/Export.h"
#include "NuoCore/Str.h"

namespace nuo::zrfx {

/// Why an operation failed: a code to act on, and the message of the root cause, which is the first
/// of those that were logged. A plain value.
class NUO_API Error {
public:
    enum Code : int {
        NONE = 0,
        INVALID_ARGUMENT = 1,  ///< The call breaks a rule of the operation.
        NOT_INITIALIZED = 2,   ///< ZRFxComponent::initialize was not called.
        NOT_OPEN = 3,          ///< The file is closed.
        READ_ONLY = 4,         ///< The file was opened for reading.
        NOT_FOUND = 5,         ///< There is no such file, block or case.
        NO_REGULAR_FILE = 6,   ///< The path is that of a folder or a device.
        NO_ZRFX_FILE = 7,      ///< The file is something else.
        PASSWORD_NEEDED = 8,
        WRONG_PASSWORD = 9,  ///< Or the file is damaged, where this cannot be told.
        DAMAGED = 10,        ///< What is read does not fit together.
        IN_USE = 11,         ///< Another writer has the file.
        CHANGED = 12,        ///< Someone has replaced or removed the file under its writer.
        EXISTS = 13,         ///< There is a file, block or id of that name already.
        NO_PERMISSION = 14,
        DISK_FULL = 15,
        SYSTEM_ERROR = 16,  ///< Another failure of the system, such as an I/O error.
        OUT_OF_MEMORY = 17,
        TOO_LARGE = 18,        ///< An array of 4 GiB or more, or one beyond what may be read.
        INVALID_CONTENT = 19,  ///< What is written could not be read back.
        INCOMPLETE = 20,       ///< A database lacks its states or its geometry.
        CANCELLED = 21         ///< The progress callback has stopped the operation.
    };

    Error() = default;
    Error(Code code, const Str& text) : m_code(code), m_text(text) {}

    Code code() const { return m_code; }

    /// One English sentence, with the file that it concerns.
    const Str& text() const { return m_text; }

    /// Whether there is an error.
    explicit operator bool() const { return m_code != NONE; }

    /// The name of an enumerator, such as "DISK_FULL"; empty for a value that is none.
    static const char* codeName(Code code);

private:
    Code m_code = NONE;
    Str m_text;
};

}  // namespace nuo::zrfx
