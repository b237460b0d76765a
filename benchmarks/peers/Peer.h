#pragma once

#include <cstddef>
#include <cstdlib>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "PeerDataSet.h"
#include "PeerMeasure.h"

/// How a file is packed. Peers ignore what they do not know.
struct PeerPacking {
    int nLevel = 5;         // 0 (not packed) to 9.
    std::string sVariant;   // One of Peer::Variants.
    std::string sPassword;  // Empty for a file in the clear.
};

using PeerBytes = std::span<const std::byte>;

template <typename T>
PeerBytes BytesOf(const std::vector<T>& aItems) {
    return std::as_bytes(std::span(aItems));
}

/// What a reader has got: like a viewer's, it stays until the clock has stopped. Arrays in the
/// order in which the peer prepared them.
class PeerReceived {
public:
    /// Room for the next array, not initialized.
    void* Allocate(size_t nBytes) {
        std::shared_ptr<void> data(std::malloc(nBytes), std::free);
        Require(nBytes == 0 || data != nullptr, "memory");
        Keep(data, data.get(), nBytes);
        return data.get();
    }

    template <typename T>
    T* Allocate(size_t nCount) {
        return static_cast<T*>(Allocate(nCount * sizeof(T)));
    }

    /// The next array lies in an object of the peer's library, which stays with it.
    void Keep(std::shared_ptr<void> owner, const void* pData, size_t nBytes) {
        m_aOwners.push_back(std::move(owner));
        m_aArrays.emplace_back(static_cast<const std::byte*>(pData), nBytes);
    }

    const std::vector<PeerBytes>& Arrays() const { return m_aArrays; }

private:
    std::vector<std::shared_ptr<void>> m_aOwners;
    std::vector<PeerBytes> m_aArrays;
};

/// One library that stores a model, used as one who knows it well would. Every operation but
/// Prepare runs from opening to closing the file, and ends the program when the library fails. A
/// path is that of a file; a peer that writes several adds to its name.
class Peer {
public:
    virtual ~Peer() = default;

    virtual std::string Name() const = 0;
    virtual std::string Version() const = 0;

    virtual bool HasLevels() const { return true; }
    virtual bool HasPassword() const { return false; }

    /// Ways of using the library that make a difference.
    virtual std::vector<std::string> ModelVariants() const { return {""}; }
    /// Whether a variant has something of its own at that level.
    virtual bool Takes(const PeerPacking&) const { return true; }
    /// Whether what is read is what was written; otherwise values keep kRoundedDigits digits.
    virtual bool IsExact(const PeerPacking&) const { return true; }
    static constexpr int kRoundedDigits = 4;
    /// The same for small objects; none when the library has nothing of the kind.
    virtual std::vector<std::string> ObjectVariants() const { return {}; }

    /// Brings the model into the layout that the library takes. It stays until the peer is gone.
    virtual void Prepare(const PeerDataSet& data) = 0;

    /// The prepared arrays: those of the mesh, then those of each state.
    virtual std::vector<PeerBytes> Mesh() const = 0;
    virtual std::vector<PeerBytes> State(size_t nState) const = 0;

    /// Creates a file of the mesh and the first states.
    virtual void Write(const std::string& sPath, const PeerPacking& packing, size_t nStates) = 0;
    /// Adds a state to a file of those before it.
    virtual void Append(const std::string& sPath, const PeerPacking& packing, size_t nState) = 0;
    virtual void Read(const std::string& sPath, const PeerPacking& packing,
                      PeerReceived* pReceived) = 0;
    /// Reads the first field of a state, and as little else as the library can do with. It gives
    /// the first array of that state.
    virtual void ReadField(const std::string& sPath, const PeerPacking& packing, size_t nState,
                           PeerReceived* pReceived) = 0;

    /// The values of one node in all states, of the first field; none when the library has nothing
    /// of the kind.
    virtual std::vector<float> ReadHistory(const std::string&, size_t /*nNode*/) { return {}; }

    /// A file of many small arrays, each to be found by its name.
    virtual void WriteObjects(const std::string&, const PeerPacking&,
                              const std::vector<std::vector<float>>&) {}
    virtual void ReadObjects(const std::string&, const PeerPacking&, size_t /*nObjects*/,
                             PeerReceived*) {}
};

/// The name of a small array.
inline std::string ObjectName(size_t i) {
    return "Object" + std::to_string(i);
}

/// The peer of a program.
std::unique_ptr<Peer> MakePeer();
