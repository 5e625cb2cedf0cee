// Writing a document.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "records/OffsetSet.h"
#include "xml/KeywordTable.h"

namespace norvane::platform::data {

// Walks the entities below a record and has each written by its handler. Every entity on the way down stays
// open, and counted as open, until its end tag is written: the writer and the locator are the host's and may
// look.
//
// Left out with all that lies below: what came from a class and was not changed, what no element can stand
// for, and damaged records. In a damaged store an entity can stand below itself or in two lists; it is
// written where it is met first.
class DocumentWriter {
  public:
    // All are borrowed; the locator may be null.
    DocumentWriter(IDataStore* store, XMLSerializer& serializer, metadata::ISchemaLocator* locator);
    DocumentWriter(const DocumentWriter&) = delete;
    DocumentWriter& operator=(const DocumentWriter&) = delete;
    ~DocumentWriter() noexcept(false);

    void write(std::uint32_t offset);

  private:
    struct Level {
        Metadata::Set* object;  // owned; an `Owned` may throw when it goes, which a vector cannot have
        std::vector<std::uint32_t> children;
        std::size_t next;
    };

    void open(std::uint32_t offset);
    void writePrimitive(std::uint32_t offset);
    void enter(Owned<Metadata::Set> set, Record::Kind kind);
    void close();

    IDataStore* store_;
    XMLSerializer& serializer_;
    KeywordTable handlers_;
    std::vector<Level> levels_;
    Record::OffsetSet met_;
};

}  // namespace norvane::platform::data
