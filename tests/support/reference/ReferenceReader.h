// Reading a document the plain way: every token copied, every number through a stream and stored by itself,
// every decision taken where it comes up. Slow; the library must leave the same records and give the same
// reports.
#pragma once

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstring>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "model/Container.h"
#include "model/Open.h"
#include "model/Primitive.h"
#include "model/Table.h"
#include "norvane/platform/core/string/StringAlgorithm.h"
#include "norvane/platform/core/xml/XMLParser.h"
#include "norvane/platform/data/format/xml/UnitTable.h"
#include "norvane/platform/data/metadata/ISchemaLocator.h"
#include "norvane/platform/data/metadata/IStructLayout.h"
#include "support/reference/NumberTextReference.h"

namespace norvane::platform::data::reference {

inline const char* const kTypeNames[25] = {
    "",        "binary",  "uuid",    "string",    "time",      "uri",       "version", "bool",   "int8",
    "uint8",   "int16",   "uint16",  "int32",     "uint32",    "int64",     "uint64",  "scalar", "double",
    "vector2", "vector3", "vector4", "matrix2x2", "matrix3x3", "matrix4x4", "struct"};
inline const char* const kDefaultWords[24] = {"",        "binary", "uuid",  "string", "time",   "uri",
                                              "version", "bool",   "int8",  "uint8",  "int16",  "uint16",
                                              "int32",   "uint32", "int64", "uint64", "scalar", "double",
                                              "vec2",    "vec3",   "vec4",  "mtx2x2", "mtx3x3", "mtx4x4"};
inline const std::size_t kElementBytes[25] = {0, 1, 2, 2, 2, 2, 2, 1, 1, 1, 2, 2, 4,
                                              4, 8, 8, 4, 8, 8, 8, 8, 8, 8, 8, 1};

class ReferenceReader : public core::xml::XMLCallback {
  public:
    ReferenceReader(IDataStore* store, metadata::ISchemaLocator* locator) : store_(store), locator_(locator) {
        add("root", 0, 0);
        add("table", 2, 0);
        add("node", 4, 0);
        add("group", 4, 1);
        add("link", 4, 2);
        for (std::uint32_t type = 1; type <= 24; ++type) add(kTypeNames[type], 1, type);
    }
    ReferenceReader(const ReferenceReader&) = delete;
    ReferenceReader& operator=(const ReferenceReader&) = delete;
    ~ReferenceReader() override {
        for (const auto& [object, handler] : stack_) {
            object->abandon();
            delete object;
        }
    }

    const std::vector<std::string>& reports() const { return reports_; }

    void startElement(const char* name, const char* const* attributes) override {
        if (skipping_) {
            ++skipDepth_;
            return;
        }
        if (inSubElement_) return fail(name, "cannot nest anything under a sub-element");
        text_.clear();
        std::string lower;
        for (const char* at = name; *at && lower.size() < 256; ++at)
            lower += static_cast<char>(std::tolower(static_cast<unsigned char>(*at)));
        const auto handler = handlers_.find(lower);
        if (handler == handlers_.end()) return startSubElement(lower, attributes);
        Metadata::Item* object = create(handler->second, attributes);
        if (!object) return fail(name, error_);
        if (!stack_.empty()) {
            Metadata::Item* nested = nest(object);
            if (nested != object) delete object;
            if (!nested) return fail(lower, "could not nest the element");
            object = nested;
        }
        stack_.emplace_back(object, &handler->second);
    }

    void endElement(const char*) override {
        if (skipping_) {
            if (--skipDepth_ == 0) skipping_ = false;
            return;
        }
        const auto [object, handler] = stack_.back();
        if (inSubElement_) {
            endContent(*handler, object);
            inSubElement_ = false;
        } else {
            if (!keepValue_) endContent(*handler, object);
            keepValue_ = false;
            stack_.pop_back();
            delete object;
        }
        text_.clear();
    }

