#include "Progress.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <utility>

#include "Text.h"

namespace tools {
namespace {

constexpr std::chrono::milliseconds kShowEvery{100};
constexpr int kBarWidth = 30;

std::string formatted(const char* format, double value) {
    char text[32];
    std::snprintf(text, sizeof(text), format, value);
    return text;
}

std::string durationText(double seconds) {
    const auto whole = static_cast<long>(std::min(seconds, 359999.0) + 0.5);
    char text[32];
    if (whole < 3600) {
        std::snprintf(text, sizeof(text), "%ld:%02ld", whole / 60, whole % 60);
    } else {
        std::snprintf(text, sizeof(text), "%ld:%02ld:%02ld", whole / 3600, whole / 60 % 60,
                      whole % 60);
    }
    return text;
}

}  // namespace

Progress::Progress(std::string label, Unit unit, std::uint64_t total)
    : m_label(std::move(label)),
      m_unit(unit),
      m_total(total),
      m_isTerminal(isatty(STDERR_FILENO) == 1),
      m_start(Clock::now()),
      m_lastShown(m_start) {}

void Progress::advance(std::uint64_t amount) {
    setDone(m_done + amount);
}

void Progress::setDone(std::uint64_t done) {
    m_done = done;
    if (!m_isTerminal) return;
    const Clock::time_point now = Clock::now();
    if (now - m_lastShown >= kShowEvery) show(now);
}

void Progress::finish() {
    if (!m_isShown) return;
    std::fputs("\r\033[K", stderr);
    m_isShown = false;
}

void Progress::show(Clock::time_point now) {
    const double seconds = std::chrono::duration<double>(now - m_start).count();
    const double rate = static_cast<double>(m_done) / seconds;
    std::string line = "\r" + m_label + " ";
    if (m_total > 0) {
        const double part = std::min(1.0, static_cast<double>(m_done) / m_total);
        const int filled = static_cast<int>(part * kBarWidth);
        line += "[" + std::string(filled, '#') + std::string(kBarWidth - filled, '.') + "]" +
                formatted(" %3.0f %%", part * 100);
        if (rate > 0) line += "  " + durationText((1 - part) * m_total / rate) + " left";
    } else {
        line += amountText(m_done);
    }
    line += "  " + amountText(rate) + "/s\033[K";
    std::fputs(line.c_str(), stderr);
    m_lastShown = now;
    m_isShown = true;
}

std::string Progress::amountText(double amount) const {
    return m_unit == Unit::BYTES ? byteText(static_cast<std::uint64_t>(amount))
                                 : formatted(amount < 10 ? "%.1f" : "%.0f", amount);
}

}  // namespace tools
