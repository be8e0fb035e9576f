#!/usr/bin/env python3
"""Writes Native.cs: every function of the interface for C#, with its handles, callbacks, structs and numbers.

    generate.py INCLUDE_FOLDER OUTPUT_FILE

Fails where the headers have something that it has no rule for.
"""
import re
import sys
from pathlib import Path
from xml.sax.saxutils import escape

sys.path.insert(0, str(Path(__file__).resolve().parent.parent))
import interface as reader  # noqa: E402

# What frees a handle, and where that may happen: the base class says what becomes of one that nobody disposes.
OWNED = {
    "DisplayRenderingHandle": ("clearDisplayRendering", "OwnThreadHandle"),
    "VolumeRendererHandle": ("deleteVolumeRenderer", "OwnThreadHandle"),
    "OfflineRenderingHandle": ("clearOfflineRendering", "OwnThreadHandle"),
    "OffscreenTargetHandle": ("clearOffscreenTarget", "OwnThreadHandle"),
    "OpenGLControlHandle": ("deleteUniversalOpenGLControl", "OwnThreadHandle"),
    "LiveVolumeRenderingHandle": ("clearLiveRendering", "AnyThreadHandle"),
    "OpenGLControlLoopHandle": ("deleteOpenGLControlLoop", "ExplicitHandle"),
    "LiveDataSourceHandle": ("clearDataSource", "ExplicitHandle"),
}
# Objects of the device library, which their makers free.
FOREIGN = {"OCTDeviceHandle", "ProcessingHandle", "PolarizationProcessingHandle", "ScanPatternHandle", "DataHandle",
           "RawDataHandle", "ComplexDataHandle"}
# Words that are not written as English ones.
WORDS = {"OPENGL": "OpenGL", "DIRECT3D": "Direct3D", "DOPU": "Dopu"}
PLAIN = {"int": "int", "unsigned int": "uint", "unsigned": "uint", "long long": "long", "unsigned long long": "ulong",
         "float": "float", "double": "double", "unsigned char": "byte", "char": "byte"}
KEYWORDS = {"in", "out", "ref", "params", "object", "string", "event", "lock", "base", "fixed", "checked", "default"}


def pascal(words):
    """OCT_VOLUME_MAXIMUM without its prefix, latency_p99_ms: VolumeMaximum, LatencyP99Ms."""
    return "".join(WORDS.get(word) or word[:1].upper() + (word[1:].lower() if word.isupper() else word[1:])
                   for word in words.split("_"))


def plain_name(name):
    """OctVolumeMode: VolumeMode. Callbacks keep their names."""
    return re.sub(r"^Oct(?=[A-Z])", "", name)


