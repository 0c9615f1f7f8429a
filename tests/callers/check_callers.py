#!/usr/bin/env python3
"""Checks the VBA module and the .NET declarations against the library's ABI.

For every function they declare from MvSup2u.dll:
- the name is exported by the built DLL and declared in a public header;
- the parameters match the header's one by one: count, size, integer or
  floating point, wide or ANSI text, what an out pointer points at, and no
  pointer result taken as a string;
- on i686 the bytes the declaration pushes equal the stdcall size the
  compiler gave the function (the @N of its decorated name);
- .NET: stdcall, exact spelling, SetLastError where the header says the
  function reports through the last error;
- every record passed by reference has the compiler's layout: each field's
  offset and size, and the record's size, read from the ABI facts object.

The VBA module is read once per compilation branch that runs on the
architecture: 64-bit VBA 7 on x86_64; 32-bit VBA 7 and VBA 6 on i686.
"""
import argparse
import os
import re
import subprocess
import sys

problems = []


def problem(where, text):
    problems.append(f"{where}: {text}")


# ---- The C side: headers, export table, decorations, record layouts ----------

C_SCALARS = {
    "DWORD": ("int", 4), "LONG": ("int", 4), "long": ("int", 4), "int": ("int", 4), "UINT": ("int", 4),
    "ULONG": ("int", 4), "HRESULT": ("int", 4), "LCID": ("int", 4), "REGSAM": ("int", 4),
    "MVXITEMTYPE": ("int", 4), "BOOL": ("bool", 4), "SHORT": ("int", 2), "WORD": ("int", 2),
    "BYTE": ("int", 1), "char": ("char", 1), "DATE": ("float", 8), "double": ("float", 8),
    "__time64_t": ("int", 8), "void": "void",
}
C_POINTERS = {
    "LPCWSTR": ("wchar", 2), "LPWSTR": ("wchar", 2), "BSTR": ("wchar", 2),
    "LPCSTR": ("char", 1), "LPSTR": ("char", 1), "LPCVOID": "void", "LPVOID": "void",
    "HKEY": "opaque", "HGLOBAL": "opaque", "HMODULE": "opaque", "HMVXINFO": "opaque", "HMVXPROP": "opaque",
    "HMVXATTR": "opaque", "HMVXPOS": "opaque", "PMVXVALUE": "opaque", "LPSECURITY_ATTRIBUTES": "opaque",
}
C_RECORDS = {"SYSTEMTIME", "FILETIME", "tm", "MVSUP_DIGEST_REQUEST"}


def c_type(text):
    """('int', n) | ('bool', 4) | ('float', 8) | ('ptr', target) | 'void' | ('record', name) | 'iface'"""
    text = re.sub(r"\b(const|UNALIGNED|struct)\b", " ", text)
    stars = text.count("*")
    base = text.replace("*", " ").split()
    base = base[-1] if base else "void"
    if base in C_SCALARS:
        kind = C_SCALARS[base]
    elif base in C_POINTERS:
        kind = ("ptr", C_POINTERS[base])
    elif base in C_RECORDS:
        kind = ("record", base)
    elif base in ("IUnknown", "IMvCryptor"):
        kind = "iface"
    else:
        raise SystemExit(f"check_callers: unknown C type {text!r}")
    for _ in range(stars):
        kind = ("ptr", kind)
    return kind


def read_headers(folder):
    """name -> (return type, [(type, name)], documentation)"""
    functions = {}
    for header in sorted(os.listdir(folder)):
        if not header.endswith(".h"):
            continue
        source = open(os.path.join(folder, header)).read()
        for match in re.finditer(r"(?:/\*\*((?:(?!\*/).)*)\*/\s*)?([A-Za-z_][\w \*]*?)\s*\bWINAPI\s+(\w+)\s*\(([^)]*)\)\s*;",
                                 source, re.S):
            doc, result, name, params = match.group(1) or "", match.group(2), match.group(3), match.group(4)
            plist = []
            for param in ([] if params.strip() in ("", "void") else params.split(",")):
                parts = re.match(r"(.*?)(\w+)\s*$", " ".join(param.split()))
                plist.append((parts.group(1).strip(), parts.group(2)))
            functions[name] = (result.strip(), plist, " ".join(doc.split()))
    return functions


