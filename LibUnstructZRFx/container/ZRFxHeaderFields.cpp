#include "container/ZRFxHeaderFields.h"

namespace unstruct {
namespace {

uint32_t DosTimeOf(std::time_t nTime) {
    std::tm local{};
    if (!localtime_r(&nTime, &local) || local.tm_year < 80) return (1u << 21) | (1u << 16);
    return static_cast<uint32_t>(((local.tm_year - 80) << 25) | ((local.tm_mon + 1) << 21) |
                                 (local.tm_mday << 16) | (local.tm_hour << 11) |
                                 (local.tm_min << 5) | (local.tm_sec / 2));
}

}  // namespace

// Entries are made in thousands a second, and the local time takes as long as the rest of a header.
uint32_t ZRFxDosTime(std::time_t nTime) {
    thread_local std::time_t t_nLast = -1;
    thread_local uint32_t t_nDosTime = DosTimeOf(t_nLast);
    if (nTime != t_nLast) t_nDosTime = DosTimeOf(nTime);
    t_nLast = nTime;
    return t_nDosTime;
}

}  // namespace unstruct
