#include "support/LogCapture.h"

#include <mutex>
#include <utility>

#include "nvf/Assert.h"

namespace test {

class LogCapture::Recorder : public nvf::LogDestination {
public:
    void log(const nvf::String& logger, nvf::LogLevel level, const nvf::String& message,
             const nvf::CodeLocation& location) override {
        const std::lock_guard lock(m_mutex);
        m_messages.push_back({level, logger.toUtf8(), message.toUtf8(),
                              location.functionName.toUtf8(), location.fileName.toUtf8(),
                              location.lineNumber});
    }

    std::vector<Logged> take() {
        const std::lock_guard lock(m_mutex);
        return std::exchange(m_messages, {});
    }

private:
    std::mutex m_mutex;
    std::vector<Logged> m_messages;
};

LogCapture::LogCapture() : m_managerBefore(nvf::LogManager::instance()), m_recorder(new Recorder) {
    nvf::LogManager::setInstance(new nvf::LogManager);
    nvf::LogManager::instance()->setLevelBelow("", nuo::LL_DEBUG);
    nvf::LogManager::instance()->setDestination(nvf::ref<nvf::LogDestination>(m_recorder));
    nvf::setReportMode(nvf::AssertReportMode::CONTINUE);
}

LogCapture::~LogCapture() {
    nvf::setReportMode(nvf::AssertReportMode::CONTINUE);
    nvf::LogManager::setInstance(m_managerBefore);
}

std::vector<Logged> LogCapture::TakeMessages() {
    return m_recorder->take();
}

std::vector<std::string> LogCapture::TakeTexts() {
    std::vector<std::string> texts;
    for (Logged& message : TakeMessages()) texts.push_back(std::move(message.text));
    return texts;
}

void LogCapture::ExpectAssertion(std::string_view expression) {
    ExpectReport("ASSERT:  (" + std::string(expression) + ")");
}

void LogCapture::ExpectAssertion(bool isDone, std::string_view expression,
                                 nvf::SourceLocation where) {
    const testing::ScopedTrace trace(where.file_name(), static_cast<int>(where.line()), "call");
    EXPECT_FALSE(isDone);
    ExpectAssertion(expression);
}

void LogCapture::ExpectRefused(bool isDone, const std::vector<std::string>& texts,
                               nvf::SourceLocation where) {
    const testing::ScopedTrace trace(where.file_name(), static_cast<int>(where.line()), "call");
    EXPECT_FALSE(isDone);
    EXPECT_THAT(TakeTexts(), testing::ElementsAreArray(texts));
}

void LogCapture::ExpectFailure(std::string_view message) {
    ExpectReport("ASSERT:  '" + std::string(message) + "'");
}

// Without assertions in the build the code only copes.
void LogCapture::ExpectReport(const std::string& text) {
    if (NUO_ASSERTIONS) {
        EXPECT_THAT(TakeTexts(), testing::ElementsAre(text));
    } else {
        EXPECT_THAT(TakeTexts(), testing::IsEmpty());
    }
}

void LogCapture::TearDown() {
    EXPECT_THAT(TakeTexts(), testing::IsEmpty()) << "messages that the test did not look at";
}

}  // namespace test
