#pragma once

#include <cstdint>

#include "ZRArray.h"
#include "ZRString.h"
#include "nvf/Logger.h"

namespace unstruct {

class ZRFxAccess;

/// The data files of one folder of the archive, in binary or text form. Names are base names,
/// without folder and extension. Writing replaces a file only while SetReplacing is on. Reading
/// finds a file in either form, takes a name with extension as it stands, and fails, with the array
/// empty, when it does not hold the number of items that is expected. Every operation that fails
/// logs why and gives false. Uses an archive that its owner keeps open. Used by one thread at a
/// time.
class ZRFxDataFolder {
public:
    /// The most integers that a line of a text data file takes.
    static constexpr int kMostItemsPerLine = 20;

    explicit ZRFxDataFolder(ZRFxAccess* pAccess);

    /// Integers, written `itemsPerLine` to a line (1 to 20) in text form; binary form has no lines.
    bool WriteDataInt(const ZRString& name, const ZRIntArray& data, int itemsPerLine);
    bool WriteDataFloat(const ZRString& name, const ZRFloatArray& data);
    bool WriteDataVector(const ZRString& name, const ZRVec3fArray& data);

    /// Tensors: six floats each.
    bool WriteDataTensor(const ZRString& name, const ZRFloatArray& data);
    bool WriteData(const ZRString& name, const ZRUbyteArray& data);

    /// Text as it stands, in either form.
    bool WriteDataString(const ZRString& name, const ZRString& text);

    bool ReadDataInt(const ZRString& name, std::int64_t numItems, ZRIntArray* data) const;
    bool ReadDataFloat(const ZRString& name, std::int64_t numItems, ZRFloatArray* data) const;
    bool ReadDataVector(const ZRString& name, std::int64_t numItems, ZRVec3fArray* data) const;
    bool ReadDataTensor(const ZRString& name, std::int64_t numTensors, ZRFloatArray* data) const;
    bool ReadData(const ZRString& name, std::int64_t numItems, ZRUbyteArray* data) const;
    bool ReadDataString(const ZRString& name, ZRString* text) const;

    /// Reads some items of a file into memory that the caller gives: items `first` to first + count
    /// - 1 of numItems, of valuesPerItem values each. Of a binary file no more is unpacked than
    /// that takes, a text file is parsed as a whole.
    bool ReadPart(const ZRString& name, std::int64_t numItems, int valuesPerItem,
                  std::int64_t first, std::int64_t count, std::int32_t* values) const;
    bool ReadPart(const ZRString& name, std::int64_t numItems, int valuesPerItem,
                  std::int64_t first, std::int64_t count, float* values) const;

    /// The archive; null after an assertion when there is none.
    ZRFxAccess* GetAccess() const;
    const ZRString& GetFolder() const { return m_sFolder; }
    const nvf::ref<nvf::Logger>& GetLogger() const { return m_logger; }
    bool IsTextMode() const { return m_bTextMode; }

    /// Whether data files are written as text (".txt") or binary (".dat"), which they are at first.
    /// Set it before anything is written.
    void SetTextMode(bool textMode) { m_bTextMode = textMode; }

    /// While set, writing replaces the file of a name, in either form.
    void SetReplacing(bool replacing) { m_bReplacing = replacing; }

    /// Removes the file of a name, in either form; that there is none is no failure.
    bool RemoveDataFile(const ZRString& name);

    /// The whole name of an entry of the folder.
    ZRString EntryName(const ZRString& name) const;

protected:
    void SetFolder(const ZRString& folder) { m_sFolder = folder; }
    nvf::Logger& Log() const { return *m_logger; }

private:
    struct WriteMessages {
        const char* open;
        const char* line;
        const char* binary;
    };
    struct ReadMessages {
        const char* text;
        const char* binary;
        const char* countDiffers;
    };
    template <typename Item>
    using WriteBinary = bool (ZRFxAccess::*)(const ZRString& entry, const ZRArray<Item>& data);
    template <typename Item>
    using ReadBinary = bool (ZRFxAccess::*)(const ZRString& entry, ZRArray<Item>* data);

    bool PrepareToWrite(const ZRString& name);
    ZRString EntryToWrite(const ZRString& name) const;
    ZRString EntryToRead(const ZRString& name) const;
    template <typename Item, typename AppendLine>
    bool WriteItems(const ZRString& name, const ZRArray<Item>& data, WriteBinary<Item> writeBinary,
                    const WriteMessages& messages, AppendLine appendLine);
    template <typename Item, typename ParseLine>
    bool ReadItems(const ZRString& name, std::int64_t numItems, int valuesPerItem,
                   ZRArray<Item>* data, ReadBinary<Item> readBinary, const ReadMessages& messages,
                   ParseLine parseLine) const;
    bool ReadFloats(const ZRString& name, std::int64_t numItems, int valuesPerItem,
                    ZRFloatArray* data) const;
    template <typename Value, typename ReadAll>
    bool ReadPartOf(const ZRString& name, std::int64_t numItems, int valuesPerItem,
                    std::int64_t first, std::int64_t count, Value* values, ReadAll readAll) const;
    template <typename ParseLine>
    bool ReadLines(const ZRString& entry, const char* readMessage, ParseLine parseLine) const;

    ZRFxAccess* m_pAccess;
    ZRString m_sFolder;
    bool m_bTextMode = false;
    bool m_bReplacing = false;
    nvf::ref<nvf::Logger> m_logger;
};

}  // namespace unstruct