def read_exports(objdump, dll):
    headers = subprocess.run([objdump, "-p", dll], capture_output=True, text=True, check=True).stdout
    table = headers.split("[Ordinal/Name Pointer] Table", 1)[-1]
    return set(re.findall(r"^\s*\[\s*\d+\]\s+(\S+)", table, re.M))


def read_decorations(def_file):
    if def_file == "-":
        return {}
    return {m.group(1): int(m.group(2)) for m in re.finditer(r"^\s+(\w+)@(\d+)\s*$", open(def_file).read(), re.M)}


def read_facts(nm, obj):
    """record -> {'size': n, 'fields': [(offset, size), ...]}"""
    out = subprocess.run([nm, obj], capture_output=True, text=True, check=True).stdout
    facts = {}
    for line in out.splitlines():
        match = re.match(r"^([0-9a-f]+) A mvsup_fact_(\w+?)__(size|(\d+)__(offset|size))$", line)
        if not match:
            continue
        value = int(match.group(1), 16)
        record = facts.setdefault(match.group(2), {"size": None, "fields": {}})
        if match.group(3) == "size":
            record["size"] = value
        else:
            record["fields"].setdefault(int(match.group(4)), {})[match.group(5)] = value
    return {name: {"size": r["size"], "fields": [(r["fields"][i]["offset"], r["fields"][i]["size"])
                                                 for i in sorted(r["fields"])]} for name, r in facts.items()}


# ---- Matching a declaration's types with the header's --------------------------

class Caller:
    """One language in one configuration: how it lays out records."""

    def __init__(self, label, pointer, pack, long_pointers=False):
        self.label, self.pointer, self.pack = label, pointer, pack
        # VBA 6 has no LongPtr: a Long is its pointer.
        self.long_pointers = long_pointers
        self.records = {}  # name -> [(field size, alignment)]
        self.checked_records = set()


def layout(fields, pack):
    offset, largest, placed = 0, 1, []
    for size, align in fields:
        align = max(1, min(align, pack))
        offset = (offset + align - 1) // align * align
        placed.append((offset, size))
        offset += size
        largest = max(largest, align)
    return placed, (offset + largest - 1) // largest * largest


def compatible(c, b, caller, facts, where):
    """Whether binding type b can stand for C type c; records are checked on the way."""
    if b == ("ptr", "any"):
        return c[0] == "ptr" or c == "iface"
    if caller.long_pointers and caller.pointer == 4 and b == ("int", 4) and c[0] == "ptr":
        return True
    if c == "iface" or b == "iface":
        return c == b
    if c[0] == "wchar" or b[0] == "wchar":
        return c == b
    if c[0] in ("int", "bool", "char", "float") or b[0] in ("int", "bool", "char", "float"):
        numeric = {"int", "bool", "char"}
        return b[0] != "ptr" and c[0] != "ptr" and c[1] == b[1] and (c[0] in numeric) == (b[0] in numeric)
    if c[0] == "record" or b[0] == "record":
        if c[0] != "record" or b[0] != "record":
            return False
        check_record(c[1], b[1], caller, facts, where)
        return True
    # Both pointers: compare what they point at.
    target_c, target_b = c[1], b[1]
    if target_b == "any":
        return True
    if target_c in ("opaque", "void"):
        return target_b not in (("wchar", 2), ("char", 1), "bstr")
    if target_b == "bstr":
        return False
    return compatible(target_c, target_b, caller, facts, where)


