// HDF5 with its deflate filter, with and without shuffling the bytes before. A dataset an array,
// whole rows in chunks of about 64 KiB, the fastest of 64 KiB to whole arrays; without packing
// contiguous.
#include <hdf5.h>

#include <algorithm>

#include "ArrayPeer.h"

namespace {

constexpr size_t kChunkBytes = 64 << 10;

// A handle of the library, closed by the function of its kind.
class Handle {
public:
    Handle(hid_t nId, herr_t (*close)(hid_t)) : m_nId(nId), m_close(close) {
        Require(nId >= 0, "HDF5 handle");
    }
    ~Handle() { m_close(m_nId); }
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;

    operator hid_t() const { return m_nId; }

private:
    hid_t m_nId;
    herr_t (*m_close)(hid_t);
};

// The newest form of the format: faster for many objects.
Handle NewestFormat() {
    const hid_t nList = H5Pcreate(H5P_FILE_ACCESS);
    Require(H5Pset_libver_bounds(nList, H5F_LIBVER_LATEST, H5F_LIBVER_LATEST) >= 0, "libver");
    return {nList, H5Pclose};
}

Handle Create(const std::string& sPath) {
    return {H5Fcreate(sPath.c_str(), H5F_ACC_TRUNC, H5P_DEFAULT, NewestFormat()), H5Fclose};
}

Handle Open(const std::string& sPath, unsigned nMode) {
    return {H5Fopen(sPath.c_str(), nMode, NewestFormat()), H5Fclose};
}

hid_t TypeOf(const PeerArray& array) {
    return array.bFloats ? H5T_NATIVE_FLOAT : H5T_NATIVE_INT;
}

// How an array of so many rows is laid out in the file.
Handle Layout(const PeerArray& array, const PeerPacking& packing) {
    const hid_t nList = H5Pcreate(H5P_DATASET_CREATE);
    H5Pset_fill_time(nList, H5D_FILL_TIME_NEVER);
    if (packing.nLevel == 0) return {nList, H5Pclose};
    const hsize_t nRows = std::min(array.RowCount(), kChunkBytes / (4 * array.nColumns));
    const hsize_t anChunk[] = {nRows, array.nColumns};
    Require(H5Pset_chunk(nList, 2, anChunk) >= 0, "chunk");
    if (packing.sVariant == "shuffle") Require(H5Pset_shuffle(nList) >= 0, "shuffle");
    Require(H5Pset_deflate(nList, static_cast<unsigned>(packing.nLevel)) >= 0, "deflate");
    return {nList, H5Pclose};
}

void WriteArray(hid_t nFile, const PeerArray& array, hid_t nLayout) {
    const hsize_t anSize[] = {array.RowCount(), array.nColumns};
    const Handle space(H5Screate_simple(2, anSize, nullptr), H5Sclose);
    const Handle set(H5Dcreate2(nFile, array.sName.c_str(), TypeOf(array), space, H5P_DEFAULT,
                                nLayout, H5P_DEFAULT),
                     H5Dclose);
    Require(H5Dwrite(set, TypeOf(array), H5S_ALL, H5S_ALL, H5P_DEFAULT, array.bytes.data()) >= 0,
            "H5Dwrite");
}

void ReadArray(hid_t nFile, const std::string& sName, hid_t nType, PeerReceived* pReceived) {
    const Handle set(H5Dopen2(nFile, sName.c_str(), H5P_DEFAULT), H5Dclose);
    const Handle space(H5Dget_space(set), H5Sclose);
    const auto nItems = static_cast<size_t>(H5Sget_simple_extent_npoints(space));
    void* pData = pReceived->Allocate(4 * nItems);
    Require(H5Dread(set, nType, H5S_ALL, H5S_ALL, H5P_DEFAULT, pData) >= 0, "H5Dread");
}

class Hdf5Peer : public ArrayPeer {
public:
    std::string Name() const override { return "hdf5"; }
    std::string Version() const override {
        return std::string("HDF5 ") + std::to_string(H5_VERS_MAJOR) + "." +
               std::to_string(H5_VERS_MINOR) + "." + std::to_string(H5_VERS_RELEASE);
    }
    std::vector<std::string> ModelVariants() const override { return {"deflate", "shuffle"}; }
    std::vector<std::string> ObjectVariants() const override { return {"data"}; }

    void Write(const std::string& sPath, const PeerPacking& packing, size_t nStates) override {
        const Handle file = Create(sPath);
        for (const PeerArray& array : Arrays(nStates))
            WriteArray(file, array, Layout(array, packing));
    }

    void Append(const std::string& sPath, const PeerPacking& packing, size_t nState) override {
        const Handle file = Open(sPath, H5F_ACC_RDWR);
        for (const PeerArray& array : StateArrays(nState))
            WriteArray(file, array, Layout(array, packing));
    }

    void Read(const std::string& sPath, const PeerPacking&, PeerReceived* pReceived) override {
        const Handle file = Open(sPath, H5F_ACC_RDONLY);
        for (const PeerArray& array : Arrays()) {
            ReadArray(file, array.sName, TypeOf(array), pReceived);
        }
    }

    void ReadField(const std::string& sPath, const PeerPacking&, size_t nState,
                   PeerReceived* pReceived) override {
        const Handle file = Open(sPath, H5F_ACC_RDONLY);
        ReadArray(file, StateArrays(nState)[0].sName, H5T_NATIVE_FLOAT, pReceived);
    }

    void WriteObjects(const std::string& sPath, const PeerPacking& packing,
                      const std::vector<std::vector<float>>& aaObjects) override {
        const Handle file = Create(sPath);
        const Handle layout = Layout({"", BytesOf(aaObjects[0]), 1, true}, packing);
        for (size_t i = 0; i < aaObjects.size(); ++i) {
            WriteArray(file, {ObjectName(i), BytesOf(aaObjects[i]), 1, true}, layout);
        }
    }

    void ReadObjects(const std::string& sPath, const PeerPacking&, size_t nObjects,
                     PeerReceived* pReceived) override {
        const Handle file = Open(sPath, H5F_ACC_RDONLY);
        for (size_t i = 0; i < nObjects; ++i) {
            ReadArray(file, ObjectName(i), H5T_NATIVE_FLOAT, pReceived);
        }
    }
};

}  // namespace

std::unique_ptr<Peer> MakePeer() {
    return std::make_unique<Hdf5Peer>();
}
