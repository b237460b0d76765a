#pragma once

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/types.h>

#include <cstddef>
#include <cstdint>
#include <string>

namespace unstruct {

/// The one seam through which every system call of the archive layer goes. Each operation is one
/// call with the result and the errno of its POSIX namesake; the default object makes the calls, a
/// test installs an object of its own that counts them and fails the N-th. Stateless and usable
/// from any thread; `Install` is for process start and tests, not while archives are at work.
class ZRFxSystem {
public:
    virtual ~ZRFxSystem() = default;

    static ZRFxSystem& Current();
    /// Null puts the POSIX calls back. The caller keeps the object alive while it is installed.
    static void Install(ZRFxSystem* pSystem);

    virtual int Open(const char* sPath, int nFlags, mode_t nMode);
    virtual int Close(int nFile);
    virtual ssize_t ReadAt(int nFile, void* pData, size_t nSize, off_t nOffset);
    virtual ssize_t WriteAt(int nFile, const void* pData, size_t nSize, off_t nOffset);
    virtual int Flush(int nFile);
    /// Asks for the range to be written to the disk soon, so that a later Flush finds less to do.
    virtual int StartFlush(int nFile, off_t nOffset, off_t nSize);
    virtual int Truncate(int nFile, off_t nLength);
    /// Takes the exclusive advisory lock without waiting; EWOULDBLOCK when another opener has it.
    virtual int Lock(int nFile);
    virtual int SetMode(int nFile, mode_t nMode);
    virtual int Status(int nFile, struct stat* pStatus);
    virtual int StatusOf(const char* sPath, struct stat* pStatus);
    /// Of a symbolic link itself.
    virtual int LinkStatusOf(const char* sPath, struct stat* pStatus);
    virtual int Rename(const char* sFrom, const char* sTo);
    virtual int Remove(const char* sPath);
    /// Null, with ENOENT and the like, when the path does not resolve; else malloc'ed.
    virtual char* RealPath(const char* sPath);
    /// Large buffers; freed with free(). The contents are not initialized.
    virtual void* Allocate(size_t nSize);
    virtual void* Reallocate(void* pBuffer, size_t nSize);
};

/// An open file, closed with its owner. Reads and writes are whole: interrupted and short calls are
/// continued. Every operation returns false with errno set when the system refuses.
class ZRFxFile {
public:
    ZRFxFile() = default;
    ~ZRFxFile() { Close(); }
    ZRFxFile(ZRFxFile&& other) noexcept;
    ZRFxFile& operator=(ZRFxFile&& other) noexcept;

    bool Open(const std::string& sPath, int nFlags, mode_t nMode = 0666);
    void Close();
    bool IsOpen() const { return m_nFile >= 0; }

    /// A file that ends before nSize bytes were read fails with ENODATA.
    bool ReadAt(uint64_t nOffset, void* pData, size_t nSize) const;
    bool WriteAt(uint64_t nOffset, const void* pData, size_t nSize);
    bool Flush();
    void StartFlush(uint64_t nOffset, uint64_t nSize);
    bool Truncate(uint64_t nLength);
    bool Lock();
    bool SetMode(mode_t nMode);
    bool Status(struct stat* pStatus) const;

    /// Flushes the directory that holds sPath, so that a name made or removed there stays so.
    static bool FlushDirectoryOf(const std::string& sPath);

private:
    int m_nFile = -1;
};

}  // namespace unstruct
