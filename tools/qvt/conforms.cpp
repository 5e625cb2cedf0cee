// qvt conforms STORE PATH CLASS
#include <nlohmann/json.hpp>

#include "Classes.h"
#include "Output.h"
#include "Session.h"
#include "Values.h"
#include "Verbs.h"

namespace qvt {

namespace {

bool doesConform(const Object& object, ISchema* schema) {
    if (object.container) return object.container->conforms(schema, false);
    ITable* table = object.table();
    return table && table->conforms(schema);
}

int conforms(const Options& options) {
    Session session(options);
    ObjectsView view(session);
    const Object object = view.get(options.path);
    if (view.hasRoot() && view.isRoot(object)) throw Failure(kUsage, "error: the root cannot have a class");
    const SharedPtr<ISchema> schema = classNamed(options.className, session.classes());
    const bool answer = doesConform(object, schema.get());
    Output output(options);
    if (options.format == Format::json)
        output.line(
            dumped({{"path", view.pathOf(object)}, {"class", options.className}, {"conforms", answer}}));
    else if (!options.quiet)
        output.line(answer ? "yes" : "no");
    output.finish();
    return answer ? session.status() : kNo;
}

}  // namespace

const Verb kConforms{
    "conforms",
    "tell whether an object satisfies a class",
    "Prints yes (exit status 0) or no (1). An object satisfies a class when its own class text names it,\n"
    "or when all members of the class occur among its children, in order, with the same names and types.\n"
    "CLASS may be several names joined by \";\". -q prints nothing but JSON.",
    "  qvt conforms plant.qvt hall.p1 Types.Pump",
    Verb::kStore | Verb::kSchemas | Verb::kAnswers | Verb::kPath | Verb::kClass | Verb::kJson,
    conforms};

}  // namespace qvt
