#include "norvane/platform/core/xml/DiagnosingReader.h"

namespace norvane::platform::core::xml {

bool DiagnosingReader::open() {
    parser_ = nullptr;
    lastPlace_ = {};
    stopped_ = false;
    stopPlace_ = {};
    stopText_.clear();
    return reader_.open();
}

void DiagnosingReader::close() { reader_.close(); }

std::size_t DiagnosingReader::read(void* buffer, std::size_t size) { return reader_.read(buffer, size); }

void DiagnosingReader::parsing(const XMLParser& parser) { parser_ = &parser; }

void DiagnosingReader::stopped(const tPlace& place, const char* text) {
    stopped_ = true;
    stopPlace_ = place;
    stopText_ = text;
}

void DiagnosingReader::finished() {
    lastPlace_ = place();
    parser_ = nullptr;
}

tPlace DiagnosingReader::place() const { return parser_ ? parser_->place() : lastPlace_; }

}  // namespace norvane::platform::core::xml
