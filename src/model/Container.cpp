#include "model/Container.h"

#include "model/Subtree.h"

namespace norvane::platform::data::Structural {

namespace field = Record::field;

Container::Container(IDataStore* store, std::uint32_t offset, Metadata::Opening opening) {
    {
        const Record::Snapshot record(store, offset);
        const auto [name, classText, linkTarget] =
            record->sections(Record::Kind::container, Record::format::containerSections);
        if (!bind(store, offset, Record::Kind::container, *record, name)) return;
        bindChildren(*record);
        kind_ = record->load(field::containerKind);
        if (classText.size != 0) classText_ = Record::View::textOf(classText);
        if (linkTarget.size != 0) linkTarget_ = Record::View::textOf(linkTarget);
    }
    if (opening == Metadata::Opening::handle) raiseOpenCount();
    indexChildren(opening);
}

Container::Container(IDataStore* store, std::uint32_t kind, std::u16string_view name) : kind_(kind) {
    Record::NewEntity record(Record::Kind::container);
    record.set(field::containerKind, static_cast<std::uint8_t>(kind));
    record.addText(field::containerNameSize, name);
    bindNew(store, record.appendTo(store), name);
    raiseOpenCount();
}

Container::Container(Metadata::Set& parent, std::uint32_t kind, std::u16string_view name, std::uint8_t flags,
                     const tWChar* linkTarget)
    : kind_(kind), linkTarget_(Record::textOf(linkTarget)) {
    Record::NewEntity record(Record::Kind::container);
    record.set(field::flags, flags);
    record.set(field::containerKind, static_cast<std::uint8_t>(kind));
    record.addText(field::containerNameSize, name);
    if (linkTarget) record.addText(field::linkTargetSize, linkTarget_);
    bindNew(parent.store(), parent.appendChild(record, name), name);
    beUnseen();
}

std::uint32_t Container::clone(IDataStore* target) {
    if (isInert()) return IDataStore::BADOFF;
    return Metadata::cloneSubtree(store(), offset(), {localeRecord(), childrenRecord(), IDataStore::BADOFF},
                                  target);
}

void Container::setLinkTarget(const tWChar* path) {
    Record::Entity record(store(), offset());
    if (isInert()) return;
    record.setField(field::linkTargetSize, path, path ? Record::storedSize(path) : 0);
    linkTarget_ = Record::textOf(path);
}

}  // namespace norvane::platform::data::Structural
