#pragma once

#include <mutex>

#include "nvf/LogDestination.h"

namespace nvf {

/// Writes messages to the standard error stream, a prefix of seven characters first, errors with
/// function and place on lines of their own. Messages of several threads do not mix.
class LogDestinationConsole : public LogDestination {
public:
    void log(const String& loggerName, LogLevel level, const String& message,
             const CodeLocation& location) override;

private:
    std::mutex m_mutex;
};

}  // namespace nvf
