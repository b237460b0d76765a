#pragma once

#include <clocale>

#include "support/TemporaryFolder.h"

namespace test {

/// Sets the process, as long as it lives, to a locale that writes numbers with commas and groups,
/// made for the test.
class CommaLocale {
public:
    CommaLocale() {
        const std::string target = m_folder.File("de_DE.UTF-8");
        const std::string make = "localedef -i de_DE -f UTF-8 '" + target + "' >/dev/null 2>&1";
        if (system(make.c_str()) != 0) return;
        setenv("LOCPATH", m_folder.File("").c_str(), 1);
        m_isSet = std::setlocale(LC_ALL, "de_DE.UTF-8") && *std::localeconv()->decimal_point == ',';
    }
    ~CommaLocale() {
        std::setlocale(LC_ALL, "C");
        unsetenv("LOCPATH");
    }
    CommaLocale(const CommaLocale&) = delete;
    CommaLocale& operator=(const CommaLocale&) = delete;

    bool IsSet() const { return m_isSet; }

private:
    const TemporaryFolder m_folder;
    bool m_isSet = false;
};

}  // namespace test
