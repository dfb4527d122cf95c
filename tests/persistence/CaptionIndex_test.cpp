#include "CatalogTestSupport.h"
#include "flowmere/model/FCPointerConverter.h"
#include "flowmere/persistence/CaptionIndex.h"
#include "flowmere/persistence/FCFavouriteReader.h"
#include "flowmere/persistence/FCFileTypeListReader.h"

#include <algorithm>
#include <functional>
#include <random>
#include <string>
#include <vector>

using flowmere::CaptionIndex;
using flowmere::test::addChild;
using flowmere::test::CatalogTest;
using flowmere::test::narrow;
using flowmere::test::RememberingFactory;
using flowmere::test::Tree;
using flowmere::test::treeOf;

namespace {

class Dice {
public:
    explicit Dice(unsigned seed) : m_engine(seed) {}
    int below(int count) { return static_cast<int>(m_engine() % static_cast<unsigned>(count)); }
    // Few names, so that many nodes share one; some are empty.
    TuString name(int count) {
        static constexpr wchar_t const* kNames[] = {L"",           L"a",           L"A",  L"b",
                                                    L"Favourites", L"Last Opened", L"ab", L"File"};
        int const number = below(count);
        TuString text;
        text.Format(L"n%d", number);
        return number < 8 ? TuString(kNames[number]) : text;
    }

private:
    std::mt19937 m_engine;
};

Tree makeNode(int type, wchar_t const* caption = L"") {
    Tree node(CFCNodeFactory().Create(type));
    node->SetNodeCaption(caption);
    return node;
}

// A tree and all nodes in it.
struct Forest {
    explicit Forest(int type = 71) : top(makeNode(type, L"top")), nodes{top.get()} {}
    void grow(Dice& dice, int count, int names) {
        while (count-- > 0)
            nodes.push_back(addChild(any(dice), 71, L"", dice.name(names)));
    }
    IFCNode* any(Dice& dice) { return nodes[static_cast<std::size_t>(dice.below(static_cast<int>(nodes.size())))]; }

    Tree top;
    std::vector<IFCNode*> nodes;
};

// A node of a host, whose caption is its own affair.
struct HostFolder : CFCSubGroupNode {
    wchar_t const* GetNodeCaption() override { return caption; }
    wchar_t const* caption = L"";
};

} // namespace

TEST(CaptionIndex, FindsWhatTheWalkFindsWhileTheTreeGrows) {
    for (unsigned seed = 0; seed < 40; ++seed) {
        Dice dice(seed);
        int const names = 3 + dice.below(60);
        Forest forest;
        forest.grow(dice, 1 + dice.below(200), names);
        CaptionIndex index(forest.top.get(), 0);
        int answered = 0;
        for (int step = 0; step < 600; ++step) {
            int const what = dice.below(10);
            if (what < 2) {
                // Some grow broad, some grow deep.
                IFCNode* const parent = seed % 3 == 0   ? forest.nodes.back()
                                        : seed % 3 == 1 ? forest.nodes.front()
                                                        : forest.any(dice);
                Tree child = makeNode(dice.below(2) != 0 ? 71 : 177, dice.name(names));
                index.append(parent, child.get());
                forest.nodes.push_back(child.release());
            } else if (what == 2) {
                IFCNode* const node = forest.any(dice);
                TuString const name = dice.name(names);
                index.change(node, [&] { node->SetNodeCaption(name); });
            } else {
                IFCNode* const start = forest.any(dice);
                TuString const name = dice.name(names);
                answered += index.isCurrent() ? 1 : 0;
                ASSERT_EQ(CFCNodeHelper::FindNodeByCaption(name, start), index.find(name, start))
                    << "seed " << seed << ", step " << step;
            }
        }
        EXPECT_GT(answered, 350) << "without a walk, seed " << seed;
    }
}

