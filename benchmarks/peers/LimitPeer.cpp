// The limit: libdeflate or ISA-L, CRC and writing, without a container. Arrays follow each other,
// each with its sizes and CRC before it; an array is found by passing over those before it.
#include <isa-l/igzip_lib.h>
#include <libdeflate.h>

#include <atomic>
#include <cstdint>
#include <cstdio>
#include <numeric>
#include <thread>

#include "ArrayPeer.h"

namespace {

struct Header {
    uint64_t nPacked = 0;
    uint64_t nSize = 0;
    uint32_t nCrc = 0;
    uint32_t nPieces = 0;
};

constexpr size_t kPieceSize = size_t{256} << 10;

size_t PieceCount(size_t nSize, size_t nPiece) {
    return nPiece == 0 ? 0 : (nSize + nPiece - 1) / nPiece;
}

// libdeflate packs whole arrays, ISA-L pieces.
struct LimitWay {
    int nLevel = 0;
    bool bIsal = false;
    size_t nThreads = 1;

    static LimitWay Of(const PeerPacking& packing) {
        return {packing.nLevel, packing.sVariant.starts_with("isal"),
                packing.sVariant.ends_with("threads") ? size_t{2} : size_t{1}};
    }

    size_t PieceSize(size_t nSize) const { return bIsal ? kPieceSize : nSize; }
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

// Calls work(i, thread) for each piece, on so many threads.
template <typename Work>
void ForEachPiece(size_t nPieces, size_t nThreads, Work work) {
    std::atomic<size_t> nNext = 0;
    const auto run = [&](size_t nThread) {
        for (size_t i = nNext++; i < nPieces; i = nNext++) work(i, nThread);
    };
    std::vector<std::thread> aThreads;
    for (size_t i = 1; i < std::min(nThreads, nPieces); ++i) aThreads.emplace_back(run, i);
    run(0);
    for (std::thread& thread : aThreads) thread.join();
}

// One of them packs a piece at a time, as a stream of its own.
class Codec {
public:
    explicit Codec(const LimitWay& way) : m_way(way) {
        if (way.nLevel > 0 && !way.bIsal)
            m_compressor.reset(libdeflate_alloc_compressor(way.nLevel));
        if (way.bIsal) m_aIsalRoom.resize(kIsalRoom);
    }

    size_t Bound(size_t nSize) const { return nSize + nSize / 4 + 1024; }

    size_t Pack(PeerBytes piece, std::byte* pPacked) {
        const size_t nPacked =
            m_way.bIsal ? PackByIsal(piece, pPacked)
                        : libdeflate_deflate_compress(m_compressor.get(), piece.data(),
                                                      piece.size(), pPacked, Bound(piece.size()));
        Require(nPacked > 0, "packing");
        return nPacked;
    }

    void Unpack(PeerBytes packed, std::byte* pData, size_t nSize) {
        Require(libdeflate_deflate_decompress(m_decompressor.get(), packed.data(), packed.size(),
                                              pData, nSize, nullptr) == LIBDEFLATE_SUCCESS,
                "unpacking");
    }

private:
    static constexpr size_t kIsalRoom = ISAL_DEF_LVL1_EXTRA_LARGE;

    size_t PackByIsal(PeerBytes piece, std::byte* pPacked) {
        isal_zstream stream;
        isal_deflate_stateless_init(&stream);
        stream.level = 1;
        stream.level_buf = m_aIsalRoom.data();
        stream.level_buf_size = static_cast<uint32_t>(m_aIsalRoom.size());
        stream.end_of_stream = 1;
        // It takes what it reads without const.
        stream.next_in = reinterpret_cast<uint8_t*>(const_cast<std::byte*>(piece.data()));
        stream.avail_in = static_cast<uint32_t>(piece.size());
        stream.next_out = reinterpret_cast<uint8_t*>(pPacked);
        stream.avail_out = static_cast<uint32_t>(Bound(piece.size()));
        Require(isal_deflate_stateless(&stream) == COMP_OK, "ISA-L");
        return stream.total_out;
    }

    const LimitWay m_way;
    std::unique_ptr<libdeflate_compressor, void (*)(libdeflate_compressor*)> m_compressor{
        nullptr, libdeflate_free_compressor};
    std::unique_ptr<libdeflate_decompressor, void (*)(libdeflate_decompressor*)> m_decompressor{
        libdeflate_alloc_decompressor(), libdeflate_free_decompressor};
    std::vector<uint8_t> m_aIsalRoom;
};

// A codec for each thread.
std::vector<Codec> CodecsOf(const LimitWay& way) {
    std::vector<Codec> aCodecs;
    for (size_t i = 0; i < way.nThreads; ++i) aCodecs.emplace_back(way);
    return aCodecs;
}

class Writer {
public:
    Writer(const std::string& sPath, const char* sMode, const LimitWay& way)
        : m_way(way), m_file(Open(sPath, sMode)), m_aCodecs(CodecsOf(way)) {}

    void Add(PeerBytes bytes) {
        if (m_way.nLevel == 0) {
            PutHeader(bytes.size(), bytes, {});
            Put(bytes.data(), bytes.size());
            return;
        }
        Pack(bytes);
        PutHeader(std::accumulate(m_anPacked.begin(), m_anPacked.end(), size_t{0}), bytes,
                  m_anPacked);
        for (size_t i = 0; i < m_anPacked.size(); ++i) {
            Put(m_packed.AtLeast(0) + i * m_nBound, m_anPacked[i]);
        }
    }

