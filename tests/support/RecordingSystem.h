#pragma once

#include <map>
#include <memory>
#include <optional>

#include "container/ZRFxSystem.h"
#include "support/FileHistory.h"
#include "support/ZipTestFiles.h"

namespace ziptest {

// The files of a folder by their names.
using Disk = std::map<std::string, DiskFile>;

inline Disk ReadDisk(const std::string& sFolder) {
    Disk disk;
    for (const auto& entry : std::filesystem::directory_iterator(sFolder)) {
        const auto ePermissions = entry.status().permissions();
        disk[entry.path().filename()] = {ReadWhole(entry.path()),
                                         static_cast<mode_t>(ePermissions)};
    }
    return disk;
}

inline void WriteDisk(const std::string& sFolder, const Disk& disk) {
    for (const auto& entry : std::filesystem::directory_iterator(sFolder)) {
        std::filesystem::remove(entry.path());
    }
    for (const auto& [sName, file] : disk) {
        const std::string sPath = sFolder + "/" + sName;
        WriteWhole(sPath, file.sBytes);
        std::filesystem::permissions(sPath, static_cast<std::filesystem::perms>(file.nMode));
    }
}

// Records what the archive layer changes in one folder, whose files count as safely stored at the
// start, and tells what a power failure may leave of it. Nothing is really flushed, which is why it
// is fast. Installed as long as it lives.
class RecordingSystem : public unstruct::ZRFxSystem {
public:
    explicit RecordingSystem(const std::string& sFolder) {
        for (auto& [sName, file] : ReadDisk(sFolder)) {
            m_before[sName] = m_now[sName] = NewFile(std::move(file));
        }
        Install(this);
    }
    ~RecordingSystem() override { Install(nullptr); }

    // Changes and flushes up to now.
    size_t CallCount() const { return m_asCalls.size(); }
    std::string Call(size_t nCall) const { return m_asCalls[nCall]; }

    Disk Now() const {
        Disk disk;
        for (const auto& [sName, pFile] : m_now) disk[sName] = pFile->Now();
        return disk;
    }

    // The folder when the power fails before call nCut. Of the names that were made, changed and
    // removed since the folder was flushed any may be as before; a rename is done or not.
    Disk AfterPowerFailure(size_t nCut, Random* pRandom) const {
        size_t nFlushed = 0;
        for (const size_t nTime : m_anFolderFlushes) {
            if (nTime < nCut) nFlushed = nTime;
        }
        const unsigned nLost = (*pRandom)() % 4;  // None, one in three, two in three, all.
        Names names = m_before;
        for (const NameChange& change : m_aNameChanges) {
            if (change.nTime >= nCut) break;
            if (change.nTime < nFlushed || (*pRandom)() % 3 >= nLost) change.Apply(&names);
        }
        const std::string& sForeign =
            m_aFiles.empty() ? kNothing
                             : m_aFiles[(*pRandom)() % m_aFiles.size()]->SomeBytes(pRandom);
        Disk disk;
        for (const auto& [sName, pFile] : names) {
            disk[sName] = pFile->After(nCut, sForeign, pRandom);
        }
        return disk;
    }

