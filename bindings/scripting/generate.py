#!/usr/bin/env python3
"""Writes oct_rendering_scripting.h: the interface for programs that read C headers themselves, or call functions by
settings in a dialog. C of 1989 without macros, function pointers and bool.

    generate.py INCLUDE_FOLDER OUTPUT_FILE
"""
import re
import sys
import textwrap
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parent.parent))
import interface as reader  # noqa: E402

TYPES = {"bool": "unsigned char", "unsigned": "unsigned int"}
KNOWN = {"void", "char", "unsigned char", "int", "unsigned int", "float", "double"}

HEAD = """Made by bindings/scripting/generate.py from the public headers. Do not edit.

The functions of oct_rendering for programs that cannot be called back, as a C89 parser reads them. The handles are plain
pointers, a bool is a byte of 0 or 1, a number of 64 bits is an array of its two halves, the low one first. What is left
out: functions with callbacks, and control loops, which draw nothing without one. Frames are drawn in an offscreen target;
errors and the reference intensity of a live source are polled by getDataSourceError and getRefIntensity."""


class Generator:
    def __init__(self, interface):
        self.interface = interface
        self.known = KNOWN | {handle.name for handle in interface.handles} | {struct.name for struct in interface.structs}
        self.known |= {enumeration.name for enumeration in interface.enumerations}
        # A loop is an object that its callbacks make one.
        created = [function for function in interface.functions if function.result.endswith("Handle")]
        self.loops = {function.result for function in created if self.calls_back(function)}

    def calls_back(self, function):
        return any(self.interface.callback(parameter.type) for parameter in function.parameters)

    def wanted(self, function):
        types = {parameter.type for parameter in function.parameters} | {function.result}
        return not self.calls_back(function) and not types & self.loops

    def text(self):
        functions = [function for function in self.interface.functions if self.wanted(function)]
        used = {re.sub(r"const |\*", "", kind).strip() for function in functions
                for kind in [function.result, *(parameter.type for parameter in function.parameters)]}
        parts = [self.comment(HEAD)]
        for handle in self.interface.handles:
            if handle.name in used:
                parts.append(self.comment(handle.doc.brief) + f"typedef void* {handle.name};\n")
        for enumeration in self.interface.enumerations:
            values = ",\n".join(f"  {value.name} = {value.number}" for value in enumeration.values)
            parts.append(self.comment(enumeration.doc.brief) + f"enum {enumeration.name} {{\n{values}\n}};\n")
        constants = ",\n".join(f"  {constant.name} = {constant.number}" for constant in self.interface.constants)
        parts.append(f"enum OctConstants {{\n{constants}\n}};\n")
        for struct in self.interface.structs:
            if struct.name in used:
                fields = "".join(f"  {self.field(struct, field)};\n" for field in struct.fields)
                parts.append(self.comment(struct.doc.brief) + f"typedef struct {struct.name} {{\n{fields}}} {struct.name};\n")
        for function in functions:
            parameters = ", ".join(f"{self.type(parameter.type)} {parameter.name}" for parameter in function.parameters)
            parts.append(self.comment(self.doc(function)) +
                         f"{self.type(function.result)} {function.name}({parameters or 'void'});\n")
        return "\n".join(parts)

    def field(self, struct, field):
        if field.type == "unsigned long long" and not field.length:
            return f"unsigned int {field.name}[2]"
        array = f"[{field.length}]" if field.length else ""
        return f"{self.type(field.type)} {field.name}{array}"

    def type(self, kind):
        kind = TYPES.get(kind, kind)
        if re.sub(r"const |\*", "", kind).strip() not in self.known:
            raise reader.InterfaceError("no rule for the type " + kind)
        return kind

    @staticmethod
    def doc(function):
        doc = function.doc
        lines = [doc.brief, *(f"{name}: {text}" for name, text in doc.parameters)]
        lines += [f"Returns: {doc.returns}"] if doc.returns else []
        lines += [f"Errors: {doc.errors}"] if doc.errors else []
        lines += [f"Thread: {doc.thread}"] if doc.thread else []
        return "\n".join(lines)

    @staticmethod
    def comment(text):
        if not text:
            return ""
        lines = []
        for line in text.replace("*/", "* /").split("\n"):
            lines += textwrap.wrap(line, 104) or [""]
        return "/* " + "\n   ".join(lines).replace("\n   \n", "\n\n") + " */\n"


def main():
    include, output = sys.argv[1:]
    Path(output).write_text(Generator(reader.read(include)).text(), encoding="utf-8")


if __name__ == "__main__":
    main()
