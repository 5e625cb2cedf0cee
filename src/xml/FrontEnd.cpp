#include "impl/ContainerImpl.h"
#include "norvane/platform/core/QVTUUID.h"
#include "norvane/platform/core/io/IDataReader.h"
#include "norvane/platform/core/io/IDataWriter.h"
#include "norvane/platform/core/xml/XMLParser.h"
#include "norvane/platform/data/format/xml/IXMLFrontEnd.h"
#include "xml/DocumentWriter.h"
#include "xml/XMLParsingLogic.h"

namespace norvane::platform::data::format::xml {

namespace {

// The reader is closed unless something throws.
void read(XMLParsingLogic& logic, core::io::IDataReader* reader) {
    if (!reader->open()) return;
    core::xml::XMLParser parser(logic);
    parser.parseDocument(reader);
    reader->close();
}

}  // namespace

void IXMLFrontEnd::parse(IDataStore* store, core::io::IDataReader* reader, metadata::ISchemaLocator* locator,
                         IURIResolver*, IErrorReporter* reporter) {
    if (!store || !reader) return;
    XMLParsingLogic logic(store, nullptr, locator, reporter);
    try {
        read(logic, reader);
    } catch (...) {  // the parser has told the reader, if that wants to know
    }
    store->flush();
}

void IXMLFrontEnd::parse(structure::IContainer* container, core::io::IDataReader* reader,
                         metadata::ISchemaLocator* locator, IURIResolver*, IErrorReporter* reporter) {
    auto* handle = dynamic_cast<ContainerImpl*>(container);
    if (!handle || !reader) return;
    XMLParsingLogic logic(handle->store(), &handle->item(), locator, reporter);
    read(logic, reader);
}

void IXMLFrontEnd::serialize(IDataStore* store, core::io::IDataWriter* writer,
                             metadata::ISchemaLocator* locator, unsigned int offset) {
    if (!store || !writer) return;
    core::QVTUUID identifier;
    core::xml::XMLSerializer serializer(identifier);
    writer->open();
    serializer.attach(writer);
    serializer.emitXMLHeader();
    DocumentWriter(store, serializer, locator).write(offset);
    serializer.detach();
    writer->close();
}

}  // namespace norvane::platform::data::format::xml
