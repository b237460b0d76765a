#include "nvf/LogManager.h"

#include <atomic>
#include <thread>

#include "NuoCore/CoreComponent.h"
#include "NuoCore/LogManager.h"
#include "nvf/LogDestinationConsole.h"
#include "support/LogCapture.h"

namespace nvf {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

nvf::SourceLocation Here(nvf::SourceLocation where = nvf::SourceLocation::current()) {
    return where;
}

template <typename T>
struct Signatures {
    static nvf::SourceLocation inTemplate(const std::vector<T>&) { return Here(); }
    static std::vector<T>* pointerResult(void (*)(int), T (&)[3]) {
        where = Here();
        return nullptr;
    }
    static inline nvf::SourceLocation where;
};

TEST(CodeLocation, FunctionNameIsQualifiedWithoutTypes) {
    int three[3];
    Signatures<int>::pointerResult(nullptr, three);
    const auto expectName = [](const CodeLocation& location, const char* name) {
        EXPECT_EQ(location.functionName.toUtf8(), name) << location.prettyFunctionName.toUtf8();
    };
    expectName(Signatures<int>::inTemplate({}), "nvf::{anonymous}::Signatures::inTemplate");
    expectName(Signatures<int>::where, "nvf::{anonymous}::Signatures::pointerResult");
}

struct LogManagerTest : test::LogCapture {
    const ref<LogManager> manager = LogManager::instance();
};

TEST_F(LogManagerTest, LoggersTakeOverFromTheOneAboveWhenMade) {
    manager->logger("nuo")->setLevel(nuo::LL_INFO);
    const ref<Logger> archive = archiveLogger();  // makes "nuo.nvf" and "nuo.nvf.unstruct" too
    EXPECT_EQ(archive, manager->logger("nuo.nvf.unstruct.zrfx"));
    manager->logger("nuo.nvf")->setLevel(nuo::LL_ERROR);
    manager->logger("nuo.nvf")->setDestination(new LogDestinationConsole);

    EXPECT_EQ(archive->level(), nuo::LL_INFO);
    EXPECT_EQ(archive->destination(), manager->rootLogger()->destination());
    EXPECT_EQ(manager->logger("nuo.nvf.other")->level(), nuo::LL_ERROR);
    EXPECT_EQ(manager->logger("nuo.nvf.other")->destination(),
              manager->logger("nuo.nvf")->destination());
    EXPECT_EQ(manager->logger("undotted")->level(), nuo::LL_DEBUG);  // as the root
}

TEST_F(LogManagerTest, LevelReachesAllLoggersBelowAndNoOther) {
    const ref<Logger> below = manager->logger("a.b.c");
    const ref<Logger> sibling = manager->logger("a.bb");
    nuo::CoreComponent::logManager()->setLevel("a.b", nuo::LL_OFF);
    EXPECT_EQ(below->level(), nuo::LL_OFF);
    EXPECT_EQ(manager->logger("a.b.later")->level(), nuo::LL_OFF);
    EXPECT_EQ(sibling->level(), nuo::LL_DEBUG);
    nuo::CoreComponent::logManager()->setLevel("", nuo::LL_WARNING);
    EXPECT_EQ(below->level(), nuo::LL_WARNING);
    EXPECT_EQ(manager->logger("z")->level(), nuo::LL_WARNING);
}

TEST_F(LogManagerTest, MessagesAboveTheLevelAreNotEmitted) {
    const ref<Logger> logger = manager->logger("x");
    const std::vector<std::string> all = {"e", "w", "i", "d"};
    for (int level = nuo::LL_OFF; level <= nuo::LL_DEBUG; ++level) {
        logger->setLevel(static_cast<LogLevel>(level));
        logger->error("e", {});
        logger->warning("w", {});
        logger->info("i", {});
        logger->debug("d", {});
        EXPECT_EQ(TakeTexts(), std::vector<std::string>(all.begin(), all.begin() + level));
        EXPECT_EQ(logger->isErrorEnabled() + logger->isWarningEnabled() + logger->isInfoEnabled() +
                      logger->isDebugEnabled(),
                  level);
    }
}

TEST_F(LogManagerTest, FailureTellsItsPlaceAndValuesAsTheyAre) {
    const int line = __LINE__ + 1;
    EXPECT_FALSE(interfaceLogger()->fail("Item %1 of '%2': %3", 7, "%1 %3", String("%2")));
    const auto messages = TakeMessages();
    ASSERT_EQ(messages.size(), 1u);
    EXPECT_EQ(messages[0].level, nuo::LL_ERROR);
    EXPECT_EQ(messages[0].logger, "nuo.comp.zrfx");
    EXPECT_EQ(messages[0].text, "Item 7 of '%1 %3': %2");
    EXPECT_EQ(messages[0].lineNumber, line);
    EXPECT_THAT(messages[0].fileName, testing::EndsWith("LogManagerTest.cpp"));
    EXPECT_THAT(messages[0].functionName, testing::EndsWith("::TestBody"));
}

class Host : public nuo::LogDestination {
public:
    explicit Host(std::vector<std::string>& sink) : m_sink(sink) {}
    void log(const nuo::LogMessage& m) override {
        m_sink.push_back(m.logger.toStdString() + "|" + m.text.toStdString() + "|" +
                         m.fileName.toStdString() + "|" + m.functionName.toStdString() + "|" +
                         m.prettyFunctionName.toStdString() + "|" + std::to_string(m.lineNumber) +
                         "|" + std::to_string(m.level));
    }

private:
    std::vector<std::string>& m_sink;
};

TEST_F(LogManagerTest, HostReceivesMessagesOfAllLoggers) {
    std::vector<std::string> received;
    const ref<Logger> early = manager->logger("early");
    nuo::CoreComponent::logManager()->setDestination(new Host(received));
    early->error("Tr\u00E4ger \U0001F600", CodeLocation("f.cpp", "a::b", "void a::b(int)", 7));
    manager->logger("late")->warning("w", CodeLocation());
    EXPECT_THAT(received, ElementsAre("early|Tr\u00E4ger \U0001F600|f.cpp|a::b|void a::b(int)|7|1",
                                      "late|w||||-1|2"));
}

class TalkativeHost : public Host {
public:
    using Host::Host;
    ~TalkativeHost() override { archiveLogger()->fail("The host goes"); }
};

TEST_F(LogManagerTest, DestinationThatIsReplacedMayLogAsItGoes) {
    std::vector<std::string> received;
    testing::internal::CaptureStderr();
    nuo::CoreComponent::logManager()->setDestination(new TalkativeHost(received));
    nuo::CoreComponent::logManager()->setDestination(nullptr);
    EXPECT_THAT(testing::internal::GetCapturedStderr(),
                testing::StartsWith("ERROR: The host goes\n        -func: "));
    EXPECT_THAT(received, IsEmpty());
}

TEST_F(LogManagerTest, ConsoleLinesCarryPrefixAndErrorsTheirPlace) {
    const CodeLocation place("dir/f%1.cpp", "a::%2", "", 12);
    const auto expectLine = [](LogLevel level, const CodeLocation& location, const char* line) {
        testing::internal::CaptureStderr();
        LogDestinationConsole().log("x", level, "%1 text", location);
        EXPECT_EQ(testing::internal::GetCapturedStderr(), line);
    };
    expectLine(nuo::LL_ERROR, place,
               "ERROR: %1 text\n        -func: a::%2\n        -file: dir/f%1.cpp(12)\n");
    expectLine(nuo::LL_ERROR, CodeLocation("f", "g", "", -1), "ERROR: %1 text\n        -func: g\n");
    expectLine(nuo::LL_WARNING, place, "warn:  %1 text\n");
    expectLine(nuo::LL_DEBUG, place, "debug: %1 text\n");
}

class Counter : public LogDestination {
public:
    explicit Counter(std::atomic<int>& count) : m_count(count) {}
    void log(const String&, LogLevel, const String&, const CodeLocation&) override { ++m_count; }

private:
    std::atomic<int>& m_count;
};

TEST_F(LogManagerTest, NoMessageIsLostWhileThreadsLogLookUpAndReconfigure) {
    constexpr int kMessages = 2000;
    std::atomic<int> count{0};
    manager->setDestination(ref<LogDestination>(new Counter(count)));
    std::vector<std::thread> threads;
    for (int t = 0; t < 3; ++t) {
        threads.emplace_back([this, t] {
            for (int i = 0; i < kMessages; ++i) {
                manager->logger(String("a.%1.%2").arg(t).arg(i % 50))->error("e", {});
            }
        });
    }
    threads.emplace_back([this, &count] {
        for (int i = 0; i < kMessages; ++i) {
            manager->setDestination(ref<LogDestination>(new Counter(count)));
            manager->setLevelBelow(i % 2 ? "" : "a", i % 3 ? nuo::LL_ERROR : nuo::LL_DEBUG);
        }
    });
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(count, 3 * kMessages);
}

}  // namespace
}  // namespace nvf
