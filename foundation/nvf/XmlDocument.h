#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "nvf/Object.h"
#include "nvf/String.h"
#include "nvf/XmlElement.h"

namespace nvf {

/// An XML document in memory, of elements, attributes and texts; shared by reference, used by one
/// thread at a time. All text that XML can hold comes out equal after writing and parsing: blanks,
/// line breaks, markup and Unicode; text ends at a null character. Entities of a document type are
/// not expanded, so that no document grows while it is parsed, and parsing does not recurse.
class XmlDocument : public Object {
public:
    /// Documents that nest elements deeper are refused: writing or freeing such a tree recurses,
    /// and would exhaust the stack.
    static constexpr int kDeepestElement = 1000;

    XmlDocument();
    ~XmlDocument() override;

    /// Empties the document; a page of its memory stays for what comes next.
    void clear();

    /// Empties the document and gives it a root element with that default namespace.
    XmlElement createRootElement(const char* name, const char* namespaceUri);

    /// Replaces the document by the parsed text, UTF-8 unless it says otherwise. When the text is
    /// not well formed or nests too deeply, leaves the document empty, says why in `*error`, unless
    /// null, and returns false.
    bool parse(std::string_view text, String* error = nullptr);

    /// Whether memory ran out while the document was built or changed. Something is missing from
    /// it then, and it must not be written.
    bool isIncomplete() const;

    /// Replaces the document by a copy of another; false, with the document empty, when there is no
    /// memory or the other is incomplete.
    bool copyFrom(const XmlDocument& other);

    /// The document as indented UTF-8 text with a declaration; empty when it is incomplete. U+FFFD
    /// replaces characters that XML cannot hold, such as control characters; `*isReplaced`, unless
    /// null, says whether any were.
    std::string toUtf8(bool* isReplaced = nullptr) const;

    /// The root element of that name, or of any; null when it has another name.
    XmlElement getRootElement(const char* name) const;
    XmlElement getRootElement() const;

private:
    struct Impl;
    std::unique_ptr<Impl> m_impl;
};

}  // namespace nvf
