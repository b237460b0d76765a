// Measures the container engine against what it is made of, in one run on the same data: bare
// libdeflate, plain write() and read(), plain libzip with zlib. Prints medians of wall-clock and
// user CPU time and their ratios. "--large" stops after the large arrays, "--full" adds the cases
// of several gigabytes, "--steps" measures nothing but a solver that flushes after each step.
#include <fcntl.h>
#include <libdeflate.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#include <zip.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include "Steps.h"
#include "container/ZRFxZipArchive.h"

namespace {

using unstruct::ZRFxZipArchive;
using unstruct::ZRFxZipRawData;
using unstruct::ZRZipAccessMode;

struct Times {
    double dWall = 0;
    double dUser = 0;
};

std::string g_sFolder;

std::string PathOf(const char* sName) {
    return g_sFolder + "/" + sName;
}

double UserTime() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<double>(usage.ru_utime.tv_sec) +
           1e-6 * static_cast<double>(usage.ru_utime.tv_usec);
}

double WallTime() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

void Require(bool bDone, const std::string& sWhat) {
    if (bDone) return;
    std::fprintf(stderr, "failed: %s\n", sWhat.c_str());
    std::exit(1);
}

Times Measure(const std::function<void()>& work) {
    const double dUser = UserTime();
    const double dWall = WallTime();
    work();
    return {WallTime() - dWall, UserTime() - dUser};
}

Times Median(std::vector<Times> aTimes) {
    const auto middle = [&](auto member) {
        std::sort(aTimes.begin(), aTimes.end(),
                  [&](const Times& a, const Times& b) { return a.*member < b.*member; });
        return aTimes[aTimes.size() / 2].*member;
    };
    return {middle(&Times::dWall), middle(&Times::dUser)};
}

// Files that a case writes anew are removed before, outside of the time: to free the blocks of a
// flushed file takes longer than those of one that never reached the disk.
void RemoveWritten() {
    for (const char* sName : {"ours.zrfx", "theirs", "small.zrfx", "small.zip"}) {
        std::filesystem::remove(PathOf(sName));
    }
}

enum class Case { kWrite, kRead };

// Both in turn, so that a drift of the machine meets both.
void Compare(Case eCase, const char* sCase, const std::function<void()>& ours,
             const std::function<void()>& theirs, int nRounds = 3) {
    std::vector<Times> aOurs;
    std::vector<Times> aTheirs;
    for (int i = 0; i < nRounds; ++i) {
        if (eCase == Case::kWrite) RemoveWritten();
        aTheirs.push_back(Measure(theirs));
        aOurs.push_back(Measure(ours));
    }
    const Times our = Median(aOurs);
    const Times their = Median(aTheirs);
    std::printf("%-52s %8.3f %8.3f %6.2f   %8.3f %8.3f %6.2f\n", sCase, our.dWall, their.dWall,
                their.dWall / our.dWall, our.dUser, their.dUser, their.dUser / our.dUser);
    std::fflush(stdout);
}

using Field = std::vector<float>;

// Smooth over the mesh, with noise of relative size 1e-4.
Field MakeField(size_t nCount, unsigned nSeed) {
    std::minstd_rand random(nSeed);
    std::uniform_real_distribution<float> noise(-1e-4f, 1e-4f);
    Field field(nCount);
    for (size_t i = 0; i < nCount; ++i) {
        const float x = static_cast<float>(i % 97) * 0.01f;
        const float y = static_cast<float>(i / 97) * 1e-4f;
        field[i] = std::sin(x + static_cast<float>(nSeed)) * std::cos(y) * (1.0f + noise(random));
    }
    return field;
}

size_t Bytes(const Field& field) {
    return field.size() * sizeof(float);
}

std::string NameOf(size_t i) {
    return "Database001\\Block" + std::to_string(i) + ".dat";
}

// The arrays that a reader has read so far: like a viewer's, they stay.
class Kept {
public:
    ~Kept() {
        for (void* pData : m_apData) std::free(pData);
    }
    void* Allocate(size_t nSize) { return m_apData.emplace_back(std::malloc(nSize)); }

private:
    std::vector<void*> m_apData;
};

