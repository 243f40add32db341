#!/usr/bin/env python3
"""Makes the Python view of the C interface from its headers.

usage: generate_interface.py COMPILER INCLUDE OUTPUT

Writes OUTPUT/interface.py (records, constants, the types of functions and data) and OUTPUT/interface.pyi (the same
for type checkers and editors, with the comments of the headers). Fails on what it cannot express, and when the
compiler lays a record out in another way than ctypes does.
"""
from __future__ import annotations

import ctypes
import re
import subprocess
import sys
from keyword import iskeyword
from pathlib import Path
from typing import Any, NoReturn

from pycparser import c_ast, c_parser

sys.path.insert(0, str(Path(__file__).parent / "zk_base"))
from _types import Types  # noqa: E402

NUMBERS = {
    "char": "c_char", "char signed": "c_int8", "char unsigned": "c_uint8", "short": "c_int16", "": "c_int32",
    "short unsigned": "c_uint16", "unsigned": "c_uint32", "signed": "c_int32", "long": "c_long",
    "long unsigned": "c_ulong", "long long": "c_int64", "long long unsigned": "c_uint64", "float": "c_float",
    "double": "c_double", "_Bool": "c_bool", "int8_t": "c_int8", "uint8_t": "c_uint8", "int16_t": "c_int16",
    "uint16_t": "c_uint16", "int32_t": "c_int32", "uint32_t": "c_uint32", "int64_t": "c_int64",
    "uint64_t": "c_uint64", "size_t": "c_size_t", "FILE": "c_void_p",
}
# The compiler's dialect, defined away: what is left is the C of the standard.
DIALECT = ["__attribute__(x)=", "__extension__=", "__restrict=", "__inline=", "__asm__(x)=", "__const=const",
           "__builtin_va_list=int", "__builtin_offsetof=offsetof", "__signed__=signed"]


class Inexpressible(Exception):
    pass


class Type:
    """A type of the interface: its expression in ctypes, and what type checkers are shown."""

    def __init__(self, ctype: str, value: str, argument: str | None = None) -> None:
        self.ctype, self.value, self.argument = ctype, value, argument or value


