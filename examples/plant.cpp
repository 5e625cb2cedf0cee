// Makes a model with classes, units, a link and names in two languages in a file, and edits it there.
#include <cstdio>
#include <qvt/file.hpp>
#include <qvt/qvt.hpp>

namespace {

struct Point {
    double x = 0, y = 0;
};

// A class is a table, and its name is the path to it: Types.Point, Types.Pump.
void makeClasses(qvt::Store& store) {
    const auto types = qvt::top(store, "Types");
    const auto point = types.makeTable("Point");
    point.make("x", 0.0);
    point.make("y", 0.0);
    const auto pump = types.makeTable("Pump");
    pump.make("power", 1.5, "Kilowatt");
    pump.make("maker", "unknown");
}

void makeHall(qvt::Store& store) {
    const qvt::Classes classes(store);
    const auto hall = qvt::top(store, "hall");
    hall.setDisplayName("en-us", "Pump hall");
    hall.setDisplayName("de-de", "Pumpenhalle");
    for (const char* name : {"p1", "p2"}) hall.makeNode(name, classes.find("Types.Pump"));
    hall.makeLink("spare", "hall.p2");

    const qvt::StructMap<Point> points(classes.find("Types.Point"),
                                       {qvt::field("x", &Point::x), qvt::field("y", &Point::y)});
    const auto corners = hall.makeStruct("corners", classes.find("Types.Point"));
    if (!points.write(corners, std::vector<Point>{{0, 0}, {4, 2}})) std::puts(points.error().c_str());
}

void print(const qvt::Container& hall) {
    std::printf("%s, %s\n", hall.name().c_str(), hall.displayName("de-de").c_str());
    for (const auto& pump : hall.containers()) {
        const auto power = pump["power"];
        if (pump.isLink())
            std::printf("  %s -> %s\n", pump.name().c_str(), pump.resolve().path().c_str());
        else
            std::printf("  %s: %g %s%s\n", pump.name().c_str(), power.value<double>().value_or(0),
                        power.unit().name().data(), power.isInherited() ? ", as its class has it" : "");
    }
}

}  // namespace

int main() try {
    {
        qvt::FileStore store("plant.qvt");
        qvt::commit(store, [&] {
            makeClasses(store);
            makeHall(store);
        });
        // All of a commit comes into the file, or nothing of it: this one says no in the end.
        qvt::commit(store, [&] {
            qvt::find(store, "hall.p1")["power"].assign(100);
            return false;
        });
    }
    qvt::FileStore store("plant.qvt");
    qvt::commit(store, [&] { return qvt::find(store, "hall.p1")["power"].assign(7.5); });
    print(qvt::find(store, "hall"));
} catch (const qvt::StoreError& error) {
    std::puts(error.what());
    return 1;
}
