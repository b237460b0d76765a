#pragma once

#include <gmock/gmock.h>

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <random>
#include <vector>

#include "support/TemporaryFolder.h"

// Files, damage and data for tests of the container.
namespace ziptest {

using test::TemporaryFolder;

inline std::string ReadWhole(const std::string& sPath) {
    std::ifstream file(sPath, std::ios::binary | std::ios::ate);
    std::string sBytes(file ? static_cast<size_t>(file.tellg()) : 0, '\0');
    file.seekg(0).read(sBytes.data(), static_cast<std::streamsize>(sBytes.size()));
    return sBytes;
}

inline void WriteWhole(const std::string& sPath, const std::string& sBytes) {
    std::ofstream file(sPath, std::ios::binary | std::ios::trunc);
    file.write(sBytes.data(), static_cast<std::streamsize>(sBytes.size()));
}

inline std::string Truncated(const std::string& sBytes, size_t nLength) {
    return sBytes.substr(0, nLength);
}

inline std::string WithFlippedByte(std::string sBytes, size_t nAt) {
    sBytes[nAt] = static_cast<char>(sBytes[nAt] ^ 0x5A);
    return sBytes;
}

// The exit code of a shell command whose output goes nowhere.
inline int Shell(const std::string& sCommand) {
    const int nStatus = std::system(("(" + sCommand + ") >/dev/null 2>&1").c_str());
    return WIFEXITED(nStatus) ? WEXITSTATUS(nStatus) : -1;
}

// A displacement-like field: smooth, with noise in the last digits. The bytes of nCount floats.
inline std::string SmoothField(size_t nCount, unsigned nSeed = 1) {
    std::minstd_rand random(nSeed);
    std::uniform_real_distribution<float> noise(-1e-4f, 1e-4f);
    std::vector<float> values(nCount);
    for (size_t i = 0; i < nCount; ++i) {
        values[i] = std::sin(static_cast<float>(i) * 1e-3f + static_cast<float>(nSeed)) *
                    (1.0f + noise(random));
    }
    return {reinterpret_cast<const char*>(values.data()), nCount * sizeof(float)};
}

inline std::string RandomBytes(size_t nCount, unsigned nSeed = 1) {
    std::minstd_rand random(nSeed);
    std::string s(nCount, '\0');
    for (char& c : s) c = static_cast<char>(random() >> 8);
    return s;
}

}  // namespace ziptest
