#include "documents/ZRFxXml.h"

#include <algorithm>
#include <charconv>
#include <string>

#include "nvf/Number.h"

namespace unstruct {
namespace {

std::string rowName(int row) {
    return "Row" + std::to_string(row + 1);
}

// Exactly `count` numbers with blanks between them.
template <typename Number>
bool parseNumbers(std::string_view text, int count, Number* numbers) {
    for (int i = 0; i < count; ++i) {
        text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
        if (!nvf::parseNumber(text.substr(0, text.find(' ')), numbers[i])) return false;
        text.remove_prefix(std::min(text.find(' '), text.size()));
    }
    return text.find_first_not_of(' ') == std::string_view::npos;
}

// As few digits as bring the same value back.
template <typename Number>
std::string shortest(Number value) {
    char text[32];
    return std::string(text, std::to_chars(text, text + sizeof(text), value).ptr);
}

template <typename Number>
std::string joined(Number a, Number b, Number c) {
    return shortest(a) + ' ' + shortest(b) + ' ' + shortest(c);
}

bool readRow(std::string_view text, int row, nuo::Mat4d* matrix) {
    double values[4] = {};
    if (!parseNumbers(text, 4, values)) return false;
    for (int col = 0; col < 4; ++col) matrix->setRowCol(row, col, values[col]);
    return true;
}

}  // namespace

void SetAttribute(nvf::XmlElement& element, const char* name, const ZRString& value) {
    element.setAttributeUtf8(name, value.Bytes());
}

ZRString GetAttribute(const nvf::XmlElement& element, const char* name) {
    return ZRString(element.getAttributeUtf8(name, ""));
}

void SetAttribute(nvf::XmlElement& element, const char* name, const nuo::Color3f& value) {
    element.setAttributeUtf8(name, joined(value.r, value.g, value.b));
}

void SetAttribute(nvf::XmlElement& element, const char* name, const nuo::Vec3d& value) {
    element.setAttributeUtf8(name, joined(value.x, value.y, value.z));
}

nuo::Color3f GetColor(const nvf::XmlElement& element, const char* name) {
    float c[3] = {};
    if (!parseNumbers(element.getAttributeUtf8(name, ""), 3, c)) return {};
    return {c[0], c[1], c[2]};
}

nuo::Vec3d GetVec3d(const nvf::XmlElement& element, const char* name) {
    double v[3] = {};
    if (!parseNumbers(element.getAttributeUtf8(name, ""), 3, v)) return {};
    return {v[0], v[1], v[2]};
}

void SetAttribute(nvf::XmlElement& element, const char* name, double value) {
    element.setAttributeUtf8(name, shortest(value));
}

double GetDouble(const nvf::XmlElement& element, const char* name, double defaultValue) {
    double value = 0;
    return nvf::parseNumber(element.getAttributeUtf8(name, ""), value) ? value : defaultValue;
}

ZRString GetText(const nvf::XmlElement& element) {
    return element.textUtf8();
}

void WriteIntList(nvf::XmlElement& element, const ZRIntArray& values) {
    for (std::int64_t i = 0; i < values.GetSize(); ++i) {
        element.addChildElementUtf8(("Value" + std::to_string(i)).c_str(),
                                    std::to_string(values[i]));
    }
}

bool ReadIntList(const nvf::XmlElement& element, ZRIntArray* values) {
    NVF_ASSERT(values);
    if (!values) return false;
    values->RemoveAll();
    for (nvf::XmlElement child = element.firstChildElement(); child.notNull();
         child = child.nextSiblingElement()) {
        if (child.nameUtf8() != "Value" + std::to_string(values->GetSize())) continue;
        int value = 0;
        if (!nvf::parseNumber(child.textUtf8(), value) || !values->Add(value)) return false;
    }
    return true;
}

void WriteMatrix(nvf::XmlElement& element, const nuo::Mat4d& matrix) {
    for (int row = 0; row < 4; ++row) {
        std::string text;
        for (int col = 0; col < 4; ++col) {
            if (col > 0) text += ' ';
            text += nvf::textOfNumber(matrix.rowCol(row, col), 'f', 6);
        }
        element.addChildElementUtf8(rowName(row).c_str(), text);
    }
}

bool ReadMatrix(const nvf::XmlElement& element, nuo::Mat4d* matrix) {
    NVF_ASSERT(matrix);
    if (!matrix) return false;
    nuo::Mat4d found;
    for (int row = 0; row < 4; ++row) {
        const nvf::XmlElement child = element.firstChildElement(rowName(row).c_str());
        if (child.isNull() || !readRow(child.textUtf8(), row, &found)) return false;
    }
    *matrix = found;
    return true;
}

}  // namespace unstruct
