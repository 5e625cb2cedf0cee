// Documents of great depth, width and length.
#include <memory>

#include "support/CpuTime.h"
#include "support/SmallStack.h"
#include "unit/xml/Documents.h"

namespace norvane::platform::data::test {
namespace {

using platform::test::onSmallStack;
using platform::test::threadSeconds;

constexpr int kLevels = 100000;

std::string nested(std::string_view start, int levels) {
    std::string document = "<root name='r'>";
    for (int i = 0; i < levels; ++i) document += start;
    for (int i = 0; i < levels; ++i) document += "</group>";
    return document + "</root>";
}

TEST(Depth, HundredThousandLevelsAreReadAndWrittenOnASmallStack) {
    const std::string document = nested("<group name='g'>", kLevels);
    MemoryDataStore store;
    std::vector<std::string> reports;
    std::string text;
    onSmallStack([&] {
        reports = read(store, document);
        text = written(store);
    });
    EXPECT_THAT(reports, IsEmpty());
    EXPECT_EQ(store.recordCount(), 2U * kLevels + 1U);
    std::size_t tags = 0;
    for (std::size_t at = text.find("<group"); at != text.npos; at = text.find("<group", at + 1)) ++tags;
    EXPECT_EQ(tags, static_cast<std::size_t>(kLevels));
    EXPECT_EQ(openCounts(store), 0U);
}

TEST(Depth, DocumentThatBreaksOffDeepDownIsSurvived) {
    constexpr std::uint32_t kOpen = 20000;
    std::string document = "<root name='r'>";
    for (std::uint32_t i = 0; i < kOpen; ++i) document += "<group name='g'>";
    MemoryDataStore store;
    onSmallStack([&] { read(store, document); });
    EXPECT_EQ(openCounts(store), kOpen + 1U);
}

TEST(Depth, SkippedLevelsAreCounted) {
    const std::string document = inRoot(nested("<group id='g'>", kLevels) + "<group name='after'/>");
    MemoryDataStore store;
    std::vector<std::string> reports;
    onSmallStack([&] { reports = read(store, document); });
    EXPECT_THAT(reports, ElementsAre("root : could not nest the element"));
    EXPECT_NE(Metadata::resolvePath(&store, 0, u"after"), IDataStore::BADOFF);
}

template <class Work>
double secondsOf(Work work) {
    const double start = threadSeconds();
    work();
    return threadSeconds() - start;
}

// Eight times the work may take eight times as long; work that grows with the square would take 64 times.
constexpr double kLinear = 20;

std::string siblings(int count) {
    std::string content;
    for (int i = 0; i < count; ++i)
        content += "<int8 name='MaterialPropertyWithALongCommonBeginning_" + std::to_string(1000000 + i) +
                   "'>1</int8>";
    return inGroup(content);
}

TEST(Width, SiblingsWithALongCommonBeginningAreReadInLinearTime) {
    const std::string few = siblings(12500);
    const std::string many = siblings(100000);
    const double ratio =
        secondsOf([&] { Document document(many); }) / secondsOf([&] { Document document(few); });
    EXPECT_LT(ratio, kLinear);
}

TEST(Width, SiblingsAreWrittenInLinearTime) {
    Document few(siblings(2500));
    Document many(siblings(20000));
    const double ratio = secondsOf([&] { many.written(); }) / secondsOf([&] { few.written(); });
    EXPECT_LT(ratio, kLinear);
}

TEST(Width, ObjectsWithoutAClassAreReadInLinearTimeByALocator) {
    const auto document = [](int count) {
        std::string content;
        for (int i = 0; i < count; ++i) content += "<group name='g" + std::to_string(i) + "' class=''/>";
        return inRoot(content);
    };
    const auto work = [](const std::string& text) {
        MemoryDataStore store;
        const SharedPtr<ISchemaLocator> locator = ISchemaLocator::make(&store);
        EXPECT_THAT(read(store, text, locator.get()), IsEmpty());
    };
    const std::string few = document(4000);
    const std::string many = document(32000);
    EXPECT_LT(secondsOf([&] { work(many); }) / secondsOf([&] { work(few); }), kLinear);
}

std::string numbers(int count) {
    std::string text;
    for (int i = 0; i < count; ++i) text += std::to_string(i % 1000) + " ";
    return inGroup("<int32 name='i'>" + text + "</int32>");
}

TEST(Length, AMillionNumbersAreReadInLinearTime) {
    const std::string few = numbers(125000);
    const std::string many = numbers(1000000);
    std::unique_ptr<Document> document;
    const double longTime = secondsOf([&] { document = std::make_unique<Document>(many); });
    const double shortTime = secondsOf([&] { Document read(few); });
    EXPECT_LT(longTime / shortTime, kLinear);
    const std::vector<std::int32_t> values = document->values<std::int32_t>("g.i");
    ASSERT_EQ(values.size(), 1000000U);
    EXPECT_EQ(values[1001], 1);
    EXPECT_EQ(values[999999], 999);
}

TEST(Length, NumbersAreWrittenInLinearTime) {
    Document few(numbers(25000));
    Document many(numbers(200000));
    EXPECT_LT(secondsOf([&] { many.written(); }) / secondsOf([&] { few.written(); }), kLinear);
}

TEST(Length, ManyStringsOfOneValueAreWrittenInLinearTime) {
    const auto made = [](std::uint32_t count) {
        auto document = std::make_unique<Document>(inGroup("<string name='s'/>"));
        Design::Primitive(&document->store, document->at("g.s")).resize(count);
        return document;
    };
    const auto few = made(12500);
    const auto many = made(100000);
    EXPECT_LT(secondsOf([&] { many->written(); }) / secondsOf([&] { few->written(); }), kLinear);
}

std::string repeated(const std::string& piece, int count) {
    std::string text;
    for (int i = 0; i < count; ++i) text += piece;
    return text;
}

TEST(Length, ManyStringsOfOneValueAreReadInLinearTime) {
    const auto document = [](int count) {
        return inGroup("<string name='s'>" + repeated("<val>some text</val>", count) + "</string>");
    };
    const std::string few = document(12500);
    const std::string many = document(100000);
    const double ratio = secondsOf([&] { Document read(many); }) / secondsOf([&] { Document read(few); });
    EXPECT_LT(ratio, kLinear);
    EXPECT_EQ(Document(many).record("g.s")->load(Record::field::valueSize), 100000U * 20U);
}

TEST(Length, FewNumbersLaidOverALongValueCostNoMoreThanOverAShortOne) {
    const auto document = [](const std::string& dimension) {
        return inGroup("<int8 name='i' dim='" + dimension + "'>" + repeated("<val>1</val>", 20000) +
                       "</int8>" + repeated("<int8 name='i'>2</int8>", 5000));
    };
    const std::string over100 = document("100");
    const std::string over1000000 = document("1000000");
    const double ratio =
        secondsOf([&] { Document read(over1000000); }) / secondsOf([&] { Document read(over100); });
    EXPECT_LT(ratio, 4);
}

}  // namespace
}  // namespace norvane::platform::data::test
