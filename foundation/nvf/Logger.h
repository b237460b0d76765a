#pragma once

#include <atomic>
#include <mutex>
#include <type_traits>

#include "nvf/CodeLocation.h"
#include "nvf/FirstError.h"
#include "nvf/LogDestination.h"
#include "nvf/Object.h"
#include "nvf/SourceLocation.h"
#include "nvf/String.h"

namespace nvf {

/// The text of a message, with placeholders, and its place in the source.
struct LocatedText {
    LocatedText(const char* message, SourceLocation place = SourceLocation::current())
        : text(message), where(place) {}

    const char* text;
    SourceLocation where;
};

/// Emits messages under one name when their level is not above its own. Owned by the LogManager and
/// shared; every operation may be called from any thread, and none throws: a message that cannot be
/// composed for lack of memory, or whose destination throws, goes to the standard error stream as
/// far as it is known.
class Logger : public Object {
public:
    Logger(const String& name, LogLevel level, ref<LogDestination> destination);

    const String& name() const { return m_name; }
    LogLevel level() const { return m_level.load(std::memory_order_relaxed); }
    void setLevel(LogLevel level) { m_level.store(level, std::memory_order_relaxed); }
    ref<LogDestination> destination() const;

    /// Replaces the destination; returns the previous one.
    ref<LogDestination> setDestination(ref<LogDestination> destination);

    /// Whether a message of the level would be emitted; ask before composing one.
    bool isErrorEnabled() const { return level() >= nuo::LL_ERROR; }
    bool isWarningEnabled() const { return level() >= nuo::LL_WARNING; }
    bool isInfoEnabled() const { return level() >= nuo::LL_INFO; }
    bool isDebugEnabled() const { return level() >= nuo::LL_DEBUG; }

    void error(const String& message, const CodeLocation& location);
    void warning(const String& message, const CodeLocation& location);
    void info(const String& message, const CodeLocation& location);
    void debug(const String& message, const CodeLocation& location);

    /// Logs an error at the caller's place, its placeholders filled with `values` in order, and
    /// returns false, the result of the operation that failed. Costs nothing when errors are off.
    template <typename... Values>
    bool fail(LocatedText message, const Values&... values) {
        return failBecause(Reason::NONE, message, values...);
    }

    /// The same with a reason, which the caller of the public interface gets.
    template <typename... Values>
    bool failBecause(Reason reason, LocatedText message, const Values&... values) {
        if (FirstError::isAwaited()) note(reason, message, values...);
        emitLocated(nuo::LL_ERROR, message, values...);
        return false;
    }

    /// Logs a warning, or information, at the caller's place.
    template <typename... Values>
    void warn(LocatedText message, const Values&... values) {
        emitLocated(nuo::LL_WARNING, message, values...);
    }
    template <typename... Values>
    void inform(LocatedText message, const Values&... values) {
        emitLocated(nuo::LL_INFO, message, values...);
    }

    /// The text of a message, its placeholders filled with `values` in order.
    template <typename... Values>
    static String composed(const LocatedText& message, const Values&... values) {
        return String(message.text).args({textOf(values)...});
    }

    /// Whether the calling thread is inside a destination, which cannot take another message.
    static bool isEmitting();

    /// Writes a line to the standard error stream. Allocates nothing.
    static void writeLine(const char* text);

private:
    template <typename... Values>
    static void note(Reason reason, const LocatedText& message, const Values&... values) {
        try {
            FirstError::note(reason, composed(message, values...));
        } catch (...) {
            FirstError::note(reason, String());
        }
    }
    template <typename... Values>
    void emitLocated(LogLevel level, const LocatedText& message, const Values&... values) {
        if (level > this->level()) return;
        try {
            emit(level, composed(message, values...), message.where);
        } catch (...) {
            writeLine(message.text);
        }
    }
    template <typename Value>
    static String textOf(const Value& value) {
        if constexpr (std::is_arithmetic_v<Value>) {
            return String::number(value);
        } else {
            return String(value);
        }
    }
    void emit(LogLevel level, const String& message, const CodeLocation& location);

    const String m_name;
    std::atomic<LogLevel> m_level;
    mutable std::mutex m_mutex;  // guards m_destination
    ref<LogDestination> m_destination;
};

}  // namespace nvf
