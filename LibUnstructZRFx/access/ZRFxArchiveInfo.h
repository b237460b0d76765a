#pragma once

namespace unstruct {

class ZRFxZipArchive;

/// How an archive was made, as far as its entries show.
struct ZRFxArchiveInfo {
    bool compressed = false;
    bool encrypted = false;
    bool binary = false;  ///< Some data file is binary.
    bool text = false;    ///< Some data file is text.
};

/// The folder of the user's text files, which are no data files.
inline constexpr const char* kUserDataFolder = "UserData";

/// Finds it from the entries of an open archive. Throws std::bad_alloc.
ZRFxArchiveInfo ArchiveInfoOf(ZRFxZipArchive& archive);

}  // namespace unstruct
