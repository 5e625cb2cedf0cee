#include "workload/Workload.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <stdexcept>
#include <vector>

#include "harness/Harness.h"

namespace bench {
namespace {

constexpr std::uint64_t kArraySize = 10'000;

std::string numbered(const char* format, std::uint64_t number) {
    char text[64];
    std::snprintf(text, sizeof text, format, static_cast<unsigned long long>(number));
    return text;
}

// Up to seven digits, with a point at any place.
double real(Random& random) {
    static constexpr std::array kScales{1e0, 1e1, 1e2, 1e3, 1e4, 1e5};
    const auto digits = static_cast<double>(random.below(10'000'000));
    const double value = digits / kScales[random.below(kScales.size())];
    return random.below(4) == 0 ? -value : value;
}

double scalar(Random& random) {
    return static_cast<double>(static_cast<float>(static_cast<double>(random.below(1'000'000)) / 100));
}

double integer(Random& random, std::uint64_t limit) { return static_cast<double>(random.below(limit)); }

class Teller {
  public:
    Teller(const Workload& workload, Sink& sink) : workload_(workload), sink_(sink), random_(workload.size) {}

    void props() {
        const std::uint64_t nodes = (workload_.size + 9) / 10;
        for (std::uint64_t node = 0; node < nodes; ++node) {
            if (node % 100 == 0) sink_.open("group", Name(numbered("group_%llu", node / 100)), {});
            sink_.open("node", Name(numbered("part_%llu", node)), {});
            partValues();
            sink_.close();
            if (node % 100 == 99 || node + 1 == nodes) sink_.close();
        }
    }

    void arrays() {
        const std::uint64_t arrays = (workload_.size + kArraySize - 1) / kArraySize;
        for (std::uint64_t i = 0; i < arrays; ++i) {
            sink_.open("node", Name(numbered("mesh_%llu", i)), {});
            if (i % 4 == 3)
                values(Type::int32, "indices", kArraySize, [this] { return integer(random_, 1'000'000); });
            else
                values(Type::real, "samples", kArraySize, [this] { return real(random_); });
            sink_.close();
        }
    }

    void array() {
        values(Type::real, "samples", workload_.size, [this] { return real(random_); });
    }

    void wide() {
        sink_.open("group", Name("wide"), {});
        for (std::uint64_t i = 0; i < workload_.size; ++i) {
            sink_.open("node", Name(numbered("child_%llu", i)), {});
            one(Type::real, "value", {}, real(random_));
            sink_.close();
        }
        sink_.close();
    }

    void prefix() {
        sink_.open("group", Name("wide"), {});
        for (std::uint64_t i = 0; i < workload_.size; ++i)
            one(Type::real, numbered("MaterialProperty_%06llu", i), {}, real(random_));
        sink_.close();
    }

    void deep() {
        const std::uint64_t chains = workload_.size / workload_.depth;
        for (std::uint64_t chain = 0; chain < chains; ++chain) {
            if (chain % 100 == 0) sink_.open("group", Name(numbered("chains_%llu", chain / 100)), {});
            sink_.open("group", Name(numbered("chain_%llu", chain)), {});
            for (std::uint64_t level = 0; level < workload_.depth; ++level) {
                one(Type::real, "value", {}, real(random_));
                sink_.open("group", Name("level"), {});
            }
            for (std::uint64_t level = 0; level <= workload_.depth; ++level) sink_.close();
            if (chain % 100 == 99 || chain + 1 == chains) sink_.close();
        }
    }

    void classes() {
        for (std::uint64_t i = 0; i < workload_.size; ++i) {
            sink_.open("node", Name(numbered("part_%llu", i)), kClass);
            for (const std::uint64_t member : {0u, 3u, 6u})
                one(Type::real, memberName(member), {}, real(random_));
            sink_.close();
        }
    }

    void copies() {
        for (std::uint64_t i = 0; i < workload_.size; ++i) {
            sink_.open("node", Name(numbered("part_%llu", i)), {});
            members();
            sink_.close();
        }
    }

    void library() {
        sink_.open("group", Name("library"), {});
        sink_.open("table", Name("Part"), {});
        members();
        sink_.close();
        sink_.close();
    }

  private:
    static std::string memberName(std::uint64_t member) { return numbered("member_%02llu", member); }

