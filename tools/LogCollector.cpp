#include "LogCollector.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <utility>

namespace tools {
namespace {

// A hostile file can make a reader say more than anybody reads.
constexpr std::size_t kMostMessages = 10000;

const char* nameOf(nuo::LogLevel level) {
    constexpr std::array kNames{"off", "error", "warning", "info", "debug"};
    const auto index = static_cast<std::size_t>(level);
    return index < kNames.size() ? kNames[index] : "?";
}

std::string inOneLine(std::string text) {
    std::replace_if(
        text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < ' '; }, ' ');
    return text;
}

}  // namespace

void LogCollector::log(const nuo::LogMessage& message) {
    const std::string text = inOneLine(message.text.toStdString());
    const std::lock_guard lock(m_mutex);
    if (m_isPrinting) {
        std::fprintf(stderr, "%s: %s: %s\n", message.logger.toStdString().c_str(),
                     nameOf(message.level), text.c_str());
    }
    if (message.level > nuo::LL_WARNING || m_messages.size() >= kMostMessages) return;
    m_messages.push_back({message.level, text});
}

std::vector<LogCollector::Message> LogCollector::takeMessages() {
    const std::lock_guard lock(m_mutex);
    return std::exchange(m_messages, {});
}

std::string LogCollector::takeCause() {
    for (const Message& message : takeMessages()) {
        if (message.level == nuo::LL_ERROR) return message.text;
    }
    return {};
}

}  // namespace tools
