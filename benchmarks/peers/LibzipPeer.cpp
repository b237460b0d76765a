// libzip with zlib, used plainly: an entry an array, straight from and into the caller's memory.
#include <zip.h>

#include "ArrayPeer.h"

namespace {

// What a container of this library says of each small array, in a document of its own.
constexpr const char* kDescription =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<ResultValues xmlns=\"urn:nuo:zrfx\" ID=\"%05zu\" MapToBlockID=\"1\" NumDimensions=\"1\" "
    "WithID=\"false\">\n"
    " <File Filename=\"ResultValues\\ResultValues%05zu\" NumItems=\"128\" />\n"
    "</ResultValues>\n";

std::string Describe(size_t nObject) {
    char sText[300];
    std::snprintf(sText, sizeof(sText), kDescription, nObject, nObject);
    return sText;
}

std::string DescriptionName(size_t nObject) {
    return ObjectName(nObject) + ".xml";
}

class Archive {
public:
    Archive(const std::string& sPath, int nFlags, const PeerPacking& packing)
        : m_packing(packing), m_pZip(zip_open(sPath.c_str(), nFlags, nullptr)) {
        Require(m_pZip != nullptr, "zip_open");
        if (!packing.sPassword.empty()) {
            zip_set_default_password(m_pZip, packing.sPassword.c_str());
        }
    }

    // The bytes are read when the archive is closed.
    void Add(const std::string& sName, PeerBytes bytes) {
        zip_source_t* pSource = zip_source_buffer(m_pZip, bytes.data(), bytes.size(), 0);
        const zip_int64_t nIndex = zip_file_add(m_pZip, sName.c_str(), pSource, ZIP_FL_ENC_UTF_8);
        Require(nIndex >= 0, "zip_file_add");
        const auto nEntry = static_cast<zip_uint64_t>(nIndex);
        const auto nLevel = static_cast<zip_uint32_t>(m_packing.nLevel);
        Require(zip_set_file_compression(m_pZip, nEntry, nLevel ? ZIP_CM_DEFLATE : ZIP_CM_STORE,
                                         nLevel) == 0,
                "zip_set_file_compression");
        if (m_packing.sPassword.empty()) return;
        Require(zip_file_set_encryption(m_pZip, nEntry, ZIP_EM_AES_256, nullptr) == 0,
                "encryption");
    }

    void Read(const std::string& sName, PeerReceived* pReceived) {
        zip_stat_t stat;
        Require(zip_stat(m_pZip, sName.c_str(), 0, &stat) == 0, "zip_stat");
        ReadEntry(stat, pReceived->Allocate(stat.size));
    }

    std::string ReadText(const std::string& sName) {
        zip_stat_t stat;
        Require(zip_stat(m_pZip, sName.c_str(), 0, &stat) == 0, "zip_stat");
        std::string sText(stat.size, '\0');
        ReadEntry(stat, sText.data());
        return sText;
    }

    void Close() { Require(zip_close(m_pZip) == 0, "zip_close"); }

private:
    void ReadEntry(const zip_stat_t& stat, void* pData) {
        zip_file_t* pFile = zip_fopen_index(m_pZip, stat.index, 0);
        Require(pFile != nullptr, "zip_fopen_index");
        Require(zip_fread(pFile, pData, stat.size) == static_cast<zip_int64_t>(stat.size), "fread");
        Require(zip_fclose(pFile) == 0, "zip_fclose");
    }

    const PeerPacking& m_packing;
    zip_t* m_pZip;
};

class LibzipPeer : public ArrayPeer {
public:
    std::string Name() const override { return "libzip"; }
    std::string Version() const override { return std::string("libzip ") + zip_libzip_version(); }
    bool HasPassword() const override { return true; }
    std::vector<std::string> ObjectVariants() const override { return {"described", "data"}; }

    void Write(const std::string& sPath, const PeerPacking& packing, size_t nStates) override {
        Add(sPath, ZIP_CREATE | ZIP_TRUNCATE, packing, Arrays(nStates));
    }

    void Append(const std::string& sPath, const PeerPacking& packing, size_t nState) override {
        Add(sPath, 0, packing, StateArrays(nState));
    }

    void Read(const std::string& sPath, const PeerPacking& packing,
              PeerReceived* pReceived) override {
        Archive archive(sPath, ZIP_RDONLY, packing);
        for (const PeerArray& array : Arrays()) archive.Read(array.sName, pReceived);
        archive.Close();
    }

    void ReadField(const std::string& sPath, const PeerPacking& packing, size_t nState,
                   PeerReceived* pReceived) override {
        Archive archive(sPath, ZIP_RDONLY, packing);
        archive.Read(StateArrays(nState)[0].sName, pReceived);
        archive.Close();
    }

    void WriteObjects(const std::string& sPath, const PeerPacking& packing,
                      const std::vector<std::vector<float>>& aaObjects) override {
        const bool bDescribed = packing.sVariant == "described";
        std::vector<std::string> asTexts(bDescribed ? aaObjects.size() : 0);
        Archive archive(sPath, ZIP_CREATE | ZIP_TRUNCATE, packing);
        for (size_t i = 0; i < aaObjects.size(); ++i) {
            archive.Add(ObjectName(i), BytesOf(aaObjects[i]));
            if (!bDescribed) continue;
            asTexts[i] = Describe(i);
            archive.Add(DescriptionName(i), std::as_bytes(std::span(asTexts[i])));
        }
        archive.Close();
    }

    void ReadObjects(const std::string& sPath, const PeerPacking& packing, size_t nObjects,
                     PeerReceived* pReceived) override {
        const bool bDescribed = packing.sVariant == "described";
        Archive archive(sPath, ZIP_RDONLY, packing);
        for (size_t i = 0; i < nObjects; ++i) {
            if (bDescribed) Require(!archive.ReadText(DescriptionName(i)).empty(), "description");
            archive.Read(ObjectName(i), pReceived);
        }
        archive.Close();
    }

private:
    static void Add(const std::string& sPath, int nFlags, const PeerPacking& packing,
                    const std::vector<PeerArray>& aArrays) {
        Archive archive(sPath, nFlags, packing);
        for (const PeerArray& array : aArrays) archive.Add(array.sName, array.bytes);
        archive.Close();
    }
};

}  // namespace

std::unique_ptr<Peer> MakePeer() {
    return std::make_unique<LibzipPeer>();
}
