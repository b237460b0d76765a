#include <NuoZRFx/NuoZRFx.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using nuo::zrfx::ZRFxComponent;

class Recorder : public nuo::LogDestination {
public:
    void log(const nuo::LogMessage& message) override { messages.push_back(message); }

    std::vector<nuo::LogMessage> messages;
};

nuo::Instance instanceWith(nuo::FailedAssertAction action, int licenseNumber) {
    nuo::InitializationOptions options;
    options.setFailedAssertAction(action);
    nuo::Instance instance(options);
    instance.setLicenseNumber(licenseNumber);
    return instance;
}

// The component is initialized once in a process, so each of these runs in a process of its own,
// as ctest starts them.
TEST(ZRFxComponentTest, FirstInitializationCountsAndLaterOnesChangeNothing) {
    nuo::Instance first = instanceWith(nuo::FailedAssertAction::CONTINUE, 4711);
    nuo::Instance second = instanceWith(nuo::FailedAssertAction::CONSOLE, 0);
    EXPECT_FALSE(ZRFxComponent::isInitialized());
    ASSERT_TRUE(ZRFxComponent::initialize(&first) && ZRFxComponent::initialize(&second));
    EXPECT_TRUE(ZRFxComponent::isInitialized());
    EXPECT_EQ(4711, ZRFxComponent::licenseNumber());
    EXPECT_FALSE(ZRFxComponent::isEvaluationVersion());
    EXPECT_EQ(0, nuo::Mat4d().rowCol(4, 0));  // still in continue mode, else this would abort
}

TEST(ZRFxComponentTest, MisuseBeforeInitializationIsReportedAndTheProcessGoesOn) {
    nuo::PtrRef<Recorder> recorder = new Recorder;
    nuo::CoreComponent::logManager()->setDestination(recorder.p());
    EXPECT_FALSE(ZRFxComponent::initialize(nullptr));
    EXPECT_EQ(nullptr, nuo::PropertySetCollection().propertySet(0));
    ASSERT_EQ(2u, recorder->messages.size());
    EXPECT_EQ(nuo::Str("ASSERT:  (instance)"), recorder->messages[0].text);
    EXPECT_EQ(nuo::Str("ASSERT:  'propertySet: set 0 of 0 asked for'"), recorder->messages[1].text);
}

TEST(ZRFxComponentTest, WithoutLicenceNumberItIsAnEvaluationVersion) {
    nuo::Instance instance = instanceWith(nuo::FailedAssertAction::CONTINUE, 0);
    ASSERT_TRUE(ZRFxComponent::initialize(&instance));
    EXPECT_TRUE(ZRFxComponent::isEvaluationVersion());
    EXPECT_EQ(199424u, ZRFxComponent::version());
    EXPECT_EQ(ZRFxComponent::version(), instance.version());
    EXPECT_EQ(nuo::Str("3.11.0"), ZRFxComponent::versionString());
}

TEST(ZRFxComponentTest, FailedAssertionReachesTheHostWithItsPlaceAndThrowsWhenAskedTo) {
    nuo::PtrRef<Recorder> recorder = new Recorder;
    nuo::CoreComponent::logManager()->setDestination(recorder.p());
    nuo::Instance instance = instanceWith(nuo::FailedAssertAction::EXCEPTION, 0);
    ASSERT_TRUE(ZRFxComponent::initialize(&instance));
    EXPECT_THROW(nuo::PropertySetCollection().propertySet(0), std::runtime_error);
    ASSERT_EQ(1u, recorder->messages.size());
    const nuo::LogMessage& message = recorder->messages.front();
    EXPECT_EQ(nuo::LL_ERROR, message.level);
    EXPECT_EQ(nuo::Str("nuo.nvf"), message.logger);
    EXPECT_EQ(nuo::Str("ASSERT:  'propertySet: set 0 of 0 asked for'"), message.text);
    EXPECT_NE(std::string::npos, message.fileName.toStdString().find("PropertySetCollection.cpp"));
    EXPECT_GT(message.lineNumber, 0);
}

}  // namespace
