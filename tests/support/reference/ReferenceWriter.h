// Writing a store the plain way: by recursion, a piece of text for every number and every blank. The library
// must write the same bytes.
#pragma once

#include <cstring>
#include <string>
#include <vector>

#include "norvane/platform/core/QVTUUID.h"
#include "norvane/platform/core/io/IDataWriter.h"
#include "norvane/platform/core/xml/XMLSerializer.h"
#include "support/reference/ReferenceReader.h"

namespace norvane::platform::data::reference {

class ReferenceWriter {
  public:
    ReferenceWriter(IDataStore* store, core::xml::XMLSerializer& serializer,
                    metadata::ISchemaLocator* locator)
        : store_(store), out_(serializer), locator_(locator) {}

    void write(std::uint32_t offset) {
        std::uint8_t kind = 0;
        if (offset == IDataStore::BADOFF || store_->recordSize(offset) == 0) return;
        store_->read(offset, &kind, 1);
        if (kind == 0) {
            Metadata::Root root(store_, offset);
            if ((root.flags() & 4) != 0) return;
            start("root");
            attribute("version", std::to_string(store_->version()));
            attribute("name", root.name());
            names(root);
            children(root);
        } else if (kind == 1) {
            Design::Primitive primitive(store_, offset);
            if ((primitive.flags() & 4) != 0) return;
            value(primitive);
        } else if (kind == 2) {
            Design::Table table(store_, offset);
            if ((table.flags() & 4) != 0) return;
            start("table");
            attribute("name", table.name());
            attribute("class", table.classText());
            defaults(table);
            names(table);
            children(table);
        } else if (kind == 4) {
            Structural::Container container(store_, offset);
            if ((container.flags() & 4) != 0) return;
            static const char* const kNames[] = {"node", "group", "link"};
            start(kNames[container.kind()]);
            attribute("name", container.name());
            attribute("class", container.classText());
            if (container.kind() == 2) attribute("to", container.linkTarget());
            names(container);
            children(container);
        } else {
            return;
        }
        out_.endElement(false);
    }

  private:
    static std::u16string wide(const std::string& text) {
        std::u16string result;
        core::string::StringAlgorithm::UTF8Decode(text, result);
        return result;
    }
    void start(const std::string& name) { out_.startElement(wide(name).c_str(), nullptr); }
    void attribute(const std::string& name, std::u16string_view text) {
        const std::u16string terminated(text);
        out_.addAttribute(wide(name).c_str(), text.empty() ? nullptr : terminated.c_str(), nullptr);
    }
    void attribute(const std::string& name, const std::string& text) { attribute(name, wide(text)); }

    static std::string unitName(std::uint32_t id) {
        for (const format::xml::tUnit& unit : format::xml::kUnitTable)
            if (unit.name && unit.id == id) return unit.name;
        return "";
    }

    std::uint32_t names(Metadata::Item& object) {
        for (std::uint32_t i = 0; i < object.localisedCount(); ++i) {
            start("name");
            attribute("locale", object.localeAt(i));
            out_.addCharacterData(object.textAt(i).c_str());
            out_.endElement(false);
        }
        return object.localisedCount();
    }

    void children(Metadata::Set& set) {
        for (std::uint32_t i = 0; i < set.childCount(); ++i) write(set.childAt(i));
    }

    void defaults(const Design::Table& table) {
        for (const std::int32_t key : table.defaultKeys()) {
            start("default");
            attribute("unit", unitName(table.defaultUnit(key)));
            const std::uint32_t type = table.defaultType(key);
            if (type >= 1 && type <= 23) attribute("type", std::string(kDefaultWords[type]));
            out_.endElement(false);
        }
    }

