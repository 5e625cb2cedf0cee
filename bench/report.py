"""The tables, as text that is a page's table too."""

import re

PEERS = ("ours", "expat", "libxml2_sax", "libxml2_tree", "pugixml", "hdf5", "sqlite", "lmdb", "fdatasync", "bare", "stream")


def table(head, rows):
    widths = [max(len(row[i]) for row in [head, *rows]) for i in range(len(head))]

    def line(cells):
        return "| " + " | ".join(cell.ljust(width) for cell, width in zip(cells, widths)) + " |"

    return "\n".join([line(head), "|" + "|".join("-" * (width + 2) for width in widths) + "|", *map(line, rows)])


def limit(value, line):
    if value is None:
        return ""
    return f"{value:g} {line.unit}"


def verdict(line, ratio):
    if ratio is None:
        return "not measured"
    reached = (lambda goal: ratio >= goal) if line.rises else (lambda goal: ratio <= goal)
    if line.aim is not None and reached(line.aim):
        return "aim"
    return "holds" if reached(line.hold) else "does not hold"


def goal_table(measured):
    rows = []
    for line, figure, ratio in measured:
        known = figure is not None
        rows.append([
            str(line.row), line.what, line.shown.format(figure) if known else "",
            "" if not known or not line.against else f"{ratio:.2f} x {line.against}",
            limit(line.hold, line), limit(line.aim, line), verdict(line, ratio)])
    return table(["Row", "What", "Figure", "Ratio", "Hold", "Aim", "Verdict"], rows)


def peer_cell(fields, unit, scale, floor):
    if fields is None:
        return ""
    if unit == "expat":
        return f"{fields['seconds'] / fields['units'] / floor:.2f}"
    value = scale(fields) if callable(scale) else fields["seconds"] / fields["units"] * scale
    return f"{value:,.0f}"


def peer_table(peers, rounds, median):
    shown = [name for name in PEERS if any(name in peer[3] for peer in peers)]
    rows = []
    for what, unit, scale, measurements in peers:
        cells = {}
        for name, measurement in measurements.items():
            all_fields = [found[measurement.key] for found in rounds if measurement.key in found]
            if all_fields:
                cells[name] = {field: median([fields[field] for fields in all_fields])
                               for field in ("seconds", "units", "bytes") if field in all_fields[0]}
        floor = cells["expat"]["seconds"] / cells["expat"]["units"] if "expat" in cells else None
        rows.append([what, "x expat" if unit == "expat" else unit,
                     *(peer_cell(cells.get(name), unit, scale, floor) for name in shown)])
    return table(["What", "Unit", *(name.replace("_", " ") for name in shown)], rows)


def into_page(page, sections):
    """Puts each section between the marks of its name."""
    text = page.read_text()
    for name, section in sections.items():
        marks = re.compile(rf"(<!-- {name} -->\n).*?(<!-- /{name} -->)", re.S)
        if not marks.search(text):
            raise SystemExit(f"{page} has no marks for {name}")
        text = marks.sub(lambda match, section=section: match[1] + section + "\n" + match[2], text)
    page.write_text(text)
