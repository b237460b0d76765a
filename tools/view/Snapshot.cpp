#include "view/Snapshot.h"

#include <fstream>
#include <iterator>
#include <vector>

#include "NuoZRFx/Case.h"
#include "NuoZRFx/File.h"
#include "data/ZROZRFxImageJpeg.h"

namespace tools {
namespace {

bool readImage(const std::string& jpeg, nuo::Image* image) {
    std::ifstream stream(jpeg, std::ios::binary);
    const std::vector<char> bytes{std::istreambuf_iterator<char>(stream), {}};
    return unstruct::ZRFxImageJpeg::Decode(reinterpret_cast<const unsigned char*>(bytes.data()),
                                           bytes.size(), image);
}

}  // namespace

bool storeSnapshot(const std::string& file, const std::string& password, int caseId,
                   const std::string& jpeg, std::string* error) {
    nuo::Image image;
    if (!readImage(jpeg, &image)) {
        *error = "the picture of the browser is no JPEG";
        return false;
    }
    nuo::zrfx::File changed;
    const bool isOpen = password.empty() ? changed.openForAppend(file.c_str())
                                         : changed.openForAppend(file.c_str(), password.c_str());
    if (!isOpen) return false;
    for (nuo::zrfx::Case& fileCase : changed.fileCases()) {
        if (fileCase.id() == caseId) fileCase.setSnapshot(&image);
    }
    return changed.close();
}

}  // namespace tools
