#include "support/FailingMemory.h"

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <new>

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define NUO_OWN_MALLOC 0
#else
#define NUO_OWN_MALLOC 1
extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* memory, std::size_t size);
}
#endif

// Where the linker puts the code of the executable.
extern "C" const char __executable_start;
extern "C" const char etext;

namespace test {
namespace {

struct State {
    bool isOn = false;
    int pauses = 0;
    long calls = 0;
    long failAt = 0;
    FailingMemory::Failing failing = FailingMemory::Failing::kOnce;
};

thread_local State t_state;

bool isOfTheTests(const void* caller) {
    const auto address = reinterpret_cast<std::uintptr_t>(caller);
    return address >= reinterpret_cast<std::uintptr_t>(&__executable_start) &&
           address < reinterpret_cast<std::uintptr_t>(&etext);
}

bool fails(const void* caller) {
    State& state = t_state;
    if (!state.isOn || state.pauses > 0 || isOfTheTests(caller)) return false;
    ++state.calls;
    return state.failing == FailingMemory::Failing::kOnce ? state.calls == state.failAt
                                                          : state.calls >= state.failAt;
}

void* allocated(std::size_t size) {
#if NUO_OWN_MALLOC
    void* memory = __libc_malloc(size);
#else
    void* memory = std::malloc(size);
#endif
    if (!memory) throw std::bad_alloc();
    return memory;
}

}  // namespace

void FailingMemory::Start(long nCall, Failing eFailing) {
    t_state = State();
    t_state.failAt = nCall;
    t_state.failing = eFailing;
    t_state.isOn = true;
}

long FailingMemory::Stop() {
    t_state.isOn = false;
    return t_state.calls;
}

bool FailingMemory::HasFailed() {
    return t_state.failAt > 0 && t_state.calls >= t_state.failAt;
}

FailingMemory::Pause::Pause() {
    ++t_state.pauses;
}

FailingMemory::Pause::~Pause() {
    --t_state.pauses;
}

}  // namespace test

void* operator new(std::size_t size) {
    if (test::fails(__builtin_return_address(0))) throw std::bad_alloc();
    return test::allocated(size > 0 ? size : 1);
}

void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    if (test::fails(__builtin_return_address(0))) return nullptr;
    return std::malloc(size > 0 ? size : 1);
}

void operator delete(void* memory) noexcept {
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}

#if NUO_OWN_MALLOC
extern "C" void* malloc(std::size_t size) {
    if (!test::fails(__builtin_return_address(0))) return __libc_malloc(size);
    errno = ENOMEM;
    return nullptr;
}

extern "C" void* calloc(std::size_t count, std::size_t size) {
    if (!test::fails(__builtin_return_address(0))) return __libc_calloc(count, size);
    errno = ENOMEM;
    return nullptr;
}

extern "C" void* realloc(void* memory, std::size_t size) {
    if (!test::fails(__builtin_return_address(0))) return __libc_realloc(memory, size);
    errno = ENOMEM;
    return nullptr;
}
#endif
