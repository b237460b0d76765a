// Writes seeds for all fuzz targets: make_fuzz_seeds FOLDER
#include <cstdio>
#include <filesystem>
#include <fstream>

#include "ReadEverything.h"
#include "container/ZRFxCommitRecord.h"
#include "container/ZRFxZipDirectory.h"
#include "data/ZROZRFxImageJpeg.h"
#include "support/Model.h"

namespace {

namespace fs = std::filesystem;

void store(const fs::path& folder, const std::string& name, const std::string& bytes) {
    fs::create_directories(folder);
    std::ofstream(folder / name, std::ios::binary) << bytes;
}

std::string container(bool isEncrypted, int level, const test::Entries& entries) {
    unstruct::ZRFxZipMemFile file;
    unstruct::ZRFxAccess access;
    access.Open(&file, unstruct::ZRZipAccessMode::CREATE);
    if (isEncrypted) access.SetPassword("geheim");
    access.SetCompression(level, unstruct::ZRFxAccess::kDefaultSmartness,
                          unstruct::ZRFxAccess::kDefaultBufferSize,
                          unstruct::ZRFxAccess::kDefaultBufferSize);
    for (const auto& [name, content] : entries) {
        access.WriteDataRaw(name, content.data(), content.size(), false);
    }
    access.Close();
    return std::string(file.Data(), file.Data() + file.Length());
}

// A commit after the archive: an entry that is new, one that is gone, and documents that have
// grown.
void appendRecord(std::string* bytes, unstruct::ZRFxCommitRecord* record, const std::string& added,
                  const std::string& tails, const std::string& password) {
    unstruct::ZRFxCodec codec;
    unstruct::ZRFxCipher cipher;
    cipher.SetPassword(password);
    unstruct::ZRFxZipEntry entry;
    entry.sName = added;
    entry.nSize = entry.nPackedSize = tails.size();
    entry.nCrc = unstruct::ZRFxCodec::Crc32(0, tails.data(), tails.size());
    entry.nOffset = bytes->size();
    *bytes += unstruct::ZRFxZipDirectory::LocalHeader(entry, 0) + tails;
    record->sLines = unstruct::ZRFxZipDirectory::CentralRecord(entry, 0);
    record->SetTails(tails, &codec, &cipher);
    record->nOffset = bytes->size();
    *bytes += record->Bytes(bytes->size(), &codec);
}

std::string withRecords(std::string bytes, const test::Entries& entries,
                        const std::string& password) {
    unstruct::ZRFxCommitRecord first;
    first.nBase = bytes.size();
    first.run = unstruct::ZRFxCommitRecord::NewRun();
    first.asRemoved = {entries.rbegin()->first};
    const std::uint64_t length = entries.at("ZRF.xml").size();
    first.aEdits = {{"ZRF.xml", length, 8}, {"New.xml", 0, 4}};
    appendRecord(&bytes, &first, "New.dat", "<!-- -->text", password);
    unstruct::ZRFxCommitRecord second;
    second.nBase = first.nBase;
    second.nPrevious = first.nOffset;
    second.run = first.run;
    second.aEdits = {{"ZRF.xml", length, 4}};
    appendRecord(&bytes, &second, "Newer.dat", "<!--", password);
    return bytes;
}

void storeContainers(const fs::path& folder, const test::Entries& entries) {
    store(folder, "stored.zrfx", container(false, 0, entries));
    store(folder, "deflated.zrfx", container(false, 9, entries));
    store(folder, "encrypted.zrfx", container(true, 5, {*entries.find("ZRF.xml")}));
    const std::string records = withRecords(container(false, 5, entries), entries, {});
    store(folder, "records.zrfx", records);
    store(folder, "torn.zrfx", records.substr(0, records.size() - 30));
    store(folder, "encrypted-records.zrfx",
          withRecords(container(true, 5, {*entries.find("ZRF.xml")}), {*entries.find("ZRF.xml")},
                      "geheim"));
    test::Entries large = entries;
    large["Database001\\Large.dat"] = std::string(std::size_t{5} << 20, 'x');
    store(folder, "pieces.zrfx", container(false, 1, large));
    store(folder, "encrypted-pieces.zrfx",
          container(true, 1, {{"Large.dat", large["Database001\\Large.dat"]}}));
    store(folder, "empty.zrfx", container(false, 5, {}));
}

// Each entry as what replaces itself, and for the targets that read its kind.
void storeParts(const fs::path& base, std::size_t sample, const test::Entries& entries) {
    int number = 0;
    for (const auto& [name, content] : entries) {
        const std::string label = std::to_string(sample) + "-" + std::to_string(number);
        const std::string head{static_cast<char>(sample), static_cast<char>(number++),
                               static_cast<char>(content.size() % 256),
                               static_cast<char>(content.size() / 256)};
        store(base / "PartsFuzzer", label, head + content);
        if (name.ends_with(".txt")) store(base / "TextDataFuzzer", label, content);
        if (content.find("PropertySet") != std::string::npos) {
            store(base / "PropertiesFuzzer", label, content);
        }
    }
}

}  // namespace

int main(int argumentCount, char** arguments) {
    if (argumentCount != 2) {
        std::fprintf(stderr, "usage: make_fuzz_seeds FOLDER\n");
        return 2;
    }
    const fs::path base = arguments[1];
    const std::vector<test::Entries> samples = fuzz::samples();
    storeContainers(base / "ContainerFuzzer", samples.front());
    for (std::size_t i = 0; i < samples.size(); ++i) storeParts(base, i, samples[i]);
    unstruct::ZRUbyteArray jpeg;
    unstruct::ZRFxImageJpeg::Encode(test::MakeImage(9, 17), &jpeg);
    store(base / "ImageFuzzer", "image.jpg", std::string(jpeg.begin(), jpeg.end()));
    const std::string raw("\2\0\0\0\1\0\0\0abcdef", 14);
    store(base / "ImageFuzzer", "image.raw", raw);
    return 0;
}
