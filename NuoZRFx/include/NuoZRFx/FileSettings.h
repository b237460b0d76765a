#pragma once

#include "NuoCore/Str.h"

namespace nuo::zrfx {

/// How File::create makes a file: a plain value.
class FileSettings {
public:
    /// True: data files are packed binary values. False: lines of text, which keep six significant
    /// digits of a value and read undefined ones back as 2.99e38.
    bool binary = true;
    bool digitallySigned = false;  ///< No signature is made; File::settings() gives it back.
    int compressionLevel = 5;      ///< 0 (stored) to 9 (smallest); what lies outside is clamped.

    /// How many significant decimal digits result values keep, 1 to 6, so that they pack better: 4
    /// digits take about half the room of all. 0 keeps all. A value changes by at most half a unit
    /// of the last digit, as ResultValuesBlock::setSignificantDigits says; nothing but result
    /// values is touched, and each result gets the attribute "SignificantDigits".
    int significantDigits = 0;

    /// How many threads pack and unpack large arrays, the caller's own among them: 0 for as many as
    /// ZRFxComponent::setThreads allows, 1 for the caller's alone. Calls return when the work is
    /// done. Whatever the number, arrays are packed into the same bytes. See also
    /// File::setThreads.
    int threads = 0;

    Str vendorName;       ///< Who makes the exporting application.
    Str applicationName;  ///< The exporting application.
    Str password;         ///< When not empty, the file is encrypted with AES-256.
};

}  // namespace nuo::zrfx