    void value(Design::Primitive& primitive) {
        const std::uint32_t type = primitive.dataType();
        start(kTypeNames[type]);
        attribute("name", primitive.name());
        if (primitive.units() != 0) attribute("units", unitName(primitive.units()));
        if (!primitive.localeTag().empty()) attribute("locale", primitive.localeTag());
        if (type == 24) attribute("type", primitive.structType());
        if (primitive.hasUri()) attribute("uri", primitive.uri());
        const bool hasNames = names(primitive) != 0;
        const auto count = static_cast<std::uint32_t>(primitive.valueSize() / kElementBytes[type]);
        if (primitive.hasUri() || count == 0) return;
        std::vector<char> bytes(primitive.valueSize());
        primitive.readValues(bytes.data(), 0, count);
        if (type == 24)
            structs(primitive, bytes, hasNames);
        else if (type >= 2 && type <= 6)
            strings(bytes, hasNames);
        else
            inVal(hasNames, [&] { type == 1 ? binary(bytes) : numbers(type, bytes); });
    }

    template <class Write>
    void inVal(bool isNeeded, Write content) {
        if (isNeeded) start("val");
        content();
        if (isNeeded) out_.endElement(false);
    }

    void text(const std::string& piece) { out_.addCharacterData(wide(piece).c_str()); }

    void binary(const std::vector<char>& bytes) {
        using core::string::StringAlgorithm;
        std::string encoded(StringAlgorithm::EncodeBase64(bytes.data(), bytes.size(), nullptr, 0), ' ');
        StringAlgorithm::EncodeBase64(bytes.data(), bytes.size(), encoded.data(), encoded.size());
        text(encoded);
    }

    void numbers(std::uint32_t type, const std::vector<char>& bytes) {
        for (std::size_t at = 0; at < bytes.size(); at += kElementBytes[type]) {
            if (at != 0) text(" ");
            text(formatNumber(&bytes[at], static_cast<int>(type) - 7));
        }
    }

    void strings(const std::vector<char>& bytes, bool hasNames) {
        std::vector<std::u16string> found(1);
        for (std::size_t at = 0; at + 1 < bytes.size(); at += 2) {
            char16_t unit = 0;
            std::memcpy(&unit, &bytes[at], 2);
            if (unit == 0)
                found.emplace_back();
            else
                found.back() += unit;
        }
        const bool isOne = found.size() == 2 && found.back().empty();
        found.pop_back();
        for (const std::u16string& each : found)
            inVal(hasNames || !isOne, [&] { out_.addCharacterData(each.c_str()); });
    }

    void structs(const Design::Primitive& primitive, std::vector<char> bytes, bool hasNames) {
        if (!locator_) return;
        inVal(hasNames, [&] {
            const auto schema = locator_->locate(WideString(primitive.structType().c_str()));
            if (!schema || schema->layout()->byteSize() == 0) return;
            metadata::IStructLayout& layout = *schema->layout();
            const std::size_t count = bytes.size() / layout.byteSize();
            bytes.resize(bytes.size() + 8);
            std::size_t position = 0;
            std::string buffer;
            for (std::size_t i = 0; i < count * layout.fieldCount(); ++i) {
                const auto& field = *layout.field(static_cast<std::uint32_t>(i % layout.fieldCount()));
                for (std::uint32_t element = 0; element < field.count; ++element) {
                    if (position != 0) text(" ");
                    if (field.type >= 7 && field.type <= 23)
                        buffer = formatNumber(&bytes[position], static_cast<int>(field.type) - 7);
                    text(buffer);
                    position += field.size / field.count;
                }
            }
        });
    }

    IDataStore* store_;
    core::xml::XMLSerializer& out_;
    metadata::ISchemaLocator* locator_;
};

inline void write(IDataStore& store, core::io::IDataWriter& writer, metadata::ISchemaLocator* locator,
                  std::uint32_t offset) {
    core::QVTUUID identifier;
    core::xml::XMLSerializer serializer(identifier);
    writer.open();
    serializer.attach(&writer);
    serializer.emitXMLHeader();
    ReferenceWriter(&store, serializer, locator).write(offset);
    serializer.detach();
    writer.close();
}

}  // namespace norvane::platform::data::reference
