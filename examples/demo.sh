#!/usr/bin/env bash
# Reads, shows and writes a document made of real buildings: examples/demo.sh <path of qvt>
set -euo pipefail

qvt=$(realpath "${1:?usage: demo.sh <path of qvt>}")
cd "$(dirname "${BASH_SOURCE[0]}")/documents"
written=$(mktemp -d)
trap 'rm -rf "$written"' EXIT

schemas=(--schemas ifc-small.lib.xml)
building=IFC-prefab_balkons.10_Appartementen_Schependomlaan.Site.Building
site=wall-with-opening-and-window.Default_Project.Default_Site
wall=$site.Default_Building.Default_Building_Storey.Wall_for_Test_Example

step() { printf '\n== %s\n' "$*"; }

# Prints the command as one types it here, and runs it.
run() {
    printf '$ qvt'
    printf ' %s' "$@"
    printf '\n'
    "$qvt" "$@"
}

step "Six building models in one document, as a tree"
run tree ifc-small.xml "${schemas[@]}" -d 1
run tree ifc-small.xml "${schemas[@]}" wall-with-opening-and-window -d 2

step "What it holds"
run stat ifc-small.xml "${schemas[@]}" | sed -n '1,/^bytes/p'

step "An object with its values; members of its class are marked"
run tree ifc-small.xml "${schemas[@]}" "$site" -d 1 --values

step "Values with units"
run tree ifc-small.xml "${schemas[@]}" "$wall.Pset_WallCommon" --values
run get ifc-small.xml "${schemas[@]}" "$wall.Pset_WallCommon.ThermalTransmittance"
run units HeatTransferCoefficient

step "A member inherited from its class: the document does not say it, the class does"
run show ifc-small.xml "${schemas[@]}" "$building.00_begane_grond.ROOT_nulpunt.Type.Name"

step "A member of a class with a value of its own"
run show ifc-small.xml "${schemas[@]}" "$site.RefElevation"

step "A class is satisfied by what names it"
run conforms ifc-small.xml "${schemas[@]}" "$site" Entities_2.IfcSite

step "A struct: its layout comes from its class"
run schema ifc-small.xml "${schemas[@]}" Structs.Axis2Placement3D
run show ifc-small.xml "${schemas[@]}" "$building.00_begane_grond.ROOT_nulpunt.ObjectPlacement"

step "A link, and the object that it leads to"
run show ifc-small.xml "${schemas[@]}" "$site.OwnerHistory"
run tree ifc-small.xml "${schemas[@]}" "$("$qvt" get ifc-small.xml "${schemas[@]}" "$site.OwnerHistory")" -d 1 --values

step "Display names in several languages"
run show ifc-small.lib.xml Types.IfcBuildingElementProxyType.Kubus_18
run show ifc-small.xml "${schemas[@]}" "$building.00_begane_grond.ROOT_nulpunt.ArchiCADProperties.Rotation_Angle"

step "Written as a document; written again from that, it has the same bytes"
run export ifc-small.xml "${schemas[@]}" -o "$written/once.xml"
run export "$written/once.xml" "${schemas[@]}" -o "$written/twice.xml"
printf '$ cmp %s %s\n' "$written/once.xml" "$written/twice.xml"
cmp "$written/once.xml" "$written/twice.xml"
printf 'the same %s bytes\n' "$(wc -c <"$written/once.xml")"
