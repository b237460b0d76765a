#pragma once

#include <gmock/gmock.h>

#include <string>
#include <string_view>
#include <vector>

#include "nvf/LogManager.h"
#include "nvf/SourceLocation.h"

namespace test {

/// One message as it reached the log.
struct Logged {
    nvf::LogLevel level;
    std::string logger;
    std::string text;
    std::string functionName;
    std::string fileName;
    int lineNumber;
};

/// Fixture under which every message of all levels is recorded, in a log manager of the test's own,
/// and failed assertions let the code go on. A message that the test does not take fails it, so
/// that nothing goes wrong unseen. Manager and report mode are put back at the end.
class LogCapture : public testing::Test {
protected:
    LogCapture();
    ~LogCapture() override;

    /// The messages since the last call, oldest first.
    std::vector<Logged> TakeMessages();
    std::vector<std::string> TakeTexts();

    /// Expects that the code since the last call failed this assertion and logged nothing else.
    void ExpectAssertion(std::string_view expression);

    /// Expects moreover that the call before gave false, or nothing.
    void ExpectAssertion(bool isDone, std::string_view expression,
                         nvf::SourceLocation where = nvf::SourceLocation::current());

    /// Expects that the call before gave false, or nothing, and exactly these messages.
    void ExpectRefused(bool isDone, const std::vector<std::string>& texts,
                       nvf::SourceLocation where = nvf::SourceLocation::current());

    /// Expects likewise a failure that has a message instead of an expression.
    void ExpectFailure(std::string_view message);

    void TearDown() override;

private:
    class Recorder;

    void ExpectReport(const std::string& text);

    const nvf::ref<nvf::LogManager> m_managerBefore;
    const nvf::ref<Recorder> m_recorder;
};

}  // namespace test
