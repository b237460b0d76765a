#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "ZRString.h"
#include "nvf/XmlDocument.h"

namespace unstruct {

class ZRFxAccess;

/// The contents of a list document: some attributes and elements as a head, then items, one element
/// each.
class ZRFxListContent {
public:
    virtual ~ZRFxListContent() = default;

    /// Makes the root with the head.
    virtual nvf::XmlElement WriteHead(nvf::XmlDocument* pDoc) const = 0;
    virtual void WriteItem(nvf::XmlElement root, std::int64_t index) const = 0;
    virtual std::int64_t GetItemCount() const = 0;
};

/// A document that mostly grows at its end. Storing it again writes only from the first item on
/// that is new or has changed; the archive keeps what comes before. Remembers one number per item
/// for that. Used by one thread at a time.
class ZRFxListDocument {
public:
    /// The text that follows the last item, up to the name of the root.
    static constexpr std::string_view kRootEnd = "\n</";

    /// Notes that an item has changed since it was stored.
    void Touch(std::int64_t index);

    /// Stores the document in place of the entry of that name. False, with a message, when that
    /// fails, or when memory runs out; the entry stays as it was.
    bool Store(ZRFxAccess* pAccess, const ZRString& name, const ZRFxListContent& content);

private:
    bool HasHead(const ZRFxListContent& content) const;
    static bool MakeText(ZRFxAccess* pAccess, const ZRString& name, const ZRFxListContent& content,
                         std::int64_t iFrom, std::string* pText,
                         std::vector<std::uint64_t>* pStarts);

    std::uint64_t m_nRevision = 0;  // Of the entry as it was stored last.
    std::string m_sHead;
    std::vector<std::uint64_t> m_aStarts;  // Of the items in the text, and of what follows them.
};

}  // namespace unstruct
