#!/usr/bin/env python3
"""Writes the generated modules of the package oct_rendering: generate.py SOURCE_DIR VERSION OUTPUT_DIR

raw.py and raw.pyi have the library's functions, _device.py and _device.pyi those of device libraries and of the simulated
device, _tables.py the colour maps of octrender. They are made when the project is built, and nobody keeps them.
"""
import re
import sys
import textwrap
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parent.parent))
import interface as headers  # noqa: E402

# For each type of C: what ctypes passes, and what a caller may give. Data go in as addresses or ctypes arrays.
PLAIN = {
    "void": ("None", "None"), "bool": ("ctypes.c_bool", "bool"),
    "int": ("ctypes.c_int", "int"), "unsigned int": ("ctypes.c_uint", "int"),
    "unsigned char": ("ctypes.c_ubyte", "int"), "char": ("ctypes.c_char", "bytes"),
    "long long": ("ctypes.c_longlong", "int"), "unsigned long long": ("ctypes.c_ulonglong", "int"),
    "float": ("ctypes.c_float", "float"), "double": ("ctypes.c_double", "float"),
    "const char*": ("ctypes.c_char_p", "Optional[bytes]"), "char*": ("ctypes.c_char_p", "Buffer"),
    "void*": ("ctypes.c_void_p", "Address"), "const void*": ("ctypes.c_void_p", "Address"),
    "const float*": ("ctypes.c_void_p", "Address"), "float*": ("ctypes.c_void_p", "Address"),
}


class Types:
    def __init__(self, interface):
        self.handles = {handle.name for handle in interface.handles}
        self.classes = {item.name for item in interface.structs + interface.callbacks}

    def of(self, c_type):
        """(expression of ctypes, annotation) of a type of C."""
        if c_type in PLAIN:
            return PLAIN[c_type]
        if c_type in self.handles:
            return "ctypes.c_void_p", "Handle"
        if c_type in self.classes:
            return c_type, c_type
        base = c_type.removesuffix("*").removeprefix("const ")
        if c_type.endswith("*") and (base in self.classes or base in PLAIN):
            return f"ctypes.POINTER({self.of(base)[0]})", "Any"
        raise headers.InterfaceError("no type of Python for " + c_type)


def stub_type(field, types):
    """Of a field: an array of characters is bytes, another one an array of ctypes."""
    if field.type == "char":
        return "bytes"
    single = types.of(field.type)
    return f"ctypes.Array[{single[0]}]" if field.length else single[1]


def docstring(doc, indent, since=""):
    parts = [doc.brief]
    if doc.parameters:
        parts.append("\n".join(["Parameters:"] + [f"  {name}: {text}" for name, text in doc.parameters]))
    named = (("Returns", doc.returns), ("Errors", doc.errors), ("Thread", doc.thread), ("Since", "" if since == "0.1" else since)) + doc.notes
    parts += [f"{title}: {text}" for title, text in named if text]
    lines = []
    for line in "\n\n".join(parts).split("\n"):
        lines += textwrap.wrap(line, 100, subsequent_indent="    " if line.startswith("  ") else "",
                               break_long_words=False, break_on_hyphens=False) or [""]
    text = "\n".join((" " * indent + line).rstrip() for line in lines).strip()
    text = text.replace("\\", "\\\\").replace('"""', "'''")
    return '"""' + text + ('"""' if "\n" not in text and not text.endswith('"') else "\n" + " " * indent + '"""')


HEAD = '''"""{about} Made from the headers of {version}."""
import ctypes
from enum import IntEnum

from ._library import {table}

VERSION = "{version}"
'''

STUB_HEAD = '''import ctypes
from enum import IntEnum
from typing import Any, ClassVar, Optional, Union

Handle = Optional[int]
Address = Union[None, int, bytes, ctypes.Array[Any]]
Buffer = Union[None, ctypes.Array[ctypes.c_char]]
VERSION: str
'''


