#include "ReadEverything.h"

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "Quiet.h"
#include "blocks/mesh/ZRFxGeometryBlock.h"
#include "blocks/mesh/ZRFxNodeBlock.h"
#include "blocks/results/ZRFxResultValuesBlock.h"
#include "database/ZROZRFxDatabase.h"
#include "nvf/PropertySetCollection.h"
#include "support/Model.h"
#include "support/SampleBlocks.h"

namespace fuzz {
namespace {

using namespace unstruct;

// Images decode to far more than they take; of a file with very many, a part is enough.
constexpr int kMostImages = 16;

// What a viewer asks a block for once it has it.
void useBlock(ZRFxBlock& block) {
    if (auto* nodes = dynamic_cast<ZRFxNodeBlock*>(&block)) {
        nodes->GetNumNodes();
        nodes->GetNodeIndex(1);
    } else if (auto* values = dynamic_cast<ZRFxResultValuesBlock*>(&block)) {
        values->GetIndexOfID(1);
    } else if (auto* geometry = dynamic_cast<ZRFxGeometryBlock*>(&block)) {
        ZRFxGeometryInfoBlock info(nullptr, 1);
        if (!geometry->HasGeometryCountPerState()) geometry->GetLegacyGeometryInfo(&info);
    }
}

void readDatabase(ZRFxAccess& access, int id) {
    ZRFxDatabase database(&access);
    if (!database.Parse(id)) return;
    for (int i = 0; i < database.GetNumBlocks(); ++i) {
        const ZRFxBlock* entry = database.GetBlock(i);
        const nvf::ref<ZRFxBlock> block = database.OpenBlock(entry->GetType(), entry->GetID());
        if (block.notNull() && block->ReadBlock()) useBlock(*block);
    }
}

void readCase(ZRFxAccess& access, int id) {
    nuo::Image image;
    ZRString text;
    access.GetCaseSnapshot(id, &image);
    access.GetCaseDescription(id, &text);
}

void readEntries(ZRFxAccess& access) {
    ZRStringArray names;
    access.FindFiles("", true, &names);
    int imageCount = 0;
    for (const ZRString& name : names) {
        const ZRString extension = name.Extension().ToUpper();
        nuo::Image image;
        nvf::PropertySetCollection properties;
        if (extension == ".XML") access.ReadProperties(name, &properties);
        if (extension != ".JPG" && extension != ".RAW") continue;
        if (++imageCount <= kMostImages) access.ReadImage(name, &image);
    }
}

void readAll(ZRFxAccess& access) {
    int count = 0;
    if (access.GetNumDatabases(&count)) {
        ZRFxDatabaseInfo info;
        for (int i = 0; i < count; ++i) {
            if (access.GetDatabaseInfo(i, &info)) readDatabase(access, info.id);
        }
    }
    if (access.GetNumCases(&count)) {
        ZRFxCaseInfo info;
        for (int i = 0; i < count; ++i) {
            if (access.GetCaseInfo(i, &info)) readCase(access, info.id);
        }
    }
    ZRFxArchiveInfo info;
    access.GetArchiveInfo(&info);
    readEntries(access);
}

void append(ZRFxZipMemFile& file) {
    static const std::string kText = "appended";
    ZRFxAccess access;
    if (!access.Open(&file, ZRZipAccessMode::UPDATE)) return;
    require(access.WriteDataRaw("appended.dat", kText.data(), kText.size(), true));
    require(access.Close());
    ZRFxZipRawData raw;
    require(access.Open(&file, ZRZipAccessMode::READ_ONLY));
    require(access.InternalReadDataRaw("appended.dat", LogMode::LOG, &raw));
    require(std::string(raw.Buffer(), raw.Buffer() + raw.Length()) == kText);
}

test::Entries entriesOf(const std::string& path) {
    ZRFxAccess access;
    require(access.Open(path, ZRZipAccessMode::READ_ONLY));
    return test::Unpack(access);
}

test::Entries entriesWithBlock(const std::string& path, int type) {
    ZRFxAccess access;
    require(access.Open(path, ZRZipAccessMode::UPDATE));
    ZRFxDatabase database(&access);
    database.SetTextMode(true);
    require(test::CreateDatabase(database, 77) &&
            test::SampleBlock(type, 1)->WriteBlock(&database) && database.WriteTOC());
    test::Entries entries = test::Unpack(access);
    access.Abandon();
    return entries;
}

}  // namespace

void require(bool holds) {
    if (!holds) std::abort();
}

void initialize() {
    static nuo::Instance instance;
    static const bool isInitialized = nuo::zrfx::ZRFxComponent::initialize(&instance);
    require(isInitialized);
    beQuiet();
}

std::string scratchPath(const std::string& extension) {
    const std::filesystem::path memory = "/dev/shm";
    const auto folder =
        std::filesystem::exists(memory) ? memory : std::filesystem::temp_directory_path();
    return (folder / ("fuzz" + std::to_string(getpid()) + "." + extension)).string();
}

bool isWhole(const std::string& path) {
    nuo::zrfx::File file;
    if (!file.open(nuo::Str(path))) return false;
    for (std::size_t i = 0; i < file.databaseCount(); ++i) {
        nuo::zrfx::Database& database = *file.database(i);
        for (int type = 0; type < nuo::zrfx::Block::SET; ++type) {
            const auto blockType = static_cast<nuo::zrfx::Block::BlockType>(type);
            for (std::size_t k = 0; k < database.blockCount(blockType); ++k) {
                if (database.blockByIndex(blockType, k).isNull()) return false;
            }
        }
    }
    return file.close();
}

void readContainer(const void* bytes, std::size_t size) {
    initialize();
    ZRFxZipMemFile file;
    require(file.WriteAt(0, bytes, size));
    {
        ZRFxAccess access;
        if (access.Open(&file, ZRZipAccessMode::READ_ONLY)) {
            access.SetPassword("geheim");
            readAll(access);
        }
    }
    append(file);
}

void readFile(const void* bytes, std::size_t size) {
    initialize();
    static const std::string path = scratchPath("zrfx");
    std::ofstream(path, std::ios::binary)
        .write(static_cast<const char*>(bytes), static_cast<std::streamsize>(size));
    nuo::zrfx::File file;
    if (file.open(nuo::Str(path))) {
        test::Describe(file);
        for (std::size_t i = 0; i < file.userTextFileCount(); ++i) file.userTextFileContent(i);
    }
    file.close();
    std::filesystem::remove(path);
}

std::vector<test::Entries> samples() {
    initialize();
    std::vector<test::Entries> samples;
    const std::string path = scratchPath("zrfx");
    nuo::zrfx::FileSettings settings;
    settings.binary = false;
    nuo::zrfx::File model;
    require(model.create(nuo::Str(path), settings) && test::WriteModel(model, "text") &&
            model.close());
    samples.push_back(entriesOf(path));
    require(model.create(nuo::Str(path), settings) && model.close());
    for (const int type : test::StoredTypes()) samples.push_back(entriesWithBlock(path, type));
    std::filesystem::remove(path);
    return samples;
}

std::string pack(const test::Entries& entries) {
    ZRFxZipMemFile file;
    ZRFxAccess access;
    require(access.Open(&file, ZRZipAccessMode::CREATE));
    access.SetCompression(0, ZRFxAccess::kDefaultSmartness, ZRFxAccess::kDefaultBufferSize,
                          ZRFxAccess::kDefaultBufferSize);
    for (const auto& [name, content] : entries) {
        require(access.WriteDataRaw(name, content.data(), content.size(), false));
    }
    require(access.Close());
    return std::string(file.Data(), file.Data() + file.Length());
}

}  // namespace fuzz
