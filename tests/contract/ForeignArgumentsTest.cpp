// Null, and objects of the host's own making, where the library's are wanted.
#include "contract/Model.h"

namespace norvane::platform::test {
namespace {

class ForeignSchema : public ISchema {
  public:
    WideString name() override { return u"lib.T"; }
    data::metadata::IStructLayout* layout() override { return nullptr; }
};

class ForeignContainer : public IContainer {
  public:
    WideString name() override { return u"foreign"; }
    WideString path() override { return u"foreign"; }
    IDataStore* store() override { return nullptr; }
    SharedPtr<IContainer> parent() override { return {}; }
    WideString className() override { return {}; }
    bool isEmpty() override { return true; }
    std::uint32_t kind() override { return kGroup; }
    bool remove(WideString) override { return false; }
    bool rename(WideString) override { return false; }
    SharedPtr<ITable> makeTable(WideString, ISchema*) override { return {}; }
    SharedPtr<IPrimitive> makePrimitive(WideString, std::uint32_t) override { return {}; }
    SharedPtr<IContainer> makeContainer(std::uint32_t, WideString, ISchema*) override { return {}; }
    bool contains(WideString) override { return false; }
    SharedPtr<IContainer> find(WideString) override { return {}; }
    SharedPtr<IProperty> findProperty(WideString) override { return {}; }
    SharedPtr<IPropertyFilter> properties() override { return {}; }
    SharedPtr<IContainerFilter> containers() override { return {}; }
    bool conforms(WideString, ISchema*, bool) override { return false; }
    bool conforms(ISchema*, bool) override { return false; }
    bool merge(SharedPtr<IContainer>) override { return false; }
    bool copyTo(IDataStore*, WideString) override { return false; }
    bool copy(WideString, WideString, bool) override { return false; }
    bool add(SharedPtr<IContainer>) override { return false; }
    bool add(SharedPtr<IProperty>) override { return false; }
    std::uint32_t localisedCount() override { return 0; }
    WideString localeAt(std::uint32_t) override { return {}; }
    void setLocalised(WideString, WideString) override {}
    WideString localised(WideString) override { return {}; }
};

class ForeignProperty : public IProperty {
  public:
    explicit ForeignProperty(std::uint32_t kind) : kind_(kind) {}

    WideString name() override { return u"foreign"; }
    WideString path() override { return u"foreign"; }
    IDataStore* store() override { return nullptr; }
    std::uint32_t kind() override { return kind_; }
    bool rename(WideString) override { return false; }
    SharedPtr<ITable> parent() override { return {}; }
    std::uint32_t localisedCount() override { return 0; }
    WideString localeAt(std::uint32_t) override { return {}; }
    void setLocalised(WideString, WideString) override {}
    WideString localised(WideString) override { return {}; }
    std::uint8_t flags() override { return 0; }
    void setFlags(std::uint8_t) override {}
    void clearFlags(std::uint8_t) override {}

  private:
    std::uint32_t kind_;
};

class ForeignArgumentsTest : public ModelTest {
  protected:
    ~ForeignArgumentsTest() noexcept override = default;
};

TEST_F(ForeignArgumentsTest, NullIsNotAddedNorMerged) {
    const auto before = contentsOf(store);

    EXPECT_FALSE(top->add(SharedPtr<IContainer>()));
    EXPECT_FALSE(top->add(SharedPtr<IProperty>()));
    EXPECT_FALSE(top->merge(SharedPtr<IContainer>()));
    EXPECT_FALSE(top->copyTo(nullptr, u"top.copy"));

    EXPECT_EQ(contentsOf(store), before);
}

TEST_F(ForeignArgumentsTest, ForeignHandlesCountAsNull) {
    const auto before = contentsOf(store);

    EXPECT_FALSE(top->add(SharedPtr<IContainer>(new ForeignContainer)));
    EXPECT_FALSE(top->add(SharedPtr<IProperty>(new ForeignProperty(0))));
    EXPECT_FALSE(top->merge(SharedPtr<IContainer>(new ForeignContainer)));

    EXPECT_EQ(contentsOf(store), before);
}

TEST_F(ForeignArgumentsTest, ForeignHandlesHaveNoFacets) {
    ForeignContainer container;
    ForeignProperty primitive(0);
    ForeignProperty table(1);

    EXPECT_EQ(IGroup::to(&container), nullptr);
    EXPECT_EQ(IPrimitive::to(&primitive), nullptr);
    EXPECT_EQ(ITable::to(&table), nullptr);
}

TEST_F(ForeignArgumentsTest, ForeignSchemaCountsAsNone) {
    ForeignSchema schema;

    const auto container = top->makeContainer(kGroup, u"c", &schema);
    const auto table = top->makeTable(u"t", &schema);

    EXPECT_EQ(record(store, u"top/c").at(23), 0u);
    EXPECT_EQ(record(store, u"top/t").at(30), 0u);
    EXPECT_FALSE(container->conforms(&schema, false));
    EXPECT_FALSE(container->conforms(&schema, true));
    EXPECT_FALSE(top->conforms(u"t", &schema, false));
    EXPECT_FALSE(table->conforms(&schema));
    EXPECT_TRUE(table->makeTable(u"inner", &schema));
}

TEST_F(ForeignArgumentsTest, MissingTextIsTheEmptyName) {
    makeGroup(*top, u"");
    const auto fresh = top->find(WideString());

    EXPECT_TRUE(fresh->contains(WideString()));
    EXPECT_FALSE(fresh->findProperty(WideString()));
    EXPECT_FALSE(fresh->makePrimitive(WideString(), kInt32));
    EXPECT_FALSE(fresh->makeTable(WideString(), nullptr));
    EXPECT_FALSE(fresh->makeContainer(kGroup, WideString(), nullptr));
    EXPECT_FALSE(fresh->conforms(WideString(), nullptr, false));
    EXPECT_TRUE(fresh->copy(WideString(), u"copy", false));
    EXPECT_FALSE(fresh->copy(u"copy", WideString(), false));
    EXPECT_FALSE(fresh->find(u"copy")->rename(WideString()));
    EXPECT_TRUE(fresh->remove(WideString()));
    EXPECT_TRUE(fresh->find(u"copy")->rename(WideString()));
    EXPECT_EQ(namesIn(store, u"top"), Names{u""});
}

TEST_F(ForeignArgumentsTest, MissingTextIsTheEmptyNameInTablesToo) {
    const auto t = top->makeTable(u"t", nullptr);

    EXPECT_FALSE(t->find(WideString()));
    EXPECT_TRUE(t->makePrimitive(WideString(), kInt32, 0));
    EXPECT_EQ(t->find(WideString())->name(), u"");
    EXPECT_FALSE(t->makeTable(WideString(), nullptr));
    EXPECT_FALSE(t->makeByDimension(WideString(), 0x2000));
    EXPECT_TRUE(t->remove(WideString()));
}

// A text made with its length may hold a NUL; a record keeps what stands before it.
TEST_F(ForeignArgumentsTest, TextEndsAtItsFirstNul) {
    const WideString cut(u"ab\0cd", 5);

    EXPECT_EQ(top->makePrimitive(cut, kInt32)->property()->name(), u"ab");
    EXPECT_TRUE(top->contains(cut));
    EXPECT_TRUE(top->remove(cut));
}

}  // namespace
}  // namespace norvane::platform::test