def write_module(target, interface, about, version, table):
    types = Types(interface)
    code, stub = [HEAD.format(about=about, version=version, table=table)], [STUB_HEAD]
    for value in interface.constants:
        code.append(f"{value.name} = {value.number}\n")
        stub.append(f"{value.name}: int\n")
    for item in interface.enumerations:
        code.append(f"\nclass {item.name}(IntEnum):\n    {docstring(item.doc, 4)}\n\n")
        stub.append(f"class {item.name}(IntEnum):\n")
        for value in item.values:
            code.append(f"    {value.name} = {value.number}\n")
            stub.append(f"    {value.name} = {value.number}\n")
    for item in interface.structs:
        fields = "".join(f'        ("{field.name}", {types.of(field.type)[0]}{f" * {field.length}" if field.length else ""}),\n'
                         for field in item.fields)
        code.append(f"\nclass {item.name}(ctypes.Structure):\n    {docstring(item.doc, 4)}\n\n    _fields_ = [\n{fields}    ]\n")
        stub.append(f"class {item.name}(ctypes.Structure):\n" + "".join(
            f"    {field.name}: {stub_type(field, types)}\n" for field in item.fields))
    for item in interface.callbacks:
        arguments = [types.of(item.result)[0]] + [types.of(parameter.type)[0] for parameter in item.parameters]
        code.append(f"\n{item.name} = ctypes.CFUNCTYPE({', '.join(arguments)})\n")
        # Of no argument: the null pointer, which is no function.
        stub.append(f"class {item.name}:\n    def __init__(self, function: Any = ...) -> None: ...\n"
                    f"    def __call__(self, *arguments: Any) -> Any: ...\n")
    rows = []
    for function in interface.functions:
        names = ", ".join(parameter.name for parameter in function.parameters)
        code.append(f"\n\ndef {function.name}({names}):\n    {docstring(function.doc, 4, function.since)}\n"
                    f'    return {table}["{function.name}"]({names})\n')
        arguments = ", ".join(f"{parameter.name}: {types.of(parameter.type)[1]}" for parameter in function.parameters)
        result = types.of(function.result)[1].replace("Address", "Handle").replace("Optional[bytes]", "bytes")
        stub.append(f"def {function.name}({arguments}) -> {result}: ...\n")
        passed = "".join(types.of(parameter.type)[0] + ", " for parameter in function.parameters)
        rows.append(f'    "{function.name}": ("{function.since}", {types.of(function.result)[0]}, ({passed})),\n')
    code.append(f"\n\n{table}.declare(VERSION, {{\n{''.join(rows)}}})\n")
    target.with_suffix(".py").write_text("".join(code), encoding="utf-8")
    target.with_suffix(".pyi").write_text("".join(stub), encoding="utf-8")


def device_interface(source):
    texts = [(source / path).read_text(encoding="utf-8") for path in
             ("include/oct_device/oct_device.h", "simulator/include/oct_simulator/oct_simulator.h")]
    functions = tuple(headers.Function("0.1", "device", result, name, parameters, doc) for text in texts for
                      name, (result, parameters, doc) in headers.declarations(text, "OCT_DEVICE_API").items())
    numbers = []
    for name, number in re.findall(r"^\s*(OCT_\w+)\s*=\s*(\d+)", "\n".join(texts), re.MULTILINE):
        numbers.append(headers.Value(name, int(number), ""))
    handles = headers.read(source / "include").handles
    return headers.Interface(functions, (), (), (), handles, tuple(numbers))


def write_tables(target, source):
    text = (source / "apps/data/colormap_tables.cpp").read_text(encoding="utf-8")
    tables = {name: "".join(re.findall(r'"([0-9a-f]+)"', digits))
              for name, digits in re.findall(r"constexpr char (\w+)\[\] =\s*([^;]*);", text)}
    if not tables or any(len(digits) % 6 for digits in tables.values()):
        raise headers.InterfaceError("the colour tables were not understood")
    lines = ['"""Colour maps by name: hexadecimal red, green, blue, from the lowest value to the highest."""\n\nTABLES = {\n']
    for name, digits in tables.items():
        lines += [f'    "{name}":\n'] + [f'        "{part}"\n' for part in textwrap.wrap(digits, 96)]
        lines[-1] = lines[-1].rstrip("\n") + ",\n"
    target.write_text("".join(lines) + "}\n", encoding="utf-8")


def generate(source, version, output):
    output.mkdir(parents=True, exist_ok=True)
    interface = headers.read(source / "include")
    write_module(output / "raw", interface, "The library's functions as they are in C.", version, "library")
    write_module(output / "_device", device_interface(source), "Functions of device libraries and of the simulated device.",
                 version, "device_library")
    write_tables(output / "_tables.py", source)


if __name__ == "__main__":
    generate(Path(sys.argv[1]), sys.argv[2], Path(sys.argv[3]))
