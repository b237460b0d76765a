#include "nvf/Logger.h"

namespace nvf {

Logger::Logger(const String& name, LogLevel level, ref<LogDestination> destination)
    : m_name(name), m_level(level), m_destination(std::move(destination)) {}

ref<LogDestination> Logger::destination() const {
    const std::lock_guard lock(m_mutex);
    return m_destination;
}

ref<LogDestination> Logger::setDestination(ref<LogDestination> destination) {
    const std::lock_guard lock(m_mutex);
    std::swap(m_destination, destination);
    return destination;
}

void Logger::error(const String& message, const CodeLocation& location) {
    emit(nuo::LL_ERROR, message, location);
}

void Logger::warning(const String& message, const CodeLocation& location) {
    emit(nuo::LL_WARNING, message, location);
}

void Logger::info(const String& message, const CodeLocation& location) {
    emit(nuo::LL_INFO, message, location);
}

void Logger::debug(const String& message, const CodeLocation& location) {
    emit(nuo::LL_DEBUG, message, location);
}

void Logger::emit(LogLevel level, const String& message, const CodeLocation& location) {
    if (level > this->level()) return;
    const ref<LogDestination> target = destination();
    if (target) target->log(m_name, level, message, location);
}

}  // namespace nvf
