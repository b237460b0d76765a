#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <thread>

namespace nvf {

/// How far an operation of the calling thread is, for a caller who wants to see it and may stop it.
/// What the operation is made of counts what it has done, without knowing who asks:
///
///     Progress::Count count(size);            // where the amount of work is known
///     ... if (!Progress::advance(part)) return fail(...);
class Progress {
public:
    /// Takes the fraction that is done, 0 to 1; false stops the operation.
    using Report = std::function<bool(double)>;

    /// Reports from here to the end of the scope, unless the report is empty or the thread is
    /// inside an operation that reports already.
    explicit Progress(const Report& report);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /// The operation of the calling thread; null when nobody wants to see it. Threads that help it
    /// count through this object.
    static Progress* current();

    /// Gives the rest of the scope a share of what contains it, and the next part what follows.
    class Part {
    public:
        explicit Part(double share);
        ~Part();
        Part(const Part&) = delete;
        Part& operator=(const Part&) = delete;

    private:
        Progress* const m_progress;
        double m_outerShare = 0;
    };

    /// Counts in the rest of the scope, up to a total. Inside another count it is not needed, and
    /// does nothing.
    class Count {
    public:
        explicit Count(std::uint64_t total);
        ~Count();
        Count(const Count&) = delete;
        Count& operator=(const Count&) = delete;

    private:
        Progress* const m_progress;
    };

    /// Counts work of the calling thread as done. False when the operation is to stop, from then
    /// on.
    static bool advance(std::uint64_t amount) { return !current() || current()->add(amount); }

    /// Whether the operation of the calling thread is to stop.
    static bool isStopped() { return current() && current()->m_isStopped; }

    /// The same from any thread; reports in the thread of the operation only.
    bool add(std::uint64_t amount);

private:
    void report();

    const Report& m_report;
    const std::thread::id m_thread;
    std::atomic<bool> m_isStopped = false;
    std::atomic<std::uint64_t> m_done = 0;
    std::uint64_t m_total = 0;  // 0 while nothing is counted
    double m_begin = 0;         // of the innermost part, as a fraction of the whole
    double m_share = 1;
    double m_reported = -1;
};

}  // namespace nvf
