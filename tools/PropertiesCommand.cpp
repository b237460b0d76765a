#include "PropertiesCommand.h"

#include <algorithm>
#include <memory>
#include <string>

#include "StandardOutput.h"
#include "Text.h"
#include "catalogue/ZROZRFxPropDef.h"

namespace tools {
namespace {

using nuo::Variant;
using unstruct::PropClassDef;
using unstruct::PropDef;

constexpr const char* kExamples =
    "  zrfx properties\n"
    "  zrfx properties camera";

struct Options {
    std::string group;
    bool isMarkdown = false;
};

// The value that a program sets a property to.
std::string typeText(Variant::Type type) {
    switch (type) {
        case Variant::INT:
            return "int";
        case Variant::UINT:
            return "unsigned int";
        case Variant::DOUBLE:
            return "double";
        case Variant::FLOAT:
            return "float";
        case Variant::BOOL:
            return "bool";
        case Variant::VEC3D:
            return "Vec3d";
        case Variant::COLOR3F:
            return "Color3f";
        case Variant::STRING:
            return "text";
        case Variant::ARRAY:
            return "array";
        case Variant::INVALID:
            break;
    }
    return "";
}

std::string valuesText(const PropDef& property) {
    std::string text(property.legalValues);
    if (!property.defaultValue.empty()) {
        text += (text.empty() ? "default " : "; default ") + std::string(property.defaultValue);
    }
    return text;
}

void printText(const PropClassDef& group) {
    print(std::string(group.className()) + "\n  " + std::string(group.description()) + "\n");
    for (const PropDef& property : group.propDefs()) {
        const std::string values = valuesText(property);
        print("\n  " + std::string(property.name) + ": " + typeText(property.type) +
              (values.empty() ? "" : " (" + values + ")") + "\n    " +
              std::string(property.description) + "\n");
    }
}

void printMarkdown(const PropClassDef& group) {
    print("\n## " + std::string(group.className()) + "\n\n" + std::string(group.description()) +
          "\n\n| key | type | values | meaning |\n|---|---|---|---|\n");
    for (const PropDef& property : group.propDefs()) {
        print("| `" + std::string(property.name) + "` | " + typeText(property.type) + " | " +
              valuesText(property) + " | " + std::string(property.description) + " |\n");
    }
}

void printPage() {
    print(
        "# Viewer settings\n\n"
        "The property sets that a case may have, made by `zrfx properties --markdown`. A set has "
        "one of\nthese class types and any part of its keys; `Case::setProperties` refuses others. "
        "`ViewSettings` makes\nthe most used ones. Groups that have a `context_...` key are for "
        "what it names, and may come once\nfor each.\n");
    for (const PropClassDef& group : PropClassDef::all()) printMarkdown(group);
}

void printAllGroups() {
    const auto groups = PropClassDef::all();
    for (const PropClassDef& group : groups) {
        if (&group != &groups.front()) print("\n");
        printText(group);
    }
}

int properties(ToolContext& context, const Options& options) {
    if (options.group.empty()) {
        options.isMarkdown ? printPage() : printAllGroups();
        return ToolContext::FINE;
    }
    const PropClassDef* group = PropClassDef::find(nvf::String(options.group.c_str()));
    if (!group) {
        context.fail(options.group, "there is no group of that name; zrfx properties lists all");
        return ToolContext::WRONG_USAGE;
    }
    options.isMarkdown ? printMarkdown(*group) : printText(*group);
    return ToolContext::FINE;
}

}  // namespace

void addPropertiesCommand(CLI::App& application, ToolContext& context) {
    const auto options = std::make_shared<Options>();
    CLI::App* command = context.addCommand(
        application, "properties", "Lists the viewer settings that a case may have", kExamples,
        [&context, options] { return properties(context, *options); });
    command->add_option("GROUP", options->group, "A group of settings, such as camera");
    command->add_flag("--markdown", options->isMarkdown, "As a page of the documentation");
}

}  // namespace tools
