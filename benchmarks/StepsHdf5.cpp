#include "Steps.h"

#ifdef NUO_HAS_HDF5
#include <hdf5.h>

#include <cstdio>
#include <cstdlib>
#endif

#ifdef NUO_HAS_HDF5

namespace {

void Require(bool bDone) {
    if (bDone) return;
    std::fputs("failed: HDF5\n", stderr);
    std::exit(1);
}

class Hdf5Steps : public StepWriter {
public:
    Hdf5Steps(const std::string& sPath, const StepData& data) : m_data(data) {
        const hid_t nAccess = H5Pcreate(H5P_FILE_ACCESS);
        Require(H5Pset_libver_bounds(nAccess, H5F_LIBVER_LATEST, H5F_LIBVER_LATEST) >= 0);
        m_nFile = H5Fcreate(sPath.c_str(), H5F_ACC_TRUNC, H5P_DEFAULT, nAccess);
        Require(m_nFile >= 0);
        H5Pclose(nAccess);
        const hsize_t nNodes = data.Values(0, 0).size();
        m_nSpace = H5Screate_simple(1, &nNodes, nullptr);
        m_nLayout = H5Pcreate(H5P_DATASET_CREATE);
        Require(H5Pset_fill_time(m_nLayout, H5D_FILL_TIME_NEVER) >= 0 &&
                H5Pset_chunk(m_nLayout, 1, &nNodes) >= 0 && H5Pset_deflate(m_nLayout, 5) >= 0);
        for (std::size_t i = 0; i < StepData::kResults; ++i) {
            m_anGroups.push_back(H5Gcreate2(m_nFile, ("result" + std::to_string(i)).c_str(),
                                            H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT));
        }
    }

    void Step(std::size_t nStep) override {
        for (std::size_t i = 0; i < StepData::kResults; ++i) {
            const hid_t nSet =
                H5Dcreate2(m_anGroups[i], std::to_string(nStep).c_str(), H5T_NATIVE_FLOAT, m_nSpace,
                           H5P_DEFAULT, m_nLayout, H5P_DEFAULT);
            Require(nSet >= 0 && H5Dwrite(nSet, H5T_NATIVE_FLOAT, H5S_ALL, H5S_ALL, H5P_DEFAULT,
                                          m_data.Values(nStep, i).data()) >= 0);
            H5Dclose(nSet);
        }
        Require(H5Fflush(m_nFile, H5F_SCOPE_GLOBAL) >= 0);
    }

    void Close() override {
        for (const hid_t nGroup : m_anGroups) H5Gclose(nGroup);
        H5Pclose(m_nLayout);
        H5Sclose(m_nSpace);
        Require(H5Fclose(m_nFile) >= 0);
    }

private:
    const StepData& m_data;
    hid_t m_nFile = -1;
    hid_t m_nSpace = -1;
    hid_t m_nLayout = -1;
    std::vector<hid_t> m_anGroups;
};

}  // namespace

std::unique_ptr<StepWriter> MakeHdf5Steps(const std::string& sPath, const StepData& data) {
    return std::make_unique<Hdf5Steps>(sPath, data);
}

#else

std::unique_ptr<StepWriter> MakeHdf5Steps(const std::string&, const StepData&) {
    return nullptr;
}

#endif
