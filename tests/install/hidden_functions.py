#!/usr/bin/env python3
"""Looks for functions that public headers declare and the shared library does not give to be linked.

usage: hidden_functions.py CLANG INCLUDE LIBRARY

INCLUDE is the folder of the installed headers, LIBRARY the shared library. A function needs the library where no header
defines it, and where a template of it is declared as instantiated elsewhere (`extern template`). Those that the library
does not define, or hides, are printed, and the exit status is 1.
"""

import json
import pathlib
import subprocess
import sys

# What is looked at: the public declarations of these namespaces.
NAMESPACES = ["nvf", "tessarin::compiler::core", "kelvane"]

FUNCTIONS = {
    "FunctionDecl",
    "CXXMethodDecl",
    "CXXConstructorDecl",
    "CXXDestructorDecl",
    "CXXConversionDecl",
}
BODIES = {"CompoundStmt", "CXXTryStmt"}


def documents(text):
    """The trees that the compiler has written, one behind the other, each below a line that names it."""
    decoder = json.JSONDecoder()
    position = 0
    while (position := text.find("{", position)) >= 0:
        tree, position = decoder.raw_decode(text, position)
        yield tree


class Declarations:
    """The functions of a dump, by the place at which their template or they themselves are declared."""

    def __init__(self):
        self.file = None  # places name their file only where it is another one than that of the place before
        self.places = {}  # of each declaration, by its id
        self.defined = set()  # places of functions that have a body
        self.patterns = set()  # places of functions that are members of class templates
        self.functions = []  # (mangled name, place, whether it stands in what may be an `extern template`)

    def place_of(self, node):
        """The place of a node; looks at every place in it, in order, for the file."""
        found = None
        for key in ("loc", "range"):
            for place in self._places_in(node.get(key, {})):
                if "file" in place:
                    self.file = place["file"]
                if found is None and key == "loc" and "offset" in place:
                    found = (self.file, place["offset"])
        return found

    def _places_in(self, value):
        if "offset" in value:
            yield value
        for key in ("spellingLoc", "expansionLoc", "begin", "end"):
            if key in value:
                yield from self._places_in(value[key])

    def add(self, node, in_template=False, in_instance=False, parent=None):
        kind = node.get("kind")
        place = self.place_of(node)
        if kind in FUNCTIONS:
            self._add_function(node, place, in_template, in_instance)
        first = True
        for child in node.get("inner", []):
            child_kind = child.get("kind")
            template = in_template
            instance = in_instance
            if kind in ("ClassTemplateDecl", "FunctionTemplateDecl"):
                # Its pattern comes first, then its instances.
                is_pattern = first and child_kind in FUNCTIONS | {"CXXRecordDecl"}
                template = template or is_pattern
                first = first and not is_pattern
            elif child_kind == "ClassTemplatePartialSpecializationDecl":
                template = True
            elif child_kind == "ClassTemplateSpecializationDecl":
                instance = True
            self.add(child, template, instance, node)

    def _add_function(self, node, place, in_template, in_instance):
        if place is None:
            place = self.places.get(node.get("previousDecl"))
        self.places[node["id"]] = place
        previous = self.places.get(node.get("previousDecl"))
        inner = node.get("inner", [])
        has_body = any(child.get("kind") in BODIES for child in inner)
        is_given = has_body or "explicitlyDefaulted" in node or "explicitlyDeleted" in node or node.get("pure")
        if is_given or place in self.defined or previous in self.defined:
            self.defined |= {place, previous} - {None}
        if in_template:
            self.patterns.add(place)
        elif "mangledName" in node and not node.get("isImplicit") and not node.get("constexpr"):
            excused = node.get("pure") or "explicitlyDefaulted" in node or "explicitlyDeleted" in node
            if not excused:
                self.functions.append((node["mangledName"], place, in_instance, previous))

    def needed(self):
        """The mangled names of the functions that only the library can define."""
        names = set()
        for name, place, in_instance, previous in self.functions:
            is_extern = in_instance == "extern" and place in self.patterns
            if is_extern or not ({place, previous} & self.defined):
                names.add(name)
        return names


def dump(clang, include, headers, namespace):
    source = "".join(f'#include "{header}"\n' for header in headers)
    command = [clang, "-std=c++20", "-fsyntax-only", "-I.", "-x", "c++", "-", "-Xclang", "-ast-dump=json"]
    command += ["-Xclang", f"-ast-dump-filter={namespace}"]
    return subprocess.run(command, input=source, stdout=subprocess.PIPE, text=True, check=True, cwd=include).stdout


def main():
    if len(sys.argv) != 4:
        sys.exit(__doc__)
    clang, include, library = sys.argv[1:]
    headers = sorted(str(path.relative_to(include)) for path in pathlib.Path(include).rglob("tessarin/**/*.hpp"))
    if not headers:
        sys.exit(f"error: there are no headers below {include}")
    declarations = Declarations()
    for namespace in NAMESPACES:
        for tree in documents(dump(clang, include, headers, namespace)):
            # What stands by itself is an instance that is made elsewhere, or a specialization.
            extern = "extern" if tree.get("kind") == "ClassTemplateSpecializationDecl" else False
            declarations.add(tree, in_instance=extern)
    needed = declarations.needed()
    symbols = subprocess.run(
        ["nm", "--dynamic", "--defined-only", "--extern-only", library], capture_output=True, text=True, check=True
    ).stdout
    exported = {line.split()[-1].split("@")[0] for line in symbols.splitlines()}
    missing = sorted(needed - exported)
    if missing:
        names = subprocess.run(["c++filt"], input="\n".join(missing), stdout=subprocess.PIPE, text=True, check=True).stdout
        print(f"error: the library hides {len(missing)} of {len(needed)} functions that its headers declare:")
        print(names, end="")
        sys.exit(1)
    print(f"all of {len(needed)} functions that the headers declare are in the library")


if __name__ == "__main__":
    main()
