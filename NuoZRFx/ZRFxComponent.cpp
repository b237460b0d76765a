#include "NuoZRFx/ZRFxComponent.h"

#include "NuoCore/CoreComponent.h"
#include "NuoCore/Instance.h"
#include "NuoCore/LogManager.h"
#include "container/ZRFxThreads.h"
#include "nuo/Convert.h"
#include "nuo/Guard.h"
#include "nuo/Version.h"
#include "nvf/Assert.h"
#include "nvf/LogManager.h"

namespace nuo::zrfx {
namespace {

bool s_isInitialized = false;
bool s_isEvaluationVersion = false;
int s_licenseNumber = 0;

void applyFailedAssertAction(FailedAssertAction action) {
    switch (action) {
        case FailedAssertAction::CONTINUE:
            return nvf::setReportMode(nvf::AssertReportMode::CONTINUE);
        case FailedAssertAction::EXCEPTION:
            return nvf::setReportMode(nvf::AssertReportMode::EXCEPTION);
        case FailedAssertAction::CONSOLE:
            return nvf::setReportMode(nvf::AssertReportMode::CONSOLE);
        case FailedAssertAction::DIALOG:
            return nvf::setReportMode(nvf::AssertReportMode::DIALOG);
    }
    NVF_FAIL("Unhandled initialization options failed assert action");
}

void connectLogging() {
    const nvf::ref<nvf::LogManager> nvfLogManagerInst =
        CoreComponent::logManager()->internal_nvfLogManager();
    NVF_ASSERT(nvfLogManagerInst.notNull());
    nvf::LogManager::setInstance(nvfLogManagerInst);
}

// There are no keys to check: the number that the host states is the licence.
void takeLicense(const Instance& instance) {
    s_licenseNumber = instance.licenseNumber();
    s_isEvaluationVersion = s_licenseNumber == 0;
}

}  // namespace

bool ZRFxComponent::initialize(Instance* instance) {
    NVF_ASSERT(instance);
    if (!instance) return false;
    NVF_ASSERT_MESSAGE(instance->version() == version(), "Component version mismatch");
    if (s_isInitialized) return true;
    return guarded([&] {
        const nvf::String versionName = versionText();
        applyFailedAssertAction(instance->initializationOptions().failedAssertAction());
        connectLogging();
        takeLicense(*instance);
        s_isInitialized = true;
        nvf::interfaceLogger()->inform("ZRFx component %1 initialized", versionName);
        return true;
    });
}

bool ZRFxComponent::isInitialized() {
    return s_isInitialized;
}

void ZRFxComponent::setThreads(int threads) {
    unstruct::ZRFxThreads::SetLimit(threads);
}

unsigned int ZRFxComponent::version() {
    return packedVersion();
}

Str ZRFxComponent::versionString() {
    return guarded([&] { return Convert::toStr(versionText()); });
}

int ZRFxComponent::licenseNumber() {
    return s_licenseNumber;
}

bool ZRFxComponent::isEvaluationVersion() {
    return s_isEvaluationVersion;
}

}  // namespace nuo::zrfx
