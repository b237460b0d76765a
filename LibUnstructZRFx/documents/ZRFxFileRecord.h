#pragma once

#include <cstdint>

#include "ZRString.h"
#include "nvf/XmlElement.h"

namespace unstruct {

/// What a block's document says about one of its data files: a child element, named "File" or by
/// the kind of data, with the attributes "Filename", "NumItems" and, where items have ids, "IDs".
struct ZRFxFileRecord {
    ZRString filename;  ///< Base name, without folder and extension.
    std::int64_t numItems = 0;
    ZRString ids;  ///< Base name of the file of ids; empty when there is none.
};

/// Appends the record of a data file. False, with a message, when the element is null or the name
/// is blank.
bool AddFileRecord(nvf::XmlElement& element, const char* key, const ZRFxFileRecord& record);

/// Takes the record under a key. False, without a message, when it is missing, or has no file name
/// or no number of items.
bool GetFileRecord(const nvf::XmlElement& element, const char* key, ZRFxFileRecord* record);

/// How many items the record under a key says that there are; 0 when it is missing or says nothing.
int GetFileNumItems(const nvf::XmlElement& element, const char* key);

}  // namespace unstruct
