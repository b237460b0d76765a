// A program of somebody else: public headers only, C++17, exceptions of failed assertions caught.
#include <NuoCore/NuoCore.h>
#include <NuoZRFx/NuoZRFx.h>

#include <cstdio>
#include <stdexcept>

int main() {
    nuo::InitializationOptions options;
    options.setFailedAssertAction(nuo::FailedAssertAction::EXCEPTION);
    nuo::Instance instance(options);
    if (!nuo::zrfx::ZRFxComponent::initialize(&instance)) return 1;
    try {
        nuo::Mat4d().rowCol(4, 4);
        return 2;
    } catch (const std::runtime_error& error) {
        std::puts(error.what());
    }
    return nuo::zrfx::ZRFxComponent::versionString() == "3.11.0" ? 0 : 3;
}
