#pragma once

#include <iosfwd>
#include <map>

#include "access/ZROZRFxAccess.h"
#include "container/ZRFxZipMemFile.h"
#include "database/ZROZRFxDatabase.h"
#include "support/LogCapture.h"

namespace test {

/// Entries of an archive: names and contents.
using Entries = std::map<std::string, std::string>;

/// The entries of an archive as Python's zipfile module reads them. For each document there is
/// another one, named with "#shape" behind: the names of its elements with those of their
/// attributes, in order, as Python's XML parser finds them; equal neighbours stand once.
Entries UnpackWithPython(const unstruct::ZRFxZipMemFile& file);

/// The same without Python, for tests that compare many archives.
Entries Unpack(unstruct::ZRFxAccess& access);

/// An archive in memory, open for writing, that holds a new main document.
class ArchiveTest : public LogCapture {
protected:
    void SetUp() override;

    /// Closes the archive, which must be open, and opens it again.
    void Reopen(unstruct::ZRZipAccessMode mode);

    /// Puts an entry in place of the one of that name, bytes as they stand.
    void Put(const std::string& name, std::string_view bytes);
    std::string Get(const std::string& name);

    /// Replaces the first occurrence of a text in an entry; the test fails when there is none.
    void Edit(const std::string& name, std::string_view from, std::string_view to);

    void ExpectTexts(const std::vector<std::string>& texts);

    unstruct::ZRFxZipMemFile m_file;
    unstruct::ZRFxAccess m_access;
};

/// One fault in the files of a block that was written in text form, and what reading it says.
struct Damage {
    const char* name;
    int type;
    /// What follows the base name of the block; null for a fault that no file can have, or that
    /// reading reports in other words.
    const char* file;
    const char* from;  ///< Null for the whole contents.
    const char* to;    ///< Null to remove the file.
    /// One a line; "#" stands for the base name, "@" for the same with the database's folder, "^"
    /// for the block as messages about its contents name it.
    const char* messages;
    /// Does the same to the block in memory; null when no block can be brought to it.
    void (*apply)(unstruct::ZRFxBlock& block) = nullptr;
};

void PrintTo(const Damage& damage, std::ostream* stream);

/// An archive in memory with one database, of id 1.
class DatabaseTest : public ArchiveTest {
protected:
    void SetUp() override;

    /// Writes the block in place of the one of its type and id.
    void Write(const nvf::ref<unstruct::ZRFxBlock>& block);

    /// The entry name of the document of the block of id 1.
    static std::string DocumentOf(int type);

    /// Expects that the sample block of id 1, so damaged, is refused with these messages and stays
    /// unread.
    void ExpectUnreadable(const Damage& damage);

    /// Expects that the sample block of id 1, so damaged in memory, is refused with the first of
    /// these messages only, and leaves the one before it and all else as it is.
    void ExpectUnwritable(const Damage& damage);

    unstruct::ZRFxDatabase m_database{&m_access};

private:
    /// The messages since the last call, abbreviated as those of a damage are.
    std::string TakeAbbreviated(const unstruct::ZRFxBlock& block);
};

/// A block with a fault, which readers refuse, and writers in the same words.
class DamagedBlock : public DatabaseTest, public testing::WithParamInterface<Damage> {};

std::string NameOf(const testing::TestParamInfo<Damage>& test);

/// A database with that id and a name, created in an archive.
bool CreateDatabase(unstruct::ZRFxDatabase& database, int id);

}  // namespace test