    void Close() { Require(std::fclose(m_file.release()) == 0, "fclose"); }

private:
    void Pack(PeerBytes bytes) {
        const size_t nPiece = m_way.PieceSize(bytes.size());
        const size_t nPieces = PieceCount(bytes.size(), nPiece);
        m_nBound = m_aCodecs[0].Bound(nPiece);
        std::byte* pPacked = m_packed.AtLeast(nPieces * m_nBound);
        m_anPacked.assign(nPieces, 0);
        ForEachPiece(nPieces, m_way.nThreads, [&](size_t i, size_t nThread) {
            const size_t nAt = i * nPiece;
            const PeerBytes piece = bytes.subspan(nAt, std::min(nPiece, bytes.size() - nAt));
            m_anPacked[i] = m_aCodecs[nThread].Pack(piece, pPacked + i * m_nBound);
        });
    }

    void PutHeader(size_t nPacked, PeerBytes bytes, const std::vector<size_t>& anPieces) {
        const uint32_t nCrc = libdeflate_crc32(0, bytes.data(), bytes.size());
        const Header header{nPacked, bytes.size(), nCrc, static_cast<uint32_t>(anPieces.size())};
        Put(&header, sizeof(header));
        Put(anPieces.data(), anPieces.size() * sizeof(size_t));
    }

    void Put(const void* pData, size_t nSize) {
        Require(std::fwrite(pData, 1, nSize, m_file.get()) == nSize, "fwrite");
    }

    const LimitWay m_way;
    FileHandle m_file;
    std::vector<Codec> m_aCodecs;
    Room m_packed;
    size_t m_nBound = 0;
    std::vector<size_t> m_anPacked;  // Of each piece.
};

class Reader {
public:
    Reader(const std::string& sPath, const LimitWay& way)
        : m_way(way), m_file(Open(sPath, "rb")), m_aCodecs(CodecsOf(way)) {}

    void Skip() {
        Start();
        Require(std::fseek(m_file.get(), static_cast<long>(m_header.nPacked), SEEK_CUR) == 0,
                "fseek");
    }

    void Read(PeerReceived* pReceived) {
        Start();
        std::byte* pData = pReceived->Allocate<std::byte>(m_header.nSize);
        if (m_way.nLevel > 0) {
            Unpack(pData);
        } else {
            Get(pData, m_header.nSize);
        }
        Require(libdeflate_crc32(0, pData, m_header.nSize) == m_header.nCrc, "CRC");
    }

private:
    void Start() {
        Get(&m_header, sizeof(m_header));
        m_anPacked.resize(m_header.nPieces);
        Get(m_anPacked.data(), m_anPacked.size() * sizeof(size_t));
    }

    void Unpack(std::byte* pData) {
        std::byte* pPacked = m_packed.AtLeast(m_header.nPacked);
        Get(pPacked, m_header.nPacked);
        std::vector<size_t> anStarts(m_anPacked.size());
        std::exclusive_scan(m_anPacked.begin(), m_anPacked.end(), anStarts.begin(), size_t{0});
        const size_t nPiece = m_way.PieceSize(m_header.nSize);
        ForEachPiece(m_anPacked.size(), m_way.nThreads, [&](size_t i, size_t nThread) {
            m_aCodecs[nThread].Unpack({pPacked + anStarts[i], m_anPacked[i]}, pData + i * nPiece,
                                      std::min(nPiece, m_header.nSize - i * nPiece));
        });
    }

    void Get(void* pData, size_t nSize) {
        Require(std::fread(pData, 1, nSize, m_file.get()) == nSize, "fread");
    }

    const LimitWay m_way;
    FileHandle m_file;
    std::vector<Codec> m_aCodecs;
    Header m_header;
    std::vector<size_t> m_anPacked;
    Room m_packed;
};

class LimitPeer : public ArrayPeer {
public:
    std::string Name() const override { return "limit"; }
    std::string Version() const override {
        return std::string("libdeflate ") + LIBDEFLATE_VERSION_STRING;
    }
    std::vector<std::string> ModelVariants() const override {
        return {"", "isal", "isal, 2 threads"};
    }
    bool Takes(const PeerPacking& packing) const override {
        return packing.sVariant.empty() || packing.nLevel == 1 || packing.nLevel == 5;
    }
    std::vector<std::string> ObjectVariants() const override { return {"data"}; }

    void Write(const std::string& sPath, const PeerPacking& packing, size_t nStates) override {
        Writer writer(sPath, "wb", LimitWay::Of(packing));
        for (const PeerArray& array : Arrays(nStates)) writer.Add(array.bytes);
        writer.Close();
    }

    void Append(const std::string& sPath, const PeerPacking& packing, size_t nState) override {
        Writer writer(sPath, "ab", LimitWay::Of(packing));
        for (const PeerArray& array : StateArrays(nState)) writer.Add(array.bytes);
        writer.Close();
    }

    void Read(const std::string& sPath, const PeerPacking& packing,
              PeerReceived* pReceived) override {
        ReadAll(sPath, packing, Arrays().size(), pReceived);
    }

    void ReadField(const std::string& sPath, const PeerPacking& packing, size_t nState,
                   PeerReceived* pReceived) override {
        Reader reader(sPath, LimitWay::Of(packing));
        for (size_t i = Arrays(nState).size(); i > 0; --i) reader.Skip();
        reader.Read(pReceived);
    }

    void WriteObjects(const std::string& sPath, const PeerPacking& packing,
                      const std::vector<std::vector<float>>& aaObjects) override {
        Writer writer(sPath, "wb", LimitWay::Of(packing));
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
        Reader reader(sPath, LimitWay::Of(packing));
        for (size_t i = 0; i < nArrays; ++i) reader.Read(pReceived);
    }
};

}  // namespace

std::unique_ptr<Peer> MakePeer() {
    return std::make_unique<LimitPeer>();
}