def check_record(c_name, b_name, caller, facts, where):
    key = (c_name, b_name)
    if key in caller.checked_records:
        return
    caller.checked_records.add(key)
    if b_name not in caller.records:
        problem(where, f"record {b_name} is not declared")
        return
    if c_name not in facts:
        problem(where, f"no layout facts for {c_name}")
        return
    placed, size = layout(caller.records[b_name], caller.pack)
    want = facts[c_name]
    if placed != want["fields"] or size != want["size"]:
        problem(where, f"{caller.label} record {b_name} is laid out as {placed}, {size} bytes; "
                       f"{c_name} is {want['fields']}, {want['size']} bytes")


def stack_bytes(types):
    return sum(8 if t in (("int", 8), ("float", 8)) else 4 for t in types)


def check_function(declaration, headers, exports, decorations, facts, caller):
    name, where = declaration["name"], f"{caller.label} {declaration['name']}"
    if name not in exports:
        problem(where, "is not exported by MvSup2u.dll")
    if name not in headers:
        problem(where, "is declared in no public header")
        return
    c_result, c_params, _ = headers[name]
    params = declaration["params"]
    if len(params) != len(c_params):
        problem(where, f"takes {len(params)} arguments, the header {len(c_params)}")
        return
    for (b_type, b_name), (c_text, c_name) in zip(params, c_params):
        if isinstance(b_type, str) and b_type.startswith("error:"):
            problem(where, f"argument {c_name}: {b_type[6:]}")
        elif not compatible(c_type(c_text), b_type, caller, facts, where):
            problem(where, f"argument {c_name} ({c_text}) is declared as {declaration['texts'][b_name]}")
    c_ret, b_ret = c_type(c_result), declaration["result"]
    if isinstance(b_ret, str) and b_ret.startswith("error:"):
        problem(where, f"result: {b_ret[6:]}")
    elif c_ret == "void" or b_ret == "void":
        if c_ret != b_ret:
            problem(where, f"result {c_result} is declared as {declaration['result_text']}")
    elif not compatible(c_ret, b_ret, caller, facts, where):
        problem(where, f"result {c_result} is declared as {declaration['result_text']}")
    if name in decorations and caller.pointer == 4:
        pushed = stack_bytes([t for t, _ in params])
        if pushed != decorations[name]:
            problem(where, f"pushes {pushed} bytes; the function removes {decorations[name]} (stdcall @N)")


# ---- VBA ---------------------------------------------------------------------

def vba_lines(path, defines):
    """The module's logical lines in the active branches of #If for these defines."""
    text = open(path, encoding="latin-1").read().replace("\r\n", "\n")
    text = re.sub(r" _\n\s*", " ", text)
    stack, lines = [], []

    def value(expression):
        expression = re.sub(r"\b(\w+)\b", lambda m: {"Not": "not", "And": "and", "Or": "or"}.get(
            m.group(1), str(defines.get(m.group(1), False))), expression)
        return eval(expression)  # noqa: S307 - our own module's conditions

    for number, line in enumerate(text.split("\n"), 1):
        stripped = line.strip()
        directive = re.match(r"#(If|ElseIf|Else|End If)\b\s*(.*?)\s*(Then)?$", stripped, re.I)
        if directive:
            word = directive.group(1).lower()
            outer = all(active for active, _ in stack)
            if word == "if":
                taken = value(directive.group(2))
                stack.append((taken, taken))
            elif word == "elseif":
                _, done = stack.pop()
                taken = not done and value(directive.group(2))
                stack.append((taken, done or taken))
            elif word == "else":
                _, done = stack.pop()
                stack.append((not done, True))
            else:
                stack.pop()
            del outer
            continue
        if all(active for active, _ in stack) and stripped and not stripped.startswith("'"):
            lines.append((number, stripped))
    return lines


VBA_BYVAL = {"long": ("int", 4), "integer": ("int", 2), "byte": ("int", 1), "boolean": ("int", 2),
             "double": ("float", 8), "date": ("float", 8), "single": ("float", 4), "currency": ("int", 8),
             "longlong": ("int", 8), "string": ("ptr", ("char", 1)), "longptr": ("ptr", "any"),
             "any": ("ptr", "any")}
