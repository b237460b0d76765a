#pragma once

#include "NuoCore/Export.h"
#include "NuoCore/LogDestination.h"
#include "NuoCore/LogMessage.h"
#include "NuoCore/Str.h"

namespace nvf {
class LogManager;
}

namespace nuo {

/// Decides which messages of the library are emitted and where they go; CoreComponent::logManager()
/// returns it. Loggers have dotted names and inherit level and destination from the name above:
/// "nuo.comp.zrfx" reports what the caller's data or calls are wrong about, "nuo.nvf.unstruct.zrfx"
/// what goes wrong in the archive and its blocks, "nuo.nvf" failed assertions. At first, errors and
/// warnings go to the standard error stream. All operations may be called from any thread.
class NUO_API LogManager {
public:
    /// Sends the messages of all loggers, present and future, to `destination`, of which a
    /// reference is kept. Null restores the standard error stream. Without memory for the change,
    /// the previous destination stays. A message that cannot be passed on for lack of memory goes
    /// to the standard error stream, as far as it is known.
    void setDestination(LogDestination* destination);

    /// Sets the level of the named logger and of all below it, present and future. The empty name
    /// means all loggers.
    void setLevel(const Str& loggerName, LogLevel level);

    /// The level of the named logger; that of all loggers when there is no memory to look it up.
    LogLevel level(const Str& loggerName) const;

    /// The manager that this class wraps; for the library itself.
    nvf::LogManager* internal_nvfLogManager() const;

private:
    friend class CoreComponent;
    LogManager() = default;
};

}  // namespace nuo
