#pragma once

#include <memory>
#include <set>
#include <vector>

#include "NuoCore/PtrRef.h"
#include "NuoZRFx/Case.h"
#include "NuoZRFx/Database.h"
#include "NuoZRFx/FileSettings.h"
#include "ZRMakeRoom.h"
#include "access/ZROZRFxAccess.h"

namespace nuo::zrfx {

/// What a File holds. The archive is there exactly while a file is open, or failed to open.
class FilePrivate {
public:
    /// An id taken for a new item of the file, and free again unless an item is given to it. All
    /// memory that this needs is taken first, so that giving cannot fail.
    template <typename Item>
    class NewId {
    public:
        NewId(std::vector<PtrRef<Item>>* items, std::set<int>* ids, int id)
            : m_items(*items), m_ids(*ids), m_id(id) {
            unstruct::MakeRoom(&m_items);
            m_ids.insert(id);
        }
        NewId(const NewId&) = delete;
        NewId& operator=(const NewId&) = delete;
        ~NewId() {
            if (!m_isGiven) m_ids.erase(m_id);
        }

        void giveTo(Item* item) {
            m_items.emplace_back(item);
            m_isGiven = true;
        }

    private:
        std::vector<PtrRef<Item>>& m_items;
        std::set<int>& m_ids;
        int m_id;
        bool m_isGiven = false;
    };

    ~FilePrivate();

    bool isOpen() const { return m_zrfxAccess && m_zrfxAccess->IsOpen(); }

    /// A new, closed archive and default settings, in place of what was there.
    void reset();

    /// What opening a file begins with: checks, then a new archive.
    bool begin(const Str& fileName);

    /// Runs what opens or creates a file. When it throws, nothing is open afterwards.
    template <typename Open>
    bool openOrDrop(Open open) {
        try {
            return open();
        } catch (...) {
            dropAll();
            if (m_zrfxAccess) m_zrfxAccess->Abandon();
            throw;
        }
    }

    /// Gives the archive the compression level of the settings, clamped to what there is.
    void applyCompression();

    /// Takes all settings over but the password, of which no copy is kept.
    void takeSettings(const FileSettings& settings);

    /// Sets the password of the open archive; an empty one sets none.
    bool setPassword(const Str& password);

    /// Stores the main document of a new file.
    bool writeMainDocument();

    /// Takes over what the opened file tells of the settings that it was made with, and checks that
    /// the password, if it needs one, opens its main document.
    bool takeFileProperties(const Str& fileName, const Str& password);

    /// Stores the vendor id of this process; names stay the file's.
    bool renewVendorInfo();

    /// Names of the entries of the user's text files; of a file opened for reading, found once.
    const unstruct::ZRStringArray& userTextEntries();

    /// Whether the document is one of those asked about before, which is logged. With one for each
    /// database and case, what an open file keeps is bounded by its entries.
    bool isRegisteredTwice(const unstruct::ZRString& document, std::set<int>* documents);

    /// Drops the databases and cases that another file, which has taken the name, does not have.
    void dropUnregistered();

    /// Drops the database that was added last and could not be read.
    void dropLastDatabase();

    /// Lets go of the archive, which is closed, with all databases and cases.
    void drop() {
        dropAll();
        m_zrfxAccess.reset();
    }

    /// Detaches databases and cases from the archive and gives the references to them back.
    void dropAll();

    std::vector<PtrRef<Database>> m_databases;
    std::vector<PtrRef<Case>> m_cases;
    unstruct::ZRStringArray m_userTextEntries;
    std::set<int> m_databaseIds;  // For looking up, as a file may hold very many.
    std::set<int> m_caseIds;
    std::unique_ptr<unstruct::ZRFxAccess> m_zrfxAccess;
    FileSettings m_settings;
    bool m_openedForReading = false;
};

}  // namespace nuo::zrfx