VBA_SIZES = {"long": 4, "integer": 2, "byte": 1, "boolean": 2, "double": 8, "date": 8, "single": 4,
             "currency": 8, "longlong": 8}


def vba_type(passing, type_name, caller, win64, vba7):
    lower = type_name.lower()
    if lower == "longlong" and not win64:
        return "error:LongLong exists only in 64-bit VBA"
    if lower == "longptr" and not vba7:
        return "error:LongPtr does not exist before VBA 7"
    if passing == "byval":
        if lower in VBA_BYVAL:
            return VBA_BYVAL[lower]
        return f"error:a record ({type_name}) cannot be passed by value"
    if lower == "string":
        return ("ptr", "bstr")
    if lower in ("any",):
        return ("ptr", "any")
    if lower == "longptr":
        return ("ptr", ("ptr", "any"))
    if lower in VBA_SIZES:
        return ("ptr", VBA_BYVAL[lower])
    return ("ptr", ("record", type_name))


def read_vba(path, label, caller, defines):
    lines = vba_lines(path, defines)
    win64, vba7 = defines.get("Win64", False), defines.get("VBA7", False)
    declarations = []
    record = None
    for number, line in lines:
        if record is not None:
            if re.match(r"End Type$", line, re.I):
                caller.records[record[0]] = record[1]
                record = None
                continue
            field = re.match(r"(\w+)(?:\((\d+) To (\d+)\))? As (\w+)$", line, re.I)
            if not field:
                problem(f"{label} line {number}", f"cannot read the record field {line!r}")
                continue
            kind = field.group(4).lower()
            size = caller.pointer if kind == "longptr" else VBA_SIZES.get(kind)
            if size is None:
                problem(f"{label} line {number}", f"field type {field.group(4)} cannot be laid out")
                continue
            count = int(field.group(3)) - int(field.group(2)) + 1 if field.group(2) else 1
            record[1].append((size * count, size))
            continue
        start = re.match(r"(?:Public |Private )?Type (\w+)$", line, re.I)
        if start:
            record = (start.group(1), [])
            continue
        match = re.match(r"(?:Public |Private )?Declare (PtrSafe )?(Function|Sub) (\w+) Lib \"([^\"]+)\""
                         r"(?: Alias \"([^\"]+)\")? \((.*)\)(?: As (\w+))?$", line, re.I)
        if not match:
            if re.search(r"\bDeclare\b", line, re.I):
                problem(f"{label} line {number}", f"cannot read the declaration {line!r}")
            continue
        where = f"{label} {match.group(3)}"
        if vba7 and not match.group(1):
            problem(where, "VBA 7 needs Declare PtrSafe")
        if not vba7 and match.group(1):
            problem(where, "VBA 6 does not know PtrSafe")
        if match.group(4).lower() != "mvsup2u.dll":
            continue
        params, texts = [], {}
        for param in filter(None, (p.strip() for p in match.group(6).split(","))):
            parts = re.match(r"(?:(ByVal|ByRef) )?(\w+)(\(\))? As (\w+)$", param, re.I)
            if not parts:
                problem(where, f"cannot read the argument {param!r}")
                continue
            passing = (parts.group(1) or "ByRef").lower()  # VBA passes by reference unless told
            params.append((vba_type(passing, parts.group(4), caller, win64, vba7), parts.group(2)))
            texts[parts.group(2)] = param
        if match.group(2).lower() == "sub":
            result = "void"
        elif (match.group(7) or "Variant").lower() in ("string", "variant"):
            result = f"error:a result As {match.group(7) or 'Variant'} is not what the function returns"
        else:
            result = vba_type("byval", match.group(7), caller, win64, vba7)
        declarations.append({"name": match.group(5) or match.group(3), "params": params, "texts": texts,
                             "result": result, "result_text": match.group(7) or "(none)"})
    return declarations