void WriteOurs(const std::string& sPath, const std::vector<Field>& aFields, int nLevel,
               const char* sPassword = "") {
    ZRFxZipArchive archive;
    Require(archive.Open(sPath, ZRZipAccessMode::CREATE), "create");
    Require(archive.SetPassword(sPassword), "password");
    for (size_t i = 0; i < aFields.size(); ++i) {
        Require(archive.Add(NameOf(i), aFields[i].data(), Bytes(aFields[i]), nLevel),
                archive.LastError());
    }
    Require(archive.Close(), archive.LastError());
}

void ReadOurs(const std::string& sPath, const std::vector<Field>& aFields,
              const char* sPassword = "") {
    ZRFxZipArchive archive;
    Require(archive.Open(sPath, ZRZipAccessMode::READ_ONLY), archive.LastError());
    Require(archive.SetPassword(sPassword), "password");
    std::vector<ZRFxZipRawData> aKept(aFields.size());
    for (size_t i = 0; i < aFields.size(); ++i) {
        Require(archive.Read(NameOf(i), &aKept[i]), archive.LastError());
        Require(aKept[i].Length() == Bytes(aFields[i]), "length");
    }
}

void WriteLibzip(const std::string& sPath, const std::vector<Field>& aFields, zip_uint32_t nLevel,
                 const char* sPassword = "") {
    zip_t* pZip = zip_open(sPath.c_str(), ZIP_CREATE, nullptr);
    Require(pZip != nullptr, "zip_open");
    for (size_t i = 0; i < aFields.size(); ++i) {
        zip_source_t* pSource = zip_source_buffer(pZip, aFields[i].data(), Bytes(aFields[i]), 0);
        const zip_int64_t nIndex = zip_file_add(pZip, NameOf(i).c_str(), pSource, 0);
        Require(nIndex >= 0, "zip_file_add");
        const zip_uint64_t nEntry = static_cast<zip_uint64_t>(nIndex);
        zip_set_file_compression(pZip, nEntry, nLevel ? ZIP_CM_DEFLATE : ZIP_CM_STORE, nLevel);
        if (*sPassword) zip_file_set_encryption(pZip, nEntry, ZIP_EM_AES_256, sPassword);
    }
    Require(zip_close(pZip) == 0, "zip_close");
}

void ReadLibzip(const std::string& sPath, const std::vector<Field>& aFields,
                const char* sPassword = "") {
    zip_t* pZip = zip_open(sPath.c_str(), ZIP_RDONLY, nullptr);
    Require(pZip != nullptr, "zip_open");
    if (*sPassword) zip_set_default_password(pZip, sPassword);
    Kept kept;
    for (size_t i = 0; i < aFields.size(); ++i) {
        zip_file_t* pFile = zip_fopen(pZip, NameOf(i).c_str(), 0);
        Require(pFile != nullptr, "zip_fopen");
        void* pData = kept.Allocate(Bytes(aFields[i]));
        const zip_int64_t nRead = zip_fread(pFile, pData, Bytes(aFields[i]));
        Require(nRead == static_cast<zip_int64_t>(Bytes(aFields[i])), "zip_fread");
        zip_fclose(pFile);
    }
    zip_discard(pZip);
}

// The arrays packed one after the other, nothing else.
std::vector<std::vector<char>> PackBare(const std::vector<Field>& aFields, int nLevel) {
    std::vector<std::vector<char>> aaPacked;
    libdeflate_compressor* pCompressor = libdeflate_alloc_compressor(nLevel);
    std::vector<char> aBuffer(libdeflate_deflate_compress_bound(pCompressor, Bytes(aFields[0])));
    for (const Field& field : aFields) {
        const size_t nPacked = libdeflate_deflate_compress(pCompressor, field.data(), Bytes(field),
                                                           aBuffer.data(), aBuffer.size());
        aaPacked.emplace_back(aBuffer.begin(), aBuffer.begin() + static_cast<long>(nPacked));
    }
    libdeflate_free_compressor(pCompressor);
    return aaPacked;
}

void CompressBare(const std::vector<Field>& aFields, int nLevel) {
    libdeflate_compressor* pCompressor = libdeflate_alloc_compressor(nLevel);
    std::vector<char> aBuffer(libdeflate_deflate_compress_bound(pCompressor, Bytes(aFields[0])));
    for (const Field& field : aFields) {
        Require(libdeflate_deflate_compress(pCompressor, field.data(), Bytes(field), aBuffer.data(),
                                            aBuffer.size()) > 0,
                "libdeflate");
    }
    libdeflate_free_compressor(pCompressor);
}

