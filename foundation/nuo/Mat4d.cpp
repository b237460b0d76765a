#include "NuoCore/Mat4d.h"

#include "nvf/Assert.h"

namespace nuo {
namespace {

bool isInside(int row, int col) {
    NVF_ASSERT(row >= 0 && row < 4 && col >= 0 && col < 4);
    return row >= 0 && row < 4 && col >= 0 && col < 4;
}

}  // namespace

double Mat4d::rowCol(int row, int col) const {
    return isInside(row, col) ? m_rows[row][col] : 0;
}

void Mat4d::setRowCol(int row, int col, double value) {
    if (isInside(row, col)) m_rows[row][col] = value;
}

}  // namespace nuo
