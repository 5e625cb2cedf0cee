#include "xml/XMLParsingLogic.h"

#include <algorithm>
#include <cctype>
#include <utility>

#include "schema/SchemaLocatorImpl.h"

namespace norvane::platform::data {

namespace {

// What is a small letter or a digit in ASCII stays so whatever the host's locale is.
char lowerOf(char c) {
    if ((c >= 'a' && c <= 'z') || (c >= '0' && c <= '9')) return c;
    return static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
}

}  // namespace

XMLParsingLogic::XMLParsingLogic(IDataStore* store, Metadata::Item* target, metadata::ISchemaLocator* locator,
                                 format::xml::IErrorReporter* reporter)
    : store_(store),
      target_(target),
      locator_(locator),
      reporter_(reporter),
      handlers_(store, locator),
      isLocatorForeign_(locator && !dynamic_cast<Schema::SchemaLocatorImpl*>(locator)) {}

XMLParsingLogic::~XMLParsingLogic() {
    for (const OpenElement& open : stack_) {
        if (open.object == target_) continue;
        open.object->abandon();
        delete open.object;
    }
}

void XMLParsingLogic::startElement(const char* name, Attributes attributes) {
    if (skipDepth_ > 0) {
        ++skipDepth_;
        return;
    }
    if (pending_) openPending();
    if (inSubElement_) return failElement(name, u"cannot nest anything under a sub-element");
    text_.clear();
    if (isLocatorForeign_) tellLocator();
    const std::string_view lowerName = lower(name);
    if (Element* handler = handlers_.find(lowerName))
        startKeyword(name, lowerName, *handler, attributes);
    else
        startOther(lowerName, attributes);
}

void XMLParsingLogic::endElement(const char*) {
    if (skipDepth_ > 0) {
        --skipDepth_;  // and the text stays: what was skipped joins what follows
        return;
    }
    if (stack_.empty()) return;
    if (pending_)
        endPending();
    else if (inSubElement_)
        endSubElement();
    else
        closeTop();
    text_.clear();
}

void XMLParsingLogic::characterData(const char* text, int length) {
    text_.append(text, static_cast<std::size_t>(length));
}

void XMLParsingLogic::pausing() {
    if (pending_) openPending();
    showOpen();
}

void XMLParsingLogic::showOpen() {
    for (; seen_ < stack_.size(); ++seen_) stack_[seen_].object->beSeen();
}

// A locator of the host's own may count on hearing of every element, though the name says nothing.
void XMLParsingLogic::tellLocator() {
    showOpen();
    locator_->locate(WideString());
}

void XMLParsingLogic::failElement(std::string_view name, std::u16string_view message) {
    skipDepth_ = 1;
    if (!reporter_) return;
    showOpen();
    const std::u16string text = decode(name).append(u" : ").append(message);
    reporter_->report(WideString(text.data(), text.size()));
}

std::string_view XMLParsingLogic::lower(const char* name) {
    std::size_t length = 0;
    for (; length < kNameLimit && name[length] != '\0'; ++length) lowerName_[length] = lowerOf(name[length]);
    return {lowerName_, length};
}

void XMLParsingLogic::startOther(std::string_view lowerName, Attributes attributes) {
    Element* handler = stack_.empty() ? nullptr : stack_.back().handler;
    if (!handler || !handler->startSubElement(lowerName, attributes))
        return failElement(lowerName, u"unknown element, skipping");
    inSubElement_ = true;
    if (handler->keyword().kind == Record::Kind::primitive) keepValue_ = true;
}

void XMLParsingLogic::startKeyword(const char* name, std::string_view lowerName, Element& handler,
                                   Attributes attributes) {
    if (startQuickly(handler, attributes)) return;
    Owned<Metadata::Item> object = handler.create(attributes);
    if (!object) return failElement(name, handler.error());
    if (!stack_.empty()) return nest(lowerName, handler, object);
    if (!target_) return push(object, handler);
    object.reset();
    openTarget(name, handler);
}

// True for an element of which there is nothing to decide: a new child of a set that has room for it.
bool XMLParsingLogic::startQuickly(Element& handler, Attributes attributes) {
    if (stack_.empty()) return false;
    const OpenElement& top = stack_.back();
    const tKeyword& keyword = handler.keyword();
    if (!top.set || !top.handler->takes(keyword.kind)) return false;
    if (keyword.kind == Record::Kind::primitive) {
        pendingHandler_ = &handler;
        return pending_.begin(*top.set, keyword, attributes);
    }
    Owned<Metadata::Item> object = handler.createIn(*top.set, attributes);
    if (!object) return false;
    push(object, handler);
    return true;
}

void XMLParsingLogic::openPending() {
    Owned<Metadata::Item> object = pending_.open();
    push(object, *pendingHandler_);
}

void XMLParsingLogic::endPending() {
    if (pending_.end(text_)) return;
    openPending();
    closeTop();
}

// The report of a refusal is made while the refused object is still open.
void XMLParsingLogic::nest(std::string_view lowerName, Element& handler, Owned<Metadata::Item>& object) {
    const OpenElement& top = stack_.back();
    Owned<Metadata::Item> nested = top.handler->nest(*top.object, object);
    if (!nested) return failElement(lowerName, u"could not nest the element");
    object.reset();
    push(nested, handler);
}

void XMLParsingLogic::openTarget(const char* name, Element& handler) {
    std::uint8_t kind = 0;
    store_->read(target_->offset(), &kind, 1);
    if (!KeywordTable::serves(kind)) return failElement(name, u"could not...");
    stack_.push_back({target_, &handler, target_->asSet()});
}

void XMLParsingLogic::push(Owned<Metadata::Item>& object, Element& handler) {
    stack_.push_back({object.get(), &handler, object->asSet()});
    object.release();
}

void XMLParsingLogic::endSubElement() {
    const OpenElement& top = stack_.back();
    top.handler->endContent(*top.object, text_);
    inSubElement_ = false;
}

// Closing stores the display names, and may throw as the store does.
void XMLParsingLogic::closeTop() {
    const OpenElement top = stack_.back();
    if (!std::exchange(keepValue_, false)) top.handler->endContent(*top.object, text_);
    stack_.pop_back();
    seen_ = std::min(seen_, stack_.size());
    if (top.object != target_) delete top.object;
}

}  // namespace norvane::platform::data
