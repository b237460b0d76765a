#pragma once

#include <type_traits>

#include "nvf/SourceLocation.h"

namespace nuo {

/// Reports the exception that is being handled, once and without throwing; that of a failed
/// assertion, which the host has asked for, is thrown on.
void reportCaught(const nvf::SourceLocation& where);

/// The border of the public interface, which nothing is thrown across: runs what an operation does
/// and gives its result. When memory runs out, or anything else is thrown, that is logged at the
/// caller's place and the result is `failed`; without one it is nothing, zero, null or empty.
template <typename Operation>
std::invoke_result_t<Operation> guarded(
    std::invoke_result_t<Operation> failed, Operation operation,
    const nvf::SourceLocation& where = nvf::SourceLocation::current()) {
    try {
        return operation();
    } catch (...) {
        reportCaught(where);
    }
    return failed;
}

template <typename Operation>
std::invoke_result_t<Operation> guarded(
    Operation operation, const nvf::SourceLocation& where = nvf::SourceLocation::current()) {
    try {
        return operation();
    } catch (...) {
        reportCaught(where);
    }
    return std::invoke_result_t<Operation>();
}

}  // namespace nuo
