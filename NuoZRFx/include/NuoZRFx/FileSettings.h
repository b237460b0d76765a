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
    Str vendorName;                ///< Who makes the exporting application.
    Str applicationName;           ///< The exporting application.
    Str password;                  ///< When not empty, the file is encrypted with AES-256.
};

}  // namespace nuo::zrfx
