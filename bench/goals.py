"""What is measured, and which line of the table it makes."""

import dataclasses
from typing import Callable, Optional


@dataclasses.dataclass(frozen=True)
class Document:
    """A workload of a size, as `generate` knows it."""

    workload: str
    size: int
    depth: int = 10
    own: bool = False  # as this library writes it

    @property
    def name(self):
        return f"{self.workload}-{self.size}-{self.depth}" + ("-own" if self.own else "")

    @property
    def arguments(self):
        return {"workload": self.workload, "size": self.size, "depth": self.depth}


@dataclasses.dataclass(frozen=True)
class Measurement:
    """One start of one program. `document` is given as a file, or as words when `built` is set."""

    program: str
    task: str
    document: Optional[Document] = None
    built: bool = False
    more: tuple = ()
    after: Optional["Measurement"] = None  # is run once, ahead of all rounds

    @property
    def key(self):
        parts = [self.program, self.task, self.document.name if self.document else "", "built" if self.built else ""]
        return " ".join(filter(None, parts + [f"{key}={value}" for key, value in self.more]))


@dataclasses.dataclass
class Line:
    """A line of the table. `figure` and `ratio` compute from the fields of one round; `ratio` is what is compared with
    `hold` and `aim`, and smaller is better unless `rises` is set."""

    row: int
    what: str
    needs: list
    figure: Callable
    shown: str
    ratio: Callable
    against: str
    hold: Optional[float]
    aim: Optional[float]
    unit: str = "x"
    rises: bool = False


def per_unit(fields):
    return fields["seconds"] / fields["units"]


