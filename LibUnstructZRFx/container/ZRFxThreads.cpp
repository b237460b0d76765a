#include "container/ZRFxThreads.h"

#include <pthread.h>
#include <sched.h>
#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <exception>
#include <list>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

namespace unstruct {
namespace {

constexpr size_t kMostThreads = 256;

// Threads that are started meanwhile leave signals to the host's own.
class SignalsBlocked {
public:
    SignalsBlocked() {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, &m_before);
    }
    ~SignalsBlocked() { pthread_sigmask(SIG_SETMASK, &m_before, nullptr); }
    SignalsBlocked(const SignalsBlocked&) = delete;
    SignalsBlocked& operator=(const SignalsBlocked&) = delete;

private:
    sigset_t m_before;
};

struct Job {
    Job(size_t nAllParts, size_t nAllThreads, const ZRFxThreads::Part& thePart)
        : part(thePart), nParts(nAllParts), nThreads(nAllThreads) {}

    void DoParts(size_t nThread) {
        for (size_t nPart = nNext++; nPart < nParts; nPart = nNext++) part(nPart, nThread);
    }
    bool TakesHelp() const { return nJoined < nThreads && nNext < nParts; }

    const ZRFxThreads::Part& part;
    const size_t nParts;
    const size_t nThreads;
    std::atomic<size_t> nNext{0};
    size_t nJoined = 1;  // Threads that ever joined, the caller among them.
    size_t nHelping = 0;
};

class Pool {
public:
    ~Pool() { Stop(); }

    bool IsOfThisProcess() const { return m_nProcess == getpid(); }

    void Run(Job* pJob) {
        std::unique_lock lock(m_mutex);
        const bool bListed = Offer(pJob);
        lock.unlock();
        if (bListed) m_offered.notify_all();
        pJob->DoParts(0);
        if (!bListed) return;
        lock.lock();
        m_apJobs.remove(pJob);
        m_helped.wait(lock, [&] { return pJob->nHelping == 0; });
    }

    // Ends the threads; false when someone is at work still.
    bool Stop() {
        std::unique_lock lock(m_mutex);
        m_bStopped = true;
        lock.unlock();
        m_offered.notify_all();
        for (std::thread& thread : m_aThreads) thread.join();
        m_aThreads.clear();
        lock.lock();
        return m_apJobs.empty();
    }

private:
    // With as many threads as it takes, or as can be had.
    bool Offer(Job* pJob) {
        try {
            const SignalsBlocked blocked;
            while (!m_bStopped && m_aThreads.size() + 1 < pJob->nThreads) {
                m_aThreads.emplace_back([this] { Help(); });
            }
            if (m_aThreads.empty()) return false;
            m_apJobs.push_back(pJob);
            return true;
        } catch (const std::exception&) {
            return OfferAsItIs(pJob);
        }
    }

    bool OfferAsItIs(Job* pJob) {
        try {
            if (!m_aThreads.empty()) m_apJobs.push_back(pJob);
            return !m_aThreads.empty();
        } catch (const std::exception&) {
            return false;
        }
    }

    void Help() {
        std::unique_lock lock(m_mutex);
        while (true) {
            Job* pJob = nullptr;
            m_offered.wait(lock, [&] { return (pJob = FindJob()) || m_bStopped; });
            if (!pJob) return;
            const size_t nThread = pJob->nJoined++;
            ++pJob->nHelping;
            lock.unlock();
            pJob->DoParts(nThread);
            lock.lock();
            if (--pJob->nHelping == 0) m_helped.notify_all();
        }
    }

    Job* FindJob() const {
        const auto found = std::find_if(m_apJobs.begin(), m_apJobs.end(),
                                        [](const Job* pJob) { return pJob->TakesHelp(); });
        return found == m_apJobs.end() ? nullptr : *found;
    }

    const pid_t m_nProcess = getpid();
    std::mutex m_mutex;
    std::condition_variable m_offered;
    std::condition_variable m_helped;
    std::list<Job*> m_apJobs;
    std::vector<std::thread> m_aThreads;
    bool m_bStopped = false;
};

// The pool of the process, made without a lock: a child of a fork could find that one locked for
// ever. What the child inherits has lost its threads and stays as it is.
class ProcessPool {
public:
    // Runs when the library is unloaded, or the process exits.
    ~ProcessPool() {
        Pool* pPool = m_pPool;
        if (!pPool || !pPool->IsOfThisProcess() || !pPool->Stop()) return;
        m_pPool = nullptr;
        delete pPool;
    }

    Pool* Get() {
        Pool* pPool = m_pPool;
        if (pPool && pPool->IsOfThisProcess()) return pPool;
        auto pNew = std::make_unique<Pool>();
        return m_pPool.compare_exchange_strong(pPool, pNew.get()) ? pNew.release() : pPool;
    }

private:
    std::atomic<Pool*> m_pPool{nullptr};
};

ProcessPool g_pool;
std::atomic<int> g_nLimit{0};

// Those that the process may run on, which its host may have bound to a single one.
size_t ProcessorCount() {
    cpu_set_t processors;
    if (sched_getaffinity(0, sizeof(processors), &processors) == 0) {
        return static_cast<size_t>(CPU_COUNT(&processors));
    }
    return std::max(1u, std::thread::hardware_concurrency());
}

size_t Resolved(int nThreads) {
    return nThreads > 0 ? static_cast<size_t>(nThreads) : ProcessorCount();
}

}  // namespace

void ZRFxThreads::SetLimit(int nLimit) {
    g_nLimit = nLimit;
}

size_t ZRFxThreads::Count(int nWanted) {
    const int nLimit = g_nLimit;
    if (nLimit == 1 || nWanted == 1) return 1;
    const size_t nMost = std::min(Resolved(nLimit), kMostThreads);
    return nWanted > 0 ? std::min(nMost, static_cast<size_t>(nWanted)) : nMost;
}

void ZRFxThreads::Run(size_t nParts, size_t nThreads, const Part& part) {
    Job job(nParts, std::min(nParts, nThreads), part);
    if (job.nThreads < 2) return job.DoParts(0);
    Pool* pPool = nullptr;
    try {
        pPool = g_pool.Get();
    } catch (const std::exception&) {
        return job.DoParts(0);
    }
    pPool->Run(&job);
}

}  // namespace unstruct
