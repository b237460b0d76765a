#include "quantities/ExtremeText.h"

namespace tools {

std::string placeText(const Extreme& extreme, int mapping) {
    const RowNames names = rowNamesOf(mapping);
    std::string text = numbered(names.id, extreme.row.id);
    if (names.second) text += std::string(", ") + numbered(names.second, extreme.row.node);
    if (!extreme.partName.empty()) text += " of " + extreme.partName;
    if (!extreme.position) return text;
    return text + " (" + numberText(extreme.position->x) + ", " + numberText(extreme.position->y) +
           ", " + numberText(extreme.position->z) + ")";
}

std::string extremeText(const Extreme& extreme, int mapping) {
    return numberText(extreme.value) + " at " + placeText(extreme, mapping);
}

Json extremeJson(const Extreme& extreme, int mapping) {
    const RowNames names = rowNamesOf(mapping);
    Json json = {{"value", jsonNumber(extreme.value)}, {names.id, extreme.row.id}};
    if (names.second) json[names.second] = extreme.row.node;
    json["part"] = extreme.part ? Json(*extreme.part) : Json(nullptr);
    json["partName"] = extreme.partName;
    json["position"] = nullptr;
    if (!extreme.position) return json;
    const nuo::Vec3f& at = *extreme.position;
    json["position"] = {jsonNumber(at.x), jsonNumber(at.y), jsonNumber(at.z)};
    return json;
}

}  // namespace tools
