"""The cost of a unit over sizes: what grows faster than the work shows as a line that rises."""

import math

from goals import Document, Measurement, per_unit


def curves(quick):
    """name, then (size, measurement, units of one start) for each size."""
    sizes = [200, 1_000] if quick else [1_000, 10_000, 100_000, 1_000_000]
    more = (("more", 100), ("fewer", 100))

    def documents(program, task, workload, depth=None, count=None):
        result = []
        for size in sizes:
            document = Document(workload, size, depth or 10)
            result.append((size, Measurement(program, task, document), count(size) if count else size))
        return result

    def chains(size):
        return Measurement("import", "import", Document("deep", size, size))

    def sized(task):
        return [(size, Measurement("change", task, more=(("size", size), *more)), 1) for size in sizes]

    return [
        ("import an array, a number", documents("import", "import", "array")),
        ("import a wide group, a child", documents("import", "import", "wide")),
        ("import names with a common beginning, a value", documents("import", "import", "prefix")),
        ("import one chain, a level", [(size, chains(size), size) for size in sizes]),
        ("path into a wide group", documents("access", "path", "wide", count=lambda size: 1)),
        ("add to a wide group", sized("add")),
        ("remove from a wide group", sized("remove")),
        ("clone props, an object", documents("change", "clone", "props", count=lambda size: 1)),
        ("clone a wide group, an object", documents("change", "clone", "wide", count=lambda size: 1)),
        ("write props, a value", documents("access", "write", "props")),
        ("write a wide group, a child", documents("access", "write", "wide")),
    ]


def measure(runner, quick):
    """[(name, {size: seconds a unit})], and what has failed. The best of three rounds, since what else the machine does
    only adds; of models above 100,000 units one round, since they take long."""
    plan = curves(quick)
    points = [(size, measurement) for _, points in plan for size, measurement, _ in points]
    rounds, failures = runner.rounds([each for size, each in points if size <= 100_000], 1 if quick else 3)
    large, more = runner.rounds([each for size, each in points if size > 100_000], 1)
    rounds += large
    failures.update(more)
    found = []
    for name, points in plan:
        costs = {}
        for size, measurement, units in points:
            costs[size] = min((per_unit(each[measurement.key]) / units for each in rounds if measurement.key in each),
                              default=None)
        found.append((name, costs))
    return found, failures


def shown(cost):
    if cost is None:
        return "too long"
    return f"{cost * 1e9:,.0f} ns" if cost < 1e-5 else f"{cost * 1e6:,.0f} us"


def table(found):
    from report import table as lay_out

    sizes = list(found[0][1])
    rows = []
    for name, costs in found:
        known = [cost for cost in costs.values() if cost]
        # From the second size on: the first one pays what every start of a program pays.
        rise = known[-1] / known[min(1, len(known) - 1)] if known else 0
        rows.append([name, *(shown(costs[size]) for size in sizes), f"{rise:.1f} x"])
    return lay_out(["Cost of a unit", *(f"{size:,}" for size in sizes), f"last over {sizes[1]:,}"], rows)


COLOURS = ("#1b6ca8", "#c0392b", "#218c53", "#8e44ad", "#d68910", "#2c3e50", "#16a085", "#a04000", "#7f8c8d", "#e84393",
           "#6b8e23")
WIDTH, HEIGHT, LEFT, TOP, RIGHT, BOTTOM = 860, 420, 70, 20, 330, 50


def plot(found):
    """Both axes are logarithmic: a line that is level grows with the work, one that climbs with 45 degrees is quadratic."""
    points = [(size, cost * 1e9) for _, costs in found for size, cost in costs.items() if cost]
    low_x, high_x = (math.log10(limit([size for size, _ in points])) for limit in (min, max))
    low_y = math.floor(math.log10(min(cost for _, cost in points)))
    high_y = math.ceil(math.log10(max(cost for _, cost in points)))

    def x(size):
        return LEFT + (math.log10(size) - low_x) / (high_x - low_x) * (WIDTH - LEFT - RIGHT)

    def y(cost):
        return TOP + (high_y - math.log10(cost)) / max(1, high_y - low_y) * (HEIGHT - TOP - BOTTOM)

    parts = [f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {WIDTH} {HEIGHT}" font-family="sans-serif" '
             f'font-size="12">', f'<rect width="{WIDTH}" height="{HEIGHT}" fill="white"/>']
    for power in range(low_y, high_y + 1):
        parts.append(f'<line x1="{LEFT}" x2="{WIDTH - RIGHT}" y1="{y(10 ** power):.1f}" y2="{y(10 ** power):.1f}" '
                     f'stroke="#ddd"/><text x="{LEFT - 8}" y="{y(10 ** power) + 4:.1f}" text-anchor="end">'
                     f'{10 ** power:,} ns</text>')
    for size in sorted({size for size, _ in points}):
        parts.append(f'<line x1="{x(size):.1f}" x2="{x(size):.1f}" y1="{TOP}" y2="{HEIGHT - BOTTOM}" stroke="#ddd"/>'
                     f'<text x="{x(size):.1f}" y="{HEIGHT - BOTTOM + 18}" text-anchor="middle">{size:,}</text>')
    parts.append(f'<text x="{(LEFT + WIDTH - RIGHT) / 2:.0f}" y="{HEIGHT - 8}" text-anchor="middle">size</text>')
    for i, (name, costs) in enumerate(found):
        colour = COLOURS[i % len(COLOURS)]
        known = [(size, cost * 1e9) for size, cost in costs.items() if cost]
        way = " ".join(f"{x(size):.1f},{y(cost):.1f}" for size, cost in known)
        parts.append(f'<polyline points="{way}" fill="none" stroke="{colour}" stroke-width="2"/>')
        parts += [f'<circle cx="{x(size):.1f}" cy="{y(cost):.1f}" r="3" fill="{colour}"/>' for size, cost in known]
        row = TOP + 14 + i * 20
        parts.append(f'<rect x="{WIDTH - RIGHT + 18}" y="{row - 9}" width="12" height="4" fill="{colour}"/>'
                     f'<text x="{WIDTH - RIGHT + 36}" y="{row - 2}">{name}</text>')
    return "\n".join(parts + ["</svg>"]) + "\n"
