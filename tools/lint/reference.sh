#!/usr/bin/env bash
# Makes the reference of the public headers in a folder, and fails on what has no contract: reference.sh FOLDER
set -euo pipefail
folder=$(realpath -m "${1:?usage: reference.sh FOLDER}")
cd "$(dirname "${BASH_SOURCE[0]}")/../.."

rm -rf "$folder"
mkdir -p "$folder"
{ cat Doxyfile; printf 'OUTPUT_DIRECTORY = "%s"\n' "$folder"; } | doxygen -

# What stands in a namespace without a description is left out in silence.
missing=0
while read -r name; do
    [[ -e $folder/html/namespace${name//::/_1_1}.html ]] && continue
    echo "docs/reference.dox does not say what $name is" >&2
    missing=1
done < <(grep -rhoE '^namespace (norvane|qvt)[a-z0-9_:]*' include | cut -d' ' -f2 | sort -u)
exit $missing
