#include "NuoCore/Mat4d.h"

#include "nvf/Assert.h"

namespace nuo {
namespace {

bool isInside(int row, int col) {
    const bool inside = row >= 0 && row < 4 && col >= 0 && col < 4;
    NVF_ASSERT_MESSAGE(inside, "Matrix index out of range");
    return inside;
}

}  // namespace

double Mat4d::rowCol(int row, int col) const {
    return isInside(row, col) ? m_rows[row][col] : 0;
}

void Mat4d::setRowCol(int row, int col, double value) {
    if (isInside(row, col)) m_rows[row][col] = value;
}

}  // namespace nuo