class Plan:
    """All lines, for sizes as they are meant or, when quick, for sizes that only show that everything works."""

    def __init__(self, quick):
        self.quick = quick
        self.lines = []
        self.peers = []
        self.make()

    def size(self, meant, quick):
        return quick if self.quick else meant

    def compare(self, row, what, ours, other, against, hold, aim, scale=1e9, shown="{:,.0f} ns", times=1):
        """`ours` per unit against `other` per unit."""
        self.lines.append(Line(
            row, what, [ours, other], lambda r: per_unit(r[ours.key]) * scale, shown,
            lambda r: per_unit(r[ours.key]) / (per_unit(r[other.key]) * times), against, hold, aim))

    def absolute(self, row, what, ours, hold, aim, scale, unit, value=per_unit):
        self.lines.append(Line(
            row, what, [ours], lambda r: value(r[ours.key]) * scale, "{:,.4g} " + unit,
            lambda r: value(r[ours.key]) * scale, "", hold, aim, unit=unit))

    def growth(self, row, what, large, small, large_units, small_units, hold):
        """The cost of a unit at a large size against that at a small one."""
        self.lines.append(Line(
            row, what, [large, small], lambda r: per_unit(r[large.key]) / large_units * 1e9, "{:,.0f} ns",
            lambda r: per_unit(r[large.key]) / large_units / (per_unit(r[small.key]) / small_units),
            "smaller one", hold, None))

    def peer(self, what, unit, scale, **measurements):
        """A line of the table of peers: the same thing done by each of them."""
        self.peers.append((what, unit, scale, measurements))

    def import_lines(self, row, what, document, hold, aim, per):
        """A document into a store, over expat; `per` is how many units it has."""
        ours, floor = Measurement("import", "import", document), Measurement("expat", "parse", document)
        self.compare(row, what, ours, floor, "expat", hold, aim, scale=1e9 / per)
        return ours

    def peers_of_import(self, what, document):
        self.peer(f"import {what}", "expat", None,
                  ours=Measurement("import", "import", document), expat=Measurement("expat", "parse", document),
                  libxml2_sax=Measurement("libxml2", "parse", document),
                  libxml2_tree=Measurement("libxml2", "load", document),
                  pugixml=Measurement("pugixml", "load", document))

    def make(self):
        self.imports()
        self.lookups()
        self.whole_models()
        self.memory()
        self.arrays()
        self.records()
        self.number_text()
        self.files()
        self.threads()

    def imports(self):
        small, large = Document("props", self.size(20_000, 2_000)), Document("props", self.size(510_000, 5_000))
        self.import_lines(1, "import props, 1 MB, a value", small, 2.5, 1.6, small.size)
        self.import_lines(1, "import props, 25 MB, a value", large, 2.5, 1.6, large.size)
        arrays = Document("arrays", self.size(5_000_000, 20_000))
        self.import_lines(2, "import arrays, 44 MB, a number", arrays, 2.3, 1.2, arrays.size)
        short, long = Document("array", self.size(10_000, 1_000)), Document("array", self.size(1_000_000, 10_000))
        self.growth(2, f"a number of {long.size:,} against {short.size:,}", Measurement("import", "import", long),
                    Measurement("import", "import", short), long.size, short.size, 1.3)
        widths = [self.size(1_000, 100), self.size(10_000, 1_000), self.size(200_000, 5_000)]
        wide = {width: Document("wide", width) for width in widths}
        for width in widths:
            self.import_lines(3, f"import a group of {width:,}, a child", wide[width], 2.5, 1.7, width)
        self.growth(3, f"a child of {widths[2]:,} against {widths[1]:,}", Measurement("import", "import", wide[widths[2]]),
                    Measurement("import", "import", wide[widths[1]]), widths[2], widths[1], 1.2)
        self.own_output(Document("wide", self.size(100_000, 2_000)))
        levels = self.size(100_000, 2_000)
        shallow, deep = Document("deep", levels, 10), Document("deep", levels, levels // 10)
        self.import_lines(4, "import deep, depth 10, a level", shallow, 2.8, 1.9, levels)
        self.import_lines(4, f"import deep, depth {deep.depth:,}, a level", deep, 2.8, 1.9, levels)
        self.growth(4, f"a level at depth {deep.depth:,} against 10", Measurement("import", "import", deep),
                    Measurement("import", "import", shallow), levels, levels, 1.3)
        self.small_stack(Document("deep", levels, levels))
        classes = Document("classes", self.size(10_000, 100))
        self.import_lines(5, "import objects of a class of 30, a member", classes, 9.5, 5, classes.size * 30)
        for what, document in (("props", large), ("arrays", arrays), (f"wide {widths[2]:,}", wide[widths[2]]),
                               (f"deep {deep.depth:,}", deep), ("classes", classes)):
            self.peers_of_import(what, document)

    def own_output(self, document):
        """What is written here says class="" wherever there is none, and is a quarter longer for it."""
        own = Measurement("import", "import", dataclasses.replace(document, own=True))
        plain = Measurement("import", "import", document)
        self.compare(3, f"import a group of {document.size:,} as written here, a child", own, plain, "one without class=\"\"",
                     1.3, 1.1, scale=1e9 / document.size)

    def small_stack(self, document):
        ours = Measurement("import", "small-stack", document)
        self.lines.append(Line(4, f"{document.depth:,} levels on a stack of 256 KiB", [ours],
                               lambda r: r[ours.key]["read"], "{:.0f}", lambda r: r[ours.key]["read"], "", 1, 1,
                               unit="read", rises=True))

    def lookups(self):
        props = Document("props", self.size(100_000, 2_000))
        held = Measurement("access", "held", props)
        step = Measurement("pugixml", "traverse", props)
        self.compare(6, "held container: find, open, read a double, close", held, step, "pugixml's step", 1.6, 0.8)
        path = Measurement("access", "path", props)
        self.absolute(7, "path from the root to a double, props", path, 3, 0.6, 1e6, "us")
        narrow, wide = Document("wide", self.size(1_000, 100)), Document("wide", self.size(100_000, 2_000))
        narrow_path, wide_path = Measurement("access", "path", narrow), Measurement("access", "path", wide)
        self.absolute(7, f"path in a group of {wide.size:,}", wide_path, 3, 0.6, 1e6, "us")
        self.growth(7, f"path at width {wide.size:,} against {narrow.size:,}", wide_path, narrow_path, 1, 1, 1.5)
        prefix = Document("prefix", self.size(100_000, 2_000))
        self.absolute(7, f"open a group of {prefix.size:,} names with a long common beginning, find 100",
                      Measurement("access", "open", prefix), 200, None, 1e3, "ms")
        traverse = Measurement("access", "traverse", props)
        self.compare(8, "traverse, a value", traverse, step, "pugixml", 1.5, 0.7)
        self.peer("traverse, a value", "ns", 1e9, ours=traverse, pugixml=step)
        self.peer("path from the root, props", "ns", 1e9, ours=path, pugixml=Measurement("pugixml", "path", props))

    def whole_models(self):
        props = Document("props", self.size(100_000, 2_000))
        write, save = Measurement("access", "write", props), Measurement("pugixml", "save", props)
        self.lines.append(Line(
            9, "write props as text", [write, save],
            lambda r: r[write.key]["text"] / per_unit(r[write.key]) / 1e6, "{:.0f} MB/s",
            lambda r: per_unit(r[write.key]) / per_unit(r[save.key]), "pugixml's save", 2.3, 1.5))
        array = Document("array", self.size(1_000_000, 10_000))
        numbers = Measurement("access", "write", array)
        bare = Measurement("plain", "to-chars", more=(("size", array.size),))
        self.compare(10, "write arrays, a number", numbers, bare, "a bare to_chars", 1.2, 0.6, scale=1e9 / array.size,
                     times=array.size)
        build = Measurement("change", "build", props, built=True)
        tree = Measurement("pugixml", "build", props, built=True)
        self.compare(11, "build through the interface, a value", build, tree, "pugixml", 1.9, 1.2)
        self.peer("build, a value", "ns", 1e9, ours=build, pugixml=tree,
                  hdf5=Measurement("hdf5", "build", more=(("size", self.size(20_000, 1_000)),)))

    def memory(self):
        props = Document("props", self.size(510_000, 20_000))
        arrays = Document("arrays", self.size(5_000_000, 200_000))
        for what, document, over, hold, aim in (("props", props, "records", 1.7, 1.35),
                                                ("arrays", arrays, "payload", 2.1, 1.5)):
            ours = Measurement("import", "memory", document)
            self.lines.append(Line(
                12, f"peak memory of an import, {what}", [ours], lambda r, ours=ours: r[ours.key]["bytes"] / 1e6, "{:.1f} MB",
                lambda r, ours=ours, over=over: r[ours.key]["bytes"] / r[ours.key][over],
                {"records": "bytes of records", "payload": "bytes of values"}[over], hold, aim))
            self.peer(f"peak memory of an import, {what}", "MB", lambda fields: fields["bytes"] / 1e6, ours=ours,
                      libxml2_tree=Measurement("libxml2", "memory", document),
                      pugixml=Measurement("pugixml", "memory", document))
        self.memory_of_units(props)

    def memory_of_units(self, props):
        def a_value(fields):
            return fields["bytes"] / fields["units"]

        self.peer("memory of a value, props", "bytes", a_value, ours=Measurement("import", "memory", props),
                  libxml2_tree=Measurement("libxml2", "memory", props),
                  pugixml=Measurement("pugixml", "memory", props))
        nodes = self.size(10_000, 1_000)
        self.peer("memory of a member: inherited here, written out there", "bytes", a_value,
                  ours=Measurement("import", "memory", Document("classes", nodes)),
                  libxml2_tree=Measurement("libxml2", "memory", Document("copies", nodes)),
                  pugixml=Measurement("pugixml", "memory", Document("copies", nodes)))

    def arrays(self):
        size = (("size", self.size(1_000_000, 10_000)),)
        copy = Measurement("plain", "copy", more=size)
        self.compare(13, "write an array of 1 M doubles", Measurement("change", "array-write", more=size), copy, "memcpy", 5,
                     2.5, scale=1e3, shown="{:.2f} ms")
        self.compare(13, "read it", Measurement("change", "array-read", more=size), copy, "memcpy", 3.5, 1.2, scale=1e3,
                     shown="{:.2f} ms")
        self.absolute(14, "open, read one of 1 M elements, close", Measurement("change", "element", more=size), 10, 1, 1e6,
                      "us")

    def records(self):
        size = (("size", self.size(100_000, 1_000)),)
        for task, hold, aim in (("put", 1.0, 0.7), ("get", 1.0, 0.7), ("update", 1.2, 0.9)):
            self.compare(15, f"memory store, {task} 64 bytes", Measurement("store", task, more=size),
                         Measurement("plain", task, more=size), "vector<string>", hold, aim, shown="{:.1f} ns")

    def number_text(self):
        for task, hold, aim in (("parse", 15, 25), ("print", 8, 15)):
            ours, stream = Measurement("numbers", task), Measurement("numbers", task + "-stream")
            self.lines.append(Line(
                16, f"{task} a number", [ours, stream], lambda r, ours=ours: per_unit(r[ours.key]) * 1e9, "{:.1f} ns",
                lambda r, ours=ours, stream=stream: per_unit(r[stream.key]) / per_unit(r[ours.key]), "a stream's speed",
                hold, aim, rises=True))
            self.peer(f"{task} a number", "ns", 1e9, ours=ours, bare=Measurement("numbers", task + "-chars"), stream=stream)

    def files(self):
        for megabytes, count in ((25, self.size(510_000, 5_000)), (1, self.size(20_000, 2_000))):
            document = Document("props", count)
            node = count // 20
            place = (("container", f"top.group_{node // 100}.part_{node}"), ("name", "length"))
            opened = Measurement("file", "open", document, more=place, after=Measurement("file", "make", document))
            self.absolute(17, f"file store of {megabytes} MB: open, read one value", opened, 2, 0.5, 1e3, "ms")
            self.absolute(17, "its peak memory", opened, 8, 2, 1e-6, "MB", value=lambda fields: fields["bytes"])
            if megabytes == 25:
                values = (("size", self.size(510_000, 5_000)),)
                few = (("size", 20_000),)
                self.peer("open a file, read one value", "us", 1e6, ours=opened,
                          sqlite=Measurement("sqlite", "open", more=values,
                                             after=Measurement("sqlite", "make", more=values)),
                          hdf5=Measurement("hdf5", "open", more=few, after=Measurement("hdf5", "make", more=few)))
        commit, durable = Measurement("file", "commit"), Measurement("plain", "durable")
        self.compare(18, "durable commit of one record (on the wall)", commit, durable, "write and fdatasync", 2.5, 1.5,
                     scale=1e3, shown="{:.2f} ms")
        size = (("size", self.size(100_000, 1_000)),)
        append, insert = Measurement("file", "append", more=size), Measurement("sqlite", "append", more=size)
        self.compare(18, "100 k new records in one commit, a record", append, insert, "SQLite's inserts", 1.2, 1.0)
        self.peer("durable commit of one record, on the wall", "us", 1e6, ours=commit, sqlite=Measurement("sqlite", "commit"),
                  lmdb=Measurement("lmdb", "commit"), fdatasync=durable)
        self.peer("new records in one commit, a record", "ns", 1e9, ours=append, sqlite=insert,
                  lmdb=Measurement("lmdb", "append", more=size))

    def threads(self):
        def on(task, threads, document=None):
            return Measurement("threads", task, document, more=(("threads", threads),))

        props, small = Document("props", self.size(20_000, 2_000)), Document("props", 2_000)
        for what, task, document, many, hold, aim in (
                ("cached lookups of a locator", "locator", None, 2, 1.7, 1.95),
                ("a store for each thread: read a document, walk", "stores", small, 2, 1.7, 1.95),
                ("one store under its guard: find, read", "shared", props, 4, 0.7, 1.0)):
            one, several = on(task, 1, document), on(task, many, document)
            self.lines.append(Line(
                19, f"{what}, on {many} threads", [several, one],
                lambda r, several=several: r[several.key]["rate"] / 1e6, "{:.2f} M/s",
                lambda r, several=several, one=one: r[several.key]["rate"] / r[one.key]["rate"], "one thread", hold, aim,
                rises=True))
            if many == 2:
                # Threads that never wait are as fast as the processors are many; then what they cost one another shows
                # in the CPU time of a unit, also where other programs run.
                self.lines.append(Line(
                    19, "the same in CPU time", [several, one],
                    lambda r, several=several: r[several.key]["cpu"] * 1e9, "{:.0f} ns",
                    lambda r, several=several, one=one: r[several.key]["cpu"] / r[one.key]["cpu"], "one thread",
                    round(2 / hold, 2), round(2 / aim, 2)))
