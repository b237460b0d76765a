#pragma once

#include "Log_p.h"
#include "NuoCore/PrivatePtr.h"
#include "NuoCore/PtrRef.h"
#include "NuoZRFx/Error.h"
#include "nvf/FirstError.h"

namespace nuo::zrfx {

/// The code of the public interface for a reason. A reason without one does not compile without a
/// warning.
constexpr Error::Code codeOf(nvf::Reason reason) {
    switch (reason) {
        case nvf::Reason::NONE:
            return Error::NONE;
        case nvf::Reason::INVALID_ARGUMENT:
            return Error::INVALID_ARGUMENT;
        case nvf::Reason::NOT_INITIALIZED:
            return Error::NOT_INITIALIZED;
        case nvf::Reason::NOT_OPEN:
            return Error::NOT_OPEN;
        case nvf::Reason::READ_ONLY:
            return Error::READ_ONLY;
        case nvf::Reason::NOT_FOUND:
            return Error::NOT_FOUND;
        case nvf::Reason::NO_REGULAR_FILE:
            return Error::NO_REGULAR_FILE;
        case nvf::Reason::NO_ZRFX_FILE:
            return Error::NO_ZRFX_FILE;
        case nvf::Reason::PASSWORD_NEEDED:
            return Error::PASSWORD_NEEDED;
        case nvf::Reason::WRONG_PASSWORD:
            return Error::WRONG_PASSWORD;
        case nvf::Reason::DAMAGED:
            return Error::DAMAGED;
        case nvf::Reason::IN_USE:
            return Error::IN_USE;
        case nvf::Reason::CHANGED:
            return Error::CHANGED;
        case nvf::Reason::EXISTS:
            return Error::EXISTS;
        case nvf::Reason::NO_PERMISSION:
            return Error::NO_PERMISSION;
        case nvf::Reason::DISK_FULL:
            return Error::DISK_FULL;
        case nvf::Reason::SYSTEM_ERROR:
            return Error::SYSTEM_ERROR;
        case nvf::Reason::OUT_OF_MEMORY:
            return Error::OUT_OF_MEMORY;
        case nvf::Reason::TOO_LARGE:
            return Error::TOO_LARGE;
        case nvf::Reason::INVALID_CONTENT:
            return Error::INVALID_CONTENT;
        case nvf::Reason::INCOMPLETE:
            return Error::INCOMPLETE;
        case nvf::Reason::CANCELLED:
            return Error::CANCELLED;
    }
    return Error::SYSTEM_ERROR;
}

/// Why the last operation of a File, Database or Case failed; no error after one that did not.
class LastError {
public:
    const Error& get() const { return m_error; }

    /// Runs an operation as guarded does, and keeps why it failed: the first error that is logged
    /// meanwhile, for `usual` unless its reason is given.
    template <typename Operation>
    auto noting(nvf::Reason usual, Operation operation, const nvf::SourceLocation& where) {
        const nvf::FirstError first(usual);
        auto result = guarded(operation, where);
        m_error = isDone(result) ? Error() : errorOf(first, usual);
        return result;
    }

private:
    static bool isDone(bool result) { return result; }
    static bool isDone(const void* result) { return result; }
    template <typename Item>
    static bool isDone(const PtrRef<Item>& result) {
        return result.notNull();
    }

    static Error errorOf(const nvf::FirstError& first, nvf::Reason usual) {
        const nvf::Reason reason = first.reason() == nvf::Reason::NONE ? usual : first.reason();
        return Error(codeOf(reason), guarded([&] { return Convert::toStr(first.text()); }));
    }

    Error m_error;
};

/// Runs an operation of an object, whose private part keeps why it failed.
template <typename Private, typename Operation>
auto noted(const PrivatePtr<Private>& holder, nvf::Reason usual, Operation operation,
           const nvf::SourceLocation& where = nvf::SourceLocation::current()) {
    if (holder.isNull()) return guarded(operation, where);
    return holder->lastError.noting(usual, operation, where);
}

template <typename Private>
const Error& lastErrorOf(const PrivatePtr<Private>& holder) {
    static const Error kOutOfMemory(Error::OUT_OF_MEMORY, "Out of memory.");
    return holder.isNull() ? kOutOfMemory : holder->lastError.get();
}

/// Notes the reason of a failure that is not logged, as it may be no failure to the caller; false.
inline bool refuse(nvf::Reason reason, const char* text) {
    nvf::FirstError::note(reason, text);
    return false;
}

/// Logs an error of the public interface for a reason, at the caller's place, and returns false.
template <typename... Values>
bool failBecause(nvf::Reason reason, nvf::LocatedText message, const Values&... values) {
    return nvf::interfaceLogger()->failBecause(reason, message, values...);
}

}  // namespace nuo::zrfx
