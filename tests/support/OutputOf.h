#pragma once

#include <stdio.h>

#include <memory>
#include <string>

namespace test {

/// What a shell command prints.
inline std::string OutputOf(const std::string& command) {
    std::string output;
    const std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen(command.c_str(), "r"), pclose);
    char piece[4096];
    while (pipe && !feof(pipe.get()))
        output.append(piece, fread(piece, 1, sizeof(piece), pipe.get()));
    return output;
}

}  // namespace test
