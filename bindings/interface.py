"""What the public headers say, as data: the first half of every generator of a binding.

    interface = read(Path("include"))
    for function in interface.functions:
        print(function.result, function.name, function.parameters, function.doc.brief)

Functions come from interface_list.h, in its order, each with the comment above its declaration. Enumerations, structs,
types of callbacks, handles and constants come from the headers that oct_rendering.h includes. What cannot be understood
is an error, so that no binding silently leaves a function out.
"""
import re
from dataclasses import dataclass
from pathlib import Path


class InterfaceError(Exception):
    """The headers say something that this reader does not understand."""


@dataclass(frozen=True)
class Doc:
    """A comment. Texts are one line each, without marks of Doxygen: "@p Size" is "Size", "@ref live" is "live"."""
    brief: str = ""  # the whole text before the first parameter, paragraphs parted by blank lines
    parameters: tuple = ()  # of (name, text)
    returns: str = ""
    errors: str = ""
    thread: str = ""
    since: str = ""
    notes: tuple = ()  # of (title, text), as under "@par OpenGL state"


@dataclass(frozen=True)
class Parameter:
    type: str  # as in C, one blank between words, none before a "*": "const float*"
    name: str


@dataclass(frozen=True)
class Function:
    since: str  # "0.1"
    family: str  # the header that documents it, without ".h"
    result: str
    name: str
    parameters: tuple  # of Parameter
    doc: Doc


@dataclass(frozen=True)
class Value:
    name: str
    number: int
    doc: str


@dataclass(frozen=True)
class Enumeration:
    name: str
    values: tuple  # of Value
    doc: Doc


@dataclass(frozen=True)
class Field:
    type: str
    name: str
    length: int  # of an array; 0: a single value
    doc: str


@dataclass(frozen=True)
class Struct:
    name: str
    fields: tuple  # of Field
    doc: Doc


@dataclass(frozen=True)
class Callback:
    """The type of a pointer to a function. One that takes the client's pointer has a last parameter "void* user"."""
    name: str
    result: str
    parameters: tuple  # of Parameter
    doc: Doc


@dataclass(frozen=True)
class Handle:
    name: str
    doc: Doc


@dataclass(frozen=True)
class Interface:
    functions: tuple
    enumerations: tuple
    structs: tuple
    callbacks: tuple
    handles: tuple
    constants: tuple  # of Value: what the headers define as whole numbers

    def callback(self, name):
        """The callback type of that name, or None."""
        return next((callback for callback in self.callbacks if callback.name == name), None)


def read(include):
    """Reads oct_rendering/*.h and the handles of oct_device below the folder."""
    folder = Path(include) / "oct_rendering"
    listed = (folder / "interface_list.h").read_text(encoding="utf-8")
    names = re.findall(r'^#include "([^"]+)"', (folder / "oct_rendering.h").read_text(encoding="utf-8"), re.MULTILINE)
    if not names:
        raise InterfaceError("oct_rendering.h includes nothing")
    texts = [(folder.parent / "oct_device/oct_device_types.h").read_text(encoding="utf-8")]
    texts += [(folder / name).read_text(encoding="utf-8") for name in names]
    text = "\n".join(texts)
    return Interface(functions=_functions(listed, declarations(text, "OCT_API")), enumerations=_enumerations(text),
                     structs=_structs(text), callbacks=_callbacks(text), handles=_handles(text),
                     constants=_constants(text))


def declarations(text, attribute):
    """The functions that a header declares with the attribute, by name: (result, parameters, doc)."""
    found = {}
    for match in re.finditer(_COMMENT + attribute + r"\s+([^;{}()]+?)\s*\b(\w+)\s*\(([^;{}]*?)\)\s*;", text):
        comment, result, name, parameters = match.groups()
        found[name] = (_type(result), _parameters(parameters), parse_doc(comment))
    return found


_COMMENT = r"(/\*\*(?:(?!\*/).)*?\*/)\s*".replace(".", r"[\s\S]")


def parse_doc(comment):
    """Takes a comment apart, in either style: @brief and @param, or plain text with them."""
    lines = re.sub(r"^/\*\*<?|\*/$", "", comment.strip()).split("\n")
    text = "\n".join(re.sub(r"^\s*\*? ?", "", line).rstrip() for line in lines).strip()
    parts = re.split(r"@(brief|param|return|thread|since|par|file|defgroup|section|addtogroup|name)\b", text)
    kept = {"brief": [parts[0]], "return": [], "thread": [], "since": []}
    parameters, paragraphs = [], {}
    for command, body in zip(parts[1::2], parts[2::2]):
        if command == "param":
            match = re.match(r"\s*(?:\[\w+\]\s*)?(\w+)\s*([\s\S]*)", body)
            if not match:
                raise InterfaceError("a parameter without a name in: " + comment)
            parameters.append((match[1], _one_line(match[2])))
        elif command == "par":
            title, _, rest = body.partition("\n")
            paragraphs[title.strip()] = _one_line(rest)
        elif command in kept:
            kept[command].append(body)
    brief = "\n\n".join(filter(None, map(_one_line, re.split(r"\n\s*\n", "\n\n".join(kept["brief"])))))
    errors = paragraphs.pop("Errors", "")
    returns, thread, since = (_one_line(" ".join(kept[key])) for key in ("return", "thread", "since"))
    return Doc(brief, tuple(parameters), returns, errors, thread, since, tuple(paragraphs.items()))


