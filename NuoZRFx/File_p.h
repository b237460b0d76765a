#pragma once

#include <memory>
#include <set>
#include <vector>

#include "LastError_p.h"
#include "NuoCore/PtrRef.h"
#include "NuoZRFx/Case.h"
#include "NuoZRFx/Database.h"
#include "NuoZRFx/FileSettings.h"
#include "ZRMakeRoom.h"
#include "access/ZROZRFxAccess.h"
#include "nvf/Progress.h"

namespace nuo::zrfx {

inline constexpr const char* kNotInitialized = "ZRFx Component has not been properly initialized.";

/// What a File holds. The archive is there exactly while a file is open, or failed to open.
class FilePrivate {
public:
    /// The databases or cases of the file, with references to them and with their ids. An id may be
    /// in use without an item.
    template <typename Item>
    class Items {
    public:
        /// An id taken for a new item, and free again unless an item is given to it. All memory
        /// that this needs is taken first, so that giving cannot fail.
        class NewId {
        public:
            NewId(Items* items, int id) : m_items(*items), m_id(id) {
                unstruct::MakeRoom(&m_items.m_items);
                m_items.m_ids.insert(id);
            }
            NewId(const NewId&) = delete;
            NewId& operator=(const NewId&) = delete;
            ~NewId() {
                if (!m_isGiven) m_items.m_ids.erase(m_id);
            }

            void giveTo(Item* item) {
                m_items.m_items.emplace_back(item);
                m_isGiven = true;
            }

        private:
            Items& m_items;
            int m_id;
            bool m_isGiven = false;
        };

        std::size_t count() const { return m_items.size(); }

        /// Null when there are not so many.
        Item* at(std::size_t index) const {
            return index < m_items.size() ? m_items[index].p() : nullptr;
        }
        auto begin() const { return m_items.begin(); }
        auto end() const { return m_items.end(); }

        bool hasId(int id) const { return m_ids.count(id) > 0; }
        const std::set<int>& ids() const { return m_ids; }
        void useIds(std::set<int> ids) { m_ids.merge(ids); }

        // An item that is dropped is detached from the archive first.

        /// Drops those that are not registered in the archive.
        template <typename IsRegistered>
        void dropUnless(IsRegistered isRegistered);
        void dropLast();
        void dropAll();

    private:
        std::vector<PtrRef<Item>> m_items;
        std::set<int> m_ids;  // For looking up, as a file may hold very many.
    };

    ~FilePrivate();

    bool isOpen() const { return m_zrfxAccess && m_zrfxAccess->IsOpen(); }
    bool isReadOnly() const { return isOpen() && m_zrfxAccess->IsReadOnly(); }

    /// The archive, open or not; null while the file is closed.
    unstruct::ZRFxAccess* access() const { return m_zrfxAccess.get(); }

    Items<Database>& databases() { return m_databases; }
    Items<Case>& cases() { return m_cases; }
    const FileSettings& settings() const { return m_settings; }

    /// What is called while operations go on; shared with the databases.
    const std::shared_ptr<nvf::Progress::Report>& progress() const { return m_progress; }

    /// A new, closed archive and default settings, in place of what was there.
    void reset();

    /// What opening a file begins with: checks, then a new archive.
    bool begin(const Str& fileName);

    /// Opens the archive; what comes after it takes about as long.
    bool openAccess(const Str& fileName, unstruct::ZRZipAccessMode mode);

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

    /// For this archive and those after it.
    void setThreads(int threads);

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
    void forgetUserTextEntries() { m_userTextEntries.clear(); }

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

    LastError lastError;

private:
    Items<Database> m_databases;
    Items<Case> m_cases;
    unstruct::ZRStringArray m_userTextEntries;
    std::unique_ptr<unstruct::ZRFxAccess> m_zrfxAccess;
    FileSettings m_settings;
    const std::shared_ptr<nvf::Progress::Report> m_progress =
        std::make_shared<nvf::Progress::Report>();
    int m_threads = 0;
};

}  // namespace nuo::zrfx
