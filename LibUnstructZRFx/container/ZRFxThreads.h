#pragma once

#include <cstddef>
#include <functional>

namespace unstruct {

/// The threads of the process that help callers with work in parts. They are started when they are
/// first needed, wait without using the processor, take no signals, and end when the library is
/// unloaded or the process exits. A child of a fork starts its own. Usable from any thread.
class ZRFxThreads {
public:
    /// One part of the work: its index, and the number of the thread that does it, below that of
    /// the threads. Must not throw.
    using Part = std::function<void(size_t nPart, size_t nThread)>;

    /// How many threads any work of the process may take, the caller's own among them: 0 for as
    /// many as it has processors, 1 for the caller's alone. Holds for work that begins later.
    static void SetLimit(int nLimit);
    /// How many threads work that asks for nWanted gets: 0 asks for as many as there may be.
    static size_t Count(int nWanted);

    /// Does the parts 0 to nParts - 1 on up to nThreads threads, the caller among them, and returns
    /// when all are done. A part begins no earlier than those before it, so it may wait for them.
    /// Where threads cannot be had, the caller does the work alone.
    static void Run(size_t nParts, size_t nThreads, const Part& part);
};

}  // namespace unstruct
