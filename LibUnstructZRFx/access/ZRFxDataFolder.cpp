#include "access/ZRFxDataFolder.h"

#include <algorithm>
#include <string>
#include <string_view>

#include "access/ZRFxEntryNames.h"
#include "access/ZROZRFxAccess.h"
#include "data/ZRFxTextData.h"
#include "documents/ZRFxXml.h"
#include "nvf/LogManager.h"

namespace unstruct {
namespace {

using namespace textdata;

// Lines reach the archive in pieces of this size.
constexpr std::size_t kTextPiece = 65536;

// Of the binary form and the text form.
constexpr const char* kDataExtensions[] = {".dat", ".txt"};

constexpr const char* kItemsDiffer =
    "Number of specified items (%1) does not match number of items (%2) in '%3'";
bool isTextEntry(const ZRString& entry) {
    return HasExtension(entry.Bytes(), ".txt");
}

bool hasDataExtension(const ZRString& name) {
    return isTextEntry(name) || HasExtension(name.Bytes(), ".dat");
}

// The part of a line that messages show: enough to find it.
ZRString startOf(std::string_view line) {
    return ZRString(line.substr(0, 40));
}

}  // namespace

ZRFxDataFolder::ZRFxDataFolder(ZRFxAccess* pAccess)
    : m_pAccess(pAccess), m_logger(nvf::archiveLogger()) {}

bool ZRFxDataFolder::WriteDataInt(const ZRString& name, const ZRIntArray& data, int itemsPerLine) {
    if (m_bTextMode) {
        NVF_ASSERT(itemsPerLine >= 1 && itemsPerLine <= kMostItemsPerLine);
        if (itemsPerLine > kMostItemsPerLine) {
            return Log().fail("Max number of items per line is 20, %1 were requested",
                              itemsPerLine);
        }
    }
    constexpr WriteMessages kMessages{"Could not open new file for ASCII int data.",
                                      "Could not write new file for ASCII int data.",
                                      "CCould not write new file for binary int data."};
    return WriteItems(name, data, &ZRFxAccess::WriteDataInt, kMessages,
                      [&](std::int64_t i, std::string& text) {
                          const bool isTail = itemsPerLine < 2 || data.GetSize() - i < itemsPerLine;
                          const int count = isTail ? 1 : itemsPerLine;
                          AppendIntLine(data.Data() + i, count, text);
                          return count;
                      });
}

bool ZRFxDataFolder::WriteDataFloat(const ZRString& name, const ZRFloatArray& data) {
    constexpr WriteMessages kMessages{"Could not open new file for ASCII float data.",
                                      "Error writing ASCII float value.",
                                      "Error writing binary float data."};
    return WriteItems(name, data, &ZRFxAccess::WriteDataFloat, kMessages,
                      [&](std::int64_t i, std::string& text) {
                          AppendFloatLine(data.Data() + i, 1, text);
                          return 1;
                      });
}

bool ZRFxDataFolder::WriteDataVector(const ZRString& name, const ZRVec3fArray& data) {
    constexpr WriteMessages kMessages{"Could not open new file for ASCII vector data.",
                                      "Error writing ASCII vector value.",
                                      "Error writing binary vector data."};
    return WriteItems(name, data, &ZRFxAccess::WriteDataVectorAsFloat, kMessages,
                      [&](std::int64_t i, std::string& text) {
                          const nuo::Vec3f& v = data.Data()[i];
                          const float components[] = {v.x, v.y, v.z};
                          AppendFloatLine(components, 3, text);
                          return 1;
                      });
}

bool ZRFxDataFolder::WriteDataTensor(const ZRString& name, const ZRFloatArray& data) {
    NVF_ASSERT(data.GetSize() % kTensorComponents == 0);
    if (data.GetSize() % kTensorComponents != 0) return false;
    constexpr WriteMessages kMessages{"Could not open new file for ASCII tensor data.",
                                      "Error writing ASCII tensor value.",
                                      "Error writing binary tensor data."};
    return WriteItems(name, data, &ZRFxAccess::WriteDataFloat, kMessages,
                      [&](std::int64_t i, std::string& text) {
                          AppendFloatLine(data.Data() + i, kTensorComponents, text);
                          return kTensorComponents;
                      });
}

bool ZRFxDataFolder::WriteData(const ZRString& name, const ZRUbyteArray& data) {
    constexpr WriteMessages kMessages{"Could not open new file for ASCII unsigned byte data.",
                                      "Error writing ASCII unsigned byte value.",
                                      "Error writing binary unsigned byte data."};
    return WriteItems(name, data, &ZRFxAccess::WriteData, kMessages,
                      [&](std::int64_t i, std::string& text) {
                          AppendUbyteLine(data.Data()[i], text);
                          return 1;
                      });
}

bool ZRFxDataFolder::WriteDataString(const ZRString& name, const ZRString& text) {
    return PrepareToWrite(name) && m_pAccess->WriteDataString(EntryToWrite(name), text);
}

bool ZRFxDataFolder::ReadDataInt(const ZRString& name, std::int64_t numItems,
                                 ZRIntArray* data) const {
    constexpr ReadMessages kMessages{"Could not read ASCII int data",
                                     "Could not read binary int data.", kItemsDiffer};
    return ReadItems(name, numItems, 1, data, &ZRFxAccess::ReadDataInt, kMessages,
                     [&](std::string_view line, const ZRString& entry) {
                         return ParseIntLine(line, *data) ||
                                Log().fail("Could not read integer values '%1' from file '%2'",
                                           startOf(line), entry);
                     });
}

bool ZRFxDataFolder::ReadDataFloat(const ZRString& name, std::int64_t numItems,
                                   ZRFloatArray* data) const {
    constexpr ReadMessages kMessages{"Could not read ASCII float data",
                                     "Could not read binary float data.", kItemsDiffer};
    return ReadItems(name, numItems, 1, data, &ZRFxAccess::ReadDataFloat, kMessages,
                     [&](std::string_view line, const ZRString& entry) {
                         float value = 0;
                         return (ParseFloatLine(line, 1, &value) && data->Add(value)) ||
                                Log().fail(
                                    "Could not read one float value in file '%1' (text: %2 ...)",
                                    entry, startOf(line));
                     });
}

bool ZRFxDataFolder::ReadDataVector(const ZRString& name, std::int64_t numItems,
                                    ZRVec3fArray* data) const {
    constexpr ReadMessages kMessages{"Could not read ASCII vector data",
                                     "Could not read binary vector data.", kItemsDiffer};
    return ReadItems(
        name, numItems, 1, data, &ZRFxAccess::ReadDataVector, kMessages,
        [&](std::string_view line, const ZRString& entry) {
            float v[3] = {};
            return (ParseFloatLine(line, 3, v) && data->Add(nuo::Vec3f(v[0], v[1], v[2]))) ||
                   Log().fail("Could not read three float values in file '%1' (text: %2 ...)",
                              entry, startOf(line));
        });
}

bool ZRFxDataFolder::ReadDataTensor(const ZRString& name, std::int64_t numTensors,
                                    ZRFloatArray* data) const {
    constexpr ReadMessages kMessages{
        "Could not read ASCII vector data", "Could not read binary vector data.",
        "Number of specified tensors (%1) does not match number of tensors (%2) in '%3'"};
    return ReadItems(name, numTensors, kTensorComponents, data, &ZRFxAccess::ReadDataFloat,
                     kMessages, [&](std::string_view line, const ZRString& entry) {
                         float tensor[kTensorComponents] = {};
                         bool isTaken = ParseFloatLine(line, kTensorComponents, tensor);
                         for (const float component : tensor)
                             isTaken = isTaken && data->Add(component);
                         return isTaken ||
                                Log().fail(
                                    "Could not read six float values in file '%1' (text: %2 ...)",
                                    entry, startOf(line));
                     });
}

bool ZRFxDataFolder::ReadData(const ZRString& name, std::int64_t numItems,
                              ZRUbyteArray* data) const {
    constexpr ReadMessages kMessages{"Could not read ASCII unsigned byte data",
                                     "Could not read binary unsigned byte data.", kItemsDiffer};
    return ReadItems(
        name, numItems, 1, data, &ZRFxAccess::ReadData, kMessages,
        [&](std::string_view line, const ZRString& entry) {
            ZRIntArray value;
            if (!ParseIntLine(line, value) || value.GetSize() != 1) {
                return Log().fail(
                    "Could not read one unsigned byte value in file '%1' (text: %2 ...)", entry,
                    startOf(line));
            }
            if (value[0] < 0 || value[0] > 255) {
                return Log().fail("Found value %1 (index %2) outside unsigned byte range.",
                                  value[0], data->GetSize());
            }
            return data->Add(static_cast<unsigned char>(value[0]));
        });
}

bool ZRFxDataFolder::ReadDataString(const ZRString& name, ZRString* text) const {
    return GetAccess() && m_pAccess->ReadDataString(EntryToRead(name), text);
}

bool ZRFxDataFolder::ReadPart(const ZRString& name, std::int64_t numItems, int valuesPerItem,
                              std::int64_t first, std::int64_t count, std::int32_t* values) const {
    return ReadPartOf(name, numItems, valuesPerItem, first, count, values, [&](ZRIntArray* data) {
        return ReadDataInt(name, numItems * valuesPerItem, data);
    });
}

bool ZRFxDataFolder::ReadPart(const ZRString& name, std::int64_t numItems, int valuesPerItem,
                              std::int64_t first, std::int64_t count, float* values) const {
    return ReadPartOf(name, numItems, valuesPerItem, first, count, values, [&](ZRFloatArray* data) {
        return ReadFloats(name, numItems, valuesPerItem, data);
    });
}

ZRFxAccess* ZRFxDataFolder::GetAccess() const {
    NVF_ASSERT(m_pAccess);
    return m_pAccess;
}

bool ZRFxDataFolder::RemoveDataFile(const ZRString& name) {
    if (!GetAccess()) return false;
    std::string entry = EntryName(name).Bytes();
    const std::size_t length = entry.size();
    return std::ranges::all_of(kDataExtensions, [&](const char* extension) {
        entry.resize(length);
        entry += extension;
        return m_pAccess->RemoveFile(entry);
    });
}

ZRString ZRFxDataFolder::EntryName(const ZRString& name) const {
    return InFolder(m_sFolder, name);
}

bool ZRFxDataFolder::PrepareToWrite(const ZRString& name) {
    return GetAccess() && (!m_bReplacing || RemoveDataFile(name));
}

ZRString ZRFxDataFolder::EntryToWrite(const ZRString& name) const {
    return EntryName(name) + (m_bTextMode ? ".txt" : ".dat");
}

// The first of the possible names that the archive holds; where it holds none, the first of all,
// under which its absence is then reported.
ZRString ZRFxDataFolder::EntryToRead(const ZRString& name) const {
    const bool isWhole = hasDataExtension(name);
    const ZRString inFolder = EntryName(name);
    const ZRString first = isWhole ? inFolder : inFolder + ".dat";
    if (m_pAccess->Contains(first)) return first;
    const ZRString second = isWhole ? name : inFolder + ".txt";
    return m_pAccess->Contains(second) ? second : first;
}

// `appendLine` appends the line that begins with an item and returns how many items it took.
template <typename Item, typename AppendLine>
bool ZRFxDataFolder::WriteItems(const ZRString& name, const ZRArray<Item>& data,
                                WriteBinary<Item> writeBinary, const WriteMessages& messages,
                                AppendLine appendLine) {
    if (!PrepareToWrite(name)) return false;
    if (!m_bTextMode) {
        return (m_pAccess->*writeBinary)(EntryToWrite(name), data) || Log().fail(messages.binary);
    }
    if (!m_pAccess->OpenNewFile(EntryToWrite(name))) return Log().fail(messages.open);
    std::string text;
    for (std::int64_t i = 0; i < data.GetSize();) {
        i += appendLine(i, text);
        if (text.size() < kTextPiece && i < data.GetSize()) continue;
        if (!m_pAccess->WriteNewFile(text)) return Log().fail(messages.line);
        text.clear();
    }
    return m_pAccess->CloseNewFile() || Log().fail(messages.line);
}

// `parseLine` appends what a line holds to the data, and reports itself what it cannot take.
template <typename Item, typename ParseLine>
bool ZRFxDataFolder::ReadItems(const ZRString& name, std::int64_t numItems, int valuesPerItem,
                               ZRArray<Item>* data, ReadBinary<Item> readBinary,
                               const ReadMessages& messages, ParseLine parseLine) const {
    NVF_ASSERT(data);
    if (!data || !GetAccess()) return false;
    data->RemoveAll();
    const ZRString entry = EntryToRead(name);
    const bool isRead = isTextEntry(entry)
                            ? ReadLines(entry, messages.text, parseLine)
                            : (m_pAccess->*readBinary)(entry, data) || Log().fail(messages.binary);
    const std::int64_t numFound = data->GetSize() / valuesPerItem;
    if (isRead && numFound == numItems) return data->SetSize(numFound * valuesPerItem);
    data->RemoveAll();
    return isRead && Log().fail(messages.countDiffers, numItems, numFound, entry);
}

// Lines of text hold an item each.
bool ZRFxDataFolder::ReadFloats(const ZRString& name, std::int64_t numItems, int valuesPerItem,
                                ZRFloatArray* data) const {
    if (valuesPerItem == kTensorComponents) return ReadDataTensor(name, numItems, data);
    if (valuesPerItem == 1) return ReadDataFloat(name, numItems, data);
    ZRVec3fArray vectors;
    return ReadDataVector(name, numItems, &vectors) &&
           data->Assign(&vectors.Data()->x, 3 * vectors.GetSize());
}

template <typename Value, typename ReadAll>
bool ZRFxDataFolder::ReadPartOf(const ZRString& name, std::int64_t numItems, int valuesPerItem,
                                std::int64_t first, std::int64_t count, Value* values,
                                ReadAll readAll) const {
    static_assert(sizeof(Value) == 4);
    if (!GetAccess()) return false;
    const ZRString entry = EntryToRead(name);
    const std::int64_t begin = first * valuesPerItem;
    const auto numValues = static_cast<std::size_t>(count * valuesPerItem);
    if (isTextEntry(entry)) {
        ZRArray<Value> all;
        if (!readAll(&all)) return false;
        std::copy_n(all.Data() + begin, numValues, values);
        return true;
    }
    const auto found = static_cast<std::int64_t>(m_pAccess->SizeOf(entry) / sizeof(Value));
    if (m_pAccess->Contains(entry) && found != numItems * valuesPerItem) {
        return Log().fail(kItemsDiffer, numItems, found / valuesPerItem, entry);
    }
    return m_pAccess->ReadDataPart(entry, static_cast<std::uint64_t>(begin) * sizeof(Value), values,
                                   numValues * sizeof(Value));
}

// Blank lines do not count.
template <typename ParseLine>
bool ZRFxDataFolder::ReadLines(const ZRString& entry, const char* readMessage,
                               ParseLine parseLine) const {
    ZRUbyteArray bytes;
    if (!m_pAccess->ReadData(entry, &bytes)) return Log().fail(readMessage);
    std::string_view text(reinterpret_cast<const char*>(bytes.Data()),
                          static_cast<std::size_t>(bytes.GetSize()));
    while (!text.empty()) {
        const std::string_view line = text.substr(0, text.find('\n'));
        text.remove_prefix(std::min(line.size() + 1, text.size()));
        const bool isBlank = line.find_first_not_of(" \t\r") == std::string_view::npos;
        if (!isBlank && !parseLine(line, entry)) return false;
    }
    return true;
}

}  // namespace unstruct
