#pragma once

#include "norvane/platform/data/metadata/ISchemaLocator.h"
#include "norvane/platform/data/structure/IContainer.h"

namespace norvane::platform::core::io {
class IDataReader;
class IDataWriter;
}  // namespace norvane::platform::core::io

namespace norvane::platform::data::format::xml {

class IErrorReporter;
class IURIResolver;

/// Reads documents into stores and writes stores as documents.
/// It has no objects, checks no document ahead of reading it, and undoes nothing: what was stored before a
/// failure stays stored.
///
/// It takes no guard. Keep other threads off the store meanwhile, or hold the guard around the call. Reader,
/// writer, locator and reporter are called on the caller's thread. Locator, resolver and reporter may be
/// null.
class QVT_DATA_TYPE IXMLFrontEnd {
  public:
    /// Reads a document into a store as a new tree: a `root` in an empty store becomes the store's root; any
    /// other document element, and any in a store that has records, becomes a tree that is in no container.
    /// Without a locator classes are ignored and structs are refused. What is wrong in an element goes to the
    /// reporter, and the element is skipped. A syntax error or an exception ends the reading in silence; a
    /// core::xml::DiagnosingReader around the reader tells it, and the place of every report. Opens the
    /// reader and closes it, except after an exception. Flushes the store in the end, also when the reader
    /// did not open.
    static QVT_DATA_API void parse(IDataStore* store, core::io::IDataReader* reader,
                                   metadata::ISchemaLocator* locator, IURIResolver* resolver,
                                   IErrorReporter* reporter);

    /// Reads a document into a container: the document element stands for the container, which keeps its own
    /// name and class; its children and display names go into the container. An existing property with the
    /// name and type of one that is read is overwritten. Exceptions reach the caller, and the store is not
    /// flushed. The handle knows its new children afterwards.
    static QVT_DATA_API void parse(structure::IContainer* container, core::io::IDataReader* reader,
                                   metadata::ISchemaLocator* locator, IURIResolver* resolver,
                                   IErrorReporter* reporter);

    /// Writes the tree below the record at `offset` as a document: 0 for the whole store, BADOFF for a header
    /// alone. What came from a class and was not changed is left out, and so are struct values without a
    /// locator. Floats have at most 7 significant digits. Opens the writer and closes it; does not flush the
    /// store. When something throws, the writer is not closed; a writer that takes no more bytes makes
    /// `std::runtime_error` of it.
    static QVT_DATA_API void serialize(IDataStore* store, core::io::IDataWriter* writer,
                                       metadata::ISchemaLocator* locator, unsigned int offset);
};

}  // namespace norvane::platform::data::format::xml
