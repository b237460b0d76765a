// Starts the component and shows every message of the library in the application's own way.
#include <NuoZRFx/NuoZRFx.h>

#include <iostream>

class ToApplicationLog : public nuo::LogDestination {
    void log(const nuo::LogMessage& message) override {
        std::cout << message.logger.toStdString() << " level " << message.level << ": "
                  << message.text.toStdString() << "\n    at " << message.functionName.toStdString()
                  << " in " << message.fileName.toStdString() << ":" << message.lineNumber << "\n";
    }
};

int main() {
    nuo::LogManager* log = nuo::CoreComponent::logManager();
    log->setDestination(new ToApplicationLog);
    log->setLevel("nuo", nuo::LL_INFO);

    nuo::Instance instance;
    if (!nuo::zrfx::ZRFxComponent::initialize(&instance)) return 1;
    std::cout << "ZRFx " << nuo::zrfx::ZRFxComponent::versionString().toStdString() << "\n";

    // A call that fails: a matrix has no row 4. The message arrives above, with its place.
    nuo::Mat4d().rowCol(4, 0);
    return 0;
}
