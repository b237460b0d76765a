// The limit: libdeflate, CRC and writing, without a container. Arrays follow each other, each with
// its two sizes and CRC before it; an array is found by passing over those before it.
#include <libdeflate.h>

#include <cstdint>
#include <cstdio>

#include "ArrayPeer.h"

namespace {

struct Header {
    uint64_t nPacked = 0;
    uint64_t nSize = 0;
    uint32_t nCrc = 0;
};

using FileHandle = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

// Large arrays pass the buffer by; small ones share a call of the system.
FileHandle Open(const std::string& sPath, const char* sMode) {
    FileHandle file(std::fopen(sPath.c_str(), sMode), std::fclose);
    Require(file != nullptr, "fopen");
    std::setvbuf(file.get(), nullptr, _IOFBF, 1 << 18);
    return file;
}

// A buffer that grows and is never initialized.
class Room {
public:
    std::byte* AtLeast(size_t nSize) {
        if (nSize > m_nSize) {
            m_data.reset(static_cast<std::byte*>(std::malloc(nSize)));
            m_nSize = nSize;
        }
        return m_data.get();
    }

private:
    std::unique_ptr<std::byte, void (*)(void*)> m_data{nullptr, std::free};
    size_t m_nSize = 0;
};

class Writer {
public:
    Writer(const std::string& sPath, const char* sMode, int nLevel) : m_file(Open(sPath, sMode)) {
        if (nLevel > 0) m_compressor.reset(libdeflate_alloc_compressor(nLevel));
    }

    void Add(PeerBytes bytes) {
        const uint32_t nCrc = libdeflate_crc32(0, bytes.data(), bytes.size());
        const PeerBytes packed = m_compressor ? Pack(bytes) : bytes;
        const Header header{packed.size(), bytes.size(), nCrc};
        Put(&header, sizeof(header));
        Put(packed.data(), packed.size());
    }

    void Close() { Require(std::fclose(m_file.release()) == 0, "fclose"); }

private:
    PeerBytes Pack(PeerBytes bytes) {
        const size_t nBound = libdeflate_deflate_compress_bound(m_compressor.get(), bytes.size());
        std::byte* pPacked = m_packed.AtLeast(nBound);
        const size_t nPacked = libdeflate_deflate_compress(m_compressor.get(), bytes.data(),
                                                           bytes.size(), pPacked, nBound);
        Require(nPacked > 0, "libdeflate");
        return {pPacked, nPacked};
    }

    void Put(const void* pData, size_t nSize) {
        Require(std::fwrite(pData, 1, nSize, m_file.get()) == nSize, "fwrite");
    }

    FileHandle m_file;
    std::unique_ptr<libdeflate_compressor, void (*)(libdeflate_compressor*)> m_compressor{
        nullptr, libdeflate_free_compressor};
    Room m_packed;
};

class Reader {
public:
    Reader(const std::string& sPath, int nLevel)
        : m_file(Open(sPath, "rb")), m_bPacked(nLevel > 0) {}

    void Skip() { Require(std::fseek(m_file.get(), Start(), SEEK_CUR) == 0, "fseek"); }

    void Read(PeerReceived* pReceived) {
        Start();
        void* pData = pReceived->Allocate(m_header.nSize);
        if (m_bPacked) {
            Unpack(pData);
        } else {
            Get(pData, m_header.nSize);
        }
        Require(libdeflate_crc32(0, pData, m_header.nSize) == m_header.nCrc, "CRC");
    }

private:
    long Start() {
        Get(&m_header, sizeof(m_header));
        return static_cast<long>(m_header.nPacked);
    }

    void Unpack(void* pData) {
        std::byte* pPacked = m_packed.AtLeast(m_header.nPacked);
        Get(pPacked, m_header.nPacked);
        Require(libdeflate_deflate_decompress(m_decompressor.get(), pPacked, m_header.nPacked,
                                              pData, m_header.nSize, nullptr) == LIBDEFLATE_SUCCESS,
                "libdeflate");
    }

    void Get(void* pData, size_t nSize) {
        Require(std::fread(pData, 1, nSize, m_file.get()) == nSize, "fread");
    }

    FileHandle m_file;
    bool m_bPacked;
    Header m_header;
    Room m_packed;
    std::unique_ptr<libdeflate_decompressor, void (*)(libdeflate_decompressor*)> m_decompressor{
        libdeflate_alloc_decompressor(), libdeflate_free_decompressor};
};

class LimitPeer : public ArrayPeer {
public:
    std::string Name() const override { return "limit"; }
    std::string Version() const override {
        return std::string("libdeflate ") + LIBDEFLATE_VERSION_STRING;
    }
    std::vector<std::string> ObjectVariants() const override { return {"data"}; }

    void Write(const std::string& sPath, const PeerPacking& packing, size_t nStates) override {
        Writer writer(sPath, "wb", packing.nLevel);
        for (const PeerArray& array : Arrays(nStates)) writer.Add(array.bytes);
        writer.Close();
    }

    void Append(const std::string& sPath, const PeerPacking& packing, size_t nState) override {
        Writer writer(sPath, "ab", packing.nLevel);
        for (const PeerArray& array : StateArrays(nState)) writer.Add(array.bytes);
        writer.Close();
    }

    void Read(const std::string& sPath, const PeerPacking& packing,
              PeerReceived* pReceived) override {
        ReadAll(sPath, packing, Arrays().size(), pReceived);
    }

    void ReadField(const std::string& sPath, const PeerPacking& packing, size_t nState,
                   PeerReceived* pReceived) override {
        Reader reader(sPath, packing.nLevel);
        for (size_t i = Arrays(nState).size(); i > 0; --i) reader.Skip();
        reader.Read(pReceived);
    }

    void WriteObjects(const std::string& sPath, const PeerPacking& packing,
                      const std::vector<std::vector<float>>& aaObjects) override {
        Writer writer(sPath, "wb", packing.nLevel);
        for (const auto& aObject : aaObjects) writer.Add(BytesOf(aObject));
        writer.Close();
    }

    void ReadObjects(const std::string& sPath, const PeerPacking& packing, size_t nObjects,
                     PeerReceived* pReceived) override {
        ReadAll(sPath, packing, nObjects, pReceived);
    }

private:
    static void ReadAll(const std::string& sPath, const PeerPacking& packing, size_t nArrays,
                        PeerReceived* pReceived) {
        Reader reader(sPath, packing.nLevel);
        for (size_t i = 0; i < nArrays; ++i) reader.Read(pReceived);
    }
};

}  // namespace

std::unique_ptr<Peer> MakePeer() {
    return std::make_unique<LimitPeer>();
}