// What no container can do without: libdeflate, CRC and write().
void WriteLimit(const std::string& sPath, const std::vector<Field>& aFields, int nLevel) {
    const int nFile = open(sPath.c_str(), O_CREAT | O_WRONLY | O_TRUNC, 0644);
    libdeflate_compressor* pCompressor = libdeflate_alloc_compressor(nLevel);
    std::vector<char> aBuffer(libdeflate_deflate_compress_bound(pCompressor, Bytes(aFields[0])));
    for (const Field& field : aFields) {
        size_t nPacked = libdeflate_deflate_compress(pCompressor, field.data(), Bytes(field),
                                                     aBuffer.data(), aBuffer.size() - 4);
        const uint32_t nCrc = libdeflate_crc32(0, field.data(), Bytes(field));
        std::memcpy(aBuffer.data() + nPacked, &nCrc, sizeof(nCrc));
        nPacked += sizeof(nCrc);
        Require(write(nFile, aBuffer.data(), nPacked) == static_cast<ssize_t>(nPacked), "write");
    }
    libdeflate_free_compressor(pCompressor);
    close(nFile);
}

void InflateBare(const std::vector<std::vector<char>>& aaPacked,
                 const std::vector<Field>& aFields) {
    libdeflate_decompressor* pDecompressor = libdeflate_alloc_decompressor();
    uint32_t nCrc = 0;
    Kept kept;
    for (size_t i = 0; i < aFields.size(); ++i) {
        void* pData = kept.Allocate(Bytes(aFields[i]));
        Require(
            libdeflate_deflate_decompress(pDecompressor, aaPacked[i].data(), aaPacked[i].size(),
                                          pData, Bytes(aFields[i]), nullptr) == LIBDEFLATE_SUCCESS,
            "inflate");
        nCrc ^= libdeflate_crc32(0, pData, Bytes(aFields[i]));
    }
    libdeflate_free_decompressor(pDecompressor);
    if (nCrc == 1) std::puts("");
}

void WritePlain(const std::string& sPath, const std::vector<Field>& aFields, bool bFlush) {
    const int nFile = open(sPath.c_str(), O_CREAT | O_WRONLY | O_TRUNC, 0644);
    for (const Field& field : aFields) {
        Require(write(nFile, field.data(), Bytes(field)) == static_cast<ssize_t>(Bytes(field)),
                "write");
    }
    if (bFlush) fsync(nFile);
    close(nFile);
}

void ReadPlain(const std::string& sPath, const std::vector<Field>& aFields) {
    const int nFile = open(sPath.c_str(), O_RDONLY);
    Kept kept;
    for (const Field& field : aFields) {
        void* pData = kept.Allocate(Bytes(field));
        Require(read(nFile, pData, Bytes(field)) == static_cast<ssize_t>(Bytes(field)), "read");
    }
    close(nFile);
}

std::vector<Field> MakeFields(size_t nFields, size_t nCount) {
    std::vector<Field> aFields;
    for (size_t i = 0; i < nFields; ++i) {
        aFields.push_back(MakeField(nCount, static_cast<unsigned>(i) + 1));
    }
    return aFields;
}