# ---- C# ------------------------------------------------------------------------

CS_SCALARS = {"int": ("int", 4), "uint": ("int", 4), "short": ("int", 2), "ushort": ("int", 2),
              "byte": ("int", 1), "sbyte": ("int", 1), "long": ("int", 8), "ulong": ("int", 8),
              "double": ("float", 8), "float": ("float", 4), "bool": ("bool", 4), "char": ("wchar", 2)}
CS_HANDLES = {"IntPtr", "UIntPtr", "SafeHandle", "SafeRegistryHandle", "MvxItemInfoHandle", "SafeFileHandle"}


def cs_type(attributes, type_name, char_set):
    marshal = re.search(r"MarshalAs\(UnmanagedType\.(\w+)", attributes or "")
    marshal = marshal.group(1) if marshal else None
    if type_name in ("string", "StringBuilder"):
        wide = marshal in ("LPWStr", "BStr") or (marshal is None and char_set == "Unicode")
        return ("ptr", ("wchar", 2) if wide else ("char", 1))
    if type_name == "bool" and marshal in ("U1", "I1"):
        return ("int", 1)
    if type_name == "bool" and marshal == "VariantBool":
        return ("int", 2)
    if type_name in CS_SCALARS:
        return CS_SCALARS[type_name]
    if type_name in CS_HANDLES:
        return ("ptr", "any")
    if type_name.endswith("[]"):
        element = cs_type(None, type_name[:-2], char_set)
        return ("ptr", element)
    if type_name == "object":
        return ("ptr", "iface") if marshal in ("IUnknown", "Interface") else "error:object without MarshalAs(IUnknown)"
    return ("record", type_name)


def read_csharp(path, caller):
    source = re.sub(r"//[^\n]*", "", open(path, encoding="utf-8").read())
    # Records: [StructLayout(...)] public struct Name { fields }
    for match in re.finditer(r"\[StructLayout\(([^\]]*)\)\]\s*public struct (\w+)\s*\{(.*?)\}", source, re.S):
        options, name, body = match.groups()
        ansi = "CharSet.Unicode" not in options
        pack = re.search(r"Pack\s*=\s*(\d+)", options)
        fields = []
        for field in re.finditer(r"(\[[^\]]*\]\s*)?public (\w+(?:\[\])?) (\w+);", body):
            attributes, type_name = field.group(1) or "", field.group(2)
            count = re.search(r"SizeConst\s*=\s*(\d+)", attributes)
            if "ByValTStr" in attributes:
                unit = 1 if ansi else 2
                fields.append((int(count.group(1)) * unit, unit))
            elif "ByValArray" in attributes:
                element = CS_SCALARS[type_name[:-2]][1]
                fields.append((int(count.group(1)) * element, element))
            else:
                kind = cs_type(attributes, type_name, "Ansi" if ansi else "Unicode")
                size = caller.pointer if kind[0] == "ptr" else kind[1]
                fields.append((size, size))
        caller.records[name] = fields
        if pack:
            problem(f"{caller.label} {name}", "a Pack other than the natural one does not match the C layout")

    declarations = []
    for match in re.finditer(r"\[DllImport\(([^\]]*)\)\]\s*(\[return:[^\]]*\]\s*)?public static extern "
                             r"([\w\[\]]+) (\w+)\((.*)\);[ \t]*$", source, re.M):
        options, return_attributes, result, method, params = match.groups()
        library = re.match(r"\s*(\"[^\"]*\"|\w+)", options).group(1)
        if library not in ("Library", '"MvSup2u.dll"'):
            continue
        entry = re.search(r"EntryPoint\s*=\s*\"(\w+)\"", options)
        name = entry.group(1) if entry else method
        where = f"{caller.label} {name}"
        convention = re.search(r"CallingConvention\s*=\s*CallingConvention\.(\w+)", options)
        if convention and convention.group(1) not in ("StdCall", "Winapi"):
            problem(where, f"CallingConvention.{convention.group(1)}: the library is stdcall")
        if not re.search(r"ExactSpelling\s*=\s*true", options):
            problem(where, "needs ExactSpelling = true (else .NET may bind a name with A or W appended)")
        char_set = re.search(r"CharSet\s*=\s*CharSet\.(\w+)", options)
        char_set = char_set.group(1) if char_set else "Ansi"
        declaration = {"name": name, "params": [], "texts": {},
                       "set_last_error": bool(re.search(r"SetLastError\s*=\s*true", options)),
                       "result_text": result}
        for param in filter(None, (p.strip() for p in re.split(r",(?![^(]*\))", params))):
            parts = re.match(r"((?:\[[^\]]*\]\s*)*)(?:(out|ref|in) )?([\w\[\]]+) (\w+)$", param)
            if not parts:
                problem(where, f"cannot read the argument {param!r}")
                continue
            attributes, by_ref, type_name, arg = parts.groups()
            kind = cs_type(attributes, type_name, char_set)
            if by_ref and not (isinstance(kind, str) and kind.startswith("error:")):
                kind = ("ptr", kind)
            declaration["params"].append((kind, arg))
            declaration["texts"][arg] = param
        if result == "void":
            declaration["result"] = "void"
        elif result in ("string", "StringBuilder"):
            declaration["result"] = "error:a string result would be freed by the marshaller"
        else:
            declaration["result"] = cs_type(return_attributes, result, char_set)
        declarations.append(declaration)
    return declarations