TEST(CaptionIndex, ChangesThatItIsNotToldOfAreNoticed) {
    for (unsigned seed = 0; seed < 40; ++seed) {
        Dice dice(seed);
        int const names = 3 + dice.below(30);
        Forest forest;
        forest.grow(dice, 60, names);
        CaptionIndex index(forest.top.get(), 0);
        int answered = 0;
        for (int step = 0; step < 1500; ++step) {
            int const what = dice.below(60);
            if (what == 0) {
                forest.any(dice)->SetNodeCaption(dice.name(names));
            } else if (what == 1) {
                forest.grow(dice, 1, names);
            } else if (what == 2) {
                // A leaf moves to the front of another node.
                IFCNode* const leaf = forest.nodes.back();
                if (leaf->GetChild() == nullptr && leaf != forest.top.get()) {
                    forest.nodes.pop_back();
                    IFCNode* const parent = leaf->GetParentNode();
                    if (parent->GetChild() == leaf) {
                        parent->SetChild(leaf->GetNext());
                    } else {
                        leaf->GetPrev()->SetNext(leaf->GetNext());
                    }
                    if (leaf->GetNext() != nullptr)
                        leaf->GetNext()->SetPrev(leaf->GetPrev());
                    leaf->RemoveLinks();
                    forest.any(dice)->AppendChild(leaf, false);
                    forest.nodes.push_back(leaf);
                }
            } else if (what == 3) {
                IFCNode* const node = forest.any(dice);
                TuString const name = dice.name(names);
                index.change(node, [&] { node->SetNodeCaption(name); });
            }
            IFCNode* const start = forest.any(dice);
            TuString const name = dice.name(names);
            answered += index.isCurrent() ? 1 : 0;
            ASSERT_EQ(CFCNodeHelper::FindNodeByCaption(name, start), index.find(name, start))
                << "seed " << seed << ", step " << step;
        }
        EXPECT_GT(answered, 100) << "made anew, seed " << seed;
    }
}

TEST(CaptionIndex, EveryWayToChangeALinkedNodeMakesItWalkAgain) {
    std::vector<std::function<void(IFCNode*)>> const changes{
        [](IFCNode* node) { node->SetNodeCaption(L"new"); },
        [](IFCNode* node) { node->GetParentNode()->SetNodeCaption(L"new"); },
        [](IFCNode* node) { node->SetNext(node->GetNext()); },
        [](IFCNode* node) { node->SetChild(nullptr); },
        [](IFCNode* node) { node->SetParentNode(node->GetParentNode()); },
        [](IFCNode* node) {
            IFCNode* const parent = node->GetParentNode();
            node->RemoveLinks();
            node->SetParentNode(parent);
        },
        [](IFCNode* node) { addChild(node, 71, L""); },
        [](IFCNode* node) { addChild(addChild(node, 71, L""), 71, L""); },
        [](IFCNode* node) { dynamic_cast<CFCSubGroupNode&>(*node) = dynamic_cast<CFCSubGroupNode&>(*node); },
        [](IFCNode* node) { addChild(node->GetParentNode(), 71, L"")->Delete(); },
        [](IFCNode* node) { addChild(node->GetParentNode(), 71, L""); },
    };
    for (auto const& change : changes) {
        Tree const top = makeNode(71, L"top");
        IFCNode* const node = addChild(top.get(), 71, L"", L"node");
        CaptionIndex index(top.get(), 0);
        EXPECT_EQ(node, index.find(L"node", top.get()));
        ASSERT_TRUE(index.isCurrent());
        Tree const elsewhere = makeNode(71);
        elsewhere->SetNodeCaption(L"node");
        EXPECT_TRUE(index.isCurrent()) << "a new node changes no tree";
        change(node);
        EXPECT_FALSE(index.isCurrent()) << &change - changes.data();
        EXPECT_EQ(CFCNodeHelper::FindNodeByCaption(L"node", top.get()), index.find(L"node", top.get()));
    }
    Tree const top = makeNode(71, L"top");
    IFCNode* const node = addChild(top.get(), 71, L"", L"node");
    CaptionIndex index(top.get(), 0);
    EXPECT_EQ(node, index.find(L"node", top.get()));
    ASSERT_TRUE(index.isCurrent());
    top->SetChild(nullptr);
    node->RemoveLinks();
    Tree const end(node);
    EXPECT_FALSE(index.isCurrent());
    EXPECT_EQ(nullptr, index.find(L"node", top.get()));
    EXPECT_FALSE(index.isCurrent()) << "a node on its own is walked";
}

