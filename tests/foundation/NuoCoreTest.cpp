#include "NuoCore/NuoCore.h"

#include <climits>
#include <memory>
#include <stdexcept>

#include "support/LogCapture.h"

namespace nuo {
namespace {

struct NuoCoreTest : test::LogCapture {};

TEST_F(NuoCoreTest, MatrixIndexOutsideIsReportedAndHarmless) {
    Mat4d matrix;
    matrix.setRowCol(1, 3, 2.5);
    for (const auto& [row, col] : {std::pair(-1, 0), {0, -1}, {4, 0}, {0, 4}, {INT_MAX, INT_MIN}}) {
        matrix.setRowCol(row, col, 9);
        EXPECT_EQ(matrix.rowCol(row, col), 0);
        EXPECT_EQ(TakeTexts().size(), NUO_ASSERTIONS ? 2u : 0u);
    }
    for (int i = 0; i < 16; ++i) {
        const double expected = i == 7 ? 2.5 : i / 4 == i % 4;
        EXPECT_EQ(matrix.rowCol(i / 4, i % 4), expected) << i;
    }
}

TEST_F(NuoCoreTest, ImageKeepsItsPixelsAndRefusesWhatDoesNotFit) {
    const std::vector<unsigned char> pixels = {1, 2, 3, 4, 5, 6};
    Image image;
    EXPECT_TRUE(image.setFromRgb(pixels.data(), 2, 1));
    EXPECT_FALSE(image.setFromRgb(nullptr, 1, 1));
    EXPECT_FALSE(image.setFromRgb(pixels.data(), UINT_MAX, UINT_MAX));
    std::vector<unsigned char> copy(7, 9);
    EXPECT_FALSE(image.getAsRgb(copy.data(), 5));
    EXPECT_FALSE(image.getAsRgb(nullptr, 6));
    EXPECT_EQ(copy, std::vector<unsigned char>(7, 9));
    EXPECT_TRUE(image.getAsRgb(copy.data(), 7));
    EXPECT_EQ(copy, (std::vector<unsigned char>{1, 2, 3, 4, 5, 6, 9}));
}

TEST_F(NuoCoreTest, LastReferenceDeletesTheObject) {
    struct Watched : RefCountedObject {
        explicit Watched(int& alive) : m_alive(alive) { ++m_alive; }
        ~Watched() override { --m_alive; }
        int& m_alive;
    };
    int alive = 0;
    PtrRef<Watched> first = new Watched(alive);
    PtrRef<RefCountedObject> second = first;
    first = new Watched(alive);
    EXPECT_EQ(alive, 2);
    second = nullptr;
    EXPECT_EQ(alive, 1);
    first = *&first;
    PtrRef<Watched> moved = std::move(first);
    EXPECT_TRUE(first.isNull() && moved.notNull());
    moved = nullptr;
    EXPECT_EQ(alive, 0);
}

struct Part : RefCountedObject {
    explicit Part(int& alive) : m_alive(alive) { ++m_alive; }
    ~Part() override { --m_alive; }
    int& m_alive;
};

struct Whole : RefCountedObject {
    Whole(int& alive, PtrRef<Part> other) : m_member(alive), m_other(std::move(other)) {
        if (m_member.m_alive == 4) throw std::runtime_error("too many");
    }
    Part m_member;
    PtrRef<Part> m_other;
};

TEST_F(NuoCoreTest, ReferencesDeleteOnlyWhatNewHasMade) {
    int alive = 0;
    Part onStack(alive);
    PtrRef<Part> reference = &onStack;
    reference = nullptr;
    EXPECT_EQ(alive, 1);
    // The argument is made after the memory of the object is taken, or before.
    PtrRef<Whole> whole = new Whole(alive, new Part(alive));
    reference = &whole->m_member;
    reference = nullptr;
    EXPECT_EQ(alive, 3);
    EXPECT_THROW(new Whole(alive, nullptr), std::runtime_error);
    whole = nullptr;
    EXPECT_EQ(alive, 1);
    const auto owned = std::make_unique<Part>(alive);
    EXPECT_EQ(alive, 2);
}

}  // namespace
}  // namespace nuo
