#pragma once

namespace tools {

/// The user text that says when the solver ran, as it wrote it. It is all of an imported file that
/// two runs of one model do not share, and is not compared.
constexpr const char* kSolverRunText = "solver-run";

}  // namespace tools
