#include <gtest/gtest.h>

#include <string>
#include <variant>
#include <vector>

#include "qvt/qvt.hpp"

namespace {

struct Describe {
    std::string operator()(std::monostate) { return "nothing"; }
    std::string operator()(const qvt::Uri& uri) { return "at " + uri.text; }
    std::string operator()(const qvt::Structs& structs) { return structs.className + "*"; }
    std::string operator()(const qvt::Table& table) { return "table " + table.name(); }
    std::string operator()(const std::vector<double>& numbers) {
        return std::to_string(numbers.size()) + " doubles";
    }
    std::string operator()(const std::vector<std::string>& texts) {
        return texts.empty() ? "" : texts.front();
    }
    template <class T>
    std::string operator()(const std::vector<T>& values) {
        return std::to_string(values.size()) + " others";
    }
};

TEST(HostVisit, TellsWhatAPropertyIs) {
    qvt::MemoryStore store;
    const qvt::Container group = qvt::top(store, "group");
    group.make("elsewhere", 1).setUri("x.bin");
    EXPECT_EQ(qvt::visit(group["no"], Describe()), "nothing");
    EXPECT_EQ(qvt::visit(group["elsewhere"], Describe()), "at x.bin");
    EXPECT_EQ(qvt::visit(group.makeTable("t").property(), Describe()), "table t");
    EXPECT_EQ(qvt::visit(group.make("d", 1.5), Describe()), "1 doubles");
    EXPECT_EQ(qvt::visit(group.make("s", "word"), Describe()), "word");
    EXPECT_EQ(qvt::visit(group.make("v", qvt::vec<2>{1, 2}), Describe()), "1 others");
    EXPECT_EQ(qvt::visit(group.makeEmpty("e", qvt::data::metadata::kBool), Describe()), "0 others");
    EXPECT_EQ(qvt::visit(group.makeEmpty("unknown", 99), Describe()), "nothing");
}

TEST(HostVisit, EachTypeComesAsItself) {
    qvt::MemoryStore store;
    const qvt::Container group = qvt::top(store, "group");
    for (std::uint32_t type = 1; type < qvt::data::metadata::kStruct; ++type) {
        const qvt::Property property = group.makeEmpty(std::to_string(type), type);
        const bool same = qvt::visit(property, [&]<class T>(const T&) {
            if constexpr (requires { typename T::value_type; })
                return qvt::typeOf<typename T::value_type>() == type ||
                       (qvt::data::metadata::isTextType(type) && std::is_same_v<T, std::vector<std::string>>);
            else
                return false;
        });
        EXPECT_TRUE(same) << type;
    }
}

}  // namespace
