#pragma once

#include <cstddef>

#include "NuoCore/Export.h"
#include "NuoCore/Image.h"
#include "NuoCore/PrivatePtr.h"
#include "NuoCore/PropertySetCollection.h"
#include "NuoCore/RefCountedObject.h"
#include "NuoCore/Str.h"
#include "NuoZRFx/Error.h"

namespace nuo::zrfx {

class File;
class ViewSettings;

/// One view set-up of a database: name, description, snapshot, textures and viewer settings. It
/// registers itself with its file, which writes it on flush() and close() and holds a reference to
/// it until it is closed. Create it with `new`. Used by one thread at a time, with its file. A
/// value that there was no memory to set is lost, which is logged; the file is not written until it
/// is set again.
///
///     nuo::PtrRef<nuo::zrfx::Case> view = new nuo::zrfx::Case(&file, "Front view",
///         file.unusedFileCaseId(), database->id());
class NUO_API Case : public RefCountedObject {
public:
    /// Adds a case to a file that was created or opened for append. The id must not be in use, not
    /// even by a case that could not be read; neither id may be negative, nor the name empty.
    /// Whether the database exists is not checked. On failure the reason is logged, the case is not
    /// part of the file, and its id is -1.
    Case(File* file, const Str& name, int id, int databaseId);
    ~Case() override;

    /// Why the last operation, construction included, of this object failed: one that returned
    /// false or null. No error after an operation that did not fail.
    const Error& lastError() const;

    /// -1 when the case could not be made.
    int id() const;

    /// The database that is shown.
    int databaseId() const;

    /// The title of the view; must not be empty.
    Str name() const;
    void setName(const Str& name);

    /// HTML text, or empty.
    Str description() const;
    void setDescription(const Str& description);

    /// Whether there is a picture of the view. Reads nothing but the case's document.
    bool hasSnapshot() const;

    /// The picture of the view. Null, with a message, for a case that was read and has none. It
    /// belongs to the case and is valid until the next call, or setSnapshot.
    const Image* snapshot() const;

    /// Replaces the picture by a copy, which is stored as JPEG; null takes it away. A picture
    /// without pixels cannot be written.
    void setSnapshot(Image* image);

    /// The textures of parts, in the order of the archive, under the names that they were added
    /// with; an empty name, with a message, when there is no such texture.
    std::size_t imageCount() const;
    Str imageName(std::size_t index) const;

    /// A texture; null with a message when there is none. It belongs to the case and is valid until
    /// the next call.
    const Image* image(std::size_t index) const;

    /// Stores a texture at once, replacing the one of that name. The name must not contain a
    /// folder. The image stays the caller's.
    bool addImage(const Str& name, Image* image);

    /// The viewer settings; empty or null when the case has none. They belong to the case.
    const PropertySetCollection* properties() const;

    /// Replaces the viewer settings, keeping a reference to them. False when they do not fit the
    /// catalogue of properties or arrays nest more than 100 deep; each problem is logged. Arrays
    /// that nest deeper could not be read back, so writing the case refuses them again.
    bool setProperties(PropertySetCollection* properties);
    bool setProperties(const ViewSettings& settings);

    /// Whether a viewer is to show stored results only, and none that it could derive.
    bool derivedResultsDisabled() const;
    void setDerivedResultsDisabled(bool disabled);

private:
    friend class File;
    friend class FilePrivate;
    Case(File* file, int index);
    bool create(File* file, const Str& name, int id, int databaseId);
    bool read(File* file, int index);
    void refuse();

    PrivatePtr<class CasePrivate> m_private;
};

}  // namespace nuo::zrfx
