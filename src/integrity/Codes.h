// The words that findings go by. They never change their meaning; docs/integrity.md says what each is.
#pragma once

#include <string>

namespace norvane::platform::data::integrity {

namespace code {

// One record.
inline constexpr char kUnreadable[] = "unreadable";
inline constexpr char kKind[] = "kind";
inline constexpr char kTooShort[] = "too-short";
inline constexpr char kSize[] = "size";
inline constexpr char kSlack[] = "slack";
inline constexpr char kListSize[] = "list-size";
inline constexpr char kText[] = "text";
inline constexpr char kNoName[] = "no-name";
inline constexpr char kOpenCount[] = "open-count";
inline constexpr char kLocalePairs[] = "locale-pairs";
inline constexpr char kFlags[] = "flags";
inline constexpr char kContainerKind[] = "container-kind";
inline constexpr char kDataType[] = "data-type";
inline constexpr char kUnit[] = "unit";
inline constexpr char kUnusedField[] = "unused-field";
inline constexpr char kUri[] = "uri";
inline constexpr char kValueSize[] = "value-size";
inline constexpr char kValueText[] = "value-text";
inline constexpr char kStructType[] = "struct-type";
inline constexpr char kDefaultsPair[] = "defaults-pair";
inline constexpr char kNameEmpty[] = "name-empty";
inline constexpr char kNameDot[] = "name-dot";
inline constexpr char kNameReserved[] = "name-reserved";

// How records hang together.
inline constexpr char kRootMissing[] = "root-missing";
inline constexpr char kRootKind[] = "root-kind";
inline constexpr char kParent[] = "parent";
inline constexpr char kChildren[] = "children";
inline constexpr char kLocale[] = "locale";
inline constexpr char kDefaults[] = "defaults";
inline constexpr char kShared[] = "shared";
inline constexpr char kChildDangling[] = "child-dangling";
inline constexpr char kChildKind[] = "child-kind";
inline constexpr char kListedTwice[] = "listed-twice";
inline constexpr char kCycle[] = "cycle";
inline constexpr char kNameTwice[] = "name-twice";
inline constexpr char kUnreachable[] = "unreachable";
inline constexpr char kVersion[] = "version";

// What repair does of its own.
inline constexpr char kRelisted[] = "relisted";
inline constexpr char kRecovered[] = "recovered";

}  // namespace code

// What repair does about an error of this code, in a sentence; empty for every other.
std::string remedyOf(const std::string& code);

}  // namespace norvane::platform::data::integrity
