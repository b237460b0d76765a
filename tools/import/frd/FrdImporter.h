#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "import/ImportReader.h"
#include "import/frd/FrdReader.h"

namespace tools {

/// CalculiX result files as a model: materials are parts, and a result of the file is one or more
/// of the model: vectors, tensors, and scalars of what else it has.
class FrdImporter : public ImportReader {
public:
    bool open(const std::string& path) override { return m_reader.open(path); }
    Event next() override;
    std::uint64_t fileSize() const override { return m_reader.fileSize(); }
    std::uint64_t position() const override { return m_reader.position(); }
    int begunState() const override;
    bool isFinished() const override { return m_reader.isFinished(); }
    bool wasWrittenAnew(const std::string& path) const override {
        return m_reader.wasWrittenAnew(path);
    }

private:
    void updateHeader();
    Event takeElements();
    void takeResult();
    void returnBuffers();
    int stateOf(const FrdResult& result) const;
    std::string uniqueStateName(const FrdStep& step);

    FrdReader m_reader;
    std::set<int> m_materials;  // that have elements
    int m_stateCount = 0;
    FrdStep m_step;  // of the last state
    std::string m_stateName;
    std::map<std::string, int> m_stateNameCounts;
    std::vector<std::string> m_names;  // of the results of the last state
    bool m_hasBuffers = false;         // of the values that were delivered last
};

}  // namespace tools