class Generator:
    def __init__(self, interface):
        self.interface = interface
        self.structs = {struct.name for struct in interface.structs}
        self.enumerations = {enumeration.name for enumeration in interface.enumerations}
        unknown = {handle.name for handle in interface.handles} - set(OWNED) - FOREIGN
        if unknown:
            raise reader.InterfaceError("say what frees " + ", ".join(sorted(unknown)))
        self.lines = []

    def text(self):
        self.lines = ["// Made by bindings/csharp/generate.py from the public headers. Do not edit.", "using System;",
                      "using System.Runtime.InteropServices;", "", "namespace OctRendering {"]
        for enumeration in self.interface.enumerations:
            self.enumeration(enumeration)
        for struct in self.interface.structs:
            self.struct(struct)
        for callback in self.interface.callbacks:
            self.callback(callback)
        for name, (free, base) in OWNED.items():
            self.handle(name, free, base)
        self.documented("", "The functions of the library, as they are in C. They report errors to the library's "
                        "error store: call through Library.Check, or read the store yourself.")
        self.lines.append("public static partial class Native {")
        for constant in self.interface.constants:
            self.documented("  ", constant.doc)
            self.lines.append(f"  public const int {pascal(constant.name[len('OCT_'):])} = {constant.number};")
        for function in self.interface.functions:
            self.function(function)
        self.lines += ["}", "}", ""]
        return "\n".join(self.lines)

    def documented(self, indent, summary, parameters=(), returns="", remarks=()):
        def element(tag, text, attributes=""):
            self.lines.append(f"{indent}/// <{tag}{attributes}>{escape(text)}</{tag}>")

        self.lines.append("")
        element("summary", re.sub(r"\s*\n\s*", " ", summary) or "-")
        for name, text in parameters:
            element("param", text, f' name="{name}"')
        if returns:
            element("returns", returns)
        remarks = [text for text in remarks if text]
        if remarks:
            element("remarks", " ".join(remarks))

    def enumeration(self, enumeration):
        self.documented("", enumeration.doc.brief)
        self.lines.append(f"public enum {plain_name(enumeration.name)} {{")
        names = [value.name.split("_") for value in enumeration.values]
        shared = 0
        while all(len(words) > shared + 1 and words[shared] == names[0][shared] for words in names):
            shared += 1
        for words, value in zip(names, enumeration.values):
            if value.doc:
                self.documented("  ", value.doc)
            else:
                self.documented("  ", value.name)
            self.lines.append(f"  {pascal('_'.join(words[shared:]))} = {value.number},")
        self.lines.append("}")

    def struct(self, struct):
        self.documented("", struct.doc.brief)
        name = plain_name(struct.name)
        self.lines += ["[StructLayout(LayoutKind.Sequential)]", f"public struct {name} {{"]
        for field in struct.fields:
            kind = PLAIN.get(field.type) or ("IntPtr" if field.type.endswith("*") else None)
            if not kind:
                raise reader.InterfaceError(f"{struct.name}.{field.name}: {field.type}")
            self.documented("  ", field.doc or field.name)
            if field.length:
                self.lines.append(f"  [MarshalAs(UnmanagedType.ByValArray, SizeConst = {field.length})]")
                kind += "[]"
            self.lines.append(f"  public {kind} {pascal(field.name)};")
        if struct.fields[0].name == "size":
            self.documented("  ", "An empty one that tells the library its size.")
            self.lines += [f"  public static {name} Sized() {{",
                           f"    return new {name} {{ Size = (uint)Marshal.SizeOf(typeof({name})) }};", "  }"]
        self.lines.append("}")

    def callback(self, callback):
        self.documented("", callback.doc.brief or callback.name)
        parameters = ", ".join(f"{self.callback_type(parameter.type)} {self.name(parameter.name)}"
                               for parameter in callback.parameters)
        if callback.result != "void":
            raise reader.InterfaceError(f"{callback.name} returns {callback.result}")
        self.lines += ["[UnmanagedFunctionPointer(CallingConvention.Cdecl)]",
                       f"public delegate void {callback.name}({parameters});"]

    def callback_type(self, kind):
        if kind in PLAIN:
            return PLAIN[kind]
        if kind.endswith("*"):
            return "IntPtr"
        raise reader.InterfaceError("in a callback: " + kind)

    def handle(self, name, free, base):
        doc = next((handle.doc.brief for handle in self.interface.handles if handle.name == name), name)
        self.documented("", doc)
        self.lines += [
            f"public sealed class {name} : {base} {{",
            f'  [DllImport(Native.LibraryName, EntryPoint = "{free}", CallingConvention = CallingConvention.Cdecl)]',
            "  private static extern void Delete(IntPtr handle);",
            "  private static readonly Action<IntPtr> delete = Delete;",
            "  /// <summary>No object.</summary>",
            f"  public static readonly {name} Null = new {name}();",
            f"  private {name}() : base(delete) {{ }}",
            "}"]

    def name(self, name):
        return "@" + name if name in KEYWORDS else name

    def parameter(self, parameter):
        return f"{self.parameter_type(parameter)} {self.name(parameter.name)}"

    def parameter_type(self, parameter):
        kind = parameter.type
        target = kind[:-1].strip() if kind.endswith("*") else ""
        if kind in OWNED:
            return kind
        if kind in FOREIGN:
            return "IntPtr"
        if kind == "bool":
            return "[MarshalAs(UnmanagedType.U1)] bool"
        if kind in PLAIN:
            return PLAIN[kind]
        if kind in self.enumerations:
            return plain_name(kind)
        if self.interface.callback(kind):
            return kind
        if kind == "const char*":
            return "byte[]"  # UTF-8 with its end; see Utf8.Bytes
        if kind == "char*":
            return "[Out] byte[]"
        if target in self.structs:
            return "ref " + plain_name(target)
        if target in PLAIN and target != "unsigned char":
            return "out " + PLAIN[target]
        if target:  # arrays and the client's own pointers: pinned, not copied
            return "IntPtr"
        raise reader.InterfaceError("no rule for a parameter of type " + kind)

    def function(self, function):
        result = function.result
        doc = function.doc
        self.documented("  ", doc.brief, doc.parameters, doc.returns,
                        (f"Errors: {doc.errors}" if doc.errors else "",
                         f"Thread: {doc.thread}" if doc.thread else "", f"Since {function.since}."))
        self.lines.append("  [DllImport(LibraryName, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]")
        if result == "bool":
            self.lines.append("  [return: MarshalAs(UnmanagedType.U1)]")
            kind = "bool"
        elif result in OWNED or result == "void":
            kind = result
        elif result in PLAIN:
            kind = PLAIN[result]
        elif result.endswith("*") or result in FOREIGN:
            kind = "IntPtr"
        else:
            raise reader.InterfaceError("no rule for a result of type " + result)
        parameters = ", ".join(self.parameter(parameter) for parameter in function.parameters)
        self.lines.append(f"  public static extern {kind} {function.name}({parameters});")


def main():
    include, output = sys.argv[1:]
    Path(output).write_text(Generator(reader.read(include)).text(), encoding="utf-8")


if __name__ == "__main__":
    main()
