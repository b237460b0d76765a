#pragma once

namespace test {

/// Lets allocations of the library fail: those of `operator new` and, without sanitizers, of
/// malloc, calloc and realloc, in the thread that asked for it. Allocations that the code of the
/// tests makes itself are neither counted nor failed.
class FailingMemory {
public:
    enum class Failing { kOnce, kFromThenOn };

    /// The N-th allocation from now on fails, from 1.
    static void Start(long nCall, Failing eFailing);
    /// There is memory again. Gives how many allocations there were since Start.
    static long Stop();
    static bool HasFailed();

    /// As long as it lives, allocations are the test's.
    class Pause {
    public:
        Pause();
        Pause(const Pause&) = delete;
        Pause& operator=(const Pause&) = delete;
        ~Pause();
    };
};

}  // namespace test
