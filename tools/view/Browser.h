#pragma once

#include <string>

namespace tools {

/// Has the desktop open a file by the program that it has for it. False, with the reason, when
/// there is none.
bool openOnDesktop(const std::string& file, std::string* error);

struct PictureSize {
    int width = 1200;
    int height = 800;
};

/// Has Chromium draw a page, which is to say that it is a picture alone, into a PNG file. `folder`
/// is one of our own, which it may fill. False, with the reason, when Chromium is not there or
/// fails.
bool drawPage(const std::string& page, const std::string& folder, PictureSize size,
              const std::string& png, std::string* error);

}  // namespace tools