class Interface:
    def __init__(self, compiler: str, include: Path) -> None:
        self.compiler, self.include = compiler, include
        self.headers = sorted(path.relative_to(include).as_posix() for path in include.rglob("*.h"))
        self.comments = {name: comments_of((include / name).read_text().splitlines()) for name in self.headers}
        self.typedefs: dict[str, Any] = {}
        self.tagged: dict[str, Any] = {}
        self.records: dict[str, list[tuple[str, Type]]] = {}
        self.made = Types({}, {})
        self.constants: dict[str, int | float | str] = {}
        self.functions: dict[str, tuple[str, list[tuple[str, Type]], Type, str]] = {}
        self.data: dict[str, tuple[Type, str]] = {}
        self.callbacks: dict[str, str] = {}

    # ------------------------------------------------------------------------------------------------- Reading --

    def preprocess(self, *options: str, more: str = "") -> str:
        source = "".join(f'#include "{name}"\n' for name in self.headers) + more
        command = [self.compiler, "-std=c99", "-E", f"-I{self.include}", *options, "-"]
        command.insert(1, "-xc")
        return subprocess.run(command, input=source, capture_output=True, text=True, check=True).stdout

    def read(self) -> None:
        text = self.preprocess(*[f"-D{name}" for name in DIALECT])
        nodes = c_parser.CParser().parse(text, "<headers>").ext
        for node in nodes:
            self.note_records(node)
        for node in nodes:
            name = str(Path(node.coord.file))
            if name.startswith(str(self.include)):
                self.take(node, Path(name).relative_to(self.include).as_posix(), node.coord.line)
        self.read_macros()

    def note_records(self, node: Any) -> None:
        """Enumerators, type names and the bodies of tagged records, those of the system's headers too."""
        if isinstance(node, c_ast.Typedef):
            self.typedefs[node.name] = node.type
        inner = getattr(node, "type", None)
        while inner is not None:
            if isinstance(inner, (c_ast.Struct, c_ast.Union)) and inner.decls:
                self.tagged[inner.name] = inner
            if isinstance(inner, c_ast.Enum) and inner.values:
                last = -1
                for one in inner.values.enumerators:
                    last = self.number(one.value) if one.value else last + 1
                    self.constants[one.name] = last
            inner = getattr(inner, "type", None)

    def take(self, node: Any, header: str, line: int) -> None:
        comment = self.comments[header].get(line, "")
        if isinstance(node, c_ast.Typedef):
            resolved = node.type.type if isinstance(node.type, c_ast.TypeDecl) else None
            if isinstance(resolved, (c_ast.Struct, c_ast.Union)):
                self.record(resolved, node.name)
            elif isinstance(node.type, c_ast.PtrDecl):
                self.type_of(c_ast.TypeDecl(node.name, [], None, c_ast.IdentifierType([node.name])))
        elif isinstance(node, c_ast.Decl) and isinstance(node.type, c_ast.FuncDecl):
            self.function(node, header, comment)
        elif isinstance(node, c_ast.Decl) and node.name is None:
            return
        elif isinstance(node, c_ast.Decl) and "extern" in node.storage:
            if node.name != "zk_static_assertion":
                self.data[node.name] = (self.type_of(node.type), comment)
        else:
            raise Inexpressible(f"{node.coord}: {type(node).__name__} {getattr(node, 'name', '')}")

    def function(self, node: Any, header: str, comment: str) -> None:
        parameters = []
        for number, one in enumerate(node.type.args.params if node.type.args else []):
            if isinstance(one, c_ast.EllipsisParam):
                raise Inexpressible(f"{node.coord}: {node.name} takes any number of arguments")
            kind = self.type_of(one.type, parameter=True)
            if kind.value == "Any" and kind.argument.startswith("Callable"):
                kind = Type(f"Callback({kind.ctype})", "Any")
            elif re.fullmatch("c_u?int[0-9]+|c_u?long|c_size_t", kind.ctype):
                kind = Type(f"Integer({kind.ctype})", "int")
            if kind.ctype != "None":
                parameters.append((one.name or f"argument{number}", kind))
        first = node.type.args.params[0] if node.type.args else None
        if isinstance(getattr(first, "type", None), c_ast.TypeDecl) and \
                getattr(first.type.type, "names", None) == ["ArmSocket"]:
            header = "arm:" + header
        self.functions[node.name] = (header, parameters, self.type_of(node.type.type), comment)

    def read_macros(self) -> None:
        defined = self.preprocess("-dD")
        names, inside = [], False
        for line in defined.splitlines():
            if marker := re.match(r'# \d+ "([^"]*)"', line):
                inside = marker[1].startswith(str(self.include))
            elif inside and (macro := re.match(r"#define (\w+) (\S.*)", line)):
                names.append(macro[1])
        more = "".join(f"\n#undef zk_\nzk_macro_ {name[:1]}{name[1:]} ;\n" for name in names if name != "ZK_API")
        expanded = re.findall(r"zk_macro_\s+(.*?)\s+;", self.preprocess("-P", more=more), re.S)
        for name, text in zip([name for name in names if name != "ZK_API"], expanded):
            parts = re.findall(r'"([^"]*)"', text)
            if parts and not re.sub(r'"[^"]*"|\s', "", text):
                self.constants[name] = "".join(parts)
            elif re.fullmatch(r"[-+.\w]+", text) and text != name:
                self.constants[name] = literal(text)
            else:
                raise Inexpressible(f"the macro {name}: {text}")

    # --------------------------------------------------------------------------------------------------- Types --

    def number(self, node: Any) -> int:
        if isinstance(node, c_ast.Constant):
            return int(literal(node.value))
        if isinstance(node, c_ast.UnaryOp) and node.op == "-":
            return -self.number(node.expr)
        if isinstance(node, c_ast.ID) and node.name in self.constants:
            return int(self.constants[node.name])
        if isinstance(node, c_ast.BinaryOp) and node.op in ("+", "-", "*", "/", "<<", "|"):
            left, right = self.number(node.left), self.number(node.right)
            return int({"+": left + right, "-": left - right, "*": left * right, "/": left // (right or 1),
                        "<<": left << max(right, 0), "|": left | right}[node.op])
        if isinstance(node, c_ast.UnaryOp) and node.op == "sizeof":
            return ctypes.sizeof(self.made.of(self.type_of(node.expr.type).ctype))
        raise Inexpressible(f"{node.coord}: a constant expression")

    def type_of(self, node: Any, parameter: bool = False) -> Type:
        if isinstance(node, c_ast.ArrayDecl):
            if parameter:
                return self.pointer(node.type, self.number(node.dim) if node.dim else 0)
            element, count = self.type_of(node.type), self.number(node.dim)
            shown = "bytes" if element.ctype == "c_char" else \
                f"Array[{element.value if element.value.startswith('Array') else element.ctype}]"
            return Type(f"{element.ctype} * {count}", shown)
        if isinstance(node, c_ast.PtrDecl):
            return self.pointer(node.type) if parameter else self.plain_pointer(node.type)
        if isinstance(node, c_ast.TypeDecl):
            return self.named(node.type, node)
        raise Inexpressible(f"{node.coord}: {type(node).__name__}")

    def named(self, node: Any, where: Any) -> Type:
        if isinstance(node, c_ast.Enum):
            return Type("c_int32", "int")
        if isinstance(node, (c_ast.Struct, c_ast.Union)):
            return self.record(node, node.name)
        name = " ".join(node.names)
        if name == "void":
            return Type("None", "None")
        number = " ".join(sorted(word for word in node.names if word != "int"))
        if number in NUMBERS:
            ctype = NUMBERS[number]
            shown = "bool" if ctype == "c_bool" else "float" if ctype in ("c_float", "c_double") else \
                "bytes" if ctype == "c_char" else "int"
            return Type(ctype, shown)
        target = self.typedefs.get(name)
        if target is None:
            raise Inexpressible(f"{where.coord}: the type {name}")
        inner = target.type if isinstance(target, c_ast.TypeDecl) else None
        if isinstance(inner, (c_ast.Struct, c_ast.Union)):
            return self.record(inner, name)
        if isinstance(target, c_ast.PtrDecl) and isinstance(target.type, c_ast.FuncDecl):
            return self.callback(target.type, name)
        return self.type_of(target)

    def callback(self, node: Any, name: str | None = None) -> Type:
        parameters = [self.type_of(one.type) for one in node.args.params]
        types = [self.type_of(node.type), *[one for one in parameters if one.ctype != "None"]]
        expression = f"CFUNCTYPE({', '.join(one.ctype for one in types)})"
        if name and name not in self.callbacks:
            self.callbacks[name] = self.made.callbacks[name] = expression
        shown = f"Callable[[{', '.join(one.value for one in types[1:])}], {types[0].value}]"
        return Type(name or expression, "Any", shown)

    def plain_pointer(self, node: Any) -> Type:
        """A pointer in a record, an array, or as a result."""
        if isinstance(node, c_ast.FuncDecl):
            return self.callback(node)
        if isinstance(node, c_ast.PtrDecl):
            return Type(f"POINTER({self.plain_pointer(node.type).ctype})", "Any")
        target = self.type_of(node)
        if target.ctype in ("None", "c_void_p"):
            return Type("c_void_p", "int | None")
        if target.ctype == "c_char":
            return Type("c_char_p", "bytes | None")
        return Type(f"POINTER({target.ctype})", "Any")

    def pointer(self, node: Any, least: int = 0) -> Type:
        """A pointer as a parameter, or an array of a declared length: it takes what Python has, see _types.py."""
        if isinstance(node, c_ast.FuncDecl):
            return self.callback(node)
        if isinstance(node, c_ast.PtrDecl):
            raise Inexpressible(f"{node.coord}: a pointer to a pointer as a parameter")
        constant = "const" in (getattr(node, "quals", None) or [])
        target = self.type_of(node)
        if target.ctype in ("None", "c_void_p"):
            return Type("c_void_p", "Any")
        if self.records.get(target.ctype) == []:
            return Type(f"POINTER({target.ctype})", "Any")
        if target.ctype == "c_char":
            return Type("TEXT" if constant else "BUFFER", "", "Text" if constant else "Output")
        shown = {"float": "Floats", "int": "Integers", "bool": "Integers"}.get(target.value,
                                                                            f"Records[{target.ctype}]")
        kind = "Input" if constant else "Pointer"
        length = f", {least}" if least else ""
        return Type(f"{kind}({target.ctype}{length})", "", shown if constant else "Output")

    def record(self, node: Any, name: str | None) -> Type:
        if not name:
            raise Inexpressible(f"{node.coord}: a record without a name")
        if name not in self.records:
            body = node if node.decls else self.tagged.get(node.name)
            self.records[name] = []
            fields = []
            for one in body.decls if body is not None else []:
                if one.bitsize is not None:
                    raise Inexpressible(f"{one.coord}: a field of bits")
                fields.append((one.name, self.type_of(one.type)))
            self.records[name] = fields
            listed = ", ".join(f'("{field}", {kind.ctype})' for field, kind in fields)
            self.made.records[name] = ("Union" if isinstance(node, c_ast.Union) else "Structure",
                                       f"[{listed}]" if fields else "")
        return Type(name, name)

    # ------------------------------------------------------------------------------------------------- Writing --

    def check_layout(self) -> None:
        """The compiler's word that every record lies in memory as ctypes lays it out."""
        lines = [f'#include "{name}"' for name in self.headers] + ["#include <stddef.h>"]
        for name, fields in self.records.items():
            if not fields or name not in self.typedefs:
                continue
            lines.append(f'_Static_assert(sizeof({name}) == {ctypes.sizeof(self.made[name])}, "{name}");')
            for field, _ in fields:
                place = getattr(self.made[name], field).offset
                lines.append(f'_Static_assert(offsetof({name}, {field}) == {place}, "{name}.{field}");')
        done = subprocess.run([self.compiler, "-xc", "-std=c11", "-fsyntax-only", f"-I{self.include}", "-"],
                              input="\n".join(lines) + "\n", text=True, capture_output=True)
        if done.returncode:
            raise Inexpressible(f"ctypes lays records out in another way than the compiler:\n{done.stderr}")

    def module(self) -> str:
        """Types are texts, which _types.py makes types of at their first use: that keeps the import short."""
        def table(name: str, rows: dict[str, Any]) -> list[str]:
            return [f"{name} = {{", *[f"    {key!r}: {value!r}," for key, value in rows.items()], "}"]

        functions = {name: f"{result.ctype}, ({''.join(kind.ctype + ', ' for _, kind in parameters)})"
                     for name, (_, parameters, result, _) in sorted(self.functions.items())}
        joints = {name: [one for one, _ in parameters].index("joint") - 1
                  for name, (header, parameters, *_) in sorted(self.functions.items()) if header.startswith("arm:") and
                  ("joint", "Input(c_float)") in [(one, kind.ctype) for one, kind in parameters]}
        commands = sorted(name for name, (header, *_) in self.functions.items() if header.startswith("arm:"))
        telling = sorted(name for name, (header, *_) in self.functions.items() if header.endswith("zk/control.h"))
        return "\n".join([
            '"""Made from the headers by generate_interface.py."""', "from ._types import Types", "",
            *[f"{name} = {value!r}" for name, value in self.constants.items() if name.startswith("ZK_")],
            *table("FUNCTIONS", functions),
            *table("DATA", {name: kind.ctype for name, (kind, _) in sorted(self.data.items())}),
            *table("JOINTS", joints), f"COMMANDS = frozenset({commands!r})", f"TELLING = frozenset({telling!r})",
            f"TYPES = Types({self.made.records!r},", f"              {self.callbacks!r})",
            "def __getattr__(name):", "    return TYPES.public(name, __name__)", ""])

    def stub(self) -> str:
        text = ['"""Made from the headers by generate_interface.py."""',
                "from collections.abc import Callable, Sequence",
                "from ctypes import *", "from typing import Any, TypeVar, Union as AnyOf", "",
                "from numpy.typing import NDArray", "import numpy as np", "", "from ._types import Out, Types", "",
                'Record = TypeVar("Record")',
                "Floats = AnyOf[Sequence[float], NDArray[np.floating[Any]], NDArray[np.integer[Any]], Array[Any],"
                " None]",
                "Integers = AnyOf[Sequence[int], bytes, NDArray[np.integer[Any]], Array[Any], None]",
                "Records = AnyOf[Record, Sequence[Record], NDArray[Any], Array[Any], None]",
                "Text = AnyOf[str, bytes, None]",
                "Output = Any", "",
                "FUNCTIONS: dict[str, str]", "DATA: dict[str, str]", "COMMANDS: frozenset[str]",
                "JOINTS: dict[str, int]", "TELLING: frozenset[str]", "TYPES: Types"]
        text += [f"{name}: {type(value).__name__}" for name, value in self.constants.items() if name.startswith("ZK_")]
        text += [f"{name}: Any" for name in self.callbacks]
        for name, fields in self.records.items():
            text.append(f"class {name}(Structure):")
            shown = [f"    {field}: {kind.value}" for field, kind in fields if not field.startswith("__")]
            text += shown or ["    ..."]
        text += ["class Library:", '    """Every exported function and datum, as C has them."""']
        text += [f"    {name}: {kind.value}" for name, (kind, _) in sorted(self.data.items())]
        for name, (header, parameters, result, comment) in sorted(self.functions.items()):
            shown = "str" if result.ctype == "c_char_p" else result.value
            text += method(name, parameters, shown, "" if header.startswith("arm:") else comment)
        text += ["class Commands:", '    """Every command, on one arm: a status other than 0 is raised."""']
        for name, (header, parameters, _, comment) in sorted(self.functions.items()):
            if header.startswith("arm:"):
                text += method(name, parameters[1:], "Any", comment)
        return "\n".join([*text, ""])


