#!/usr/bin/python3
"""The description format for the Python tools, read from the one place it is
written: model/ZelDescriptionSchema.h (the C++ records, zel-describe check
and zel-describe json follow the same lists).

    from zel_description_schema import SCHEMA
    SCHEMA.default("parameter", "unit")         -> "Percent"
    SCHEMA.words("parameter", "scope")          -> ["self", "global", "clump"]
    SCHEMA.problems(description)                -> ["clumps[0]...: ..."]

    zel_description_schema.py --dump            prints every record's keys
                                                and every enumeration
"""

import os
import re
import sys

HEADER = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "ZelDescriptionSchema.h")

# The record lists of the header, by the name the tools use.
RECORD_LISTS = {
    "metadata": "ZEL_METADATA_KEYS",
    "clump": "ZEL_CLUMP_KEYS",
    "parameter": "ZEL_PARAMETER_KEYS",
    "presets": "ZEL_PRESETS_KEYS",
}

# What a missing key reads as, by type (enumerations: their default word).
TYPE_DEFAULTS = {
    "String": "", "Integer": 0, "Number": 0.0, "Boolean": False, "Color": "#000000",
}

# The value kinds each type accepts (bool is an int in Python: booleans are
# accepted where numbers are, as the C++ reader does).
_NUMBER = (int, float)
TYPE_KINDS = {
    "String": str, "Color": str, "Enum": str, "Integer": _NUMBER, "Number": _NUMBER, "Boolean": _NUMBER,
    "Dictionary": dict, "Layout": dict, "StringTable": dict, "Inset": dict, "Constraints": dict,
    "Array": list, "Strings": list, "Numbers": list, "NameLists": list, "ValueSets": list, "Children": list,
    "ChannelRules": (list, dict), "Linked": object,
}


class Key:
    def __init__(self, key, member, type_):
        self.key, self.member, self.type = key, member, type_


class Schema:
    def __init__(self, text):
        self.records = {}
        for record, macro in RECORD_LISTS.items():
            body = _macro_body(text, macro)
            self.records[record] = [Key(*m) for m in re.findall(r"KEY\((\w+), (\w+), (\w+)\)", body)]
        # The enumerations: ENUM(ZelType, Default, WORDS_MACRO); a key of type
        # Enum uses the enumeration named Zel + the key with a capital.
        self.enums = {}
        for type_name, default, words_macro in re.findall(r"ENUM\((\w+), (\w+), (\w+)\)", _macro_body(text, "ZEL_ENUMS")):
            pairs = re.findall(r'WORD\("([^"]*)", (\w+)\)', _macro_body(text, words_macro))
            words = [w for w, _ in pairs]
            default_word = next(w for w, e in pairs if e == default)
            self.enums[type_name] = (words, default_word)

    def keys(self, record):
        """The keys a record allows, in order; presets allow a parameter's too."""
        extra = self.records["parameter"] if record == "presets" else []
        return extra + self.records[record]

    def key(self, record, name):
        for k in self.keys(record):
            if k.key == name:
                return k
        raise KeyError(f"{record} has no key {name!r}")

    def words(self, record, name):
        k = self.key(record, name)
        if k.type != "Enum":
            raise KeyError(f"{record}.{name} is not an enumeration")
        return self.enums["Zel" + name[0].upper() + name[1:]][0]

    def default(self, record, name):
        k = self.key(record, name)
        if k.type == "Enum":
            return self.enums["Zel" + name[0].upper() + name[1:]][1]
        return TYPE_DEFAULTS.get(k.type)

    def value(self, record, dictionary, name):
        """The key's value in `dictionary`, or what a missing key reads as."""
        v = dictionary.get(name)
        return self.default(record, name) if v is None else v

    def problems(self, description):
        """Keys a record does not allow and values of the wrong kind, as
        "path: message" lines."""
        out = []

        def record(kind, d, path):
            if not isinstance(d, dict):
                out.append(f"{path}: expected a dictionary")
                return
            allowed = {k.key: k for k in self.keys(kind)}
            for name, v in d.items():
                k = allowed.get(name)
                if k is None:
                    out.append(f"{path}.{name}: not a key of a {kind}")
                elif not isinstance(v, TYPE_KINDS[k.type]):
                    out.append(f"{path}.{name}: expected {k.type}, found {type(v).__name__}")
                elif k.type == "Enum" and v not in self.words(kind, name):
                    out.append(f"{path}.{name}: {v!r} is not one of {', '.join(self.words(kind, name))}")

        if "metadata" in description:
            record("metadata", description["metadata"], "metadata")
        for i, clump in enumerate(description.get("clumps", [])):
            record("clump", clump.get("metadata", {}), f"clumps[{i}].metadata")
            for j, p in enumerate(clump.get("parameters", [])):
                record("parameter", p, f"clumps[{i}].parameters[{j}]")
        if "presets" in description:
            record("presets", description["presets"], "presets")
        return out

    def dump(self):
        lines = []
        for record in RECORD_LISTS:
            for k in self.records[record]:
                lines.append(f"{record} {k.key} {k.member} {k.type}")
        for type_name, (words, default) in self.enums.items():
            lines.append(f"enum {type_name} {default} {' '.join(words)}")
        return "\n".join(lines) + "\n"


def _macro_body(text, name):
    """The text of a #define, its continuation lines joined."""
    m = re.search(r"^#define " + name + r"\(\w+\)((?:.*\\\n)*.*)$", text, re.M)
    if not m:
        raise ValueError(f"{HEADER}: no #define {name}")
    return m.group(1).replace("\\\n", " ")


def load(path=HEADER):
    with open(path) as f:
        return Schema(f.read())


SCHEMA = load()

if __name__ == "__main__":
    if sys.argv[1:] != ["--dump"]:
        print(__doc__.strip().splitlines()[-2].strip(), file=sys.stderr)
        sys.exit(2)
    sys.stdout.write(SCHEMA.dump())
