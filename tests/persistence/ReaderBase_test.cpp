#include "TestSupport.h"
#include "flowmere/algorithms/FCNodeHelper.h"
#include "flowmere/model/FCNode.h"
#include "flowmere/model/FCNodeFactory.h"
#include "flowmere/model/FCNodeList.h"
#include "flowmere/persistence/FCDataTypeListReader.h"
#include "flowmere/persistence/FCFileTypeListReader.h"
#include "flowmere/persistence/FCMimeTypeReader.h"
#include "flowmere/persistence/FCReader.h"

#include <type_traits>
#include <vector>

namespace {

// A reader as its subclasses see it.
class OpenReader : public CFCReader {
public:
    using CFCReader::Create;
    CFCNodeFactory* factory() { return m_pNodeFactory; }
    CFCBaseContainer* container() { return m_pContainer; }
};

class CountingFactory : public CFCNodeFactory {
public:
    IFCNode* Create(int typeCode) override {
        asked.push_back(typeCode);
        return CFCNodeFactory::Create(typeCode);
    }
    std::vector<int> asked;
};

class Observer : public CFCBaseContainer {
public:
    void Attach(IFCNode* node) override { attached.push_back(node); }
    std::vector<IFCNode*> attached;
};

// Overrides of both steps, as a host would write them.
class HostReader : public OpenReader {
public:
    void LoadPropertiesLite(XERCES_CPP_NAMESPACE::DOMElement*, IFCNode*) override { ++properties; }
    void LoadCode(XERCES_CPP_NAMESPACE::DOMElement*, IFCNode*) override { ++codes; }
    int properties = 0;
    int codes = 0;
};

} // namespace

TEST(ReaderBase, ANewReaderHasNeitherFactoryNorContainer) {
    OpenReader reader;
    EXPECT_EQ(nullptr, reader.factory());
    EXPECT_EQ(nullptr, reader.container());
}

TEST(ReaderBase, CreateWithoutAFactoryGivesNull) {
    OpenReader reader;
    EXPECT_EQ(nullptr, reader.Create(57));
    CFCNodeFactory factory;
    reader.SetNodeFactory(&factory);
    reader.SetNodeFactory(nullptr);
    EXPECT_EQ(nullptr, reader.Create(57));
}

TEST(ReaderBase, CreateGoesThroughTheFactory) {
    OpenReader reader;
    CountingFactory factory;
    reader.SetNodeFactory(&factory);
    IFCNode* const node = reader.Create(57);
    ASSERT_NE(nullptr, node);
    EXPECT_EQ(57, node->GetNodeType());
    EXPECT_EQ(nullptr, reader.Create(12345));
    EXPECT_EQ((std::vector<int>{57, 12345}), factory.asked);
    CFCNodeHelper::DestroyTree(node);
}

TEST(ReaderBase, AttachWithoutAContainerDoesNothing) {
    OpenReader reader;
    CFCNodeFactory factory;
    IFCNode* const node = factory.Create(71);
    reader.Attach(node);
    reader.Attach(nullptr);
    EXPECT_EQ(nullptr, node->GetParentNode());
    CFCNodeHelper::DestroyTree(node);
}

TEST(ReaderBase, AttachHandsTheNodeToTheContainer) {
    OpenReader reader;
    Observer observer;
    reader.SetContainer(&observer);
    CFCNodeFactory factory;
    IFCNode* const node = factory.Create(71);
    reader.Attach(node);
    EXPECT_EQ(std::vector<IFCNode*>{node}, observer.attached);
    reader.SetContainer(nullptr);
    reader.Attach(node);
    EXPECT_EQ(1U, observer.attached.size());
    CFCNodeHelper::DestroyTree(node);
}

TEST(ReaderBase, CopiesShareFactoryAndContainer) {
    OpenReader reader;
    CountingFactory factory;
    Observer observer;
    reader.SetNodeFactory(&factory);
    reader.SetContainer(&observer);
    OpenReader const copy(reader);
    OpenReader assigned;
    assigned = copy;
    EXPECT_EQ(&factory, assigned.factory());
    EXPECT_EQ(&observer, assigned.container());
}

TEST(ReaderBase, TheTwoStepsAreVirtual) {
    HostReader host;
    CFCReader& reader = host;
    reader.LoadPropertiesLite(nullptr, nullptr);
    reader.LoadCode(nullptr, nullptr);
    EXPECT_EQ(1, host.properties);
    EXPECT_EQ(1, host.codes);
}

TEST(ReaderBase, EveryCatalogReaderIsAReader) {
    EXPECT_TRUE((std::is_base_of_v<CTXMLBaseReader, CFCReader>));
    EXPECT_TRUE((std::is_base_of_v<CFCReader, CFCDataTypeListReader>));
    EXPECT_TRUE((std::is_base_of_v<CFCReader, CFCFileTypeListReader>));
    EXPECT_TRUE((std::is_base_of_v<CFCReader, CFCMimeTypeReader>));
    EXPECT_TRUE(std::has_virtual_destructor_v<CFCReader>);
    EXPECT_TRUE(std::is_copy_constructible_v<CFCMimeTypeReader>);
    EXPECT_TRUE(std::is_copy_assignable_v<CFCMimeTypeReader>);
}
