#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

/// What a solver writes step by step: some results of some nodes each, flushed.
struct StepData {
    static constexpr std::size_t kResults = 10;
    static constexpr std::size_t kVariants = 16;

    explicit StepData(std::size_t nNodes);

    const std::vector<float>& Values(std::size_t nStep, std::size_t nResult) const {
        return m_aaValues[(nStep * kResults + nResult) % m_aaValues.size()];
    }

private:
    std::vector<std::vector<float>> m_aaValues;
};

/// A library as a solver uses it. Ends the program when it fails.
class StepWriter {
public:
    virtual ~StepWriter() = default;
    virtual void Step(std::size_t nStep) = 0;
    virtual void Close() = 0;
};

std::unique_ptr<StepWriter> MakeZrfxSteps(const std::string& sPath, const StepData& data);
/// HDF5 with deflate, newest format, a dataset a result and step. Null where it was not found.
std::unique_ptr<StepWriter> MakeHdf5Steps(const std::string& sPath, const StepData& data);

/// Prints what steps cost, early and late, what opening and refreshing takes beside them, and what
/// was left behind.
void MeasureSteps(const std::string& sFolder, std::size_t nSteps, std::size_t nNodes);
