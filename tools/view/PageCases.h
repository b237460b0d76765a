#pragma once

#include "FileReader.h"
#include "view/PageFile.h"

namespace tools {

/// The cases of a database: names, descriptions, settings, images and snapshots.
Json pageCases(FileReader& reader, int database, PageFile& page);

}  // namespace tools
