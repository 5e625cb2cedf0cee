// Reading a document.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "norvane/platform/core/xml/IXMLPauses.h"
#include "norvane/platform/core/xml/XMLCallback.h"
#include "norvane/platform/data/format/xml/IErrorReporter.h"
#include "xml/KeywordTable.h"
#include "xml/PendingValue.h"

namespace norvane::platform::data {

// Knows elements in general: keeps the open ones, gives each tag to its handler, collects text, and turns
// what is wrong into one report and the skipping of one subtree. What an element means is its handler's
// matter.
//
// What is written for each element is what is left of it in the end. What only somebody who looks at the
// store in between would see (a value without its text, the open counts of the elements that are open) is
// written when somebody can, and the open elements begin to remember their children: before a report, before
// a reader of the host's own is asked for more, and for each tag if the locator is not this library's own.
//
// Lives for one document. Everything that it needs is a member, so that a reporter or a locator may read
// another document meanwhile.
class XMLParsingLogic final : public core::xml::XMLCallback, public core::xml::IXMLPauses {
  public:
    // All are borrowed. With a target, the document element stands for that open object; without, it becomes
    // a new tree. Target, locator and reporter may be null.
    XMLParsingLogic(IDataStore* store, Metadata::Item* target, metadata::ISchemaLocator* locator,
                    format::xml::IErrorReporter* reporter);
    XMLParsingLogic(const XMLParsingLogic&) = delete;
    XMLParsingLogic& operator=(const XMLParsingLogic&) = delete;
    // Elements that are still open, because the document broke off, are left as they are in the store: open
    // counts stay raised, and display names that were not stored yet are lost.
    ~XMLParsingLogic() override;

    void startElement(const char* name, Attributes attributes) override;
    void endElement(const char* name) override;
    void comment(const char*) override {}
    void processingInstruction(const char*, const char*) override {}
    void characterData(const char* text, int length) override;
    void pausing() override;

  private:
    // The object is owned here unless it is the target.
    struct OpenElement {
        Metadata::Item* object;
        Element* handler;
        Metadata::Set* set;  // the object, if it has children
    };

    // As much of an element name as counts.
    static constexpr std::size_t kNameLimit = 256;

    // Reports, and skips from here to the end of the element.
    void failElement(std::string_view name, std::u16string_view message);
    std::string_view lower(const char* name);
    bool startQuickly(Element& handler, Attributes attributes);
    void startKeyword(const char* name, std::string_view lowerName, Element& handler, Attributes attributes);
    void startOther(std::string_view lowerName, Attributes attributes);
    void nest(std::string_view lowerName, Element& handler, Owned<Metadata::Item>& object);
    void openTarget(const char* name, Element& handler);
    void push(Owned<Metadata::Item>& object, Element& handler);
    void openPending();
    void endPending();
    void showOpen();
    void tellLocator();
    void endSubElement();
    void closeTop();

    IDataStore* store_;
    Metadata::Item* target_;
    metadata::ISchemaLocator* locator_;
    format::xml::IErrorReporter* reporter_;
    KeywordTable handlers_;
    const bool isLocatorForeign_;
    std::vector<OpenElement> stack_;
    std::size_t seen_ = 0;  // of the stack, from the bottom, may be met by others
    PendingValue pending_;  // in the top of the stack
    Element* pendingHandler_ = nullptr;
    std::string text_;  // since the last tag that was not skipped
    char lowerName_[kNameLimit];
    std::uint64_t skipDepth_ = 0;  // elements to close until skipping ends
    bool inSubElement_ = false;
    bool keepValue_ = false;  // the open value element had a sub-element, and its own text means nothing
};

}  // namespace norvane::platform::data
