#pragma once

#include "NuoCore/PtrRef.h"
#include "NuoCore/RefCountedObject.h"

namespace nvf {

// The framework's shared objects count references as the public ones do.
using Object = nuo::RefCountedObject;

template <typename T>
using ref = nuo::PtrRef<T>;

using uint = unsigned int;

}  // namespace nvf
