#pragma once

// All public classes of the component, and those of the core that they use.
#include "NuoCore/NuoCore.h"
#include "NuoZRFx/ZRFxComponent.h"
