#pragma once

#include <map>
#include <mutex>

#include "nvf/Logger.h"

namespace nvf {

/// Owns the loggers, by dotted name. A new logger starts with level and destination of the one
/// above it. Every operation may be called from any thread.
class LogManager : public Object {
public:
    LogManager();

    /// The process-wide manager.
    static ref<LogManager> instance();
    static void setInstance(ref<LogManager> manager);

    /// The logger of a name, made on first use together with those above it.
    ref<Logger> logger(const String& name);
    const ref<Logger>& rootLogger() const { return m_rootLogger; }

    /// Sets the level of a logger and of all below it; the empty name is the root.
    void setLevelBelow(const String& name, LogLevel level);

    /// Gives every logger a new destination; null brings the console back.
    void setDestination(ref<LogDestination> destination);

private:
    ref<Logger> findOrCreate(const String& name);

    mutable std::mutex m_mutex;  // guards m_loggers
    std::map<String, ref<Logger>> m_loggers;
    const ref<Logger> m_rootLogger;
};

/// The logger of the public interface. Neither this nor the next throws.
ref<Logger> interfaceLogger();

/// The logger of archive, block database and blocks.
ref<Logger> archiveLogger();

}  // namespace nvf
