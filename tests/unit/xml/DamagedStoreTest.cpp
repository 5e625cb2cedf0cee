// Stores whose records lie: nothing that is read from or written to them may go wrong in any other way than
// by being wrong.
#include <new>

#include "unit/xml/Documents.h"

namespace norvane::platform::data::test {
namespace {

const char* const kDocument =
    "<root name='r'><name>R</name>"
    "<table name='A'><default unit='Meter' type='double'/><int32 name='i'>1 2</int32><table name='t'><string "
    "name='s'>x</string></table></table>"
    "<table name='P'><int8 name='a'>0</int8><string name='b'>x</string><int32 name='u' uri='u'/><double "
    "name='d'>0</double></table>"
    "<group name='g' class='A'><name>G</name><int32 name='i'>3</int32><struct name='p' type='P'>1 2 3 "
    "4</struct>"
    "<link name='l' to='g.n'/><node name='n'><binary name='b'>AAEC</binary><double name='d' locale='de' "
    "units='Meter'>1</double></node>"
    "</group></root>";

const char* const kAddition =
    "<group name='x'><name>X</name><int32 name='i'>5 6 7</int32><table name='t'><string "
    "name='s'><val>y</val></string></table>"
    "<group name='new' class='A;P'><struct name='p' type='P' dim='2'>1</struct></group></group>";

class DamagedStore : public testing::Test {
  protected:
    DamagedStore() {
        const SharedPtr<ISchemaLocator> locator = ISchemaLocator::make(&store_);
        EXPECT_THAT(read(store_, kDocument, locator.get()), IsEmpty());
        for (std::uint32_t offset = 0; offset < store_.size(); ++offset) sound_.push_back(bytesOf(offset));
    }

    std::string bytesOf(std::uint32_t offset) {
        std::string bytes(store_.recordSize(offset), '\0');
        if (!bytes.empty()) store_.read(offset, bytes.data(), 0xFFFFFFFF);
        return bytes;
    }

    void restore() {
        for (std::uint32_t offset = 0; offset < sound_.size(); ++offset) {
            if (store_.recordSize(offset) == 0 || bytesOf(offset) == sound_[offset]) continue;
            store_.write(offset, sound_[offset].data(), static_cast<std::uint32_t>(sound_[offset].size()),
                         true);
        }
    }

    // Everything that this layer does with a store, with one of its records damaged.
    void use(std::uint32_t damaged, const std::string& bytes) {
        store_.write(damaged, bytes.data(), static_cast<std::uint32_t>(bytes.size()), true);
        try {
            const SharedPtr<ISchemaLocator> locator = ISchemaLocator::make(&store_);
            written(store_, locator.get());
            written(store_, locator.get(), damaged);
            if (const SharedPtr<IContainer> group =
                    structure::IContainerFrontEnd::find(&store_, WideString(u"g")))
                readInto(*group, kAddition, locator.get());
        } catch (const std::bad_alloc&) {  // a size that fits no record
        }
        restore();
    }

    MemoryDataStore store_{MemoryDataStore::Options{1 << 20}};
    std::vector<std::string> sound_;
};

TEST_F(DamagedStore, EveryFieldOfEveryRecordMayHaveAnyValue) {
    const auto count = static_cast<std::uint32_t>(sound_.size());
    const std::uint32_t values[]{0, 1, 2, 25, 0x7FFFFFFF, 0xFFFFFFFE, 0xFFFFFFFF, count - 1};
    for (std::uint32_t offset = 0; offset < count; ++offset) {
        if (sound_[offset].empty()) continue;
        const Record::Format& format = *Record::formatOf(static_cast<std::uint8_t>(sound_[offset][0]));
        for (const Record::FieldRow& field : format.fields) {
            for (const std::uint32_t value : values) {
                std::string bytes = sound_[offset];
                std::memcpy(bytes.data() + field.position, &value, field.width);
                use(offset, bytes);
            }
        }
    }
}

TEST_F(DamagedStore, EveryListMayLeadAnywhere) {
    const auto count = static_cast<std::uint32_t>(sound_.size());
    for (std::uint32_t offset = 0; offset < count; ++offset) {
        if (sound_[offset].empty() || sound_[offset][0] != 3) continue;
        for (std::uint32_t target = 0; target <= count; ++target) {
            std::string bytes = sound_[offset];
            if (bytes.size() < 5) continue;
            std::memcpy(bytes.data() + 1, &target, 4);
            use(offset, bytes);
        }
    }
}

TEST_F(DamagedStore, EveryRecordMayBeCutShort) {
    for (std::uint32_t offset = 0; offset < sound_.size(); ++offset)
        for (std::size_t size = 0; size < sound_[offset].size(); size += size < 46 ? 1 : 7)
            use(offset, sound_[offset].substr(0, size));
}

TEST_F(DamagedStore, EveryRecordMayBeMissing) {
    for (std::uint32_t offset = 0; offset < sound_.size(); ++offset) {
        MemoryDataStore fresh;
        for (const std::string& bytes : sound_)
            fresh.append(bytes.data(), static_cast<std::uint32_t>(bytes.size()));
        fresh.remove(offset);
        const SharedPtr<ISchemaLocator> locator = ISchemaLocator::make(&fresh);
        written(fresh, locator.get());
        if (const SharedPtr<IContainer> group = structure::IContainerFrontEnd::find(&fresh, WideString(u"g")))
            readInto(*group, kAddition, locator.get());
    }
}

}  // namespace
}  // namespace norvane::platform::data::test
