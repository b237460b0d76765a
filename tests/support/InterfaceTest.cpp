#include "support/InterfaceTest.h"

#include <mutex>
#include <utility>

namespace test {

std::string Assertion(const std::string& expression) {
    return "ASSERT:  (" + expression + ")";
}

std::string Misuse(const std::string& message) {
    return "ASSERT:  '" + message + "'";
}

class InterfaceTest::Recorder : public nuo::LogDestination {
public:
    void log(const nuo::LogMessage& message) override {
        const std::lock_guard lock(m_mutex);
        if (message.level == nuo::LL_WARNING) warnings.push_back(message.text.toStdString());
        if (message.level != nuo::LL_ERROR) return;
        const bool isCause = message.logger.toStdString().rfind("nuo.nvf.unstruct", 0) == 0;
        EXPECT_GT(message.lineNumber, 0) << message.text.toStdString();
        (isCause ? causes : texts).push_back(message.text.toStdString());
    }

    std::vector<std::string> texts;
    std::vector<std::string> causes;
    std::vector<std::string> warnings;

private:
    std::mutex m_mutex;
};

InterfaceTest::InterfaceTest() : m_recorder(new Recorder) {
    nuo::Instance instance;
    EXPECT_TRUE(nuo::zrfx::ZRFxComponent::initialize(&instance));
    nuo::CoreComponent::logManager()->setDestination(m_recorder.p());
}

InterfaceTest::~InterfaceTest() {
    m_file.abandon();
    nuo::CoreComponent::logManager()->setDestination(nullptr);
}

std::vector<std::string> InterfaceTest::TakeTexts() {
    m_recorder->causes.clear();
    return std::exchange(m_recorder->texts, {});
}

std::vector<std::string> InterfaceTest::TakeCauses() {
    return std::exchange(m_recorder->causes, {});
}

std::vector<std::string> InterfaceTest::TakeWarnings() {
    return std::exchange(m_recorder->warnings, {});
}

void InterfaceTest::ExpectRefused(bool isDone, const std::vector<std::string>& messages,
                                  std::source_location where) {
    const testing::ScopedTrace trace(where.file_name(), static_cast<int>(where.line()), "call");
    EXPECT_FALSE(isDone);
    EXPECT_THAT(TakeTexts(), testing::ElementsAreArray(messages));
}

void InterfaceTest::Create(const nuo::zrfx::FileSettings& settings) {
    ASSERT_TRUE(m_file.create(m_name, settings));
}

void InterfaceTest::Reopen() {
    ASSERT_TRUE(m_file.close() && m_file.open(m_name));
}

void InterfaceTest::TearDown() {
    EXPECT_THAT(m_recorder->texts, testing::IsEmpty()) << "messages that the test did not look at";
    EXPECT_THAT(m_recorder->causes, testing::IsEmpty()) << "causes that the test did not look at";
}

}  // namespace test
