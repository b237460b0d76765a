#include <climits>
#include <cmath>
#include <limits>

#include "support/InterfaceTest.h"
#include "support/Model.h"

namespace {

using namespace nuo::zrfx;
using namespace test;

constexpr int kInts[] = {INT_MIN, -1, 0, 1, 3, INT_MAX};
constexpr std::size_t kIndices[] = {0, 1, 5, std::size_t{1} << 32, SIZE_MAX};

const std::vector<std::vector<int>> kIntLists = {{}, {-1}, {0, 1, 2}, {INT_MAX, INT_MIN, 5, 5}};
const std::vector<std::vector<float>> kFloatLists = {
    {},
    {1},
    {1, 2, 3, 4, 5, 6},
    {std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity(), -1}};
const Str kTexts[] = {Str(), Str("a"), Str("..\\..\\a/b:*?"), Str("\u202Eabc \U0001F600")};

// Every public operation, with every argument of the lists above: nulls, what is out of range,
// wrong enumerators, in whatever state the object is. What comes out is tested elsewhere; here it
// must only come out.
class Misuse {
public:
    explicit Misuse(Database* database) : m_database(database) {}

    void Of(NodeBlock& block) {
        for (const int i : kInts) {
            block.addNode(0, 1, 2, i);
            block.nodeIndex(i);
        }
        for (const auto& floats : kFloatLists) {
            for (const auto& ints : kIntLists) {
                block.setNodes(floats, ints);
                block.setNodeData(floats.data(), floats.size() / 3,
                                  ints.size() >= floats.size() / 3 ? ints.data() : nullptr);
                Finish(block);
            }
        }
        block.setNodeData(nullptr, 7, nullptr);
        block.setNodeData(nuo::Span<const float>(), kIntLists[2]);
        block.setNodes(std::vector<double>{}, kIntLists[1]);
        block.setNodes(std::vector<double>{1e300, -1e300, std::nan("")}, kIntLists[1]);
        Finish(block);
        block.coordinates(), block.ids();
        block.allocateNodes(0);
        block.allocateNodes(SIZE_MAX);
        Finish(block);
    }

    void Of(ElementBlock& block) {
        for (const int type : kInts) {
            const auto elementType = static_cast<ElementBlock::ElementType>(type);
            ElementBlock::nodesPerElement(elementType);
            ElementBlock::isVolumeElement(elementType);
            for (const std::size_t i : kIndices) ElementBlock::elementSurface(elementType, i);
        }
        for (int type = -1; type <= 18; ++type) {
            for (const auto& nodes : kIntLists) {
                AddElements(block, static_cast<ElementBlock::ElementType>(type), nodes);
            }
            Finish(block);
        }
        for (const auto& face : kIntLists) {
            for (const int id : kInts) block.addPolyhedron({face, face, {0, 1, 2}, face}, id);
        }
        for (const std::size_t i : kIndices) Query(block, i);
        for (const int i : kInts) block.setNodeBlockId(i), Finish(block);
    }

    void Of(GeometryBlock& block) {
        for (const std::size_t i : kIndices) {
            block.stateId(i);
            for (const int a : kInts) {
                for (const int b : kInts) {
                    block.addElementBlock(i, a, b);
                    block.addElementBlockForState(i, b, a, b);
                }
            }
            for (const auto& list : kIntLists) {
                block.setElementBlocks(i, list, list);
                block.setElementBlocks(i, list, {1});
                block.setElementBlocksForState(i, list, INT_MAX, list);
            }
            for (const std::size_t k : kIndices) {
                block.partCount(i, k);
                block.elementBlockIds(i, k);
                block.partIds(k, i);
            }
            Finish(block);
        }
    }

    void Of(GeometryInfoBlock& block) {
        for (const std::size_t i : kIndices) {
            for (const int id : kInts) block.addPartInfo(i, id, kTexts[2]);
            block.partCount(i);
            for (const std::size_t k : kIndices) {
                block.partId(i, k);
                block.partName(k, i);
            }
        }
        Finish(block);
    }

