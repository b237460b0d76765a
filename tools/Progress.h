#pragma once

#include <chrono>
#include <cstdint>
#include <string>

namespace tools {

/// A bar on standard error that shows how far long work has come, how fast it goes and how long it
/// will take; nothing is shown when standard error is no terminal, or when the work is done before
/// anybody would ask. Gone from the screen when it is finished or destroyed.
///
///     Progress progress("reading", Progress::Unit::BYTES, fileSize);
///     while (...) progress.advance(bytesRead);
class Progress {
public:
    enum class Unit { BYTES, STEPS };

    /// A total of 0 means that it is not known: the amount done is shown alone.
    Progress(std::string label, Unit unit, std::uint64_t total);
    ~Progress() { finish(); }
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /// So much more was done. Cheap enough to be called for every piece of work.
    void advance(std::uint64_t amount);

    /// The whole amount that is done, for work that tells it this way.
    void setDone(std::uint64_t done);

    /// Takes the bar from the screen, so that other output may follow.
    void finish();

private:
    using Clock = std::chrono::steady_clock;

    void show(Clock::time_point now);
    std::string amountText(double amount) const;

    const std::string m_label;
    const Unit m_unit;
    const std::uint64_t m_total;
    const bool m_isTerminal;
    const Clock::time_point m_start;
    Clock::time_point m_lastShown;
    std::uint64_t m_done = 0;
    bool m_isShown = false;
};

}  // namespace tools
