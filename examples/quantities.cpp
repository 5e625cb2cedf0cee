// Reads a document and sums what it holds by unit: quantities DOCUMENT [CLASSES]
#include <cstdio>
#include <map>
#include <qvt/qvt.hpp>
#include <string>

int main(int count, char** arguments) {
    if (count < 2) return 2;
    qvt::MemoryStore library;
    if (count > 2) qvt::importDocument(library, arguments[2]);
    const qvt::Classes classes(library);

    // Into a container of our own, so that there is one to begin the walk with.
    qvt::MemoryStore store;
    const auto model = qvt::top(store, "model");
    const auto read = qvt::importDocument(model, arguments[1], {.classes = &classes});
    for (const auto& report : read.reports) std::fprintf(stderr, "%s\n", report.text().c_str());
    if (!read) {
        std::fprintf(stderr, "%s\n", read.end->text().c_str());
        return 1;
    }

    struct Sum {
        std::size_t values = 0;
        double sum = 0;
    };
    std::map<std::string, Sum> sums;
    for (const auto& at : qvt::walk(model)) {
        const auto unit = at.property.unit();
        if (!unit || unit.dimension() == "Dimensionless") continue;
        auto& [values, sum] = sums[std::string(unit.dimension()) + " in " + std::string(unit.name())];
        for (const double value : at.property.values<double>()) ++values, sum += value;
    }
    for (const auto& [what, of] : sums)
        std::printf("%-52s %4zu values, %g\n", what.c_str(), of.values, of.sum);
}
