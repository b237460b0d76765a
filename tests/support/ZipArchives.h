#pragma once

#include <map>
#include <ostream>

#include "container/ZRFxZipArchive.h"
#include "support/ZipTestFiles.h"

namespace ziptest {

// Entry name to data.
struct Model : std::map<std::string, std::string> {
    using map::map;
};

// Test reports name the entries and show what is short.
inline void PrintTo(const Model& model, std::ostream* pStream) {
    for (const auto& [sName, sData] : model) {
        *pStream << sName << ": ";
        if (sData.size() > 200) {
            *pStream << sData.size() << " bytes; ";
        } else {
            *pStream << sData << "; ";
        }
    }
}

inline bool AddText(unstruct::ZRFxZipArchive* pArchive, const std::string& sName,
                    const std::string& sData, int nLevel = 6) {
    return pArchive->Add(sName, sData.data(), sData.size(), nLevel);
}

inline bool ReplaceText(unstruct::ZRFxZipArchive* pArchive, const std::string& sName,
                        const std::string& sData, int nLevel = 6) {
    return pArchive->Replace(sName, sData.data(), sData.size(), nLevel);
}

inline bool ReadText(unstruct::ZRFxZipArchive* pArchive, const std::string& sName,
                     std::string* pData) {
    unstruct::ZRFxZipRawData raw;
    const bool bRead = pArchive->Read(sName, &raw);
    pData->assign(reinterpret_cast<const char*>(raw.Buffer()), raw.Length());
    return bRead;
}

inline void WriteModel(const std::string& sPath, const Model& model,
                       const std::string& sPassword = {}, int nLevel = 6) {
    unstruct::ZRFxZipArchive archive;
    ASSERT_TRUE(archive.Open(sPath, unstruct::ZRZipAccessMode::CREATE)) << archive.LastError();
    ASSERT_TRUE(archive.SetPassword(sPassword));
    for (const auto& [sName, sData] : model) {
        ASSERT_TRUE(AddText(&archive, sName, sData, nLevel)) << archive.LastError();
    }
    ASSERT_TRUE(archive.Close()) << archive.LastError();
}

// All entries; a message in place of the data of one that cannot be read.
inline Model ContentOf(unstruct::ZRFxZipArchive* pArchive) {
    Model model;
    for (size_t i = 0; i < pArchive->EntryCount(); ++i) {
        const std::string sName = pArchive->EntryAt(i).sName;
        if (!ReadText(pArchive, sName, &model[sName])) model[sName] = pArchive->LastError();
    }
    return model;
}

inline Model ReadModel(const std::string& sPath, const std::string& sPassword = {}) {
    unstruct::ZRFxZipArchive archive;
    if (!archive.Open(sPath, unstruct::ZRZipAccessMode::READ_ONLY)) {
        return {{"not opened", archive.LastError()}};
    }
    archive.SetPassword(sPassword);
    return ContentOf(&archive);
}

// A small model as a solver leaves it: data, documents, main document.
inline Model SmallModel() {
    return {{"Database001\\Nodes\\Nodes0001.dat", SmoothField(20000)},
            {"Database001\\Nodes\\Nodes0001.xml", "<Block Type=\"Node\"/>"},
            {"Database001\\Result.dat", SmoothField(5000, 2)},
            {"Database001\\Empty.dat", ""},
            {"Database001\\Random.dat", RandomBytes(3000)},
            {"Database001\\Database-TOC.xml", "<TOC/>"},
            {"ZRF.xml", "<ZRF/>"}};
}

}  // namespace ziptest