TEST(CaptionIndex, ManyFirstChildrenAndDeepChainsKeepTheirOrder) {
    for (bool const isDeep : {false, true}) {
        Tree const top = makeNode(71, L"top");
        IFCNode* const last = addChild(top.get(), 71, L"", L"x");
        CaptionIndex index(top.get(), 0);
        EXPECT_EQ(last, index.find(L"x", top.get()));
        IFCNode* parent = top.get();
        std::vector<IFCNode*> made;
        for (int count = 0; count < 3000; ++count) {
            Tree child = makeNode(71, count % 3 == 0 ? L"x" : L"y");
            index.append(parent, child.get());
            made.push_back(child.release());
            parent = isDeep ? made.back() : parent;
            ASSERT_TRUE(index.isCurrent());
        }
        for (IFCNode* const start : made) {
            EXPECT_EQ(CFCNodeHelper::FindNodeByCaption(L"x", start), index.find(L"x", start));
            EXPECT_EQ(CFCNodeHelper::FindNodeByCaption(L"y", start), index.find(L"y", start));
        }
        EXPECT_EQ(CFCNodeHelper::FindNodeByCaption(L"x", top.get()), index.find(L"x", top.get()));
        EXPECT_EQ(CFCNodeHelper::FindNodeByCaption(L"y", top.get()), index.find(L"y", top.get()));
        EXPECT_TRUE(index.isCurrent());
    }
}

TEST(CaptionIndex, WalksAreCountedBeforeAnIndexIsMade) {
    Tree const top = makeNode(71, L"top");
    for (int count = 0; count < 99; ++count)
        addChild(top.get(), 71, L"", L"x");
    CaptionIndex index(top.get());
    for (int search = 0; search < 10; ++search) {
        EXPECT_EQ(nullptr, index.find(L"none", top.get()));
        EXPECT_FALSE(index.isCurrent());
    }
    EXPECT_EQ(nullptr, index.find(L"none", top.get()));
    EXPECT_TRUE(index.isCurrent());
}

TEST(CaptionIndex, NothingIsFoundByAnEmptyCaptionOrFromNowhere) {
    Tree const top = makeNode(71);
    addChild(top.get(), 71, L"");
    CaptionIndex index(top.get(), 0);
    EXPECT_EQ(nullptr, index.find(L"x", top.get()));
    ASSERT_TRUE(index.isCurrent());
    EXPECT_EQ(nullptr, index.find(L"", top.get()));
    EXPECT_EQ(nullptr, index.find(nullptr, top.get()));
    EXPECT_EQ(nullptr, index.find(L"x", nullptr));
    CaptionIndex nothing(nullptr, 0);
    EXPECT_EQ(nullptr, nothing.find(L"x", nullptr));
    EXPECT_EQ(top->GetChild(), (top->GetChild()->SetNodeCaption(L"x"), nothing.find(L"x", top.get())));
}

TEST(CaptionIndex, SearchesThatBeginOutsideAreWalked) {
    Tree const top = makeNode(71, L"top");
    addChild(top.get(), 71, L"", L"x");
    Tree const other = makeNode(71, L"other");
    CaptionIndex index(top.get(), 0);
    EXPECT_EQ(top->GetChild(), index.find(L"x", top.get()));
    Tree child = makeNode(71, L"x");
    index.append(other.get(), child.get());
    EXPECT_EQ(child.get(), index.find(L"x", other.get()));
    EXPECT_EQ(top->GetChild(), index.find(L"x", top.get()));
    static_cast<void>(child.release());
}

TEST(CaptionIndex, NodesOfAHostAreWalked) {
    Tree const top = makeNode(71, L"top");
    addChild(top.get(), 71, L"", L"x");
    auto* const host = new HostFolder;
    CaptionIndex early(top.get(), 0);
    EXPECT_EQ(top->GetChild(), early.find(L"x", top.get()));
    early.append(top.get(), host);
    host->caption = L"x";
    EXPECT_EQ(host, early.find(L"x", top.get()));
    host->caption = L"y";
    EXPECT_EQ(host->GetNext(), early.find(L"x", top.get()));
    EXPECT_FALSE(early.isCurrent());
    CaptionIndex late(top.get(), 0);
    EXPECT_EQ(host, late.find(L"y", top.get()));
    EXPECT_FALSE(late.isCurrent());
}

TEST(CaptionIndex, LinksThatDoNotFitAreWalked) {
    // A chain that runs in a circle: the walk ends only where it finds.
    Tree const top = makeNode(71, L"top");
    IFCNode* const second = addChild(top.get(), 71, L"", L"b");
    IFCNode* const first = addChild(top.get(), 71, L"", L"a");
    second->SetNext(first);
    CaptionIndex circle(top.get(), 0);
    EXPECT_EQ(second, circle.find(L"b", top.get()));
    EXPECT_FALSE(circle.isCurrent());
    second->SetNext(nullptr);
    first->SetParentNode(nullptr);
    CaptionIndex orphan(top.get(), 0);
    EXPECT_EQ(second, orphan.find(L"b", top.get()));
    EXPECT_FALSE(orphan.isCurrent());
    first->SetParentNode(top.get());
}