void LargeArrays() {
    const std::vector<Field> aFields = MakeFields(32, 1 << 20);
    const std::string sOurs = PathOf("ours.zrfx");
    const std::string sTheirs = PathOf("theirs");
    for (int nLevel : {1, 5, 9}) {
        const std::string sLevel = ", level " + std::to_string(nLevel);
        Compare(
            Case::kWrite, ("write 32 arrays of 4 MiB, bare libdeflate" + sLevel).c_str(),
            [&] { WriteOurs(sOurs, aFields, nLevel); }, [&] { CompressBare(aFields, nLevel); });
        Compare(
            Case::kWrite, ("write them, libdeflate, CRC and write()" + sLevel).c_str(),
            [&] { WriteOurs(sOurs, aFields, nLevel); },
            [&] { WriteLimit(sTheirs, aFields, nLevel); });
        const auto aaPacked = PackBare(aFields, nLevel);
        Compare(
            Case::kRead, ("read them, bare inflate and CRC" + sLevel).c_str(),
            [&] { ReadOurs(sOurs, aFields); }, [&] { InflateBare(aaPacked, aFields); }, 5);
    }
    Compare(
        Case::kWrite, "write them at level 5, plain libzip and zlib",
        [&] { WriteOurs(sOurs, aFields, 5); }, [&] { WriteLibzip(sTheirs, aFields, 5); }, 1);
    Compare(
        Case::kRead, "read them, plain libzip and zlib", [&] { ReadOurs(sOurs, aFields); },
        [&] { ReadLibzip(sTheirs, aFields); });
    Compare(
        Case::kWrite, "write them at level 5 encrypted, libzip's AES",
        [&] { WriteOurs(sOurs, aFields, 5, "geheim"); },
        [&] { WriteLibzip(sTheirs, aFields, 5, "geheim"); }, 1);
    Compare(
        Case::kRead, "read them encrypted, libzip's AES",
        [&] { ReadOurs(sOurs, aFields, "geheim"); },
        [&] { ReadLibzip(sTheirs, aFields, "geheim"); });
    Compare(
        Case::kWrite, "write them at level 0, plain write()", [&] { WriteOurs(sOurs, aFields, 0); },
        [&] { WritePlain(sTheirs, aFields, false); }, 5);
    Compare(
        Case::kWrite, "write them at level 0, write() and fsync()",
        [&] { WriteOurs(sOurs, aFields, 0); }, [&] { WritePlain(sTheirs, aFields, true); }, 5);
    Compare(
        Case::kRead, "read them, plain read()", [&] { ReadOurs(sOurs, aFields); },
        [&] { ReadPlain(sTheirs, aFields); }, 5);
    Compare(
        Case::kWrite, "write them at level 0, plain libzip", [&] { WriteOurs(sOurs, aFields, 0); },
        [&] { WriteLibzip(sTheirs, aFields, 0); });
    Compare(
        Case::kRead, "read them, plain libzip stored", [&] { ReadOurs(sOurs, aFields); },
        [&] { ReadLibzip(sTheirs, aFields); });
}

void SmallEntries() {
    const std::vector<Field> aFields = MakeFields(20000, 128);
    const std::string sOurs = PathOf("small.zrfx");
    const std::string sTheirs = PathOf("small.zip");
    Compare(
        Case::kWrite, "write 20000 entries of 512 bytes, plain libzip",
        [&] { WriteOurs(sOurs, aFields, 5); }, [&] { WriteLibzip(sTheirs, aFields, 5); });
    Compare(
        Case::kRead, "read them, plain libzip", [&] { ReadOurs(sOurs, aFields); },
        [&] { ReadLibzip(sTheirs, aFields); });
    Compare(
        Case::kWrite, "write them encrypted, libzip's AES",
        [&] { WriteOurs(sOurs, aFields, 5, "geheim"); },
        [&] { WriteLibzip(sTheirs, aFields, 5, "geheim"); }, 1);
    Compare(
        Case::kRead, "read them encrypted, libzip's AES",
        [&] { ReadOurs(sOurs, aFields, "geheim"); },
        [&] { ReadLibzip(sTheirs, aFields, "geheim"); }, 1);
}

void OpenMany() {
    for (size_t nEntries : {50000u, 100000u, 200000u}) {
        const std::string sPath = PathOf("many.zrfx");
        ZRFxZipArchive archive;
        Require(archive.Open(sPath, ZRZipAccessMode::CREATE), "create");
        for (size_t i = 0; i < nEntries; ++i) Require(archive.Add(NameOf(i), "x", 1, 0), "add");
        Require(archive.Close(), archive.LastError());
        const Times times = Measure([&] {
            ZRFxZipArchive reader;
            Require(reader.Open(sPath, ZRZipAccessMode::READ_ONLY), reader.LastError());
        });
        std::printf("open an archive of %zu entries: %.3f s\n", nEntries, times.dWall);
    }
}

