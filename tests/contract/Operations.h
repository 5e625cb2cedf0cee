// Every operation of the public model by name, to be run on one small model: for tests that ask the same of
// all.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "contract/Model.h"

namespace norvane::platform::test {

// A store with something of everything, and open handles on it. `from` lives in a store of its own.
//
//   top   group   g   group, with inner (node), p (int32) and a display name
//                 l   link to top.g
//                 t   table with a default, m (double, metres), inner (table) and a display name
//                 p   int32, three elements          s  string          u  URI
//                 st  struct with type and locale    x  group of class lib.T
//   lib   group   T   table with m (int32) and inner (table)
struct Model {
    explicit Model(IDataStore& dataStore)
        : store(dataStore), top(IContainerFrontEnd::toplevel(&store, u"top")) {
        makeContainers();
        makeProperties();
        makeClass();
        makeOther();
        openAll();
    }

    IDataStore& store;
    ModelStore other;
    SharedPtr<ISchemaLocator> locator;
    SharedPtr<ISchema> schema;
    SharedPtr<IContainer> top, g, node, link, from, item;
    SharedPtr<IProperty> p, s, st, u, t, inner, m;
    SharedPtr<IPropertyFilter> properties, members;
    SharedPtr<IPropertyFilter> made;  // of a table: closing it takes no guard
    SharedPtr<IContainerFilter> containers;

    // By what the handle is, whatever its record has become.
    IPrimitive& primitive(const SharedPtr<IProperty>& property) const {
        return dynamic_cast<IPrimitive&>(*property);
    }
    ITable& table(const SharedPtr<IProperty>& property) const { return dynamic_cast<ITable&>(*property); }
    ILink& asLink() const { return dynamic_cast<ILink&>(*link); }

    void closeAll() {
        for (SharedPtr<IProperty>* each : {&p, &s, &st, &u, &t, &inner, &m}) each->reset();
        for (SharedPtr<IContainer>* each : {&top, &g, &node, &link, &from, &item}) each->reset();
        properties.reset();
        members.reset();
        made.reset();
        containers.reset();
        schema.reset();
        locator.reset();
    }

  private:
    void makeContainers() {
        const auto group = top->makeContainer(kGroup, u"g", nullptr);
        group->makeContainer(kNode, u"inner", nullptr);
        group->makePrimitive(u"p", kInt32);
        group->setLocalised(u"en", u"group");
        ILink::to(top->makeContainer(kLink, u"l", nullptr).get())->setTarget(u"top.g");
    }

    void makeProperties() {
        const auto lengths = top->makeTable(u"t", nullptr);
        lengths->addDefault(kMeter, kDouble);
        write<double>(*lengths->makePrimitive(u"m", kDouble, kMeter), {1.5});
        lengths->makeTable(u"inner", nullptr);
        lengths->property()->setLocalised(u"en", u"table");
        write<std::int32_t>(*top->makePrimitive(u"p", kInt32), {1, 2, 3});
        write<char16_t>(*top->makePrimitive(u"s", kString), {u'a', 0, u'b', 0});
        top->makePrimitive(u"u", kDouble)->setUri(u"file:x");
        const auto structure = top->makePrimitive(u"st", kStruct);
        structure->setStructType(u"lib.T");
        structure->setLocale(u"de");
        write<unsigned char>(*structure, {1, 2, 3, 4});
    }

    void makeClass() {
        const auto type = IContainerFrontEnd::toplevel(&store, u"lib")->makeTable(u"T", nullptr);
        type->makePrimitive(u"m", kInt32, 0);
        type->makeTable(u"inner", nullptr);
        locator = ISchemaLocator::make(&store);
        schema = locator->locate(u"lib.T");
        top->makeContainer(kGroup, u"x", schema.get());
    }

    void makeOther() {
        from = IContainerFrontEnd::toplevel(&other, u"from");
        from->makeContainer(kGroup, u"item", nullptr)->makePrimitive(u"p", kInt32);
        from->makePrimitive(u"g", kInt32);
        from->makeTable(u"itemTable", nullptr);
        item = from->find(u"item");
    }

