#pragma once

#include <NuoZRFx/NuoZRFx.h>

#include <string>
#include <vector>

namespace test {

using nuo::PtrRef;
using nuo::Str;

/// All that the public interface tells about an object, one fact a line: two that are described
/// alike are equal to a user.
std::string Describe(const nuo::zrfx::Block& block);
std::string Describe(nuo::zrfx::Database& database);
std::string Describe(const nuo::zrfx::Case& fileCase);

/// The databases, with all blocks and sets, and the cases, in their order.
std::vector<std::string> Describe(nuo::zrfx::File& file);

/// The smallest blocks that a database needs: one state, one geometry with one part.
bool WriteFrame(nuo::zrfx::Database& database);

/// A new database with a frame; its id is -1 when it could not be made.
PtrRef<nuo::zrfx::Database> WriteDatabase(nuo::zrfx::File& file, const Str& name, int id);

/// Blocks of all public types, with every kind of contents, whose texts contain `text`.
std::vector<PtrRef<nuo::zrfx::Block>> MakeBlocks(const std::string& text);

/// A part of them; none where an operation on one of them failed.
inline constexpr std::size_t kBlockGroupCount = 4;
std::vector<PtrRef<nuo::zrfx::Block>> MakeBlockGroup(std::size_t group, const std::string& text);

/// Two databases of all blocks and two cases, one with everything that a case can have.
bool WriteModel(nuo::zrfx::File& file, const std::string& text);

/// What Describe gives for a file with that model.
std::vector<std::string> DescribeModel(const std::string& text);

nuo::Image MakeImage(unsigned int width, unsigned int height);

/// Viewer settings that the catalogue accepts.
PtrRef<nuo::PropertySetCollection> MakeCamera();

}  // namespace test
