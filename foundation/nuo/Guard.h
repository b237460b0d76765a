#pragma once

#include <type_traits>

#include "nvf/SourceLocation.h"

namespace nuo {

/// Reports the exception that is being handled, once, and throws nothing; only the exception of a
/// failed assertion, which the host has asked for, is rethrown.
void reportCaught(const nvf::SourceLocation& where);

/// The border of the public interface, which no exception crosses: runs an operation and returns
/// its result. When memory runs out, or anything else is thrown, that is logged at the caller's
/// place and the result is `failed`, or by default a value-initialized one.
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