    int Open(const char* sPath, int nFlags, mode_t nMode) override {
        const int nFile = ZRFxSystem::Open(sPath, nFlags, nMode);
        if (nFile < 0) return nFile;
        m_opened[nFile] = nullptr;
        if ((nFlags & O_DIRECTORY) != 0) return nFile;
        const std::string sName = NameOf(sPath);
        if (m_now.count(sName) == 0 && (nFlags & O_CREAT) != 0) Create(sName, nFile);
        const auto found = m_now.find(sName);
        if (found == m_now.end()) return nFile;
        m_opened[nFile] = found->second;
        if ((nFlags & O_TRUNC) != 0) found->second->Truncate(Record("truncate " + sName), 0);
        return nFile;
    }
    ssize_t WriteAt(int nFile, const void* pData, size_t nSize, off_t nOffset) override {
        const ssize_t nWritten = ZRFxSystem::WriteAt(nFile, pData, nSize, nOffset);
        if (nWritten <= 0) return nWritten;
        const size_t nTime =
            Record("write " + std::to_string(nWritten) + " bytes at " + std::to_string(nOffset));
        m_opened.at(nFile)->Write(
            nTime, static_cast<size_t>(nOffset),
            std::string(static_cast<const char*>(pData), static_cast<size_t>(nWritten)));
        return nWritten;
    }
    int Flush(int nFile) override {
        const size_t nTime = Record("flush");
        if (const FilePtr pFile = m_opened.at(nFile)) {
            pFile->Flush(nTime);
        } else {
            m_anFolderFlushes.push_back(nTime);
        }
        return 0;
    }
    int StartFlush(int, off_t, off_t) override { return 0; }
    int Truncate(int nFile, off_t nLength) override {
        const int nResult = ZRFxSystem::Truncate(nFile, nLength);
        const size_t nTime = Record("truncate to " + std::to_string(nLength));
        if (nResult == 0) m_opened.at(nFile)->Truncate(nTime, static_cast<size_t>(nLength));
        return nResult;
    }
    int SetMode(int nFile, mode_t nMode) override {
        const int nResult = ZRFxSystem::SetMode(nFile, nMode);
        if (nResult == 0) m_opened.at(nFile)->SetMode(Record("set mode"), nMode);
        return nResult;
    }
    int Rename(const char* sFrom, const char* sTo) override {
        const int nResult = ZRFxSystem::Rename(sFrom, sTo);
        if (nResult == 0) Change("rename ", NameOf(sFrom), NameOf(sTo), m_now.at(NameOf(sFrom)));
        return nResult;
    }
    int Remove(const char* sPath) override {
        const int nResult = ZRFxSystem::Remove(sPath);
        if (nResult == 0) Change("remove ", NameOf(sPath), {}, m_now.at(NameOf(sPath)));
        return nResult;
    }

private:
    using FilePtr = std::shared_ptr<FileHistory>;
    using Names = std::map<std::string, FilePtr>;

    // The file loses one name or gets another one, or both.
    struct NameChange {
        void Apply(Names* pNames) const {
            const auto found = pNames->find(sFrom);
            if (found != pNames->end() && found->second == pFile) pNames->erase(found);
            if (!sTo.empty()) (*pNames)[sTo] = pFile;
        }

        size_t nTime = 0;
        std::string sFrom;
        std::string sTo;
        FilePtr pFile;
    };

    static std::string NameOf(const char* sPath) {
        return std::filesystem::path(sPath).filename().string();
    }
    size_t Record(std::string sCall) {
        m_asCalls.push_back(std::move(sCall));
        return m_asCalls.size() - 1;
    }
    FilePtr NewFile(DiskFile file) {
        m_aFiles.push_back(std::make_shared<FileHistory>(std::move(file)));
        return m_aFiles.back();
    }
    void Create(const std::string& sName, int nFile) {
        struct stat status;
        if (ZRFxSystem::Status(nFile, &status) != 0) return;
        Change("create ", {}, sName, NewFile({{}, status.st_mode & 07777}));
    }
    void Change(const char* sWhat, std::string sFrom, std::string sTo, FilePtr pFile) {
        const size_t nTime = Record(sWhat + sFrom + " " + sTo);
        m_aNameChanges.push_back({nTime, std::move(sFrom), std::move(sTo), std::move(pFile)});
        m_aNameChanges.back().Apply(&m_now);
    }

    static inline const std::string kNothing;

    Names m_before;
    Names m_now;
    std::vector<FilePtr> m_aFiles;
    std::map<int, FilePtr> m_opened;  // By descriptor; null for the folder.
    std::vector<NameChange> m_aNameChanges;
    std::vector<size_t> m_anFolderFlushes;
    std::vector<std::string> m_asCalls;
};

}  // namespace ziptest