def main():
    parser = argparse.ArgumentParser()
    for option in ("arch", "headers", "dll", "objdump", "nm", "facts", "decorated-def", "vba", "csharp"):
        parser.add_argument("--" + option, required=True)
    args = parser.parse_args()

    headers = read_headers(args.headers)
    exports = read_exports(args.objdump, args.dll)
    decorations = read_decorations(args.decorated_def)
    facts = read_facts(args.nm, args.facts)
    if args.arch == "i686" and not decorations:
        problem("setup", "no stdcall decorations given for i686")
    pointer = 4 if args.arch == "i686" else 8

    if pointer == 8:
        vba_configs = [("VBA 7 64-bit", {"VBA7": True, "Win64": True}, False)]
    else:
        vba_configs = [("VBA 7 32-bit", {"VBA7": True, "Win64": False}, False),
                       ("VBA 6", {"VBA7": False, "Win64": False}, True)]
    declared_sets = {}
    for label, defines, long_pointers in vba_configs:
        caller = Caller(label, pointer, pointer, long_pointers)
        declarations = read_vba(args.vba, label, caller, defines)
        for declaration in declarations:
            check_function(declaration, headers, exports, decorations, facts, caller)
        declared_sets[label] = {d["name"] for d in declarations}

    caller = Caller(".NET", pointer, 8)
    declarations = read_csharp(args.csharp, caller)
    for declaration in declarations:
        check_function(declaration, headers, exports, decorations, facts, caller)
        reports_last_error = "last error" in headers.get(declaration["name"], ("", [], ""))[2]
        if reports_last_error and not declaration["set_last_error"]:
            problem(f".NET {declaration['name']}", "reports failure through the last error: needs SetLastError = true")
    declared_sets[".NET"] = {d["name"] for d in declarations}

    # Every caller offers the same functions.
    everything = set().union(*declared_sets.values())
    for label, names in declared_sets.items():
        for name in sorted(everything - names):
            problem(label, f"does not declare {name}, which another caller declares")
        if not names:
            problem(label, "declares no function of MvSup2u.dll")

    for line in problems:
        print(line)
    counts = ", ".join(f"{label} {len(names)}" for label, names in declared_sets.items())
    print(f"{args.arch}: declarations checked ({counts}); {len(problems)} problems")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