    void Of(StateInfoBlock& block) {
        for (const int id : kInts) {
            for (const int type : kInts) {
                block.addStateInfo(id, kTexts[3], std::numeric_limits<float>::quiet_NaN(),
                                   static_cast<StateInfoBlock::ReferenceValueType>(type));
            }
            for (const auto& list : kIntLists) block.addGroupInfo(id, kTexts[2], list);
            block.stateIndex(id);
            block.unusedStateId();
        }
        for (const std::size_t i : kIndices) {
            block.stateId(i), block.stateName(i), block.stateReferenceValue(i);
            block.stateReferenceValueType(i);
            block.groupId(i), block.groupName(i), block.groupStateIds(i);
        }
        Finish(block);
    }

    void Of(ResultBlock& block) {
        for (const int i : kInts) {
            block.setResultId(i);
            block.setStrainType(static_cast<ResultBlock::StrainType>(i));
            for (const int state : kInts) block.addResultValuesBlock(i, state);
            for (const auto& list : kIntLists) block.setResultValuesBlocks(list, i);
            block.stateIndex(i);
            Finish(block);
        }
        for (const Str& text : kTexts) {
            block.setName(text);
            for (const Str& value : kTexts) block.addAttribute(text, value);
            block.attribute(text);
        }
        for (const std::size_t i : kIndices) block.stateId(i), block.resultValuesBlocks(i);
        block.setDefaultDisplacementScaleFactor(std::numeric_limits<float>::infinity());
        Finish(block);
    }

    void Of(ResultValuesBlock& block) {
        block.allocateResultValues(INT_MIN);
        block.allocateResultValues(SIZE_MAX);
        block.allocateResultValues(-1L);
        block.allocateResultValues(-1);
        block.allocateResultValues(0);
        for (const int i : kInts) {
            block.addResultValue1d(1, i);
            block.addResultValue3d(1, 2, 3, i);
            block.addResultValue6d(1, 2, 3, 4, 5, 6, i);
            for (const int type : kInts) {
                block.setMapToBlockId(i, static_cast<Block::BlockType>(type));
            }
        }
        for (const auto& floats : kFloatLists) {
            for (const auto& ints : kIntLists) {
                block.setResultValues(floats, ints);
                block.setResultValueData(floats.data(), floats.size() / 6,
                                         ints.empty() ? nullptr : ints.data());
                Finish(block);
            }
        }
        block.setResultValueData(nullptr, 7, nullptr);
        block.setResultValueData(nuo::Span<const float>(), kIntLists[2]);
        block.setResultValues(std::vector<double>{}, kIntLists[2]);
        block.setResultValues(std::vector<double>(6, 1e300), kIntLists[1]);
        block.itemIds();
        Finish(block);
    }

    void Of(TransformationResultBlock& block) {
        for (const int i : kInts) {
            block.setResultId(i);
            for (const int state : kInts) block.addTransformationResultValuesBlock(i, state);
            for (const auto& list : kIntLists) block.setTransformationResultValuesBlocks(list, i);
            block.stateIndex(i);
        }
        for (const std::size_t i : kIndices) {
            block.stateId(i);
            block.transformationResultValuesBlockCount(i);
            block.transformationResultValuesBlocks(i);
        }
        Finish(block);
    }

    void Of(TransformationResultValuesBlock& block) {
        nuo::Mat4d matrix;
        for (const int i : kInts) {
            matrix.setRowCol(i, i, std::numeric_limits<double>::max());
            for (const int type : kInts) {
                block.setMapToBlockId(i, static_cast<Block::BlockType>(type));
            }
            block.setMatrix(matrix);
            Finish(block);
        }
        block.mapToBlockId(nullptr);
    }