void Commits() {
    const Field state = MakeField(250000, 1);
    ZRFxZipArchive archive;
    Require(archive.Open(PathOf("commits.zrfx"), ZRZipAccessMode::CREATE), "create");
    std::vector<double> adTimes;
    for (size_t i = 0; i < 200; ++i) {
        const Times times = Measure([&] {
            for (const char* sName : {"ZRF.xml", "Database001\\Database-TOC.xml"}) {
                if (archive.Contains(sName)) archive.Remove(sName);
                const std::string sText(1000 + 100 * i, 'x');
                Require(archive.Add(sName, sText.data(), sText.size()), archive.LastError());
            }
            Require(archive.Add(NameOf(i), state.data(), Bytes(state), 5), archive.LastError());
            Require(archive.Commit(), archive.LastError());
        });
        adTimes.push_back(times.dWall);
    }
    const auto median = [&](size_t nFrom) {
        std::vector<double> ad(adTimes.begin() + static_cast<long>(nFrom),
                               adTimes.begin() + static_cast<long>(nFrom) + 10);
        std::nth_element(ad.begin(), ad.begin() + 5, ad.end());
        return ad[5];
    };
    std::printf("200 commits of 1 MB: median of commits 5-14 %.4f s, of the last ten %.4f s\n",
                median(5), median(190));
}

long PeakMemoryOf(const std::function<void()>& work) {
    const pid_t nChild = fork();
    if (nChild == 0) {
        work();
        _exit(0);
    }
    int nStatus = 0;
    rusage usage{};
    wait4(nChild, &nStatus, 0, &usage);
    Require(nStatus == 0, "child");
    return usage.ru_maxrss / 1024;
}

void Memory() {
    const Field field = MakeField(100000, 3);
    const std::string sPath = PathOf("memory.zrfx");
    const long nPeak = PeakMemoryOf([&] {
        ZRFxZipArchive archive;
        Require(archive.Open(sPath, ZRZipAccessMode::CREATE), "create");
        for (size_t i = 0; i < 10000; ++i) {
            Require(archive.Add(NameOf(i), field.data(), Bytes(field), 1), archive.LastError());
        }
        Require(archive.Close(), archive.LastError());
    });
    std::printf("peak memory of a writer of 4 GB in 10000 arrays: %ld MiB\n", nPeak);
}

void Append() {
    const Field field = MakeField(5 << 20, 3);  // 20 MiB: 1 % of the file
    const std::string sPath = PathOf("append.zrfx");
    {
        ZRFxZipArchive archive;
        Require(archive.Open(sPath, ZRZipAccessMode::CREATE), "create");
        for (size_t i = 0; i < 100; ++i) {
            Require(archive.Add(NameOf(i), field.data(), Bytes(field), 0), archive.LastError());
        }
        Require(archive.Close(), archive.LastError());
    }
    size_t nNext = 100;
    Compare(
        Case::kRead, "append 20 MiB to 2 GiB at level 5, those alone",
        [&] {
            ZRFxZipArchive archive;
            Require(archive.Open(sPath, ZRZipAccessMode::UPDATE), archive.LastError());
            Require(archive.Add(NameOf(nNext++), field.data(), Bytes(field), 5), "add");
            Require(archive.Close(), archive.LastError());
        },
        [&] { WriteOurs(PathOf("alone.zrfx"), {field}, 5); });
}

}  // namespace

int main(int nArguments, char** asArguments) {
    const bool bLargeOnly = nArguments > 1 && std::strcmp(asArguments[1], "--large") == 0;
    const bool bFull = nArguments > 1 && std::strcmp(asArguments[1], "--full") == 0;
    std::string sTemplate = (std::filesystem::temp_directory_path() / "zrfxbenchXXXXXX").string();
    g_sFolder = mkdtemp(sTemplate.data());
    if (nArguments > 1 && std::strcmp(asArguments[1], "--steps") == 0) {
        MeasureSteps(g_sFolder, 10000, 1000);
        MeasureSteps(g_sFolder, 1000, 3000);
        std::filesystem::remove_all(g_sFolder);
        return 0;
    }
    // First, while the process itself is small: a child's peak counts what it was born with.
    if (bFull) Memory();
    std::printf("%-52s %8s %8s %6s   %8s %8s %6s\n", "case, against", "wall s", "theirs", "ratio",
                "user s", "theirs", "ratio");
    LargeArrays();
    if (!bLargeOnly) {
        SmallEntries();
        Commits();
        OpenMany();
    }
    if (bFull) Append();
    std::filesystem::remove_all(g_sFolder);
    return 0;
}
