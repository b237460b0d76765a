#include "nvf/LogDestinationConsole.h"

#include <cstdio>

namespace nvf {
namespace {

const char* prefixOf(LogLevel level) {
    switch (level) {
        case nuo::LL_ERROR:
            return "ERROR: ";
        case nuo::LL_WARNING:
            return "warn:  ";
        case nuo::LL_INFO:
            return "info:  ";
        case nuo::LL_DEBUG:
            return "debug: ";
        case nuo::LL_OFF:
            break;
    }
    return "";
}

String placeOf(const CodeLocation& location) {
    String place;
    if (!location.functionName.isEmpty()) {
        place += String("\n        -func: %1").arg(location.functionName);
    }
    if (!location.fileName.isEmpty() && location.lineNumber >= 0) {
        place += String("\n        -file: %1(%2)")
                     .args({location.fileName, String::number(location.lineNumber)});
    }
    return place;
}

}  // namespace

void LogDestinationConsole::log(const String&, LogLevel level, const String& message,
                                const CodeLocation& location) {
    String text = prefixOf(level) + message;
    if (level == nuo::LL_ERROR) text += placeOf(location);
    const std::string line = text.toUtf8() + "\n";
    const std::lock_guard lock(m_mutex);
    std::fwrite(line.data(), 1, line.size(), stderr);
}

}  // namespace nvf
