#pragma once

#include <version>

#if defined(__cpp_lib_source_location)
#include <source_location>
#else
#include <cstdint>
#endif

namespace nvf {

/// A place in the source, from std::source_location. Compilers without it, such as clang before 15,
/// give the function's name but not its signature.
#if defined(__cpp_lib_source_location)
using SourceLocation = std::source_location;
#else
class SourceLocation {
public:
    static constexpr SourceLocation current(std::uint_least32_t line = __builtin_LINE(),
                                            const char* file = __builtin_FILE(),
                                            const char* function = __builtin_FUNCTION()) noexcept {
        SourceLocation location;
        location.m_line = line;
        location.m_file = file;
        location.m_function = function;
        return location;
    }

    constexpr std::uint_least32_t line() const noexcept { return m_line; }
    constexpr const char* file_name() const noexcept { return m_file; }
    constexpr const char* function_name() const noexcept { return m_function; }

private:
    std::uint_least32_t m_line = 0;
    const char* m_file = "";
    const char* m_function = "";
};
#endif

}  // namespace nvf
