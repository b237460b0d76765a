#pragma once

#include <sys/types.h>

#include <algorithm>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace ziptest {

using Random = std::mt19937;

struct DiskFile {
    std::string sBytes;
    mode_t nMode = 0;

    bool operator==(const DiskFile&) const = default;
};

// The changes of one file and, for any moment, what of them the disk may hold after a power
// failure. What was flushed is there. Of later writes any sector may hold any version that it had;
// size and mode are those of any moment since, and need not fit the data; a sector that was not
// written in time reads as zeros or as what others left on the disk.
class FileHistory {
public:
    static constexpr size_t kSector = 512;

    explicit FileHistory(DiskFile before) : m_before(std::move(before)) {}

    // Times rise from call to call.
    void Write(size_t nTime, size_t nOffset, std::string sBytes) {
        m_aChanges.push_back({nTime, Kind::kWrite, nOffset, std::move(sBytes)});
    }
    void Truncate(size_t nTime, size_t nSize) {
        m_aChanges.push_back({nTime, Kind::kTruncate, nSize, {}});
    }
    void SetMode(size_t nTime, mode_t nMode) {
        m_aChanges.push_back({nTime, Kind::kMode, nMode, {}});
    }
    void Flush(size_t nTime) { m_aFlushes.push_back({nTime, m_aChanges.size()}); }

    DiskFile Now() const {
        Image image(m_before);
        for (const Change& change : m_aChanges) image.Apply(change);
        return image.File({});
    }

    // What is left of the changes before nCut; sForeign is what lies about on the disk.
    DiskFile After(size_t nCut, const std::string& sForeign, Random* pRandom) const {
        size_t nFlushed = 0;
        for (const auto& [nTime, nChanges] : m_aFlushes) {
            if (nTime < nCut) nFlushed = nChanges;
        }
        size_t nKnown = nFlushed;
        while (nKnown < m_aChanges.size() && m_aChanges[nKnown].nTime < nCut) ++nKnown;

        Image image(m_before);
        for (size_t i = 0; i < nFlushed; ++i) image.Apply(m_aChanges[i]);
        const size_t nInodes = nFlushed + SomeOf(nKnown - nFlushed, pRandom);
        image.LoseSectors(pRandom);
        for (size_t i = nFlushed; i < nKnown; ++i) {
            image.ApplyInode(i < nInodes, i + 1 == nInodes, m_aChanges[i]);
            image.ApplyData(i < nInodes, m_aChanges[i]);
        }
        return image.File((*pRandom)() % 2 == 0 ? sForeign : std::string());
    }

    // Bytes that were in the file at some time.
    const std::string& SomeBytes(Random* pRandom) const {
        const size_t nChosen = (*pRandom)() % (m_aChanges.size() + 1);
        return nChosen == 0 ? m_before.sBytes : m_aChanges[nChosen - 1].sBytes;
    }

private:
    enum class Kind { kWrite, kTruncate, kMode };
    struct Change {
        size_t nTime = 0;
        Kind eKind = Kind::kWrite;
        size_t nValue = 0;  // Offset, size or mode.
        std::string sBytes;
    };

    // A number of nCount, the least and the largest as often as all between.
    static size_t SomeOf(size_t nCount, Random* pRandom) {
        const size_t anChoices[] = {0, nCount, (*pRandom)() % (nCount + 1)};
        return anChoices[(*pRandom)() % 3];
    }

    class Image {
    public:
        explicit Image(const DiskFile& file)
            : m_sBytes(file.sBytes),
              m_nSize(file.sBytes.size()),
              m_nMode(file.nMode),
              m_abHeld(SectorsOf(m_nSize), true) {}

        void Apply(const Change& change) {
            ApplyInode(true, false, change);
            ApplyData(true, change);
        }

        // From now on each sector stops to change, or does not, at each write.
        void LoseSectors(Random* pRandom) {
            constexpr double kfLost[] = {0, 0.05, 0.5, 0.95, 1};
            m_pRandom = pRandom;
            m_lost = std::bernoulli_distribution(kfLost[(*pRandom)() % 5]);
        }

        // A write that made the file larger may have got part of the way.
        void ApplyInode(bool bKept, bool bTorn, const Change& change) {
            if (!bKept) return;
            if (change.eKind == Kind::kMode) m_nMode = static_cast<mode_t>(change.nValue);
            if (change.eKind == Kind::kTruncate) m_nSize = change.nValue;
            const size_t nEnd = change.nValue + change.sBytes.size();
            if (change.eKind != Kind::kWrite || nEnd <= m_nSize) return;
            const size_t nSectors = (nEnd - m_nSize) / kSector;
            m_nSize = bTorn ? nEnd - kSector * SomeOf(nSectors, m_pRandom) : nEnd;
        }

        void ApplyData(bool bKept, const Change& change) {
            if (change.eKind == Kind::kTruncate && bKept) Cut(change.nValue);
            if (change.eKind == Kind::kWrite) Write(change.nValue, change.sBytes);
        }

        DiskFile File(const std::string& sForeign) {
            Reach(m_nSize);
            for (size_t nSector = 0; nSector < m_abStopped.size(); ++nSector) {
                if (m_abStopped[nSector] && !m_abHeld[nSector]) Fill(nSector, sForeign);
            }
            m_sBytes.resize(m_nSize);
            return {std::move(m_sBytes), m_nMode};
        }

    private:
        static size_t SectorsOf(size_t nSize) { return (nSize + kSector - 1) / kSector; }

        void Reach(size_t nSize) {
            if (m_sBytes.size() < nSize) m_sBytes.resize(nSize);
            m_abHeld.resize(SectorsOf(m_sBytes.size()));
            m_abStopped.resize(m_abHeld.size());
        }

        void Write(size_t nOffset, const std::string& sBytes) {
            const size_t nEnd = nOffset + sBytes.size();
            Reach(nEnd);
            for (size_t nAt = nOffset; nAt < nEnd;) {
                const size_t nSector = nAt / kSector;
                const size_t nSize = std::min(nEnd, (nSector + 1) * kSector) - nAt;
                if (m_pRandom && m_lost(*m_pRandom)) m_abStopped[nSector] = true;
                if (!m_abStopped[nSector]) {
                    m_abHeld[nSector] = true;
                    m_sBytes.replace(nAt, nSize, sBytes, nAt - nOffset, nSize);
                }
                nAt += nSize;
            }
        }

        // What follows the end is given back to the disk.
        void Cut(size_t nSize) {
            const size_t nSector = SectorsOf(nSize);
            if (m_sBytes.size() > nSize) m_sBytes.resize(nSize);
            m_abHeld.resize(nSector);
            m_abStopped.resize(nSector);
            Reach(nSize);
        }

        void Fill(size_t nSector, const std::string& sForeign) {
            for (size_t nAt = nSector * kSector; nAt < (nSector + 1) * kSector; ++nAt) {
                if (nAt < m_sBytes.size() && !sForeign.empty()) {
                    m_sBytes[nAt] = sForeign[nAt % sForeign.size()];
                }
            }
        }

        std::string m_sBytes;  // What the sectors hold, also beyond the size.
        size_t m_nSize;
        mode_t m_nMode;
        std::vector<bool> m_abHeld;     // Sectors that hold what was in the file at some time.
        std::vector<bool> m_abStopped;  // Sectors that do not change any more.
        Random* m_pRandom = nullptr;
        std::bernoulli_distribution m_lost;
    };

    DiskFile m_before;
    std::vector<Change> m_aChanges;
    std::vector<std::pair<size_t, size_t>> m_aFlushes;  // Time, number of changes before.
};

}  // namespace ziptest
