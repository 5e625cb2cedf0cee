// The models that are measured. Each is a pure function of its name and size, told to a sink object by
// object, so that a document and a model built through an interface hold the same.
//
//   props     many nodes with ten small values of all kinds each; the size is the number of values
//   arrays    arrays of 10,000 numbers; the size is the number of numbers
//   array     one array; the size is its number of numbers
//   wide      one group of nodes with one number each; the size is the number of nodes
//   prefix    one group of numbers whose names have a long common beginning; the size is their number
//   deep      chains of groups, `depth` deep, with a number at each level; the size is the number of levels
//   classes   nodes of a class of 30 members, of which each overrides three; the size is the number of nodes
//   copies    what `classes` says without a class: every member written out
//
// Numbers have at most seven digits, so that text and value say the same.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace bench {

// The types that occur, in the words of documents.
enum class Type : std::uint8_t { boolean, int32, uint8, int64, scalar, real, vector3, matrix4x4 };

// A name or a text, as the interfaces that take it want it, so that no conversion is measured.
struct Name {
    explicit Name(std::string_view ascii) : text(ascii), wide(ascii.begin(), ascii.end()) {}

    std::string text;
    std::u16string wide;
};

class Sink {
  public:
    virtual ~Sink() noexcept(false) {}
    // A group or node, or a table, below what is open. The outermost call opens the root.
    virtual void open(std::string_view element, const Name& name, std::string_view className) = 0;
    virtual void close() = 0;
    virtual void numbers(Type type, const Name& name, std::string_view unit, const double* values,
                         std::uint64_t count) = 0;
    virtual void text(const Name& name, const Name& text) = 0;
};

struct Workload {
    std::string name;
    std::uint64_t size = 0;
    std::uint64_t depth = 10;
};

// Throws for a name that is not above.
void tell(const Workload& workload, Sink& sink);

// A workload that was told once and can be told again at hardly any cost.
class Recording final : public Sink {
  public:
    explicit Recording(const Workload& workload) { tell(workload, *this); }

    void open(std::string_view element, const Name& name, std::string_view className) override;
    void close() override;
    void numbers(Type type, const Name& name, std::string_view unit, const double* values,
                 std::uint64_t count) override;
    void text(const Name& name, const Name& text) override;

    void replay(Sink& sink) const;
    // All numbers, in order.
    const std::vector<double>& values() const { return values_; }

  private:
    struct Event {
        enum class Kind : std::uint8_t { open, close, numbers, text } kind;
        Type type;
        Name name;
        std::string word;  // the element, or the unit
        Name text;         // the class, or the text
        std::uint64_t firstValue;
        std::uint64_t valueCount;
    };

    std::vector<Event> events_;
    std::vector<double> values_;
};

// The element of a type.
const char* elementOf(Type type);
// The id of a unit that occurs.
std::uint32_t unitId(std::string_view unit);

// The class that `classes` uses, and how many members it has.
inline constexpr std::string_view kClass = "library.Part";
inline constexpr std::uint64_t kClassMembers = 30;

}  // namespace bench