    void comment(const char*) override {}
    void processingInstruction(const char*, const char*) override {}
    void characterData(const char* text, int length) override {
        text_.append(text, static_cast<std::size_t>(length));
    }

  private:
    struct Handler {
        int kind;
        std::uint32_t detail;
        int subState = 0;
        std::string subLocale;
        std::string unit;
        std::string type;
    };

    void add(const char* name, int kind, std::uint32_t detail) {
        handlers_[name] = {kind, detail, 0, "", "", ""};
    }

    static std::u16string wide(const std::string& text) {
        std::u16string result;
        core::string::StringAlgorithm::UTF8Decode(text, result);
        return result;
    }

    static const char* find(const char* name, const char* const* attributes) {
        for (; *attributes; attributes += 2)
            if (std::strcmp(name, *attributes) == 0) return attributes[1];
        return nullptr;
    }

    static std::uint32_t unitIdOf(const std::string& name) {
        for (const format::xml::tUnit& unit : format::xml::kUnitTable)
            if (unit.name && name == unit.name) return unit.id;
        return 0;
    }

    SharedPtr<metadata::ISchema> locate(const std::u16string& names) {
        return locator_ ? locator_->locate(WideString(names.c_str())) : SharedPtr<metadata::ISchema>();
    }

    void fail(const std::string& name, const std::string& message) {
        skipping_ = true;
        skipDepth_ = 1;
        reports_.push_back(name + " : " + message);
    }

    void startSubElement(const std::string& name, const char* const* attributes) {
        if (stack_.empty() || !takesSubElement(*stack_.back().second, name, attributes))
            return fail(name, "unknown element, skipping");
        inSubElement_ = true;
        if (stack_.back().second->kind == 1) keepValue_ = true;
    }

    static bool takesSubElement(Handler& handler, const std::string& name, const char* const* attributes) {
        if (handler.subState != 0) return false;
        if (name == "name") {
            const char* locale = find("locale", attributes);
            handler.subLocale = locale ? locale : "en-us";
            handler.subState = 1;
            return true;
        }
        if (name == "val" && handler.kind != 2) {
            handler.subState = 2;
            return true;
        }
        if (name != "default" || handler.kind != 2 || !find("unit", attributes) || !find("type", attributes))
            return false;
        handler.unit = find("unit", attributes);
        handler.type = find("type", attributes);
        handler.subState = 3;
        return true;
    }

    Metadata::Item* create(const Handler& handler, const char* const* attributes) {
        const char* name = find("name", attributes);
        error_ = "missing mandatory 'id' attribute";
        if (!name) return nullptr;
        if (handler.kind == 0) {
            if (const char* text = find("version", attributes)) {
                std::uint32_t version = 0;
                parseNumber(text, &version, 6);
                store_->setVersion(version);
            }
            return new Metadata::Root(store_, wide(name));
        }
        if (handler.kind == 1) return createPrimitive(handler.detail, wide(name), attributes);
        if (handler.kind == 2) {
            auto* table = new Design::Table(store_, wide(name));
            mark(*table, attributes);
            if (const char* names = find("class", attributes))
                if (const auto schema = locate(wide(names))) table->applySchema(schema.get());
            return table;
        }
        auto* container = new Structural::Container(store_, handler.detail, wide(name));
        mark(*container, attributes);
        if (const char* names = find("class", attributes))
            if (const auto schema = locate(wide(names))) container->importClasses(schema.get());
        const char* target = find("to", attributes);
        if (target && handler.detail == 2) container->setLinkTarget(wide(target).c_str());
        return container;
    }

    static void mark(Metadata::Item& object, const char* const* attributes) {
        const char* optional = find("optional", attributes);
        if (optional && std::strcmp(optional, "true") == 0) object.setFlags(1);
    }

