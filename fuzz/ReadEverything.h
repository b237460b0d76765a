#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "access/ZROZRFxAccess.h"
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

/// The entries of small containers, data files as text: a model with all kinds of documents, then
/// one container for every kind of block. Small ones, so that many inputs can be tried.
std::vector<test::Entries> samples();

/// A container of these entries, stored.
std::string pack(const test::Entries& entries);

}  // namespace fuzz
