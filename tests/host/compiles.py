#!/usr/bin/env python3
"""Each header of include/qvt compiles alone; of each pair below, what is right compiles and what is wrong does not. In C++17
the headers that programs begin with say what they need, and nothing else.

usage: compiles.py CXX INCLUDE
"""

import pathlib
import subprocess
import sys
import tempfile

CXX, INCLUDE = sys.argv[1:]
FLAGS = ["-std=c++20", "-Wall", "-Wextra", "-Wshadow", "-Wconversion", "-Wnon-virtual-dtor",
         "-Woverloaded-virtual", "-Werror", "-I" + INCLUDE]
COMMON = """
#include "qvt/qvt.hpp"
#include "qvt/file.hpp"
"""
BEGIN = """
struct Point { double x; std::string word; double list[2]; void move(); };
void use(qvt::MemoryStore& store, qvt::FileStore& file, qvt::Container container, qvt::Property property) {
    (void)store, (void)file, (void)container, (void)property;
"""

# What it is about, what compiles, what does not, and a word of the compiler on that.
PAIRS = [
    ("no type holds characters", "property.value<std::int8_t>();", "property.value<char>();", "constraint"),
    ("no type is wider than 64 bits", "property.value<double>();", "property.value<long double>();", "constraint"),
    ("a value is no reference", "property.values<int>();", "property.values<int&>();", "value"),
    ("a struct goes through a map", "property.assign(1.5);", "property.assign(Point());", "assign"),
    ("vectors have 2 to 4 numbers", "property.value<qvt::vec<4>>();", "property.value<qvt::vec<5>>();", "constraint"),
    ("a vector has no more numbers", "(void)qvt::vec<2>{1, 2};", "(void)qvt::vec<2>{1, 2, 3};", "initializer"),
    ("a name is a text", 'container.find("a");', "container.find(nullptr);", "deleted|conversion|ambiguous|matching"),
    ("a name is no number", 'container.find("1");', "container.find(1);", "convert|matching|conversion|bind"),
    ("units are looked up", 'container.make("a", 1.5, "Kilowatt");', 'container.make("a", 1.5, "Kilowat");',
     "constant"),
    ("a unit comes behind its value", 'container.make("a", 1.5);', 'container.make("a", "Watt", 1.5);', "make"),
    ("a pointer is no value", "property.assign(true);", "property.assign(&store);", "assign"),
    ("a guard has a name", "const auto guard = qvt::hold(store);", "qvt::hold(store);", "nodiscard"),
    ("a guard is not moved", "const auto guard = qvt::hold(store);",
     "auto guard = qvt::hold(store); auto other = std::move(guard);", "deleted"),
    ("a store is no temporary", "const auto guard = qvt::hold(store);",
     "const auto guard = qvt::hold(qvt::MemoryStore());", "bind|rvalue"),
    ("a member of a class is a number", 'qvt::field("x", &Point::x);', 'qvt::field("word", &Point::word);',
     "constraint"),
    ("an array has a known length", 'qvt::field("x", &Point::x);', 'qvt::field("list", &Point::list);', "constraint"),
    ("an operation is no member", 'qvt::field("x", &Point::x);', 'qvt::field("move", &Point::move);', "constraint"),
    ("work is kept or not", "qvt::commit(file, [] { return true; });", "qvt::commit(file, [] { return 1; });",
     "constraint"),
    ("work gets no argument", "qvt::commit(file, [] {});", "qvt::commit(file, [](int) {});", "constraint"),
    ("only files commit", "qvt::commit(file, [] {});", "qvt::commit(store, [] {});", "commit"),
    ("a walk is gone once", "qvt::Walk walk(container);", "qvt::Walk walk(container); qvt::Walk other(walk);",
     "deleted"),
    ("a visitor takes all there is", "qvt::visit(property, [](const auto&) {});",
     "qvt::visit(property, [](const std::vector<double>&) {});", "call|matching"),
    ("a handle is looked at as a condition", "bool is(property); (void)is;", "bool is = property; (void)is;",
     "convert|conversion"),
    ("a class is found, not named", 'container.makeNode("a", qvt::Classes(store).find("T"));',
     'container.makeNode("a", "T");', "convert|conversion|matching"),
]


def compiled(text, *more):
    run = subprocess.run([CXX, *FLAGS, *more, "-fsyntax-only", "-x", "c++", "-"], input=text.encode(),
                         stderr=subprocess.PIPE)
    return run.returncode == 0, run.stderr.decode()


def check_wrong(common, about, wrong, words):
    works, said = compiled(BEGIN + wrong + "}", "-include", common)
    if works:
        return f"{about}: this should not compile: {wrong}"
    if not any(word in said for word in words.split("|")):
        return f"{about}: this fails for another reason: {wrong}\n{said}"
    return None


def check_right(common):
    works, said = compiled(BEGIN + "".join(f"{{ {right} }}\n" for _, right, _, _ in PAIRS) + "}", "-include", common)
    return None if works else f"what is right should compile\n{said}"


def check_alone(header):
    works, said = compiled(f'#include "qvt/{header}"\n' * 2)
    return None if works else f"{header} does not compile alone\n{said}"


def check_older(header):
    works, said = compiled(f'#include "qvt/{header}"\n', "-std=c++17")
    errors = [line for line in said.splitlines() if "error:" in line]
    return None if not works and len(errors) == 1 and "C++20" in errors[0] else f"{header} in C++17 says\n{said}"


def main():
    headers = [path.name for path in pathlib.Path(INCLUDE, "qvt").glob("*.hpp")]
    with tempfile.TemporaryDirectory() as folder:
        # Compiled once for all pairs; compilers look for it beside the header by their own endings.
        common = pathlib.Path(folder, "common.h")
        common.write_text(COMMON)
        ending = ".pch" if "clang" in CXX else ".gch"
        subprocess.run([CXX, *FLAGS, "-x", "c++-header", str(common), "-o", f"{common}{ending}"], check=True)
        found = [check_alone(header) for header in headers]
        found += [check_older(header) for header in ("qvt.hpp", "file.hpp")]
        found.append(check_right(str(common)))
        found += [check_wrong(str(common), about, wrong, words) for about, _, wrong, words in PAIRS]
    print(f"{len(headers)} headers, {len(PAIRS)} pairs")
    wrong = [words for words in found if words]
    if wrong:
        sys.exit("\n".join(wrong))


main()
