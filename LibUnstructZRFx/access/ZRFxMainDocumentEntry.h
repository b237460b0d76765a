#pragma once

#include <optional>

#include "ZRString.h"
#include "documents/ZRFxMainDocument.h"
#include "nvf/Logger.h"
#include "nvf/XmlDocument.h"

namespace unstruct {

class ZRFxAccess;

/// The main document as an entry of an archive: read once, as a file may list very many databases
/// and cases, and stored whenever it changes. Operations that fail log why and give false.
class ZRFxMainDocumentEntry {
public:
    /// REQUIRES: the access outlives this.
    explicit ZRFxMainDocumentEntry(ZRFxAccess& access);

    /// To be called when the entry may have changed.
    void Forget() { m_document.reset(); }

    /// Reads the entry. REQUIRES: the document is held by a reference.
    bool Read(nvf::XmlDocument* doc);

    /// Asks the document, which is read first if need be.
    template <typename... Parameters, typename... Values>
    bool Ask(bool (ZRFxMainDocument::*question)(Parameters...) const, Values... values) {
        return Load() && ((*m_document).*question)(values...);
    }
    bool GetVendorInfo(int* vendorId, ZRString* vendorName, ZRString* exportApplication);

    bool SetVendorInfo(const ZRString& exportApplication, const ZRString& vendorName, int vendorId);

    /// Stores a document in the folder that its root names, and registers it.
    bool AddDatabase(const nvf::XmlDocument& databaseDoc, bool overwrite);
    bool AddCase(const nvf::XmlDocument& caseDoc, bool overwrite);

private:
    bool Load();
    bool StoreDocument(const nvf::XmlElement& root, const char* name, const nvf::XmlDocument& doc,
                       bool overwrite);
    bool Store(const nvf::XmlDocument& doc, nvf::LocatedText message);

    ZRFxAccess& m_access;
    std::optional<ZRFxMainDocument> m_document;
    nvf::ref<nvf::Logger> m_logger;
};

}  // namespace unstruct
