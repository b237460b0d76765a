#pragma once

#include <optional>

#include "NuoCore/Image.h"
#include "NuoCore/PropertySetCollection.h"
#include "NuoCore/PtrRef.h"
#include "NuoZRFx/Case.h"
#include "access/ZROZRFxAccess.h"
#include "nvf/XmlDocument.h"

namespace nuo::zrfx {

/// What a Case holds. The archive is there while its file is open.
class CasePrivate {
public:
    /// Starts the document of a new case.
    bool createDocument();

    /// Reads the case at an index of the main document, without snapshot and textures.
    bool read(int index);

    /// Takes over what was committed since for the case at an index of the main document.
    bool refresh(int index, const unstruct::ZRFxArchiveChanges& changes);

    /// Writes what has changed since it was read or written; all of a new case.
    bool writeDelayed();

    /// The archive; null after an assertion when the file is closed.
    unstruct::ZRFxAccess* openAccess() const;

    /// The file is closing: nothing of the archive may be used any more.
    void detach() { m_access = nullptr; }

    /// The case's folder, which its document names.
    unstruct::ZRString folder() const;

    /// The name of an entry in the case's folder.
    unstruct::ZRString entryName(const unstruct::ZRString& name) const;
    const unstruct::ZRStringArray& textureEntries();

    unstruct::ZRFxAccess* m_access = nullptr;
    int m_id = -1;
    int m_databaseId = -1;
    Str m_name;
    Str m_description;
    bool m_derivedResultsDisabled = false;
    bool m_isReadFromFile = false;
    bool m_isDocumentModified = false;
    bool m_isSnapshotModified = false;
    bool m_isPropertiesModified = false;
    std::optional<Image> m_snapshot;
    Image m_image;  // the texture given last
    PtrRef<PropertySetCollection> m_properties;
    nvf::ref<nvf::XmlDocument> m_caseDocument;
    unstruct::ZRStringArray m_textureEntries;  // of a file that is read, once asked for

private:
    bool readProperties();
    bool write();
    bool writeChanged();
    bool writeDescription(nvf::XmlElement root);
    bool writeSnapshot(nvf::XmlElement root);
    bool writeProperties();
};

}  // namespace nuo::zrfx