def method(name: str, parameters: list[tuple[str, Type]], result: str, comment: str) -> list[str]:
    listed = [f"{one}_" if iskeyword(one) else one for one, _ in parameters]
    typed = "".join(f"{one}: {kind.argument}, " for one, (_, kind) in zip(listed, parameters))
    start = f"    def {name}(self, {typed}/) -> {result}:"
    return [start, f'        r"""{comment}"""'] if comment else [start + " ..."]


def literal(text: str) -> Any:
    number = re.sub(r"[uUlL]+$", "", text) if not re.search(r"[.eE]", text) or text.startswith("0x") else \
        text.rstrip("fFlL")
    try:
        return int(number, 0)
    except ValueError:
        return float(number)


def comments_of(lines: list[str]) -> dict[int, str]:
    """For each line the text of the comment above it in its section, or beside it."""
    found: dict[int, str] = {}
    current, text, inside = "", [], False
    for number, line in enumerate(lines, 1):
        if line.startswith("/* --"):
            current = ""
            continue
        if line.startswith("/*"):
            inside, text = True, []
        if inside:
            text.append(re.sub(r"^\s?/?\*+/?\s?|\s*\*/\s*$", "", line))
            if line.rstrip().endswith("*/"):
                inside, current = False, "\n".join(text).strip().replace('"""', "'''")
            continue
        beside = re.search(r"/\* (.*) \*/", line)
        found[number] = beside[1] if beside else current
    return found


def main(compiler: str, include: str, output: str) -> None:
    interface = Interface(compiler, Path(include).resolve())
    interface.read()
    interface.check_layout()
    (Path(output) / "interface.py").write_text(interface.module())
    (Path(output) / "interface.pyi").write_text(interface.stub())


def fail(reason: object) -> NoReturn:
    sys.exit(f"generate_interface.py: {reason}")


if __name__ == "__main__":
    if len(sys.argv) != 4:
        fail(__doc__)
    try:
        main(*sys.argv[1:])
    except Inexpressible as reason:
        fail(reason)
    except subprocess.CalledProcessError as error:
        fail(error.stderr)