    Metadata::Item* createPrimitive(std::uint32_t type, const std::u16string& name,
                                    const char* const* attributes) {
        const char* structType = find("type", attributes);
        error_ = "missing mandatory 'type' attribute for <struct>";
        if (type == 24 && !structType) return nullptr;
        error_ = "missing locator to resolve the 'type' attribute";
        if (type == 24 && !locator_) return nullptr;
        auto* primitive = new Design::Primitive(store_, type, name);
        static const std::uint32_t kCounts[] = {2, 3, 4, 4, 9, 16};
        unsigned count = 0;
        if (type >= 18 && type <= 23)
            count = kCounts[type - 18];
        else if (const char* dimension = find("dim", attributes))
            if (std::sscanf(dimension, "%u", &count) != 1) count = 0;
        const char* uri = find("uri", attributes);
        if (uri) primitive->setUri(wide(uri).c_str());
        if (const char* locale = find("locale", attributes)) primitive->setLocale(wide(locale).c_str());
        if (const char* units = find("units", attributes)) primitive->setUnits(unitIdOf(units));
        if (type != 24) {
            if (!uri) primitive->resize(count);
        } else if (const auto schema = locate(wide(structType))) {
            primitive->setStructType(wide(structType).c_str());
            if (!uri) primitive->resize(count * schema->layout()->byteSize());
        }
        return primitive;
    }

    std::uint8_t kindOf(std::uint32_t offset) {
        std::uint8_t kind = 0;
        store_->read(offset, &kind, 1);
        return kind;
    }

    // The child, an existing object in its place, or null.
    Metadata::Item* nest(Metadata::Item* child) {
        const int parentKind = stack_.back().second->kind;
        const std::uint8_t kind = kindOf(child->offset());
        if (parentKind == 1 || kind == 0) return nullptr;
        auto* parent = static_cast<Metadata::Set*>(stack_.back().first);
        if (parentKind == 0 && kind == 1) return nullptr;
        if (parentKind == 2 && kind == 4) return nullptr;
        if (parentKind == 0 || kind == 4) return parent->addChild(child->offset()) ? child : nullptr;
        const std::uint32_t existing = parent->find(child->name());
        if (existing != IDataStore::BADOFF) return override(existing, kind, child);
        parent->addChild(child->offset());
        return child;
    }

    Metadata::Item* override(std::uint32_t offset, std::uint8_t kind, Metadata::Item* child) {
        if (kindOf(offset) != kind) return nullptr;
        Metadata::Item* existing = nullptr;
        bool isSame = false;
        if (kind == 1) {
            auto* primitive = new Design::Primitive(store_, offset);
            isSame = primitive->sameAs(*static_cast<Design::Primitive*>(child));
            existing = primitive;
        } else {
            auto* table = new Design::Table(store_, offset);
            isSame = table->sameAs(*static_cast<Design::Table*>(child));
            existing = table;
        }
        if (isSame) {
            existing->touch();
            return existing;
        }
        delete existing;
        return nullptr;
    }

    void endContent(Handler& handler, Metadata::Item* object) {
        if (handler.subState == 1) {
            object->setLocalised(wide(text_).c_str(), wide(handler.subLocale).c_str());
            handler.subState = 0;
            return;
        }
        if (handler.kind == 1) return endValue(handler, static_cast<Design::Primitive&>(*object));
        if (handler.subState != 3) return;
        const auto word = std::find(kDefaultWords + 1, kDefaultWords + 24, handler.type);
        if (word == kDefaultWords + 24) return;
        static_cast<Design::Table*>(object)->addDefault(unitIdOf(handler.unit),
                                                        static_cast<std::uint32_t>(word - kDefaultWords));
        handler.subState = 0;
    }