// --- The readers, beside a reading that walks for each entry ---

namespace {

struct Element {
    std::string tag;
    TuString name;
    bool hasName = true;
    std::vector<Element> children;
};

std::string xmlOf(Element const& element) {
    std::string text = "<" + element.tag;
    if (element.hasName)
        text += (element.tag == "FILETYPE" ? " name='" : " Name='") + narrow(element.name) + "'";
    if (element.tag == "DOCUMENT")
        text += " Opened='true'";
    text += ">";
    for (Element const& child : element.children)
        text += xmlOf(child);
    return text + "</" + element.tag + ">";
}

// Below one root, up to that many elements in random places.
Element randomFavourites(Dice& dice, int count, int names) {
    Element root{"Process", dice.name(names), dice.below(2) != 0, {}};
    while (count-- > 0) {
        static constexpr char const* kTags[] = {"SUB_GRP",  "CUSTOM_FOLDER", "DOCUMENT", "DOCUMENT",
                                                "DOCUMENT", "FAVOURITES",    "HISTORY",  "other"};
        int const kind = dice.below(30);
        Element* place = &root;
        while (!place->children.empty() && dice.below(4) != 0)
            place = &place->children[place->children.size() - 1 -
                                     static_cast<std::size_t>(
                                         dice.below(std::min<int>(3, static_cast<int>(place->children.size()))))];
        std::string const tag = kTags[kind < 8 ? kind : kind % 4];
        place->children.push_back({tag, dice.name(names), dice.below(20) != 0, {}});
    }
    return root;
}

void loadByWalks(Element const& element, IFCNode* node, CFCNodeFactory& factory) {
    for (Element const& child : element.children) {
        TuString const name = child.hasName ? child.name : TuString();
        CFCProcessNode* const process = CFCPointerConverter::GetProcessNode(node->GetRootNode());
        IFCNode* folder = nullptr;
        if (child.tag == "FAVOURITES" && process != nullptr)
            folder = process->GetFavouriteNode();
        if (child.tag == "HISTORY" && process != nullptr)
            folder = process->GetHistoryNode();
        if (child.tag == "SUB_GRP" || child.tag == "CUSTOM_FOLDER") {
            folder = factory.Create(71);
            node->AppendChild(folder, false);
            folder->SetNodeType(child.tag == "SUB_GRP" ? 71 : 179);
        }
        if (child.tag == "DOCUMENT") {
            IFCNode* const document = factory.Create(177);
            document->SetNodeCaption(name);
            TuString const wanted = element.hasName ? element.name : TuString();
            if (IFCNode* const found = CFCNodeHelper::FindNodeByCaption(wanted, node->GetParentNode()))
                found->AppendChild(document, false);
        }
        if (folder != nullptr) {
            folder->SetNodeCaption(name);
            loadByWalks(child, folder, factory);
        }
    }
}

// Changes the tree behind the reader's back now and then.
struct MeddlingFactory : RememberingFactory {
    explicit MeddlingFactory(IFCNode* top) : nodes{top} {}
    IFCNode* Create(int type) override {
        IFCNode* const node = RememberingFactory::Create(type);
        if (asked.size() % 13 == 0)
            nodes[asked.size() * 7 % nodes.size()]->SetNodeCaption(L"a");
        nodes.push_back(node);
        return node;
    }
    std::vector<IFCNode*> nodes;
};

void endStrays(RememberingFactory const& factory) {
    for (IFCNode* const node : factory.alive())
        if (node->GetParentNode() == nullptr)
            CFCNodeHelper::DestroyTree(node);
}

struct CaptionIndexReaders : CatalogTest {};

} // namespace

