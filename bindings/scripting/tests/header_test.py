#!/usr/bin/env python3
"""Reads the header as C89 parsers do, and holds it against the public header, which a C parser reads for itself.

    header_test.py SCRIPTING_HEADER INCLUDE_FOLDER
"""
import subprocess
import sys
import tempfile
from pathlib import Path

from pycparser import c_ast, c_generator, c_parser

STRICT = ["gcc", "-std=c89", "-pedantic-errors", "-Wall", "-Wextra", "-Werror"]


def expect(condition, what):
    if not condition:
        sys.exit("expected: " + what)


def run(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def parsed(text):
    functions, structs, handles = {}, {}, set()
    generator = c_generator.CGenerator()
    for item in c_parser.CParser().parse(text).ext:
        if isinstance(item, c_ast.Typedef) and item.name.endswith("Handle"):
            handles.add(item.name)
        kind = item.type
        if isinstance(item, c_ast.Decl) and isinstance(kind, c_ast.FuncDecl):
            parameters = [] if kind.args is None else [
                (None if isinstance(parameter, c_ast.Typename) else parameter.name,
                 spelled(generator, parameter.type)) for parameter in kind.args.params]
            functions[item.name] = (spelled(generator, kind.type), parameters)
        inner = getattr(kind, "type", None)
        if isinstance(item, c_ast.Typedef) and isinstance(inner, c_ast.Struct) and inner.decls:
            structs[item.name] = [field.name for field in inner.decls]
    return functions, structs, handles


def spelled(generator, kind):
    """The type without the name that it declares."""
    declared = kind
    while not isinstance(declared, c_ast.TypeDecl):
        declared = declared.type
    declared.declname = None
    text = generator.visit(kind).replace("_Bool", "unsigned char").replace("bool", "unsigned char")
    return " ".join(text.split()).replace("unsigned *", "unsigned int *")


def layout(folder, name, include, structs):
    """Sizes and offsets as the compiler lays them out."""
    lines = "".join(f'  printf("{struct} %lu\\n", (unsigned long)sizeof({struct}));\n' + "".join(
        f'  printf("  {field} %lu\\n", (unsigned long)offsetof({struct}, {field}));\n' for field in fields)
        for struct, fields in structs.items())
    source = folder / (name + ".c")
    source.write_text(f'#include <stddef.h>\n#include <stdio.h>\n#include "{include}"\nint main(void) {{\n{lines}'
                      "  return 0;\n}\n")
    run("gcc", str(source), "-o", str(folder / name))
    return run(str(folder / name))


def main():
    header, include = Path(sys.argv[1]), Path(sys.argv[2])
    text = header.read_text(encoding="ascii")
    expect("\n#" not in text, "no directives")
    expect("(*" not in text, "no pointers to functions")
    with tempfile.TemporaryDirectory() as name:
        folder = Path(name)
        empty = folder / "empty.c"
        empty.write_text(f'#include "{header}"\nint main(void) {{ return 0; }}\n')
        run(*STRICT, "-fsyntax-only", str(empty))
        run("tcc", "-std=c89", "-Wall", "-Werror", "-c", str(empty), "-o", str(folder / "empty.o"))
        functions, structs, _ = parsed(run("gcc", "-E", "-P", str(header)))

        # bool as a name of its own, so that the parser needs none of the compiler's headers.
        fake = folder / "stdbool.h"
        fake.write_text("typedef unsigned char bool;\n")
        real = run("gcc", "-E", "-P", "-I", str(folder), str(include / "oct_rendering/oct_rendering.h"))
        there, real_structs, handles = parsed(real)
        callbacks = ("Function", "FunctionWithUser")  # how the names of their types end
        for name, signature in there.items():
            calls_back = any(kind.endswith(callbacks) for _, kind in signature[1])
            of_a_loop = "OpenGLControlLoopHandle" in [signature[0], *(kind for _, kind in signature[1])]
            expect((name in functions) == (not calls_back and not of_a_loop), name + " where it can be used")
            if name in functions:
                expect(functions[name] == signature, f"{name} as {signature} and not {functions[name]}")
        expect(set(functions) <= set(there) and len(functions) > 100, "no function of its own")
        for _, signature in functions.items():
            for kind in [signature[0], *(kind for _, kind in signature[1])]:
                expect(not kind.endswith("Handle") or kind in handles, kind)
        expect(structs == {name: real_structs[name] for name in structs} and structs, "the same fields")
        expect(layout(folder, "scripting", header, structs) ==
               layout(folder, "real", include / "oct_rendering/oct_rendering.h", structs), "the same layout")


if __name__ == "__main__":
    main()
