#!/usr/bin/env bash
# usage: exports.sh <libqvt_data> <list of names>
# What the library shows is its list and nothing else, beside the type information of the three classes that hosts
# derive from and that are defined here.
set -euo pipefail
export LC_ALL=C
library=$1 listed=$2
type=norvane::platform::data::type

shown=$(nm -D --defined-only --demangle "$library" | cut -d' ' -f3- | sort -u)
rtti='^(typeinfo|typeinfo name|vtable) for '

diff --label listed --label shown <(sort "$listed") <(grep -vE "$rtti" <<<"$shown")
diff --label 'type information listed' --label shown \
    <(for class in "$type::IType" "$type::asset::v1::IAsset" "$type::asset::v1::IResource"; do
        printf '%s for '"$class"'\n' typeinfo 'typeinfo name' vtable
    done | sort) <(grep -E "$rtti" <<<"$shown")
