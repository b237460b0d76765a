#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "container/ZRFxSystem.h"
#include "container/ZRFxZipStorage.h"
#include "container/ZRZipAccessMode.h"

namespace unstruct {

/// An archive file that only grows. Writers append to it and flush; what was committed is never
/// overwritten, so a reader may stay open as long as it likes and never waits.
//
/// - A file that is created, over an old one or not, is written under a temporary name,
///   "<file>.rewrite", private until it is whole, and renamed by its first commit. Until then the
///   old file stays, and a name that was free holds an empty file.
/// - A second writer is refused through the advisory lock (flock) on the file.
/// - While a commit is being written the file never ends where an entry does, so that an archive
///   that is stored in an entry cannot pass for the end of this one.
/// - Only regular files are opened; a FIFO or a device under the name is refused at once.
//
/// The path is made absolute, and resolved through symbolic links, once, when the file is opened.
class ZRFxAppendFile : public ZRFxZipStorage {
public:
    ZRFxAppendFile() = default;
    /// Rolls back; a file that was created and never committed is removed.
    ~ZRFxAppendFile() override;
    ZRFxAppendFile(const ZRFxAppendFile&) = delete;
    ZRFxAppendFile& operator=(const ZRFxAppendFile&) = delete;

    /// REQUIRES: not opened before.
    bool Open(const std::string& sPath, ZRZipAccessMode eMode);

    uint64_t Size() const override { return m_nSize; }
    void CutTo(uint64_t nSize) override;
    bool Extend() override;

    uint64_t Position() const override { return m_nPosition; }
    bool Read(uint64_t nOffset, void* pData, size_t nSize) override;
    bool ReadAside(uint64_t nOffset, void* pData, size_t nSize) const override;
    bool Write(const void* pData, size_t nSize) override;
    bool StartAside() override;
    bool WriteAside(uint64_t nOffset, const void* pData, size_t nSize) override;
    bool EndAside(std::string_view sHead, uint64_t nAside, std::string_view sTail) override;
    void Rewind(uint64_t nPosition) override;
    bool Flush() override;
    ZRFxCommitResult EndCommit() override;
    void RollBack() override;
    std::unique_ptr<ZRFxZipStorage> Successor() override;

    const std::string& Path() const { return m_sPath; }
    /// The open file, for what has to change bytes that it has. Followed by CutTo.
    ZRFxFile& File() { return m_file; }
    /// Whether there was no file of that name when this one was created.
    bool IsNew() const { return m_bMadeName; }

private:
    struct Identity {
        dev_t nDevice = 0;
        ino_t nFile = 0;
        bool operator==(const Identity&) const = default;
    };

    bool Resolve(const std::string& sPath);
    static Identity IdentityOf(const struct stat& status);
    bool OpenRegular(const std::string& sPath, int nFlags);
    bool OpenForReading();
    bool OpenForWriting(bool bMayCreate);
    bool AcquireLock(bool* pRetry);
    bool IsStillAtPath() const;

    bool StartWriting();
    bool MakeTemporary();
    bool CreateTemporary();
    bool FlushBuffer(size_t nKept = 0);
    void StartFlush();
    bool FlushFile();
    bool TakeName();
    bool FlushDirectory();
    bool FailSystem(const char* sWhat);

    std::string m_sPath;
    std::string m_sTemporary;  // Where the file is until its first commit; else empty.
    ZRFxFile m_file;           // Read and appended to.
    ZRFxFile m_replaced;       // Bears the name, and the lock, until the first commit.
    Identity m_atPath;         // What bears the name.
    mode_t m_nMode = 0;        // Of the file that is replaced.
    bool m_bCreates = false;   // The next commit takes the name.
    bool m_bRenamed = false;   // The disk has not said yet that it has the name.
    bool m_bMadeName = false;  // The empty file under the name is ours.
    bool m_bWriting = false;   // Something was written since the last commit.
    uint64_t m_nSize = 0;
    uint64_t m_nConfirmed = 0;  // Up to here the disk has said that it has all.
    uint64_t m_nPosition = 0;
    uint64_t m_nFlushStarted = 0;  // Up to here the disk was asked to write.
    bool m_bFlushFailed = false;
    std::unique_ptr<uint8_t[]> m_pBuffer;  // The last m_nBuffered bytes before the position.
    size_t m_nBuffered = 0;
};

}  // namespace unstruct
