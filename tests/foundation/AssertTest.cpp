#include "nvf/Assert.h"

#include <csignal>
#include <thread>

#include "nvf/AssertHandler.h"
#include "support/LogCapture.h"

namespace nvf {
namespace {

using Button = AssertHandlerWinDialog::Button;

struct AssertTest : test::LogCapture {
    AssertTest() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
};

// What a failed assertion tells: each part may be missing.
struct Report {
    int line;
    const char *expression, *message;
    const char *logged, *console, *dialog, *thrown;
};

constexpr Report kReports[] = {
    {7, "a < b", "Mess %1", "ASSERT:  (a < b) 'Mess %1'",
     "Assertion failed: \\(a < b\\) 'Mess %1', file dir/f.cpp, line 7\n",
     "Assertion failed\n\nFile: dir/f.cpp\nLine: 7\n\nExpression: a < b\n\nMess %1"
     "\n\n(Press Retry to debug application)",
     "Mess %1\n\nAssertion: a < b\n\nFile: dir/f.cpp\nLine: 7"},
    {0, "parent", nullptr, "ASSERT:  (parent)",
     "Assertion failed: \\(parent\\), file dir/f.cpp, line 0\n",
     "Assertion failed\n\nFile: dir/f.cpp\nLine: 0\n\nExpression: parent"
     "\n\n(Press Retry to debug application)",
     "\n\nAssertion: parent\n\nFile: dir/f.cpp\nLine: 0"},
    {-1, nullptr, "Only", "ASSERT:  'Only'", "Assertion failed: 'Only', file dir/f.cpp, line -1\n",
     "Assertion failed\n\nFile: dir/f.cpp\n\nOnly\n\n(Press Retry to debug application)",
     "Only\n\nFile: dir/f.cpp"},
};

// In a process of its own, which has chosen nothing.
TEST(AssertModeTest, FailedAssertionLetsTheProcessGoOnBeforeAnythingIsInitialized) {
    EXPECT_FALSE(reportFailedAssert("dir/f.cpp", 7, "a < b", nullptr));
}

TEST_F(AssertTest, EveryModeLogsAnErrorFirst) {
    for (const auto mode : {AssertReportMode::CONTINUE, AssertReportMode::EXCEPTION}) {
        setReportMode(mode);
        for (const Report& report : kReports) {
            try {
                EXPECT_FALSE(reportFailedAssert("dir/f.cpp", report.line, report.expression,
                                                report.message));
                EXPECT_EQ(mode, AssertReportMode::CONTINUE);
            } catch (const AssertException& exception) {
                EXPECT_EQ(mode, AssertReportMode::EXCEPTION);
                EXPECT_STREQ(exception.what(), report.thrown);
            }
            const auto messages = TakeMessages();
            ASSERT_EQ(messages.size(), 1u);
            EXPECT_EQ(messages[0].level, nuo::LL_ERROR);
            EXPECT_EQ(messages[0].logger, "nuo.nvf");
            EXPECT_EQ(messages[0].text, report.logged);
            EXPECT_EQ(messages[0].functionName, "");
            EXPECT_EQ(messages[0].fileName, "dir/f.cpp");
            EXPECT_EQ(messages[0].lineNumber, report.line);
        }
    }
}

TEST_F(AssertTest, ConsoleWritesALineAndAborts) {
    for (const auto mode : {AssertReportMode::CONSOLE, AssertReportMode::DIALOG}) {
        for (const Report& report : kReports) {
            EXPECT_EXIT(
                {
                    setReportMode(mode);
                    reportFailedAssert("dir/f.cpp", report.line, report.expression, report.message);
                },
                testing::KilledBySignal(SIGABRT), std::string("^") + report.console + "$");
        }
    }
}

struct Box {
    String title, text;
    std::thread::id thread;
};
Box shownBox;

template <Button kPressed>
Button Show(const String& title, const String& text) {
    shownBox = {title, text, std::this_thread::get_id()};
    return kPressed;
}

TEST_F(AssertTest, DialogAsksOnAThreadOfItsOwn) {
    for (const Report& report : kReports) {
        EXPECT_FALSE(AssertHandlerWinDialog(Show<Button::IGNORE>)
                         .handle("dir/f.cpp", report.line, report.expression, report.message));
        EXPECT_EQ(shownBox.title, "Assertion Failed");
        EXPECT_EQ(shownBox.text, report.dialog);
        EXPECT_NE(shownBox.thread, std::this_thread::get_id());
    }
    EXPECT_TRUE(AssertHandlerWinDialog(Show<Button::RETRY>).handle("f", 1, "x", nullptr));
}

TEST_F(AssertTest, DialogTextIsBounded) {
    const std::string longMessage(5000, 'x');
    AssertHandlerWinDialog(Show<Button::IGNORE>).handle("f", 1, "x", longMessage.c_str());
    EXPECT_EQ(shownBox.text.text().size(), 2048u);
}

TEST_F(AssertTest, AbortInTheDialogRaisesTheSignalAndExitsWithThree) {
    const auto press = [] { AssertHandlerWinDialog(Show<Button::ABORT>).handle("f", 1, "x", ""); };
    EXPECT_EXIT(press(), testing::KilledBySignal(SIGABRT), "");
    EXPECT_EXIT(
        {
            std::signal(SIGABRT, [](int) {});
            press();
        },
        testing::ExitedWithCode(3), "");
}

TEST_F(AssertTest, MacrosReportTheirLineAndGoOn) {
    if (!NUO_ASSERTIONS) GTEST_SKIP() << "built without assertions";
    const int index = 3, m_size = 3, line = __LINE__ + 1;
    NVF_ASSERT(index < m_size);
    const auto messages = TakeMessages();
    ASSERT_EQ(messages.size(), 1u);
    EXPECT_EQ(messages[0].text, "ASSERT:  (index < m_size)");
    EXPECT_EQ(messages[0].lineNumber, line);
    EXPECT_THAT(messages[0].fileName, testing::EndsWith("AssertTest.cpp"));

    int evaluations = 0;
    NVF_ASSERT(++evaluations > 0);
    EXPECT_EQ(evaluations, 1);
    NVF_FAIL("Unhandled enum");
    ExpectFailure("Unhandled enum");
}

}  // namespace
}  // namespace nvf
