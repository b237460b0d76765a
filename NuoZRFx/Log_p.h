#pragma once

#include "nuo/Convert.h"
#include "nuo/Guard.h"
#include "nvf/LogManager.h"

namespace nuo::zrfx {

/// Logs an error of the public interface at the caller's place and returns false.
template <typename... Values>
bool fail(nvf::LocatedText message, const Values&... values) {
    return nvf::interfaceLogger()->fail(message, values...);
}

}  // namespace nuo::zrfx
