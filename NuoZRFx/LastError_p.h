#pragma once

#include "Log_p.h"
#include "NuoCore/PrivatePtr.h"
#include "NuoCore/PtrRef.h"
#include "NuoZRFx/Error.h"
#include "nvf/FirstError.h"

namespace nuo::zrfx {

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
        return Error(static_cast<Error::Code>(reason),
                     guarded([&] { return Convert::toStr(first.text()); }));
    }

    Error m_error;
};

static_assert(static_cast<int>(nvf::Reason::NO_ZRFX_FILE) == Error::NO_ZRFX_FILE &&
              static_cast<int>(nvf::Reason::DISK_FULL) == Error::DISK_FULL &&
              static_cast<int>(nvf::Reason::CANCELLED) == Error::CANCELLED);

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
