#include "NuoZRFx/Case.h"

#include <string>

#include "Case_p.h"
#include "Convert_p.h"
#include "Log_p.h"
#include "NuoZRFx/File.h"
#include "catalogue/ZROZRFxPropDef.h"
#include "nuo/PropertyConvert.h"

namespace nuo::zrfx {
namespace {

constexpr const char* kTexturePrefix = "PartTexture_";

}  // namespace

Case::Case(File* file, const Str& name, int id, int databaseId) {
    const bool isMade = guarded([&] {
        m_private.take(std::make_unique<CasePrivate>());
        return create(file, name, id, databaseId);
    });
    if (!isMade) refuse();
}

Case::Case(File* file, int index) : m_private(std::make_unique<CasePrivate>()) {
    m_private->m_isReadFromFile = true;
    if (!read(file, index)) refuse();
}

Case::~Case() = default;

int Case::id() const {
    return guarded(-1, [&] { return m_private->m_id; });
}

int Case::databaseId() const {
    return guarded(-1, [&] { return m_private->m_databaseId; });
}

Str Case::name() const {
    return guarded([&] { return m_private->m_name; });
}

void Case::setName(const Str& name) {
    guarded([&] {
        m_private->m_name = name;
        m_private->m_isDocumentModified = true;
    });
}

Str Case::description() const {
    return guarded([&] { return m_private->m_description; });
}

void Case::setDescription(const Str& description) {
    guarded([&] {
        m_private->m_description = description;
        m_private->m_isDocumentModified = true;
    });
}

const Image* Case::snapshot() const {
    return guarded([&]() -> const Image* {
        const bool isStored = m_private->m_isReadFromFile && !m_private->m_isSnapshotModified;
        auto& snapshot = m_private->m_snapshot;
        if (!isStored || snapshot) return snapshot ? &*snapshot : nullptr;
        unstruct::ZRFxAccess* const access = m_private->openAccess();
        Image image;
        if (!access || !access->GetCaseSnapshot(id(), &image)) {
            fail("Not able to read snapshot image");
            return nullptr;
        }
        return &snapshot.emplace(std::move(image));
    });
}

void Case::setSnapshot(Image* image) {
    guarded([&] {
        m_private->m_snapshot.reset();
        // A copy that there is no memory for has no pixels, and cannot be written.
        if (image) m_private->m_snapshot = *image;
        m_private->m_isSnapshotModified = true;
    });
}

std::size_t Case::imageCount() const {
    return guarded([&] { return m_private->textureEntries().size(); });
}

Str Case::imageName(std::size_t index) const {
    return guarded([&]() -> Str {
        const unstruct::ZRStringArray& entries = m_private->textureEntries();
        if (index >= entries.size()) {
            fail("No image was found at index %1", index);
            return Str();
        }
        const std::string file = entries[index].FileName().Bytes();
        const std::string prefix = kTexturePrefix;
        const std::string name = file.starts_with(prefix) ? file.substr(prefix.size()) : file;
        return name.substr(0, name.size() - unstruct::ZRString(name).Extension().Bytes().size());
    });
}

const Image* Case::image(std::size_t index) const {
    return guarded([&]() -> const Image* {
        const unstruct::ZRStringArray& entries = m_private->textureEntries();
        if (index >= entries.size()) {
            fail("No image was found at index %1", index);
            return nullptr;
        }
        Image found;
        if (!m_private->m_access->ReadImage(entries[index], &found)) {
            fail("Not able to read image: %1", entries[index].FileName());
            return nullptr;
        }
        m_private->m_image = std::move(found);
        return &m_private->m_image;
    });
}

bool Case::addImage(const Str& name, Image* image) {
    return guarded([&] {
        unstruct::ZRFxAccess* const access = m_private->openAccess();
        if (!image) return fail("Image object is invalid. Image pointer is NULL.");
        if (!access || m_private->m_caseDocument.isNull()) {
            return fail(
                "Case document did not exist, call create() before if using delayed writing.");
        }
        const nvf::XmlElement root = m_private->m_caseDocument->getRootElement("Case");
        if (!root.hasAttribute("Folder")) {
            return fail("Case document is invalid. Case folder not found.");
        }
        const std::string file = std::string("Textures\\") + kTexturePrefix + Convert::toUtf8(name);
        return (ZRConvert::isFileName(name) &&
                access->WriteImage(m_private->entryName(file + ".raw"), *image)) ||
               fail("Error writing the image to the ZRFx file.");
    });
}

const PropertySetCollection* Case::properties() const {
    return guarded([&] { return m_private->m_properties.p(); });
}

bool Case::setProperties(PropertySetCollection* properties) {
    return guarded([&] {
        m_private->m_properties = properties;
        if (properties) {
            std::vector<nvf::String> errors;
            const auto collection = PropertyConvert::toNvfPropertySetCollection(*properties);
            if (!unstruct::validateProperties(*collection, errors)) {
                for (const nvf::String& error : errors) fail("%1", error);
                return false;
            }
        }
        m_private->m_isPropertiesModified = true;
        return true;
    });
}

bool Case::derivedResultsDisabled() const {
    return guarded([&] { return m_private->m_derivedResultsDisabled; });
}

void Case::setDerivedResultsDisabled(bool disabled) {
    guarded([&] {
        m_private->m_derivedResultsDisabled = disabled;
        m_private->m_isDocumentModified = true;
    });
}

void Case::refuse() {
    if (m_private.isNull()) return;
    m_private->detach();
    m_private->m_id = -1;
}

bool Case::create(File* file, const Str& name, int id, int databaseId) {
    if (!file) return fail("Given file pointer was NULL. (case id %1).", id);
    if (name.isEmpty()) return fail("Given case name was empty. (case id %1).", id);
    if (id < 0) return fail("Given case id was negative. (case id %1).", id);
    if (databaseId < 0) {
        return fail("Given database id was negative. (case id %1, database id %2).", id,
                    databaseId);
    }
    if (!file->writableAccess()) {
        return fail(
            "Given file was in invalid state. (case id %1). File must be created or opened for "
            "append before adding a case.",
            id);
    }
    m_private->m_access = file->writableAccess();
    m_private->m_id = id;
    m_private->m_databaseId = databaseId;
    m_private->m_name = name;
    if (!m_private->createDocument()) return fail("Could not create case xml file for id %1.", id);
    return file->addCase(this) || fail("Could not register case instance. (case id %1).", id);
}

bool Case::read(File* file, int index) {
    if (!file) return fail("Given file pointer was NULL.");
    if (index < 0) return fail("Given case index was negative.");
    if (!file->internal_access()) {
        return fail(
            "Given file was in invalid state. File must be created or opened for append before "
            "adding a case.");
    }
    m_private->m_access = file->internal_access();
    if (!m_private->read(index)) return false;
    return file->addCase(this) || fail("Could not register case instance.");
}

}  // namespace nuo::zrfx
