// A host in C++20 that has the conveniences of the installed package: it keeps a model in a file, with a
// class, a unit and a struct, and reads a document that it has written.

#include <unistd.h>

#include <cstdio>
#include <qvt/file.hpp>
#include <qvt/qvt.hpp>

namespace {

struct Point {
    double x = 0, y = 0;
};

void makeModel(qvt::Store& store) {
    const auto types = qvt::top(store, "Types");
    const auto point = types.makeTable("Point");
    point.make("x", 0.0);
    point.make("y", 0.0);
    types.makeTable("Pump").make("power", 1.5, "Kilowatt");
    const qvt::Classes classes(store);
    const auto pump = qvt::top(store, "hall").makeNode("p1", classes.find("Types.Pump"));
    const qvt::StructMap<Point> points(classes.find("Types.Point"),
                                       {qvt::field("x", &Point::x), qvt::field("y", &Point::y)});
    points.write(pump.makeStruct("at", classes.find("Types.Point")), Point{4, 2});
}

bool isAsMade(qvt::Store& store) {
    const auto power = qvt::find(store, "hall.p1")["power"];
    return power.value<double>() == 1.5 && power.unit() == qvt::Unit("Kilowatt") && power.isInherited();
}

bool survivesADocument(qvt::Store& store) {
    const qvt::Classes classes(store);
    const std::string document = qvt::exportText(store, {.classes = &classes});
    qvt::MemoryStore other;
    const qvt::Classes same(other);
    return qvt::importText(other, document, {.classes = &same}) && isAsMade(other);
}

}  // namespace

int main() {
    const std::string path = "/tmp/qvt-comfort-" + std::to_string(getpid()) + ".qvt";
    bool holds = false;
    try {
        {
            qvt::FileStore store(path);
            qvt::commit(store, [&] { makeModel(store); });
            holds = isAsMade(store) && survivesADocument(store);
        }
        qvt::FileStore again(path);
        holds = holds && isAsMade(again);
    } catch (const qvt::StoreError& error) {
        std::printf("%s\n", error.what());
        holds = false;
    }
    std::remove(path.c_str());
    return holds ? 0 : 1;
}
