#include "nvf/Progress.h"

#include <algorithm>
#include <utility>

#include "nvf/FirstError.h"

namespace nvf {
namespace {

// Of the whole, between two reports.
constexpr double kStep = 0.005;

thread_local Progress* t_current = nullptr;

// Takes the operation out of sight while its caller is asked: what the caller does with other files
// is no part of it, and neither are the errors of that.
class Aside {
public:
    Aside() : m_current(std::exchange(t_current, nullptr)) {}
    ~Aside() { t_current = m_current; }
    Aside(const Aside&) = delete;
    Aside& operator=(const Aside&) = delete;

private:
    Progress* const m_current;
    const FirstError m_errors{Reason::NONE};
};

}  // namespace

Progress::Progress(const Report& report) : m_report(report), m_thread(std::this_thread::get_id()) {
    if (report && !t_current) t_current = this;
}

Progress::~Progress() {
    if (t_current == this) t_current = nullptr;
}

Progress* Progress::current() {
    return t_current;
}

Progress::Part::Part(double share) : m_progress(t_current) {
    if (!m_progress) return;
    m_outerShare = m_progress->m_share;
    m_progress->m_share *= share;
}

Progress::Part::~Part() {
    if (!m_progress) return;
    m_progress->m_begin += m_progress->m_share;
    m_progress->m_share = m_outerShare;
}

Progress::Count::Count(std::uint64_t total)
    : m_progress(t_current && t_current->m_total == 0 ? t_current : nullptr) {
    if (!m_progress) return;
    m_progress->m_done = 0;
    m_progress->m_total = std::max<std::uint64_t>(total, 1);
}

Progress::Count::~Count() {
    if (m_progress) m_progress->m_total = 0;
}

bool Progress::add(std::uint64_t amount) {
    if (m_total == 0) return !m_isStopped;
    m_done += amount;
    if (!m_isStopped && std::this_thread::get_id() == m_thread) report();
    return !m_isStopped;
}

// Whoever is called must not throw; if he does, he does not want to go on.
void Progress::report() {
    const double part = static_cast<double>(m_done) / static_cast<double>(m_total);
    const double fraction = std::min(1.0, m_begin + m_share * std::min(1.0, part));
    if (fraction < m_reported + kStep) return;
    m_reported = fraction;
    try {
        const Aside aside;
        m_isStopped = !m_report(fraction);
    } catch (...) {
        m_isStopped = true;
    }
    if (m_isStopped) {
        FirstError::note(Reason::CANCELLED, "The operation was stopped by its progress callback.");
    }
}

}  // namespace nvf