    void openAll() {
        g = top->find(u"g");
        node = g->find(u"inner");
        link = top->find(u"l");
        p = top->findProperty(u"p");
        s = top->findProperty(u"s");
        st = top->findProperty(u"st");
        u = top->findProperty(u"u");
        t = top->findProperty(u"t");
        inner = top->findProperty(u"t.inner");
        m = top->findProperty(u"t.m");
        properties = top->properties();
        containers = top->containers();
        members = ITable::to(t.get())->properties();
    }
};

// Whether an operation uses the guard of its object's store.
enum class Guarding { none, whole };

struct Operation {
    std::string name;
    Guarding guarding;
    std::function<void(Model&)> run;
};

inline std::vector<Operation> frontEndOperations() {
    using enum Guarding;
    return {
        {"toplevel", whole, [](Model& o) { IContainerFrontEnd::toplevel(&o.store, u"top"); }},
        {"toplevelNew", whole, [](Model& o) { IContainerFrontEnd::toplevel(&o.store, u"new"); }},
        {"toplevelDefault", whole, [](Model& o) { IContainerFrontEnd::toplevel(&o.store, WideString()); }},
        {"frontEndFind", whole, [](Model& o) { IContainerFrontEnd::find(&o.store, u"top.g.inner"); }},
        {"version", none, [](Model&) { IContainerFrontEnd::version(); }},
    };
}

inline std::vector<Operation> containerOperations() {
    using enum Guarding;
    return {
        {"name", whole, [](Model& o) { o.g->name(); }},
        {"path", whole, [](Model& o) { o.g->path(); }},
        {"store", none, [](Model& o) { o.g->store(); }},
        {"parent", whole, [](Model& o) { o.g->parent(); }},
        {"className", whole, [](Model& o) { o.top->className(); }},
        {"isEmpty", none, [](Model& o) { o.g->isEmpty(); }},
        {"kind", whole, [](Model& o) { o.g->kind(); }},
        {"remove", whole, [](Model& o) { o.top->remove(u"x"); }},
        {"removeOpen", whole, [](Model& o) { o.top->remove(u"t"); }},
        {"rename", whole, [](Model& o) { o.g->rename(u"other"); }},
        {"makeTable", whole, [](Model& o) { o.g->makeTable(u"new", nullptr); }},
        {"makeTableOfClass", whole, [](Model& o) { o.g->makeTable(u"new", o.schema.get()); }},
        {"makePrimitive", whole, [](Model& o) { o.g->makePrimitive(u"new", kDouble); }},
        {"makeContainer", whole, [](Model& o) { o.g->makeContainer(kNode, u"new", nullptr); }},
        {"makeFirstChild", whole, [](Model& o) { o.node->makeContainer(kGroup, u"new", nullptr); }},
        {"makeContainerOfClass", whole, [](Model& o) { o.g->makeContainer(kLink, u"new", o.schema.get()); }},
        {"makeContainerOfUnknownKind", whole, [](Model& o) { o.g->makeContainer(7, u"new", nullptr); }},
        {"contains", whole, [](Model& o) { o.top->contains(u"g.inner"); }},
        {"find", whole, [](Model& o) { o.top->find(u"g.inner"); }},
        {"findWithoutText", whole, [](Model& o) { o.g->find(WideString()); }},
        {"findProperty", whole, [](Model& o) { o.top->findProperty(u"t.m"); }},
        {"properties", whole, [](Model& o) { o.top->properties(); }},
        {"containers", whole, [](Model& o) { o.top->containers(); }},
        {"conformsPath", whole, [](Model& o) { o.top->conforms(u"t", o.schema.get(), false); }},
        {"conformsPathByClass", whole, [](Model& o) { o.top->conforms(u"x", o.schema.get(), true); }},
        {"conforms", whole, [](Model& o) { o.top->conforms(o.schema.get(), false); }},
        {"merge", whole, [](Model& o) { o.top->merge(o.from); }},
        {"copyTo", whole, [](Model& o) { o.g->copyTo(&o.store, u"top.x.copy"); }},
        {"copyToOther", whole, [](Model& o) { o.g->copyTo(&o.other, u"from.copy"); }},
        {"copy", whole, [](Model& o) { o.top->copy(u"t", u"copy", false); }},
        {"copyDotted", whole, [](Model& o) { o.top->copy(u"top.g", u"x.copy", true); }},
        {"addContainer", whole, [](Model& o) { o.top->add(o.item); }},
        {"addProperty", whole, [](Model& o) { o.g->add(o.t); }},
        {"localisedCount", whole, [](Model& o) { o.g->localisedCount(); }},
        {"localeAt", whole, [](Model& o) { o.g->localeAt(0); }},
        {"setLocalised", whole, [](Model& o) { o.g->setLocalised(u"de", u"Gruppe"); }},
        {"localised", whole, [](Model& o) { o.g->localised(u"en"); }},
        {"closeContainer", whole, [](Model& o) { o.g.reset(); }},
        {"closeContainerWithNewTexts", whole,
         [](Model& o) {
             o.top->setLocalised(u"de", u"oben");
             o.top.reset();
         }},
        {"closeContainerWithChangedTexts", whole,
         [](Model& o) {
             o.g->setLocalised(u"de", u"Gruppe");
             o.g.reset();
         }},
    };
}

inline std::vector<Operation> facetOperations() {
    using enum Guarding;
    return {
        {"groupTo", whole, [](Model& o) { IGroup::to(o.g.get()); }},
        {"nodeTo", whole, [](Model& o) { INode::to(o.g.get()); }},
        {"linkTo", whole, [](Model& o) { ILink::to(o.link.get()); }},
        {"facetsContainer", none, [](Model& o) { o.asLink().container(); }},
        {"resolve", whole, [](Model& o) { o.asLink().resolve(nullptr); }},
        {"resolveInStore", whole, [](Model& o) { o.asLink().resolve(&o.store); }},
        {"setTarget", whole, [](Model& o) { o.asLink().setTarget(u"top.x"); }},
        {"removeTarget", whole, [](Model& o) { o.asLink().setTarget(WideString()); }},
        {"target", whole, [](Model& o) { o.asLink().target(); }},
        {"primitiveTo", whole, [](Model& o) { IPrimitive::to(o.p.get()); }},
        {"tableTo", whole, [](Model& o) { ITable::to(o.t.get()); }},
    };
}

inline std::vector<Operation> filterOperations() {
    using enum Guarding;
    return {
        {"propertyNext", whole, [](Model& o) { o.properties->next(); }},
        {"propertyPrevious", whole,
         [](Model& o) {
             o.properties->next();
             o.properties->previous();
         }},
        {"propertyValue", whole, [](Model& o) { o.properties->value(); }},
        {"containerNext", whole, [](Model& o) { o.containers->next(); }},
        {"containerPrevious", whole,
         [](Model& o) {
             o.containers->next();
             o.containers->previous();
         }},
        {"containerValue", whole, [](Model& o) { o.containers->value(); }},
        {"memberNext", whole, [](Model& o) { o.members->next(); }},
        {"memberPrevious", whole,
         [](Model& o) {
             o.members->next();
             o.members->previous();
         }},
        {"memberValue", whole, [](Model& o) { o.members->value(); }},
        {"closePropertyFilter", none, [](Model& o) { o.properties.reset(); }},
        {"closeContainerFilter", none, [](Model& o) { o.containers.reset(); }},
        {"closeMemberFilter", none, [](Model& o) { o.members.reset(); }},
    };
}

inline std::vector<Operation> propertyOperations() {
    using enum Guarding;
    return {
        {"propertyName", whole, [](Model& o) { o.m->name(); }},
        {"propertyPath", whole, [](Model& o) { o.m->path(); }},
        {"propertyStore", none, [](Model& o) { o.m->store(); }},
        {"propertyKind", whole, [](Model& o) { o.m->kind(); }},
        {"renameInContainer", whole, [](Model& o) { o.p->rename(u"other"); }},
        {"renameInTable", whole, [](Model& o) { o.m->rename(u"other"); }},
        {"propertyParent", whole, [](Model& o) { o.m->parent(); }},
        {"propertyLocalisedCount", whole, [](Model& o) { o.t->localisedCount(); }},
        {"propertyLocaleAt", whole, [](Model& o) { o.t->localeAt(0); }},
        {"propertySetLocalised", whole, [](Model& o) { o.t->setLocalised(u"de", u"Tafel"); }},
        {"propertyLocalised", whole, [](Model& o) { o.t->localised(u"en"); }},
        {"flags", whole, [](Model& o) { o.m->flags(); }},
        {"setFlags", whole, [](Model& o) { o.m->setFlags(1); }},
        {"clearFlags", whole, [](Model& o) { o.m->clearFlags(1); }},
        {"closePrimitive", whole, [](Model& o) { o.m.reset(); }},
        {"closePrimitiveWithNewTexts", whole,
         [](Model& o) {
             o.p->setLocalised(u"de", u"Zahl");
             o.p.reset();
         }},
        {"closeTable", whole, [](Model& o) { o.t.reset(); }},
    };
}

inline std::vector<Operation> primitiveOperations() {
    using enum Guarding;
    static std::int32_t values[8] = {4, 5, 6, 7, 8, 9, 10, 11};
    return {
        {"count", whole, [](Model& o) { o.primitive(o.p).count(); }},
        {"elementSize", whole, [](Model& o) { o.primitive(o.p).elementSize(); }},
        {"valueBytes", whole, [](Model& o) { o.primitive(o.p).valueBytes(); }},
        {"dataType", whole, [](Model& o) { o.primitive(o.p).dataType(); }},
        {"units", whole, [](Model& o) { o.primitive(o.m).units(); }},
        {"setStructType", whole, [](Model& o) { o.primitive(o.st).setStructType(u"lib.Other"); }},
        {"structType", whole, [](Model& o) { o.primitive(o.st).structType(); }},
        {"setUri", whole, [](Model& o) { o.primitive(o.p).setUri(u"file:long/name"); }},
        {"leaveUri", whole, [](Model& o) { o.primitive(o.u).setUri(WideString()); }},
        {"uri", whole, [](Model& o) { o.primitive(o.u).uri(); }},
        {"setLocale", whole, [](Model& o) { o.primitive(o.p).setLocale(u"de"); }},
        {"removeLocale", whole, [](Model& o) { o.primitive(o.st).setLocale(WideString()); }},
        {"locale", whole, [](Model& o) { o.primitive(o.st).locale(); }},
        {"writeInPlace", whole, [](Model& o) { o.primitive(o.p).writeValues(values, 1, 2); }},
        {"writePastTheEnd", whole, [](Model& o) { o.primitive(o.p).writeValues(values, 2, 6); }},
        {"resize", whole, [](Model& o) { o.primitive(o.p).resize(7); }},
        {"resizeToNothing", whole, [](Model& o) { o.primitive(o.p).resize(0); }},
        {"readValues", whole, [](Model& o) { o.primitive(o.p).readValues(values, 0, 3); }},
        {"storeStrings", whole,
         [](Model& o) {
             IStringArray* strings = IStringArray::to(u"text", 5);
             const SharedPtr<IStringArray> owner(strings);
             strings->storeTo(&o.primitive(o.s));
         }},
    };
}

inline std::vector<Operation> tableOperations() {
    using enum Guarding;
    return {
        {"tableFind", whole, [](Model& o) { o.table(o.t).find(u"m"); }},
        {"tableProperties", whole, [](Model& o) { o.made = o.table(o.t).properties(); }},
        {"tableConforms", whole, [](Model& o) { o.table(o.t).conforms(o.schema.get()); }},
        {"makeByDimension", whole, [](Model& o) { o.table(o.t).makeByDimension(u"new", 0x2000); }},
        {"makeByParentsDimension", whole, [](Model& o) { o.table(o.inner).makeByDimension(u"new", 0x2000); }},
        {"tableMakePrimitive", whole, [](Model& o) { o.table(o.t).makePrimitive(u"new", kDouble, kMeter); }},
        {"tableMakeTable", whole, [](Model& o) { o.table(o.t).makeTable(u"new", o.schema.get()); }},
        {"tableRemove", whole,
         [](Model& o) {
             o.m.reset();
             o.table(o.t).remove(u"m");
         }},
        {"tableCount", whole, [](Model& o) { o.table(o.t).count(); }},
        {"at", whole, [](Model& o) { o.table(o.t).at(1); }},
        {"addDefault", whole, [](Model& o) { o.table(o.t).addDefault(0x5019, 16); }},
        {"addFirstDefault", whole, [](Model& o) { o.table(o.inner).addDefault(0x5019, 16); }},
        {"defaultCount", whole, [](Model& o) { o.table(o.t).defaultCount(); }},
        {"defaultDimension", whole, [](Model& o) { o.table(o.t).defaultDimension(0); }},
        {"defaultType", whole, [](Model& o) { o.table(o.inner).defaultType(0x2000); }},
        {"defaultUnit", whole, [](Model& o) { o.table(o.inner).defaultUnit(0x2000); }},
        {"tableClassName", whole, [](Model& o) { o.table(o.t).className(); }},
    };
}

inline std::vector<Operation> allOperations() {
    std::vector<Operation> all;
    for (const auto& some :
         {frontEndOperations(), containerOperations(), facetOperations(), filterOperations(),
          propertyOperations(), primitiveOperations(), tableOperations()})
        all.insert(all.end(), some.begin(), some.end());
    return all;
}

inline void PrintTo(const Operation& operation, std::ostream* out) { *out << operation.name; }

inline std::string nameOf(const ::testing::TestParamInfo<Operation>& info) { return info.param.name; }

}  // namespace norvane::platform::test
