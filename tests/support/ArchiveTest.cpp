#include "support/ArchiveTest.h"

#include <algorithm>
#include <fstream>

#include "support/OutputOf.h"
#include "support/SampleBlocks.h"
#include "support/TemporaryFolder.h"

namespace test {

using namespace unstruct;

namespace {

std::string Replaced(std::string text, const std::string& from, const std::string& to) {
    for (std::size_t at = text.find(from); at != std::string::npos; at = text.find(from)) {
        text.replace(at, from.size(), to);
    }
    return text;
}

std::string TakeCounted(std::string_view& text) {
    const std::size_t blank = text.find(' ');
    const std::size_t count = std::stoul(std::string(text.substr(0, blank)));
    const std::string taken(text.substr(blank + 1, count));
    text.remove_prefix(blank + 1 + count);
    return taken;
}

}  // namespace

Entries UnpackWithPython(const ZRFxZipMemFile& file) {
    const TemporaryFolder folder;
    std::ofstream(folder.File("a.zip"), std::ios::binary)
        .write(reinterpret_cast<const char*>(file.Data()),
               static_cast<std::streamsize>(file.Length()));
    const std::string output = OutputOf("python3 " NUO_TEST_FOLDER "/support/print_entries.py '" +
                                        folder.File("a.zip") + "'");
    Entries entries;
    for (std::string_view rest = output; !rest.empty();) {
        const std::string name = TakeCounted(rest);
        entries[name] = TakeCounted(rest);
    }
    return entries;
}

Entries Unpack(ZRFxAccess& access) {
    Entries entries;
    ZRStringArray names;
    EXPECT_TRUE(access.FindFiles("", true, &names));
    for (const ZRString& name : names) {
        ZRFxZipRawData raw;
        EXPECT_TRUE(access.InternalReadDataRaw(name, LogMode::LOG, &raw));
        entries[name.Bytes()].assign(raw.Buffer(), raw.Buffer() + raw.Length());
    }
    return entries;
}

void ArchiveTest::SetUp() {
    const ZRFxDateTime date{2024, 2, 9, 7, 5, 3, 0};
    ASSERT_TRUE(m_access.Open(&m_file, ZRZipAccessMode::CREATE));
    ASSERT_TRUE(m_access.WriteXmlFile(
        "ZRF.xml", *ZRFxAccess::CreateMainDocument("Exporter", "Vendor", 42, &date), false));
}

void ArchiveTest::Reopen(ZRZipAccessMode mode) {
    ASSERT_TRUE(m_access.Close() && m_access.Open(&m_file, mode));
}

void ArchiveTest::Put(const std::string& name, std::string_view bytes) {
    ASSERT_TRUE(m_access.RemoveFile(name));
    ASSERT_TRUE(m_access.WriteDataRaw(name, bytes.data(), bytes.size(), true));
}

std::string ArchiveTest::Get(const std::string& name) {
    ZRFxZipRawData raw;
    EXPECT_TRUE(m_access.InternalReadDataRaw(name, LogMode::LOG, &raw)) << name;
    return std::string(raw.Buffer(), raw.Buffer() + raw.Length());
}

void ArchiveTest::Edit(const std::string& name, std::string_view from, std::string_view to) {
    std::string text = Get(name);
    const std::size_t at = text.find(from);
    ASSERT_NE(at, std::string::npos) << "no " << from << " in " << text;
    Put(name, text.replace(at, from.size(), to));
}

void ArchiveTest::ExpectTexts(const std::vector<std::string>& texts) {
    EXPECT_THAT(TakeTexts(), testing::ElementsAreArray(texts));
}

void DatabaseTest::SetUp() {
    ArchiveTest::SetUp();
    ASSERT_TRUE(CreateDatabase(m_database, 1));
}

void DatabaseTest::Write(const nvf::ref<ZRFxBlock>& block) {
    ASSERT_TRUE(block->WriteBlock(&m_database));
}

std::string DatabaseTest::DocumentOf(int type) {
    const std::string name = ZRFxBlockTypeName(type).Bytes();
    return "Database001\\" + name + "\\" + name + "0001.xml";
}

void DatabaseTest::ExpectUnreadable(const Damage& damage) {
    m_database.SetTextMode(true);
    const nvf::ref<ZRFxBlock> sample = SampleBlock(damage.type, 1);
    Write(sample);
    const ZRString base = m_database.EntryName(sample->GetFilebase());
    const std::string entry = (base + damage.file).Bytes();
    if (!damage.to) {
        ASSERT_TRUE(m_access.RemoveFile(entry));
    } else if (!damage.from) {
        Put(entry, damage.to);
    } else {
        Edit(entry, damage.from, damage.to);
    }
    ZRFxBlock* block = m_database.GetBlockByID(damage.type, 1);
    for (int attempt = 0; attempt < 2; ++attempt) {
        EXPECT_FALSE(block->ReadBlock());
        EXPECT_FALSE(block->IsRead());
        EXPECT_EQ(TakeAbbreviated(*sample), damage.messages);
    }
}

void DatabaseTest::ExpectUnwritable(const Damage& damage) {
    Write(SampleBlock(damage.type, 1));
    const Entries before = Unpack(m_access);
    const nvf::ref<ZRFxBlock> block = SampleBlock(damage.type, 1);
    damage.apply(*block);
    TakeTexts();
    EXPECT_FALSE(block->WriteBlock(&m_database));
    const std::string messages = damage.messages;
    EXPECT_EQ(TakeAbbreviated(*block), messages.substr(0, messages.find('\n')));
    EXPECT_EQ(Unpack(m_access), before);
    EXPECT_TRUE(m_database.GetBlockByID(damage.type, 1)->ReadBlock());
}

std::string DatabaseTest::TakeAbbreviated(const ZRFxBlock& block) {
    std::string texts;
    for (const std::string& text : TakeTexts()) texts += (texts.empty() ? "" : "\n") + text;
    texts = Replaced(texts, m_database.EntryName(block.GetFilebase()).Bytes(), "@");
    texts = Replaced(texts, block.GetFilebase().Bytes(), "#");
    return Replaced(texts, ZRFxBlockTypeName(block.GetType()).Bytes() + " block ID 1: ", "^");
}

void PrintTo(const Damage& damage, std::ostream* stream) {
    *stream << damage.name;
}

std::string NameOf(const testing::TestParamInfo<Damage>& test) {
    return test.param.name;
}

bool CreateDatabase(ZRFxDatabase& database, int id) {
    return database.Create("Bridge", id, "bridge.fem", ZRFEMSimulationType::STRUCTURAL,
                           ZRFEMSolutionType::LINEAR_STATIC, "A bridge");
}

}  // namespace test
