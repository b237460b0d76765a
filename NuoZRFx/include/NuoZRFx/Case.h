#pragma once

#include <cstddef>

#include "NuoCore/Export.h"
#include "NuoCore/Image.h"
#include "NuoCore/PrivatePtr.h"
#include "NuoCore/PropertySetCollection.h"
#include "NuoCore/RefCountedObject.h"
#include "NuoCore/Str.h"

namespace nuo::zrfx {

class File;

/// One view set-up of a database: name, description, snapshot, textures and viewer settings. It
/// registers itself with its file, which holds a reference to it until it is closed and writes it
/// with flush() and close(). Create it with `new`. Used by one thread at a time, with its file.
/// What is set while memory is missing is logged and lost: the file is not written until it is set
/// again.
///
///     nuo::PtrRef<nuo::zrfx::Case> view = new nuo::zrfx::Case(&file, "Front view",
///         file.unusedFileCaseId(), database->id());
class NUO_API Case : public RefCountedObject {
public:
    /// Adds a case to a file that was created or opened for append. The id must be new to the file,
    /// cases that could not be read included, neither id negative, the name not empty. Whether
    /// there is such a database is not checked. On failure the reason is logged, the case is not
    /// part of the file, and its id is -1.
    Case(File* file, const Str& name, int id, int databaseId);
    ~Case() override;

    int id() const;
    int databaseId() const;

    Str name() const;
    void setName(const Str& name);

    /// HTML text, or empty.
    Str description() const;
    void setDescription(const Str& description);

    /// The picture of the view. Of a case that was read, null with a message when it has none; it
    /// belongs to the case and is valid until the next call or setSnapshot.
    const Image* snapshot() const;

    /// Replaces the picture by a copy, which is stored as JPEG; null takes it away. A picture
    /// without pixels cannot be written.
    void setSnapshot(Image* image);

    /// Textures of parts, in the order of the archive, by the names that they were added under.
    std::size_t imageCount() const;
    Str imageName(std::size_t index) const;

    /// A texture; null with a message when there is none. It belongs to the case and is valid until
    /// the next call.
    const Image* image(std::size_t index) const;

    /// Stores a texture at once, in place of the one of that name, which has no folders in it. The
    /// image stays the caller's.
    bool addImage(const Str& name, Image* image);

    /// The viewer settings; empty or null when the case has none. They belong to the case.
    const PropertySetCollection* properties() const;

    /// Replaces the viewer settings, of which a reference is kept, and checks them against the
    /// catalogue of properties, and that arrays nest at most 100 deep. Each problem is logged; any
    /// makes the result false. Settings whose arrays nest deeper are refused once more when the
    /// case is written, as they could not be read back.
    bool setProperties(PropertySetCollection* properties);

    /// Whether a viewer is to show only results that are stored, none that it could derive.
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
