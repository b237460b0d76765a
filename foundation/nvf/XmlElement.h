#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "nvf/String.h"

namespace pugi {
struct xml_node_struct;
}

namespace nvf {

/// A handle to one element of an XmlDocument, or to none; valid while the document lives. Text is
/// UTF-8 in the document: the `Utf8` forms pass it on, the others convert. Used by one thread at a
/// time, as its document. On a null element, adding returns a null element, setting does nothing
/// and getting returns the default. An operation that runs out of memory leaves the document
/// incomplete.
class XmlElement {
public:
    XmlElement() = default;

    bool isNull() const { return !m_node; }
    bool notNull() const { return m_node; }

    /// Appends a child with a text; an empty text adds none.
    XmlElement addChildElement(const char* name, const String& text = String());
    XmlElement addChildElementUtf8(const char* name, std::string_view text);

    /// Removes a child with all that it holds.
    void removeChildElement(const XmlElement& child);

    /// Replaces the text of the element.
    void setTextUtf8(std::string_view text);

    /// Sets an attribute, in its place if the element has it, otherwise after the others. A float
    /// is written with as many digits as bring the same value back.
    void setAttributeString(const char* name, const String& value);
    void setAttributeUtf8(const char* name, std::string_view value);
    void setAttributeInt(const char* name, int value);
    void setAttributeBool(const char* name, bool value);
    void setAttributeFloat(const char* name, float value);

    String name() const;
    std::string_view nameUtf8() const;

    /// The text between the tags, of all text pieces directly below the element.
    String valueText() const;
    std::string textUtf8() const;

    bool hasAttribute(const char* name) const;

    /// The names of all attributes, in their order.
    std::vector<std::string> attributeNamesUtf8() const;

    /// The value of an attribute, or the default when it is missing or does not convert. Booleans
    /// are read without regard to case; "1" and "0" count as well.
    String getAttributeString(const char* name, const String& defaultValue) const;
    std::string_view getAttributeUtf8(const char* name, std::string_view defaultValue) const;
    int getAttributeInt(const char* name, int defaultValue) const;
    bool getAttributeBool(const char* name, bool defaultValue) const;
    float getAttributeFloat(const char* name, float defaultValue) const;

    /// The next sibling of that name, or of any name; null after the last.
    XmlElement firstChildElement(const char* name) const;
    XmlElement firstChildElement() const;
    XmlElement nextSiblingElement(const char* name) const;
    XmlElement nextSiblingElement() const;

private:
    friend class XmlDocument;
    XmlElement(pugi::xml_node_struct* node, bool* isIncomplete)
        : m_node(node), m_isIncomplete(isIncomplete) {}
    void expectDone(bool isDone);

    pugi::xml_node_struct* m_node = nullptr;
    bool* m_isIncomplete = nullptr;  // the document's
};

}  // namespace nvf
