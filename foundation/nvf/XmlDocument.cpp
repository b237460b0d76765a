#include "nvf/XmlDocument.h"

#include <algorithm>
#include <charconv>
#include <pugixml.hpp>

#include "nvf/Number.h"
#include "nvf/XmlCharacters.h"

// The only source that calls the XML library; XmlElement and XmlDocument are two faces of it.
namespace nvf {
namespace {

// White space that is all the text of an element is text; between elements it is layout.
constexpr unsigned int kParseOptions = pugi::parse_default | pugi::parse_ws_pcdata_single;

pugi::xml_node nodeOf(pugi::xml_node_struct* node) {
    return pugi::xml_node(node);
}

// Where there is no memory for its name, an attribute is appended without one.
pugi::xml_attribute attributeToSet(pugi::xml_node node, const char* name) {
    const pugi::xml_attribute existing = node.attribute(name);
    if (existing) return existing;
    const pugi::xml_attribute added = node.append_attribute(name);
    return *added.name() ? added : pugi::xml_attribute();
}

pugi::xml_node appendedChild(pugi::xml_node node, const char* name) {
    pugi::xml_node added = node.append_child(pugi::node_element);
    if (added.set_name(name)) return added;
    node.remove_child(added);
    return pugi::xml_node();
}

bool isText(const pugi::xml_node& node) {
    return node.type() == pugi::node_pcdata || node.type() == pugi::node_cdata;
}

pugi::xml_node elementFrom(pugi::xml_node node) {
    while (node && node.type() != pugi::node_element) node = node.next_sibling();
    return node;
}

bool equalsIgnoringCase(std::string_view text, std::string_view lowerCase) {
    return std::equal(
        text.begin(), text.end(), lowerCase.begin(), lowerCase.end(),
        [](char a, char b) { return (a >= 'A' && a <= 'Z' ? a - 'A' + 'a' : a) == b; });
}

// Collects the written text. The library writes a carriage return in a text as it is, where a
// parser would turn it into a line feed; as a character reference it stays what it was.
class TextCollector : public pugi::xml_writer {
public:
    void write(const void* data, std::size_t size) override {
        std::string_view piece(static_cast<const char*>(data), size);
        for (auto at = piece.find('\r'); at != std::string_view::npos; at = piece.find('\r')) {
            text.append(piece.substr(0, at)).append("&#13;");
            piece.remove_prefix(at + 1);
        }
        text.append(piece);
    }

