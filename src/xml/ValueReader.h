// Values from the text of a document.
#pragma once

#include <cstdint>
#include <string>

#include "model/Primitive.h"
#include "norvane/platform/data/Names.h"
#include "norvane/platform/data/metadata/ISchema.h"

namespace norvane::platform::data {

// How many elements a value is made for ahead of its text: vectors and matrices are of one size, for the
// others the `dim` attribute tells, which may be null.
std::uint32_t presetCount(std::uint32_t type, const char* dimension);

// The bytes of a text in Base64, up to the first character that is none, in place of what was there.
void decodeBase64(const std::string& text, std::string& bytes);

// Each of these lays what the text holds over the value that is there and never shortens it. A value that
// does not fit a record is thrown as `TooLarge`.

// Base64.
void readBinary(Design::Primitive& primitive, const std::string& text);

// The text as it stands, white space included, with its NUL, from that element on.
void readText(Design::Primitive& primitive, const std::string& text, std::uint32_t start);

// One element a token, from the first on. A token that is no number leaves its element as it was.
void readNumbers(Design::Primitive& primitive, const std::string& text);

// As many structs as there are tokens for. Each number is laid down with the width that it was read in, which
// is more than that of a narrow field: it spills into the field behind, whose own number then covers that. So
// fields that take no number, or whose token is none, keep the spill. Without a schema nothing is read.
void readStructs(Design::Primitive& primitive, const std::string& text,
                 const SharedPtr<metadata::ISchema>& schema);

}  // namespace norvane::platform::data