    void Of(SetBlock& block) {
        for (const int i : kInts) {
            block.setSetId(i);
            block.addItem(i, i);
            SetItemGroup* group = new SetItemGroup;
            group->setBlockId(i);
            group->setBlockType(static_cast<Block::BlockType>(i));
            group->addItem(i);
            group->setItemData(nullptr, 3);
            group->addItems(kIntLists[3]);
            for (const std::size_t k : kIndices) group->itemIdOrIndex(k);
            block.addItemGroup(group);
            block.setItemType(static_cast<SetBlock::ItemType>(i));
            Finish(block);
        }
        block.addItems(nullptr, 5, 1);
        block.addItemGroup(nullptr);
        for (const std::size_t i : kIndices) block.itemGroup(i);
        Finish(block);
    }

    void OfDatabase() {
        m_database->writeBlock(nullptr);
        for (int type = -1; type <= 11; ++type) {
            const auto blockType = static_cast<Block::BlockType>(type);
            m_database->blockCount(blockType);
            m_database->blockIds(blockType), m_database->unusedBlockId(blockType);
            for (const std::size_t i : kIndices) {
                m_database->blockId(blockType, i);
                m_database->blockByIndex(blockType, i);
                m_database->setBlockByIndex(i);
            }
            for (const int id : kInts) {
                m_database->blockById(blockType, id);
                m_database->setBlockById(id);
            }
        }
        m_database->name(), m_database->description();
        m_database->simulationType(), m_database->solutionType();
    }

    static void Of(Case& view) {
        nuo::Image empty;
        nuo::Image image = MakeImage(2, 2);
        for (const Str& text : kTexts) {
            view.setName(text), view.setDescription(text);
            view.addImage(text, nullptr), view.addImage(text, &empty), view.addImage(text, &image);
        }
        for (const std::size_t i : kIndices) view.imageName(i), view.image(i);
        view.setProperties(nullptr);
        PtrRef<nuo::PropertySetCollection> collection = new nuo::PropertySetCollection;
        collection->addPropertySet(nullptr);
        PtrRef<nuo::PropertySet> set = new nuo::PropertySet("");
        set->setValue("", nuo::Variant());
        collection->addPropertySet(set.p());
        view.setProperties(collection.p());
        view.setSnapshot(nullptr);
        view.snapshot();
        view.setSnapshot(&image);
        view.snapshot();
        view.setProperties(MakeCamera().p());
    }

    static void Of(File& file) {
        for (const Str& text : kTexts) {
            for (const Str& content : kTexts) file.addUserTextFile(text, content);
        }
        for (const std::size_t i : kIndices) {
            file.database(i), file.fileCase(i);
            file.userTextFileName(i), file.userTextFileContent(i);
        }
        file.userTextFileCount(), file.unusedDatabaseId(), file.unusedFileCaseId();
        file.flush();
        for (const int id : kInts) {
            const PtrRef<Database> database =
                new Database(&file, "a", id, static_cast<Database::SimulationType>(id),
                             static_cast<Database::SolutionType>(id), kTexts[2]);
            if (database->id() >= 0) WriteFrame(*database);
            const PtrRef<Case> view = new Case(&file, "a", id, id);
        }
    }

private:
    static void AddElements(ElementBlock& block, ElementBlock::ElementType type,
                            const std::vector<int>& nodes) {
        for (const int id : kInts) block.addElement(type, nodes, id);
        block.addElement(type, nullptr, 3, 1);
        block.addElements(type, nullptr, 3, nullptr);
        block.addElements(type, nodes.data(), 0, nullptr);
        block.addElementData(type, nullptr, 3, nullptr);
        block.addElementData(type, nodes.data(), 0, nodes.data());
        for (const auto& ids : kIntLists) {
            block.addElements(type, nodes, ids);
            block.setElements(type, nodes, ids);
        }
    }

    static void Query(const ElementBlock& block, std::size_t group) {
        std::vector<int> out;
        block.elementGroupType(group), block.elementGroupElementCount(group);
        block.elementGroupElementNodeCount(group);
        block.elementNodeData(group), block.elementIdData(group);
        block.elementGroupNodes(group), block.elementGroupIds(group);
        for (const int id : kInts) block.elementIndex(id);
        for (std::vector<int>* target : {&out, static_cast<std::vector<int>*>(nullptr)}) {
            block.elementGroup(group, target, target);
            block.elementIndices(group, target);
            block.polyhedronsElementNodeCounts(group, target);
            block.polyhedronsFaceCounts(group, target);
            block.polyhedronsFaceNodeCounts(group, target);
            block.polyhedronsLocalNodes(group, target);
        }
    }

