#include "nvf/Logger.h"

#include <cstdio>

namespace nvf {
namespace {

thread_local int t_emitting = 0;

struct Emitting {
    Emitting() { ++t_emitting; }
    ~Emitting() { --t_emitting; }
};

// Characters beyond ASCII are left out, as converting them takes memory.
void writeAscii(const std::wstring& text) {
    for (const wchar_t c : text) {
        if (c > 0 && c < 0x80) std::fputc(static_cast<char>(c), stderr);
    }
}

}  // namespace

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
    const Emitting emitting;
    try {
        if (target) target->log(m_name, level, message, location);
    } catch (...) {
        writeAscii(message.text());
        writeLine("");
    }
}

bool Logger::isEmitting() {
    return t_emitting > 0;
}

void Logger::writeLine(const char* text) {
    std::fputs(text, stderr);
    std::fputc('\n', stderr);
}

}  // namespace nvf
