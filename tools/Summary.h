#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "FileReader.h"
#include "Progress.h"

namespace tools {

/// The lowest and highest of a number of values; undefined values do not count.
struct ValueRange {
    std::optional<float> min;
    std::optional<float> max;

    void take(std::span<const float> values);
};

struct StateSummary {
    int id;
    std::string name;
    float value;
    std::string type;
};

struct ResultSummary {
    int blockId;
    int id;
    std::string name;
    std::string type;
    std::string mapping;
    std::vector<int> states;
    ValueRange range;
    std::string derivedName;  ///< "magnitude" or "von_mises", by its type; empty for others.
    ValueRange derivedRange;
};

struct TransformationSummary {
    int blockId;
    int id;
    std::string name;
    std::vector<int> states;
};

struct SetSummary {
    int id;
    std::string name;
    std::int64_t items;
};

struct PartSummary {
    int geometry;
    int id;
    std::string name;
};

/// The contents of a database, without any of its data.
struct DatabaseSummary {
    std::map<std::string, std::vector<int>> blocks;  ///< Ids by the name of the block type.
    std::int64_t nodes = 0;
    std::int64_t elements = 0;
    std::map<std::string, std::int64_t> elementTypes;
    std::vector<StateSummary> states;
    std::vector<ResultSummary> results;
    std::vector<TransformationSummary> transformations;
    std::vector<SetSummary> sets;
    std::vector<PartSummary> parts;
    bool isComplete = true;  ///< False when some block cannot be read; the library has said why.
};

/// Summarizes a database from the documents of its blocks and, with `withRanges`, from its result
/// values, which are read one block at a time. A block that cannot be read is left out.
DatabaseSummary summarize(unstruct::ZRFxDatabase& database, bool withRanges);

}  // namespace tools
