// qvt set STORE PATH [VALUE...]
#include "Copies.h"
#include "Editing.h"
#include "NewValues.h"
#include "Objects.h"
#include "Units.h"
#include "Verbs.h"
#include "norvane/platform/data/structure/ILink.h"

namespace qvt {

namespace {

using structure::ILink;

void setTarget(const Object& link, const std::vector<std::string>& words) {
    if (words.size() != 1) throw Failure(kUsage, "error: a link has one target");
    ILink::to(link.container.get())->setTarget(words[0].empty() ? WideString() : wide(words[0]));
}

// A unit stands in the record for good. Another one makes it another primitive, which is the last of its
// siblings then.
Object withUnit(Editing& editing, Object object, const std::string& path, std::uint32_t unit) {
    Tree& tree = editing.tree();
    if (object.primitive()->units() == unit) return object;
    if ((flagsOf(object) & metadata::kFixed) != 0)
        throw refused(tree, path + " came from a class with its unit" +
                                (unitOf(object).empty() ? " (none)" : ", " + unitOf(object)));
    const PrimitiveContent content(*object.primitive());
    object = Object();
    removeFrom(tree, path);
    content.storeTo(*makePrimitive(parentFor(tree, path), Spot(path).name, content.type(), unit));
    tree.refresh();
    return tree.get(path);
}

void setPrimitive(Editing& editing, Object object, const Options& options) {
    const Tree& tree = editing.tree();
    if (!options.unit.empty())
        object = withUnit(editing, std::move(object), options.path, unitNamed(options.unit));
    IPrimitive& primitive = *object.primitive();
    const bool isNew = !options.words.empty();
    if (options.hasUri) {
        if (!primitive.setUri(wide(options.uri))) throw refused(tree, "the URI does not fit a record");
    } else if (isNew &&
               !NewValue(primitive.dataType(), options.words, utf8(primitive.structType()), editing.locator())
                    .storeTo(primitive)) {
        throw refused(tree, "the value of " + options.path + " does not fit a record");
    }
    if (isNew || options.hasUri) touch(tree, options.path);
}

template <class Handle>
void setName(const Tree& tree, Handle& handle, const std::string& assignment) {
    const std::size_t equals = assignment.find('=');
    if (equals == std::string::npos || equals == 0)
        throw Failure(kUsage, "error: --name takes LOCALE=TEXT, and not " + assignment);
    const WideString locale = wide(assignment.substr(0, equals));
    const std::string text = assignment.substr(equals + 1);
    if (text.empty() && handle.localisedCount() == 1 && handle.localised(locale).length() != 0)
        throw refused(tree, "the only display name that there is cannot be removed");
    handle.setLocalised(locale, text.empty() ? WideString() : wide(text));
}

void setNames(const Tree& tree, const Object& object, const Options& options) {
    for (const std::string& assignment : options.names)
        if (object.container)
            setName(tree, *object.container, assignment);
        else
            setName(tree, *object.property, assignment);
}

void change(Editing& editing, Object object, const Options& options) {
    const Tree& tree = editing.tree();
    const bool isForPrimitives = options.hasUri || !options.unit.empty();
    if (object.primitive()) return setPrimitive(editing, std::move(object), options);
    if (options.words.empty() && !isForPrimitives) return;
    if (isForPrimitives || kindOf(object) != "link")
        throw refused(tree, called(tree, object) + " has no value that could be set");
    setTarget(object, options.words);
}

int set(const Options& options) {
    mustBeFileStore(options.store, "set");
    if (options.words.empty() && !options.hasUri && options.unit.empty() && options.names.empty())
        throw Failure(kUsage, "error: set takes a VALUE, --uri, --unit or --name");
    if (!options.words.empty() && options.hasUri)
        throw Failure(kUsage, "error: set takes either a VALUE or --uri");
    Editing editing(options.store, options);
    change(editing, editing.tree().get(options.path), options);
    setNames(editing.tree(), editing.tree().get(options.path), options);
    editing.commit();
    return editing.status();
}

}  // namespace

const Verb kSet{
    "set",
    "change a value",
    "The VALUEs become the whole value: numbers, several to a word if need be, as get prints them; true\n"
    "and false for a bool; a text each; Base64 for bytes; the numbers of its fields for a struct, whose\n"
    "class must be known; the target of a link. An empty VALUE empties numbers and removes a target. If a\n"
    "VALUE begins with - and is no number, -- stands before the first. Numbers are not converted: --unit "
    "gives the\n"
    "primitive another unit, which makes it the last among its siblings, and is refused if it came from a\n"
    "class. --name sets a display name, without TEXT it removes it.",
    "  qvt set plant.qvt hall.p1.power 11\n"
    "  qvt set plant.qvt hall.p1 --name de-de=Hauptpumpe",
    Verb::kFile | Verb::kSchemas | Verb::kPath | Verb::kValues | Verb::kValueOptions | Verb::kUnit,
    set};

}  // namespace qvt
