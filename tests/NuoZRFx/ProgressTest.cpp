#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "support/InterfaceTest.h"
#include "support/Model.h"

namespace {

using namespace nuo::zrfx;
using namespace test;

constexpr std::size_t kItems = 600000;

// An operation that takes long, on a file that was committed with one large block of values.
struct LongOperation {
    const char* name;
    bool isWriter;
    bool (*run)(File& file, const nuo::Str& name);
    bool isOfDatabase = false;

    const Error& errorOf(File& file) const {
        return isOfDatabase ? file.database(0)->lastError() : file.lastError();
    }
};

PtrRef<ResultValuesBlock> MakeValues(int id) {
    std::vector<float> values(kItems);
    for (std::size_t i = 0; i < kItems; ++i) values[i] = static_cast<float>(i * 7919 % 10007) / 3;
    PtrRef<ResultValuesBlock> block = new ResultValuesBlock(id, ResultValuesBlock::SCALAR1D, false);
    block->setMapToBlockId(1, Block::NODES);
    block->setResultValues(values, {});
    return block;
}

const LongOperation kOperations[] = {
    {"open", false,
     [](File& file, const nuo::Str& name) {
         file.abandon();
         return file.open(name);
     }},
    {"read", false,
     [](File& file, const nuo::Str&) {
         return file.database(0)->read<ResultValuesBlock>(1).notNull();
     },
     true},
    {"write", true,
     [](File& file, const nuo::Str&) { return file.database(0)->writeBlock(MakeValues(2).p()); },
     true},
    {"flush", true, [](File& file, const nuo::Str&) { return file.flush(); }},
    {"close", true, [](File& file, const nuo::Str&) { return file.close(); }},
    {"close under another name", true,
     [](File& file, const nuo::Str& name) {
         return file.closeAs(nuo::Str(name.toStdString() + ".zrfx"));
     }},
};

class ProgressTest : public InterfaceTest {
protected:
    ProgressTest() {
        File file;
        EXPECT_TRUE(file.create(m_name, FileSettings()));
        const PtrRef<Database> database = WriteDatabase(file, "m", 0);
        EXPECT_TRUE(database->writeBlock(MakeValues(1).p()) && file.close());
        std::filesystem::copy_file(m_name.toStdString(), m_original);
        EXPECT_TRUE(file.open(m_name));
        m_committed = Describe(file);
    }

    /// Opens the file for an operation, with something to write.
    void Prepare(File* file, const LongOperation& operation) {
        std::filesystem::remove(m_name.toStdString() + ".zrfx");
        ASSERT_TRUE(operation.isWriter ? file->openForAppend(m_name) : file->open(m_name));
        if (!operation.isWriter) return;
        PtrRef<NodeBlock> nodes = new NodeBlock(5, false);
        nodes->setNodes(std::vector<float>(3000, 1.5f), {});
        ASSERT_TRUE(file->database(0)->writeBlock(nodes.p()));
    }

    /// Lets go of the file, which is then as it was at first.
    void Restore(File* file) {
        file->abandon();
        std::filesystem::copy_file(m_original, m_name.toStdString(),
                                   std::filesystem::copy_options::overwrite_existing);
    }

    const std::string m_original = m_folder.File("original.zrfx");
    std::vector<std::string> m_committed;
};

TEST_F(ProgressTest, LongOperationsSayHowFarTheyAre) {
    for (const LongOperation& operation : kOperations) {
        SCOPED_TRACE(operation.name);
        File file;
        Prepare(&file, operation);
        std::vector<double> fractions;
        file.setProgressCallback([&](double fraction) {
            fractions.push_back(fraction);
            return true;
        });
        ASSERT_TRUE(operation.run(file, m_name));
        ASSERT_FALSE(fractions.empty());
        EXPECT_TRUE(std::is_sorted(fractions.begin(), fractions.end()));
        EXPECT_GE(fractions.front(), 0);
        EXPECT_GE(fractions.back(), 0.99);
        EXPECT_LE(fractions.size(), 250u);
        Restore(&file);
    }
}

TEST_F(ProgressTest, OperationStoppedAnywhereLeavesWhatWasCommittedLastAndCanBeRepeated) {
    for (const LongOperation& operation : kOperations) {
        for (int stopAt = 1;; stopAt += 1 + stopAt / 3) {
            SCOPED_TRACE(operation.name + (" stopped at call " + std::to_string(stopAt)));
            File file;
            Prepare(&file, operation);
            int calls = 0;
            file.setProgressCallback([&](double) { return ++calls != stopAt; });
            if (operation.run(file, m_name)) {
                EXPECT_GT(stopAt, 1);
                Restore(&file);
                break;
            }
            EXPECT_EQ(Error::CANCELLED, operation.errorOf(file).code());
            TakeTexts();
            File reader;
            ASSERT_TRUE(reader.open(m_name));
            EXPECT_EQ(m_committed, Describe(reader));
            file.setProgressCallback({});
            EXPECT_TRUE(operation.run(file, m_name));
            Restore(&file);
        }
    }
}

// Another file is written and read in each call, with a callback of its own, and one is missing.
TEST_F(ProgressTest, CallbackMayUseOtherFiles) {
    for (const LongOperation& operation : kOperations) {
        SCOPED_TRACE(operation.name);
        File file;
        Prepare(&file, operation);
        const nuo::Str otherName(m_folder.File("other.zrfx"));
        int depth = 0;
        int otherCalls = 0;
        std::vector<double> fractions;
        const auto useOther = [&] {
            File other;
            other.setProgressCallback([&](double) { return ++otherCalls > 0; });
            const bool isWritten = other.create(otherName, FileSettings()) &&
                                   WriteDatabase(other, "o", 0)->writeBlock(MakeValues(9).p()) &&
                                   other.close();
            return isWritten && !other.open("missing.zrfx") && other.open(otherName) &&
                   other.database(0)->read<ResultValuesBlock>(9).notNull();
        };
        file.setProgressCallback([&](double fraction) {
            EXPECT_EQ(0, depth++);
            fractions.push_back(fraction);
            EXPECT_TRUE(fractions.size() > 2 || useOther());
            --depth;
            return fraction < 0.5;
        });
        EXPECT_FALSE(operation.run(file, m_name));
        EXPECT_EQ(Error::CANCELLED, operation.errorOf(file).code());
        EXPECT_TRUE(std::is_sorted(fractions.begin(), fractions.end()));
        EXPECT_GT(otherCalls, 2);
        TakeTexts();
        Restore(&file);
    }
}

TEST_F(ProgressTest, ExceptionOfTheCallbackStopsTheOperationAndGoesNoFurther) {
    File file;
    file.setProgressCallback([](double) -> bool { throw 1; });
    ExpectRefused(file.open(m_name), {"Error opening file."});
    EXPECT_EQ(Error::CANCELLED, file.lastError().code());
    file.setProgressCallback({});
    EXPECT_TRUE(file.open(m_name));
}

}  // namespace