    std::string text;
};

// Walks a tree without recursion and stops below the deepest level.
class DepthCheck : public pugi::xml_tree_walker {
public:
    bool for_each(pugi::xml_node& node) override {
        return depth() < XmlDocument::kDeepestElement || isText(node);
    }
};

}  // namespace

XmlElement XmlElement::addChildElement(const char* name, const String& text) {
    return addChildElementUtf8(name, text.toUtf8());
}

XmlElement XmlElement::addChildElementUtf8(const char* name, std::string_view text) {
    XmlElement child(appendedChild(nodeOf(m_node), name).internal_object(), m_isIncomplete);
    expectDone(child.notNull());
    if (!text.empty()) child.setTextUtf8(text);
    return child;
}

void XmlElement::removeChildElement(const XmlElement& child) {
    nodeOf(m_node).remove_child(nodeOf(child.m_node));
}

void XmlElement::setTextUtf8(std::string_view text) {
    expectDone(nodeOf(m_node).text().set(text.data(), text.size()));
}

void XmlElement::setAttributeString(const char* name, const String& value) {
    setAttributeUtf8(name, value.toUtf8());
}

void XmlElement::setAttributeUtf8(const char* name, std::string_view value) {
    expectDone(attributeToSet(nodeOf(m_node), name).set_value(value.data(), value.size()));
}

void XmlElement::setAttributeInt(const char* name, int value) {
    expectDone(attributeToSet(nodeOf(m_node), name).set_value(value));
}

void XmlElement::setAttributeBool(const char* name, bool value) {
    setAttributeUtf8(name, value ? "true" : "false");
}

void XmlElement::setAttributeFloat(const char* name, float value) {
    char text[32];
    const auto end = std::to_chars(text, text + sizeof(text), value).ptr;
    setAttributeUtf8(name, {text, static_cast<std::size_t>(end - text)});
}

String XmlElement::name() const {
    return String::fromUtf8(nameUtf8());
}

std::string_view XmlElement::nameUtf8() const {
    return nodeOf(m_node).name();
}

String XmlElement::valueText() const {
    return String::fromUtf8(textUtf8());
}

std::string XmlElement::textUtf8() const {
    std::string text;
    for (const pugi::xml_node& child : nodeOf(m_node)) {
        if (isText(child)) text += child.value();
    }
    return text;
}

bool XmlElement::hasAttribute(const char* name) const {
    return static_cast<bool>(nodeOf(m_node).attribute(name));
}

std::vector<std::string> XmlElement::attributeNamesUtf8() const {
    std::vector<std::string> names;
    for (const pugi::xml_attribute& attribute : nodeOf(m_node).attributes()) {
        names.emplace_back(attribute.name());
    }
    return names;
}

String XmlElement::getAttributeString(const char* name, const String& defaultValue) const {
    const pugi::xml_attribute attribute = nodeOf(m_node).attribute(name);
    return attribute ? String(attribute.value()) : defaultValue;
}

std::string_view XmlElement::getAttributeUtf8(const char* name,
                                              std::string_view defaultValue) const {
    const pugi::xml_attribute attribute = nodeOf(m_node).attribute(name);
    return attribute ? std::string_view(attribute.value()) : defaultValue;
}

int XmlElement::getAttributeInt(const char* name, int defaultValue) const {
    int value = 0;
    return parseNumber(getAttributeUtf8(name, ""), value) ? value : defaultValue;
}

bool XmlElement::getAttributeBool(const char* name, bool defaultValue) const {
    const std::string_view text = getAttributeUtf8(name, "");
    if (text == "1" || equalsIgnoringCase(text, "true")) return true;
    if (text == "0" || equalsIgnoringCase(text, "false")) return false;
    return defaultValue;
}

float XmlElement::getAttributeFloat(const char* name, float defaultValue) const {
    float value = 0;
    return parseNumber(getAttributeUtf8(name, ""), value) ? value : defaultValue;
}

XmlElement XmlElement::firstChildElement(const char* name) const {
    return XmlElement(elementFrom(nodeOf(m_node).child(name)).internal_object(), m_isIncomplete);
}

XmlElement XmlElement::firstChildElement() const {
    return XmlElement(elementFrom(nodeOf(m_node).first_child()).internal_object(), m_isIncomplete);
}

XmlElement XmlElement::nextSiblingElement(const char* name) const {
    return XmlElement(elementFrom(nodeOf(m_node).next_sibling(name)).internal_object(),
                      m_isIncomplete);
}

XmlElement XmlElement::nextSiblingElement() const {
    return XmlElement(elementFrom(nodeOf(m_node).next_sibling()).internal_object(), m_isIncomplete);
}

void XmlElement::expectDone(bool isDone) {
    if (m_node && !isDone) *m_isIncomplete = true;
}

struct XmlDocument::Impl {
    pugi::xml_document document;
    bool isIncomplete = false;
};

XmlDocument::XmlDocument() : m_impl(std::make_unique<Impl>()) {}

XmlDocument::~XmlDocument() = default;

XmlElement XmlDocument::createRootElement(const char* name, const char* namespaceUri) {
    clear();
    XmlElement root(appendedChild(m_impl->document, name).internal_object(), &m_impl->isIncomplete);
    m_impl->isIncomplete = root.isNull();
    root.setAttributeUtf8("xmlns", namespaceUri);
    return root;
}

void XmlDocument::clear() {
    m_impl->document.remove_children();  // a reset would give all memory back
    m_impl->isIncomplete = false;
}

bool XmlDocument::parse(std::string_view text, String* error) {
    String reason;
    m_impl->isIncomplete = false;
    const pugi::xml_parse_result result =
        m_impl->document.load_buffer(text.data(), text.size(), kParseOptions);
    if (!result) {
        reason =
            String("%1 (at byte %2)").args({result.description(), String::number(result.offset)});
    } else if (DepthCheck check; !m_impl->document.traverse(check)) {
        reason = String("Elements are nested deeper than %1 levels").arg(kDeepestElement);
    } else {
        return true;
    }
    m_impl->document.reset();
    if (error) *error = reason;
    return false;
}

bool XmlDocument::isIncomplete() const {
    return m_impl->isIncomplete;
}

bool XmlDocument::copyFrom(const XmlDocument& other) {
    return parse(other.toUtf8());
}

std::string XmlDocument::toUtf8(bool* isReplaced) const {
    if (isReplaced) *isReplaced = false;
    if (isIncomplete()) return std::string();
    constexpr unsigned int kFormat = pugi::format_indent | pugi::format_no_declaration;
    TextCollector collector;
    collector.text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
    m_impl->document.save(collector, " ", kFormat, pugi::encoding_utf8);
    const bool isForbidden = replaceForbiddenCharacters(&collector.text);
    if (isReplaced) *isReplaced = isForbidden;
    return std::move(collector.text);
}

XmlElement XmlDocument::getRootElement(const char* name) const {
    const XmlElement root = getRootElement();
    return root.nameUtf8() == name ? root : XmlElement();
}

XmlElement XmlDocument::getRootElement() const {
    return XmlElement(m_impl->document.document_element().internal_object(), &m_impl->isIncomplete);
}

}  // namespace nvf
