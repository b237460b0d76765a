#pragma once

#include <optional>
#include <unordered_map>
#include <vector>

#include "ZRString.h"
#include "nvf/Object.h"
#include "nvf/XmlDocument.h"

namespace unstruct {

/// A point in time as the main document holds it.
struct ZRFxDateTime {
    int year = 0;
    int month = 0;
    int day = 0;
    int hour = 0;
    int minute = 0;
    int second = 0;
    int millisecond = 0;  ///< Not stored.

    /// The time of the host, in its time zone.
    static ZRFxDateTime Now();
};

/// What the registry says about a database.
struct ZRFxDatabaseInfo {
    int id = -1;
    ZRString name;
    ZRString folder;
    ZRString path;  ///< Entry name of the "Database.xml".
};

/// What the registry says about a case.
struct ZRFxCaseInfo {
    int id = -1;
    ZRString name;
    ZRString folder;
    int databaseId = -1;
    bool fullDatabase = false;  ///< True exactly for the text "true".
    ZRString path;              ///< Entry name of the "Case.xml".
};

/// "ZRF.xml", the document that says who wrote a file and which databases and cases it holds. Wraps
/// a shared XML document, which ZRFxAccess loads and stores. Operations that fail log why and give
/// false. Used by one thread at a time.
class ZRFxMainDocument {
public:
    static constexpr const char* kEntryName = "ZRF.xml";

    /// Wraps a parsed document, whatever it holds.
    explicit ZRFxMainDocument(nvf::ref<nvf::XmlDocument> document);

    /// A new document with empty registries. A null date means now.
    static nvf::ref<nvf::XmlDocument> Create(const ZRString& exportApplication,
                                             const ZRString& vendorName, int vendorId,
                                             const ZRFxDateTime* dateTime);

    /// Whether the root is "ZRF".
    bool Validate() const;

    /// Replaces the texts; all of them must be there.
    bool SetVendorInfo(const ZRString& exportApplication, const ZRString& vendorName, int vendorId);

    /// Appends the registry line of a database or case, copied from the root of its document; with
    /// `replace`, in place of the line that has the same id.
    bool RegisterDatabase(const nvf::XmlElement& root, bool replace);
    bool RegisterCase(const nvf::XmlElement& root, bool replace);

    /// Outputs that are null are left out; a missing text gives -1 or an empty string.
    void GetVendorInfo(int* vendorId, ZRString* vendorName, ZRString* exportApplication) const;
    bool GetExportDateTime(ZRFxDateTime* dateTime) const;

    /// Whether the file was exported for display only; false as result when the file does not say.
    bool GetDisplayModelOnly(bool* displayModelOnly) const;

    bool GetNumDatabases(int* count) const;
    bool GetNumCases(int* count) const;

    /// By position, or the first line of that id; false, without a message, when there is none.
    bool GetDatabaseInfo(int index, ZRFxDatabaseInfo* info) const;
    bool GetDatabaseByID(int id, ZRFxDatabaseInfo* info) const;
    bool GetCaseInfo(int index, ZRFxCaseInfo* info) const;
    bool GetCaseByID(int id, ZRFxCaseInfo* info) const;

private:
    /// The lines of a registry, found once, as a file may have very many.
    struct Registry {
        nvf::XmlElement At(int index) const;
        nvf::XmlElement OfID(int id) const;

        nvf::XmlElement element;  ///< Null when the document has no such registry.
        std::vector<nvf::XmlElement> lines;
        std::unordered_map<int, nvf::XmlElement> firstOfID;
    };

    nvf::XmlElement Root() const;
    nvf::XmlElement FileInfo(const char* name) const;
    const Registry& Databases() const { return RegistryOf("Databases", &m_databases); }
    const Registry& Cases() const { return RegistryOf("Cases", &m_cases); }
    const Registry& RegistryOf(const char* name, std::optional<Registry>* found) const;

    nvf::ref<nvf::XmlDocument> m_document;
    mutable std::optional<Registry> m_databases;  // Once asked for, until a line is added.
    mutable std::optional<Registry> m_cases;
};

}  // namespace unstruct