TEST_F(CaptionIndexReaders, FavouritesAreThoseOfAReadingThatWalks) {
    for (unsigned seed = 0; seed < 60; ++seed) {
        Dice dice(seed);
        int const names = 4 + dice.below(40);
        Element const root = randomFavourites(dice, 600, names);
        bool const isMeddled = seed % 4 == 3;
        bool const isBelow = seed % 2 == 1; // the node has something above it, where a search may begin
        std::string trees[2];
        for (bool const walks : {false, true}) {
            Tree const process = makeNode(56, L"P");
            RememberingFactory plain;
            MeddlingFactory meddling(process.get());
            RememberingFactory& used = isMeddled ? meddling : plain;
            IFCNode* node = isBelow ? addChild(process.get(), 71, L"", L"a") : process.get();
            if (walks) {
                loadByWalks(root, node, used);
            } else {
                CFCFavouriteReader reader;
                reader.SetNodeFactory(&used);
                ASSERT_TRUE(reader.Parse(file(xmlOf(root)), &node));
            }
            trees[walks ? 1 : 0] = treeOf(process.get());
            endStrays(used);
        }
        EXPECT_EQ(trees[1], trees[0]) << "seed " << seed;
    }
}

TEST_F(CaptionIndexReaders, AHostsOwnStepMayRenameAnything) {
    struct HostReader : CFCFavouriteReader {
        void LoadPropertiesLite(xercesc::DOMElement* element, IFCNode* node) override {
            CFCFavouriteReader::LoadPropertiesLite(element, node);
            if (narrow(node->GetNodeCaption()) == "now")
                other->SetNodeCaption(L"f");
        }
        IFCNode* other = nullptr;
    };
    // The searches are long and many before the folder in front of all becomes the first of the name.
    Tree const process = makeNode(56);
    for (int count = 0; count < 200; ++count)
        addChild(process.get(), 71, L"", L"x");
    HostReader reader;
    reader.other = process->GetChild();
    RememberingFactory nodes;
    reader.SetNodeFactory(&nodes);
    std::string text = "<Process><FAVOURITES Name='f'>";
    for (int count = 0; count < 20; ++count)
        text += "<DOCUMENT Name='early' Opened='1'/>";
    IFCNode* node = process.get();
    ASSERT_TRUE(reader.Parse(
        file(text + "<CUSTOM_FOLDER Name='now'/><DOCUMENT Name='late' Opened='1'/></FAVOURITES></Process>"), &node));
    EXPECT_EQ("71:f(177:late)", treeOf(reader.other));
    EXPECT_EQ(nullptr, CFCNodeHelper::FindNodeByCaption(
                           L"late", CFCPointerConverter::GetProcessNode(process.get())->GetFavouriteNode()));
}

TEST_F(CaptionIndexReaders, FileTypesAreThoseOfAReadingThatWalks) {
    for (unsigned seed = 0; seed < 40; ++seed) {
        Dice dice(seed);
        int const names = 4 + dice.below(400);
        bool const isMeddled = seed % 4 == 3;
        std::vector<Element> files;
        for (int const count : {300, 300, 1}) {
            files.push_back({"FILETYPES", L"", false, {}});
            for (int entry = 0; entry < count; ++entry)
                files.back().children.push_back({"FILETYPE", dice.name(names), dice.below(20) != 0, {}});
        }
        std::string trees[2];
        for (bool const walks : {false, true}) {
            // A list that is part of a catalog and holds groups of its own.
            Tree const catalog = makeNode(81, L"ab");
            auto* const list = dynamic_cast<CFCDataTypeNode*>(addChild(catalog.get(), 81, L"", seed % 2 ? L"b" : L""));
            addChild(addChild(list, 81, L"", L"group"), 83, L"", L"A");
            addChild(catalog.get(), 83, L"", L"a");
            RememberingFactory plain;
            MeddlingFactory meddling(list);
            RememberingFactory& used = isMeddled ? meddling : plain;
            for (Element const& one : files) {
                CFCFileTypeListReader reader;
                reader.SetNodeFactory(&used);
                if (!walks) {
                    ASSERT_TRUE(reader.Parse(file(xmlOf(one)), list));
                    continue;
                }
                for (Element const& entry : one.children) {
                    TuString const name = entry.hasName ? entry.name : TuString();
                    IFCNode* node = CFCNodeHelper::FindNodeByCaption(name, list);
                    if (node == nullptr) {
                        node = used.Create(83);
                        list->AppendChild(node, false);
                    }
                    node->SetNodeCaption(name);
                }
            }
            trees[walks ? 1 : 0] = treeOf(catalog.get());
        }
        EXPECT_EQ(trees[1], trees[0]) << "seed " << seed;
    }
}