    // What the database takes of it must be readable, or refused with a reason.
    void Finish(const Block& block) {
        Describe(block);
        block.checkValidity();
        if (!m_database->writeBlock(&block)) return;
        const bool isSet = block.blockType() == Block::SET;
        EXPECT_TRUE(isSet
                        ? m_database->setBlockById(block.blockId()).p() != nullptr
                        : m_database->blockById(block.blockType(), block.blockId()).p() != nullptr)
            << Describe(block);
    }

    Database* m_database;
};

class MisuseTest : public InterfaceTest {
protected:
    template <typename BlockClass, typename... Arguments>
    void Misused(Misuse& misuse, Arguments... arguments) {
        const PtrRef<BlockClass> block = new BlockClass(arguments...);
        misuse.Of(*block);
    }

    void MisuseAll(Database* database) {
        Misuse misuse(database);
        for (const int id : {-1, 1, INT_MAX}) {
            for (const bool flag : {false, true}) {
                Misused<NodeBlock>(misuse, id, flag);
                Misused<ElementBlock>(misuse, id, flag, flag);
                Misused<ElementBlock>(misuse, id, flag, !flag);
                Misused<SetBlock>(misuse, id, flag);
                for (const int dimension : {-1, 0, 1, 2, 3, 6, INT_MAX}) {
                    const auto valueDimension =
                        static_cast<ResultValuesBlock::ResultValueDimension>(dimension);
                    Misused<ResultValuesBlock>(misuse, id, valueDimension, flag);
                }
            }
            for (const int kind : {-2, -1, 0, 2, 3, 99}) {
                Misused<ResultBlock>(misuse, id, static_cast<ResultBlock::ResultType>(kind),
                                     static_cast<ResultBlock::ResultMapping>(kind));
            }
            Misused<TransformationResultBlock>(misuse, id);
            Misused<TransformationResultValuesBlock>(misuse, id);
        }
        for (const std::size_t count :
             {std::size_t{0}, std::size_t{2}, std::size_t{1} << 31, SIZE_MAX}) {
            Misused<GeometryBlock>(misuse, count);
            Misused<GeometryInfoBlock>(misuse, count);
        }
        Misused<StateInfoBlock>(misuse);
        misuse.OfDatabase();
    }

    void TearDown() override { TakeTexts(); }
};

TEST_F(MisuseTest, NoCallCrashesInAnyStateOfTheFile) {
    ExpectRefused(ZRFxComponent::initialize(nullptr), {Assertion("instance")});
    const nuo::Str name = nuo::Str(m_folder.File("file.zrfx"));
    File file;
    Misuse::Of(file);
    ASSERT_TRUE(file.create(name, FileSettings()));
    const PtrRef<Database> database = WriteDatabase(file, "a", 7);
    const PtrRef<Database> failed = WriteDatabase(file, "", -1);
    const PtrRef<Case> view = new Case(&file, "a", 7, 7);
    const PtrRef<Case> failedView = new Case(nullptr, "", -1, -1);
    MisuseAll(database.p());
    MisuseAll(failed.p());
    Misuse::Of(*view);
    Misuse::Of(*failedView);
    Misuse::Of(file);
    ASSERT_TRUE(file.close());
    MisuseAll(database.p());
    Misuse::Of(*view);
    Misuse::Of(file);

    // What is in the file after all that can be opened, and misused for reading.
    TakeTexts();
    const bool isOpen = file.open(name);
    ASSERT_TRUE(isOpen) << testing::PrintToString(TakeCauses())
                        << testing::PrintToString(TakeTexts());
    Describe(file);
    MisuseAll(file.database(0));
    Misuse::Of(*file.fileCase(0));
    Misuse::Of(file);
    EXPECT_TRUE(file.close());
}

}  // namespace
