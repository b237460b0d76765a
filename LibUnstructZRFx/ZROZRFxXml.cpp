#include "ZROZRFxXml.h"

#include <algorithm>
#include <string>

#include "nvf/Number.h"

namespace unstruct {
namespace {

std::string rowName(int row) {
    return "Row" + std::to_string(row + 1);
}

bool readRow(std::string_view text, int row, nuo::Mat4d* matrix) {
    for (int col = 0; col < 4; ++col) {
        text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
        double value = 0;
        if (!nvf::parseNumber(text.substr(0, text.find(' ')), value)) return false;
        matrix->setRowCol(row, col, value);
        text.remove_prefix(std::min(text.find(' '), text.size()));
    }
    return text.find_first_not_of(' ') == std::string_view::npos;
}

}  // namespace

void SetAttribute(nvf::XmlElement& element, const char* name, const ZRString& value) {
    element.setAttributeUtf8(name, value.Bytes());
}

ZRString GetAttribute(const nvf::XmlElement& element, const char* name) {
    return ZRString(element.getAttributeUtf8(name, ""));
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
