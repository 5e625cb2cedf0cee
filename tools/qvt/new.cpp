// qvt new STORE PATH KIND|TYPE [VALUE...]
#include "Classes.h"
#include "Copies.h"
#include "Editing.h"
#include "NewValues.h"
#include "Objects.h"
#include "Units.h"
#include "Verbs.h"
#include "norvane/platform/data/structure/ContainerKind.h"
#include "norvane/platform/data/structure/ILink.h"

namespace qvt {

namespace {

// The ContainerKind, or -1 for what is no container.
int kindNamed(const std::string& name) {
    constexpr const char* kNames[] = {"node", "group", "link"};
    for (std::uint32_t kind = structure::kNode; kind <= structure::kLink; ++kind)
        if (name == kNames[kind]) return static_cast<int>(kind);
    return -1;
}

SharedPtr<ISchema> schemaFor(Editing& editing, const Options& options) {
    if (options.className.empty()) return {};
    return classNamed(options.className, editing.classes());
}

void mustBeContainer(const Tree& tree, const Object& parent) {
    if (!parent.container)
        throw refused(tree, called(tree, parent) + " is a table, and no container can stand below it");
}

void makeContainer(Editing& editing, const Object& parent, int kind, const Options& options) {
    mustBeContainer(editing.tree(), parent);
    const SharedPtr<ISchema> schema = schemaFor(editing, options);
    const SharedPtr<IContainer> made = parent.container->makeContainer(
        static_cast<std::uint32_t>(kind), wide(Spot(options.path).name), schema.get());
    if (options.words.empty()) return;
    structure::ILink* link = structure::ILink::to(made.get());
    if (!link || options.words.size() != 1)
        throw Failure(kUsage, "error: a " + options.type + " takes no " + (link ? "second " : "") + "VALUE");
    link->setTarget(wide(options.words[0]));
}

void makeTable(Editing& editing, const Object& parent, const Options& options) {
    if (!options.words.empty()) throw Failure(kUsage, "error: a table takes no VALUE");
    const SharedPtr<ISchema> schema = schemaFor(editing, options);
    const WideString name = wide(Spot(options.path).name);
    if (parent.container)
        parent.container->makeTable(name, schema.get());
    else
        parent.table()->makeTable(name, schema.get());
}

void makePrimitive(Editing& editing, const Object& parent, std::uint32_t type, const Options& options) {
    const Tree& tree = editing.tree();
    if (tree.isRoot(parent)) throw refused(tree, "no primitive can stand directly below the root");
    const std::uint32_t unit = options.unit.empty() ? 0 : unitNamed(options.unit);
    const NewValue value(type, options.words, options.className, editing.locator());
    const SharedPtr<IPrimitive> made = makePrimitive(parent, Spot(options.path).name, type, unit);
    if (!made) throw refused(tree, "the library makes nothing of the name of " + options.path);
    if (type == metadata::kStruct) made->setStructType(wide(options.className));
    if (!value.storeTo(*made)) throw refused(tree, "the value does not fit a record");
}

// The type, or 0 for what is no primitive. A wrong command line ends here.
std::uint32_t typeIn(const Options& options) {
    const std::uint32_t type = typeNamed(options.type);
    const bool isSet = options.type == "table" || kindNamed(options.type) >= 0;
    if (type == 0 && !isSet) throw unknownType(options.type);
    if (type == 0 && !options.unit.empty()) throw Failure(kUsage, "error: only primitives have a unit");
    if (type == metadata::kStruct && options.className.empty())
        throw Failure(kUsage, "error: a struct takes --class");
    if (type != 0 && type != metadata::kStruct && !options.className.empty())
        throw Failure(kUsage, "error: a " + options.type + " has no class");
    return type;
}

void make(Editing& editing, std::uint32_t type, const Options& options) {
    Tree& tree = editing.tree();
    const Object parent = parentFor(tree, options.path);
    if (type != 0)
        makePrimitive(editing, parent, type, options);
    else if (options.type == "table")
        makeTable(editing, parent, options);
    else
        makeContainer(editing, parent, kindNamed(options.type), options);
    touch(tree, Spot(options.path).parent);
    tree.refresh();
    if (!tree.find(options.path))
        throw refused(tree, "the library makes nothing of the name of " + options.path);
}

int run(const Options& options) {
    mustBeFileStore(options.store, "new");
    const std::uint32_t type = typeIn(options);
    Editing editing(options.store, options);
    make(editing, type, options);
    editing.commit();
    return editing.status();
}

}  // namespace

const Verb kNew{
    "new",
    "make an object",
    "KIND is node, group, link or table, or the type of a primitive as documents name it: double, string,\n"
    "vector3, struct and so on. VALUEs as for set; of a link, its target. --class gives a container or\n"
    "table the members of a class, or of several joined by \";\"; a struct takes the class of its fields.\n"
    "What holds the new object must be there. Nothing is made where something is.",
    "  qvt new plant.qvt hall.p2 node --class Types.Pump\n"
    "  qvt new plant.qvt hall.p1.flow double 12.5 --unit CubicMeterPerHour",
    Verb::kFile | Verb::kSchemas | Verb::kPath | Verb::kType | Verb::kValues | Verb::kUnit,
    run};

}  // namespace qvt
