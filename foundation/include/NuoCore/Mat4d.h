#pragma once

#include "NuoCore/Export.h"

namespace nuo {

/// A 4x4 matrix of doubles, the identity when constructed. Row and column run from 0 to 3.
class NUO_API Mat4d {
public:
    /// The value at a place; 0 after an assertion when the place is outside the matrix.
    double rowCol(int row, int col) const;
    void setRowCol(int row, int col, double value);

private:
    double m_rows[4][4] = {{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}};
};

}  // namespace nuo
