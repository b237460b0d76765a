#include "StandardOutput.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <iostream>

namespace tools {
namespace {

int s_cause = 0;  // of the first failure, which the stream does not keep

bool note(bool isWritten) {
    if (!isWritten && s_cause == 0) s_cause = errno;
    return isWritten;
}

}  // namespace

void print(std::string_view text) {
    note(std::fwrite(text.data(), 1, text.size(), stdout) == text.size());
}

void printJson(const Json& json) {
    print(json.dump(2, ' ', false, Json::error_handler_t::replace) + "\n");
}

bool closeStandardOutput(std::string* cause) {
    errno = 0;
    note(std::cout.flush() && std::fflush(stdout) == 0);
    const bool hasFailed = s_cause != 0 || std::ferror(stdout) != 0;
    // A stream that was closed from the beginning is fine as long as nothing was written to it.
    const bool isClosed = std::fclose(stdout) == 0 || errno == EBADF;
    if (isClosed && !hasFailed) return true;
    *cause = std::strerror(s_cause != 0 ? s_cause : errno);
    return false;
}

}  // namespace tools
