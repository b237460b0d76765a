#pragma once

#include "NuoCore/LogMessage.h"
#include "nvf/CodeLocation.h"
#include "nvf/Object.h"
#include "nvf/String.h"

namespace nvf {

using nuo::LogLevel;

/// Where loggers write to. Shared by loggers, called from every thread that logs.
class LogDestination : public Object {
public:
    /// Writes one message of the logger of that name. Must not throw.
    virtual void log(const String& loggerName, LogLevel level, const String& message,
                     const CodeLocation& location) = 0;
};

}  // namespace nvf