    void members() {
        for (std::uint64_t member = 0; member < kClassMembers; ++member) {
            if (member % 3 == 1)
                one(Type::int32, memberName(member), {}, integer(random_, 100'000));
            else if (member % 3 == 2)
                sink_.text(Name(memberName(member)), Name("as delivered"));
            else
                one(Type::real, memberName(member), "Meter", real(random_));
        }
    }

    void partValues() {
        one(Type::real, "length", "Meter", real(random_));
        one(Type::real, "mass", "Kilogram", real(random_));
        one(Type::scalar, "roughness", {}, scalar(random_));
        one(Type::int32, "catalogue", {}, integer(random_, 1'000'000));
        one(Type::boolean, "visible", {}, integer(random_, 2));
        sink_.text(Name("material"), Name(random_.below(2) == 0 ? "Stainless steel" : "Oak"));
        values(Type::vector3, "position", 3, [this] { return real(random_); });
        one(Type::uint8, "layer", {}, integer(random_, 256));
        one(Type::int64, "serial", {}, integer(random_, 1'000'000'000'000));
        sink_.text(Name("note"), Name(numbered("checked by hand, batch %llu", random_.below(100'000))));
    }

    void one(Type type, std::string_view name, std::string_view unit, double value) {
        sink_.numbers(type, Name(name), unit, &value, 1);
    }

    template <class Next>
    void values(Type type, std::string_view name, std::uint64_t count, Next next) {
        std::vector<double> numbers(count);
        for (double& number : numbers) number = next();
        sink_.numbers(type, Name(name), {}, numbers.data(), count);
    }

    const Workload& workload_;
    Sink& sink_;
    Random random_;
};

using Telling = void (Teller::*)();

Telling tellingOf(const std::string& name) {
    if (name == "props") return &Teller::props;
    if (name == "arrays") return &Teller::arrays;
    if (name == "array") return &Teller::array;
    if (name == "wide") return &Teller::wide;
    if (name == "prefix") return &Teller::prefix;
    if (name == "deep") return &Teller::deep;
    if (name == "classes") return &Teller::classes;
    if (name == "copies") return &Teller::copies;
    throw std::runtime_error("no workload " + name);
}

}  // namespace

void tell(const Workload& workload, Sink& sink) {
    const Telling telling = tellingOf(workload.name);
    Teller teller(workload, sink);
    sink.open("root", Name("model"), {});
    if (workload.name == "classes") teller.library();
    sink.open("group", Name("top"), {});
    (teller.*telling)();
    sink.close();
    sink.close();
}

void Recording::open(std::string_view element, const Name& name, std::string_view className) {
    events_.push_back({Event::Kind::open, {}, name, std::string(element), Name(className), 0, 0});
}

void Recording::close() { events_.push_back({Event::Kind::close, {}, Name({}), {}, Name({}), 0, 0}); }

void Recording::numbers(Type type, const Name& name, std::string_view unit, const double* values,
                        std::uint64_t count) {
    events_.push_back({Event::Kind::numbers, type, name, std::string(unit), Name({}), values_.size(), count});
    values_.insert(values_.end(), values, values + count);
}

void Recording::text(const Name& name, const Name& text) {
    events_.push_back({Event::Kind::text, {}, name, {}, text, 0, 0});
}

void Recording::replay(Sink& sink) const {
    for (const Event& event : events_) {
        if (event.kind == Event::Kind::open)
            sink.open(event.word, event.name, event.text.text);
        else if (event.kind == Event::Kind::close)
            sink.close();
        else if (event.kind == Event::Kind::text)
            sink.text(event.name, event.text);
        else
            sink.numbers(event.type, event.name, event.word, values_.data() + event.firstValue,
                         event.valueCount);
    }
}

const char* elementOf(Type type) {
    static constexpr const char* kElements[] = {"bool",   "int32",  "uint8",   "int64",
                                                "scalar", "double", "vector3", "matrix4x4"};
    return kElements[static_cast<std::size_t>(type)];
}

std::uint32_t unitId(std::string_view unit) {
    if (unit.empty()) return 0;
    if (unit == "Meter") return 0x2001;
    if (unit == "Kilogram") return 0x5001;
    throw std::runtime_error("no unit " + std::string(unit));
}

}  // namespace bench
