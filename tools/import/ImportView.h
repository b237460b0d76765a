#pragma once

#include "NuoCore/PropertySetCollection.h"
#include "NuoCore/PtrRef.h"
#include "import/ImportMesh.h"
#include "import/ImportResults.h"

namespace tools {

/// How an imported model is shown at first: its parts with their mesh, the most telling result, the
/// displacements, and all states, or the first mode shape as it swings.
nuo::PtrRef<nuo::PropertySetCollection> importViewSettings(const ImportMesh& mesh,
                                                           const ImportResults& results);

}  // namespace tools