    void endValue(Handler& handler, Design::Primitive& primitive) {
        const bool isVal = std::exchange(handler.subState, 0) == 2;
        if (primitive.hasUri()) return;
        if (handler.detail == 24) return endStruct(primitive);
        if (handler.detail == 1) {
            std::vector<char> bytes(
                core::string::StringAlgorithm::DecodeBase64(text_.data(), text_.size(), nullptr, 0));
            core::string::StringAlgorithm::DecodeBase64(text_.data(), text_.size(), bytes.data(),
                                                        bytes.size());
            primitive.writeValues(bytes.data(), 0, static_cast<std::uint32_t>(bytes.size()));
        } else if (handler.detail <= 6) {
            const std::u16string units = wide(text_);
            primitive.writeValues(units.c_str(), isVal ? primitive.valueSize() / 2 : 0,
                                  static_cast<std::uint32_t>(units.size() + 1));
        } else {
            const std::vector<std::string> tokens = tokenize(text_);
            for (std::uint32_t i = 0; i < tokens.size(); ++i) {
                char number[8];
                if (parseNumber(tokens[i], number, static_cast<int>(handler.detail) - 7))
                    writeElement(primitive, handler.detail, number, i);
            }
        }
    }

    // On an empty value the source counts as the base of the whole array, of which the element is the last.
    static void writeElement(Design::Primitive& primitive, std::uint32_t type, const char* element,
                             std::uint32_t index) {
        const std::size_t size = kElementBytes[type];
        if (primitive.valueSize() / size != 0) {
            primitive.writeValues(element, index, 1);
            return;
        }
        std::vector<char> array(size * (index + 1));
        std::memcpy(array.data() + size * index, element, size);
        primitive.writeValues(array.data(), index, 1);
    }

    static std::vector<std::string> tokenize(std::string text) {
        std::vector<std::string> tokens;
        std::string token;
        bool isSpace = true;
        for (const char each : text) {
            const bool wasSpace = isSpace;
            isSpace = each == ' ' || each == '\n' || each == '\r' || each == '\t';
            if (!isSpace)
                token += each;
            else if (!wasSpace)
                tokens.push_back(std::exchange(token, ""));
        }
        tokens.push_back(token);
        return tokens;
    }

    void endStruct(Design::Primitive& primitive) {
        const auto schema = locate(primitive.structType());
        if (!schema) return;
        const std::vector<std::string> tokens = tokenize(text_);
        metadata::IStructLayout& layout = *schema->layout();
        if (layout.valueCount() == 0) return;
        const std::size_t total = tokens.size() / layout.valueCount() * layout.byteSize();
        // Room for all tokens, however long their fields: what lies behind the whole structs is dropped.
        std::vector<char> bytes(total + (tokens.size() / layout.valueCount() + 2) *
                                            (std::size_t{layout.byteSize()} + 16));
        std::size_t position = 0;
        std::uint32_t fieldIndex = 0;
        std::uint32_t valueIndex = 0;
        for (const std::string& token : tokens) {
            while (layout.field(fieldIndex % layout.fieldCount())->count == 0)
                position += layout.field(fieldIndex++ % layout.fieldCount())->size;
            const metadata::IStructLayout::tField& field = *layout.field(fieldIndex % layout.fieldCount());
            if (field.type >= 7 && field.type <= 23)
                parseNumber(token, bytes.data() + position, static_cast<int>(field.type) - 7);
            position += field.size / field.count;
            if (++valueIndex != field.count) continue;
            valueIndex = 0;
            ++fieldIndex;
        }
        primitive.writeValues(bytes.data(), 0, static_cast<std::uint32_t>(total));
    }

    IDataStore* store_;
    metadata::ISchemaLocator* locator_;
    std::map<std::string, Handler> handlers_;
    std::vector<std::pair<Metadata::Item*, Handler*>> stack_;
    std::string text_;
    std::string error_;
    std::vector<std::string> reports_;
    bool skipping_ = false;
    int skipDepth_ = 0;
    bool inSubElement_ = false;
    bool keepValue_ = false;
};

// Reads a document and gives the reports.
inline std::vector<std::string> read(IDataStore& store, core::io::IDataReader& reader,
                                     metadata::ISchemaLocator* locator) {
    ReferenceReader callback(&store, locator);
    reader.open();
    core::xml::XMLParser parser(callback);
    parser.parseDocument(&reader);
    reader.close();
    return callback.reports();
}

}  // namespace norvane::platform::data::reference