def _one_line(text):
    text = re.sub(r"@(?:p|ref|c|a)\s+(?=\w)", "", text)
    text = re.sub(r"[@#](?=[A-Za-z_]\w*)(?![0-9])|@\{|@\}", "", text)
    return re.sub(r"\s+", " ", text).strip()


def _type(text):
    words = re.sub(r"\s+", " ", text.replace("*", " * ").replace("struct ", "")).strip()
    return re.sub(r" \*", "*", words)


def _parameters(text):
    text = re.sub(r"\s+", " ", text).strip()
    if text in ("void", ""):
        return ()
    found = []
    for item in text.split(","):
        match = re.match(r"^(.*?)\s*\b(\w+)$", item.strip())
        if not match or not match[1]:
            raise InterfaceError("a parameter without type or name: " + item)
        found.append(Parameter(_type(match[1]), match[2]))
    return tuple(found)


def _functions(listed, declared):
    body = re.sub(r"/\*[\s\S]*?\*/", "", listed).replace("\\\n", "\n")
    body = body[body.index("#define OCT_API_LIST(FUNCTION)") + len("#define OCT_API_LIST(FUNCTION)"):]
    functions = []
    entry = r"\bFUNCTION\(\s*([\d.]+),\s*(\w+),\s*([^,()]+),\s*(\w+),\s*\(([^()]*)\)\)"
    for since, family, result, name, parameters in re.findall(entry, body):
        if name not in declared:
            raise InterfaceError(name + " stands in the list and in no header")
        own = _parameters(parameters)
        if declared[name][:2] != (_type(result), own):
            raise InterfaceError(f"{name} has other types or names in the header: {declared[name][:2]}")
        functions.append(Function(since, family, _type(result), name, own, declared[name][2]))
    if len(functions) != body.count("FUNCTION("):
        raise InterfaceError("a line of the interface list was not understood")
    missing = set(declared) - {function.name for function in functions}
    if missing:
        raise InterfaceError("not in the interface list: " + ", ".join(sorted(missing)))
    return tuple(functions)


def _members(body, separator):
    """(text, comment after it or before it) for every member of an enumeration or a struct."""
    found, pending = [], ""
    for token in re.finditer(r"/\*\*<([\s\S]*?)\*/|/\*\*([\s\S]*?)\*/|([^/]+|/)", body):
        after, before, code = token.groups()
        if after is not None:
            if not found:
                raise InterfaceError("a comment without a member: " + after)
            # After "a, b" or where the separator precedes the comment, the comment belongs to the last member.
            found[-1][1] = _clean(after)
        elif before is not None:
            pending = _clean(before)
        else:
            for item in code.split(separator):
                if item.strip():
                    found.append([re.sub(r"\s+", " ", item).strip(), pending])
                    pending = ""
    return found


def _clean(comment):
    return _one_line(re.sub(r"^\s*\* ?", "", comment, flags=re.MULTILINE))


def _enumerations(text):
    found = []
    for comment, name, body, last in re.findall(_COMMENT + r"typedef enum (\w+) \{([\s\S]*?)\} (\w+);", text):
        values, following = [], 0
        for item, doc in _members(body, ","):
            match = re.match(r"^(\w+)(?: = (-?\w+))?$", item)
            if not match or name != last:
                raise InterfaceError(f"{name}: {item}")
            number = int(match[2], 0) if match[2] else following
            values.append(Value(match[1], number, doc))
            following = number + 1
        found.append(Enumeration(name, tuple(values), parse_doc(comment)))
    return tuple(found)


def _structs(text):
    found = []
    for comment, name, body in re.findall(_COMMENT + r"typedef struct (\w+) \{([\s\S]*?)\} \2;", text):
        fields = []
        for item, doc in _members(body, ";"):
            match = re.match(r"^((?:const )?(?:unsigned |signed )?(?:long long|\w+) ?\**) ?(.+)$", item)
            if not match:
                raise InterfaceError(f"{name}: {item}")
            for declarator in match[2].split(","):
                one = re.match(r"^\s*(\w+)(?:\[(\w+)\])?\s*$", declarator)
                if not one:
                    raise InterfaceError(f"{name}: {item}")
                fields.append(Field(_type(match[1]), one[1], int(one[2], 0) if one[2] else 0, doc))
        found.append(Struct(name, tuple(fields), parse_doc(comment)))
    return tuple(found)


def _callbacks(text):
    pattern = (r"(?:" + _COMMENT + r")?typedef ([\w ]+?\**) ?\(\*(\w+)\)\(([^()]*)\);(?:[ \t]*" + _COMMENT + ")?")
    found = tuple(Callback(name, _type(result), _parameters(parameters), parse_doc(before or after))
                  for before, result, name, parameters, after in re.findall(pattern, text))
    if len(found) != len(re.findall(r"^typedef [^;]*\(\*", text, re.MULTILINE)):
        raise InterfaceError("a type of a callback was not understood")
    return found


def _handles(text):
    return tuple(Handle(name, parse_doc(comment))
                 for comment, name in re.findall(_COMMENT + r"typedef struct \w+\* (\w+);", text))


def _constants(text):
    pattern = _COMMENT + r"#define (OCT_\w+) \(?(-?(?:0x[0-9A-Fa-f]+|\d+))\)?\s*$"
    return tuple(Value(name, int(number, 0), parse_doc(comment).brief)
                 for comment, name, number in re.findall(pattern, text, re.MULTILINE))
