#include "view/PageCases.h"

#include <vector>

#include "PropertyJson.h"

namespace tools {
namespace {

using nuo::zrfx::Case;

Json imageJson(const nuo::Image* image, PageFile& page) {
    if (!image) return nullptr;
    std::vector<std::uint8_t> rgb(std::size_t{3} * image->width() * image->height());
    if (rgb.empty() || !image->getAsRgb(rgb.data(), rgb.size())) return nullptr;
    return {{"width", image->width()},
            {"height", image->height()},
            {"data", page.add(std::span<const std::uint8_t>(rgb))}};
}

Json imagesJson(const Case& fileCase, PageFile& page) {
    Json images = Json::array();
    for (std::size_t i = 0; i < fileCase.imageCount(); ++i) {
        images.push_back(
            {{"name", utf8(fileCase.imageName(i))}, {"image", imageJson(fileCase.image(i), page)}});
    }
    return images;
}

}  // namespace

Json pageCases(FileReader& reader, int database, PageFile& page) {
    Json cases = Json::array();
    for (std::size_t i = 0; i < reader.file().fileCaseCount(); ++i) {
        const Case& fileCase = *reader.file().fileCase(i);
        if (fileCase.databaseId() != database) continue;
        const nuo::Image* snapshot = fileCase.hasSnapshot() ? fileCase.snapshot() : nullptr;
        cases.push_back({{"id", fileCase.id()},
                         {"name", utf8(fileCase.name())},
                         {"description", utf8(fileCase.description())},
                         {"properties", propertiesJson(fileCase.properties())},
                         {"snapshot", imageJson(snapshot, page)},
                         {"images", imagesJson(fileCase, page)}});
    }
    return cases;
}

}  // namespace tools
