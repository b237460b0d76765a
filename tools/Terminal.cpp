#include "Terminal.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>

namespace tools {
namespace {

constexpr std::size_t kNarrowest = 20;  // for a text that is divided

bool isTerminal() {
    static const bool s_isTerminal = isatty(STDOUT_FILENO) == 1;
    return s_isTerminal;
}

bool hasColors() {
    const char* noColor = std::getenv("NO_COLOR");
    const char* name = std::getenv("TERM");
    const bool isDumb = !name || std::string_view(name) == "dumb";
    return isTerminal() && !isDumb && (!noColor || !*noColor);
}

// 0 where lines may be of any length.
std::size_t columns() {
    winsize size{};
    if (!isTerminal() || ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) != 0) return 0;
    return size.ws_col;
}

bool beginsCharacter(char c) {
    return (static_cast<unsigned char>(c) & 0xC0) != 0x80;  // of UTF-8
}

std::size_t widthOf(std::string_view text) {
    return static_cast<std::size_t>(std::ranges::count_if(text, beginsCharacter));
}

// The bytes of so many characters from the beginning.
std::size_t bytesOf(std::string_view text, std::size_t characters) {
    std::size_t at = 0;
    for (std::size_t i = 0; at < text.size(); ++at) {
        if (beginsCharacter(text[at]) && i++ == characters) break;
    }
    return at;
}

}  // namespace

std::string painted(std::string_view text, Paint paint) {
    if (!hasColors()) return std::string(text);
    const char* code = paint == Paint::BOLD ? "1" : paint == Paint::RED ? "31" : "33";
    return std::string("\033[") + code + "m" + std::string(text) + "\033[0m";
}

std::string wrapped(std::string_view line, std::size_t indent, std::size_t used) {
    const std::size_t width = columns();
    if (width < std::max(indent, used) + kNarrowest) return std::string(line);
    std::string lines;
    for (std::size_t left = width - used; widthOf(line) > left; left = width - indent) {
        const std::size_t fitting = bytesOf(line, left);
        const std::size_t blank = line.rfind(' ', fitting);
        const bool canDivide = blank != std::string_view::npos && blank > 0;
        lines += std::string(line.substr(0, canDivide ? blank : fitting)) + "\n";
        lines.append(indent, ' ');
        line.remove_prefix(canDivide ? blank + 1 : fitting);
    }
    return lines + std::string(line);
}

std::string shortened(std::string_view text, std::size_t used) {
    const std::size_t width = columns();
    if (width < used + kNarrowest || widthOf(text) <= width - used) return std::string(text);
    const std::size_t left = width - used - 1;
    const std::size_t tail = left * 2 / 3;  // names differ at their end
    const std::size_t begin = bytesOf(text, widthOf(text) - tail);
    return std::string(text.substr(0, bytesOf(text, left - tail))) + "\u2026" +
           std::string(text.substr(begin));
}

}  // namespace tools
