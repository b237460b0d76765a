#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "ZROZRFxAccess.h"
#include "support/ArchiveTest.h"

namespace fuzz {

/// Aborts when a promise of the library does not hold.
void require(bool holds);

/// The component, with messages that go nowhere.
void initialize();

/// A path of this process, in memory where the machine has such a folder.
std::string scratchPath(const std::string& extension);

/// Whether the file opens through the public interface, with every block of every database.
bool isWhole(const std::string& path);

/// Opens a container in memory as a viewer and then as a writer does: reads all databases with all
/// blocks, cases with their files, and images; appends an entry, which must be there afterwards.
/// `bytes` may be anything.
void readContainer(const void* bytes, std::size_t size);

/// Opens the same bytes as a file through the public interface and asks for all that it tells.
void readFile(const void* bytes, std::size_t size);

/// The entries of a container with every kind of block and document, data files as text.
test::Entries sampleEntries();

/// A container of these entries, stored.
std::string pack(const test::Entries& entries);

}  // namespace fuzz
