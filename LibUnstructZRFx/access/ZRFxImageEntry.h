#pragma once

#include "NuoCore/Image.h"
#include "ZRString.h"

namespace unstruct {

class ZRFxAccess;

/// Images as entries: raw for names that end in ".raw", JPEG for all others. The extension is
/// compared as it stands. Failures are logged and give false.

/// Stores an image in place of the one of that name.
bool WriteImageEntry(ZRFxAccess& access, const ZRString& name, const nuo::Image& image);
bool ReadImageEntry(ZRFxAccess& access, const ZRString& name, nuo::Image* image);

}  // namespace unstruct
