#pragma once

#include "NuoCore/Str.h"

namespace nuo {

/// Severities of messages; a logger emits those that are not above its level.
enum LogLevel : int { LL_OFF = 0, LL_ERROR = 1, LL_WARNING = 2, LL_INFO = 3, LL_DEBUG = 4 };

/// One message as a LogDestination receives it, with its place in the source.
struct LogMessage {
    LogLevel level = LL_OFF;
    Str logger;  ///< Dotted name of the logger, for example "nuo.comp.zrfx".
    Str text;
    Str fileName;            ///< Source file; empty when unknown.
    Str functionName;        ///< Qualified name, for example "nuo::zrfx::File::open".
    Str prettyFunctionName;  ///< Whole signature of the function.
    int lineNumber = -1;     ///< -1 when unknown.
};

}  // namespace nuo
