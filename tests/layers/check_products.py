#!/usr/bin/python3
"""Nothing outside products/ knows a product: the generic folders name no
product, none of its parameters and none of its pids.

    check_products.py SOURCE_DIR

For every products/<slug>/config.plist it collects the product's slug,
name and class prefix, its parameters' code names and display names, and
looks for them in every text file of the generic folders (the layers, the
adapters, the tools, cmake/ and the top-level CMakeLists.txt):
- the slug and the name as words, in any case (the repository's own
  command, ./vantry, is not a product and may be named);
- the class prefix at the start of a word (ZelVantryUnit);
- a pid constant of a generated table (kPidSomething);
- a code name written in camel case (LowCut) or a display name of several
  words (Low Cut) as a whole word; single-word code names (Mix, Output) are
  ordinary words and are not looked for. MasterOnOff is the description
  format's own name for the power switch (it draws the glowing switch).
Prints every finding as FILE:LINE: TEXT and exits 1 when there is one.
"""

import os
import plistlib
import re
import sys

GENERIC = ["toolkit", "theme", "layout", "model", "controls", "sketch", "editor", "host", "dsp", "lv2", "app",
           "cmake", "CMakeLists.txt"]
FORMAT_WORDS = {"MasterOnOff"}
# Findings that are known and left, each with its reason (FILE, text on the line).
KNOWN = [
    # The gallery's type specimen: the shared golden pictures show it.
    ("app/gallery/GalleryDrawing.cpp", "kSample"),
]


def products(source):
    found = []
    root = os.path.join(source, "products")
    for slug in sorted(os.listdir(root)):
        config = os.path.join(root, slug, "config.plist")
        if not os.path.isfile(config):
            continue
        with open(config, "rb") as f:
            description = plistlib.load(f)
        metadata = description.get("metadata", {})
        params = [p for c in description.get("clumps", []) for p in c.get("parameters", [])]
        found.append((slug, metadata, params))
    return found


def patterns(slug, metadata, params):
    out = []
    for word in {w.lower() for w in (slug, metadata.get("pluginURLSlug", ""), metadata.get("pluginName", ""))} - {""}:
        out.append((f"the product {word!r}", re.compile(r"(?<![A-Za-z0-9])(?<!\./)" + re.escape(word) + r"(?![A-Za-z0-9])", re.I)))
    prefix = metadata.get("classPrefix", "")
    if prefix:
        out.append((f"the class prefix {prefix!r}", re.compile(r"\b" + re.escape(prefix) + r"\w*")))
    for p in params:
        code, name = p.get("codesafeName", ""), p.get("name", "")
        if re.search(r"[a-z][A-Z]", code) and code not in FORMAT_WORDS:
            out.append((f"the parameter {code!r}", re.compile(r"\b" + re.escape(code) + r"\b")))
        if " " in name.strip():
            out.append((f"the parameter {name!r}", re.compile(r"\b" + re.escape(name) + r"\b")))
    return out


def files(source):
    for top in GENERIC:
        path = os.path.join(source, top)
        if os.path.isfile(path):
            yield path
            continue
        for folder, _, names in os.walk(path):
            for name in names:
                yield os.path.join(folder, name)


def main(argv):
    source = os.path.abspath(argv[1])
    checks = [(f"{slug}: ", what, rx) for slug, m, params in products(source) for what, rx in patterns(slug, m, params)]
    checks.append(("", "a pid constant", re.compile(r"\bkPid[A-Z]\w*")))
    if len(checks) < 4:
        print("found no product to look for under products/")
        return 1
    findings = 0
    for path in files(source):
        rel = os.path.relpath(path, source)
        try:
            with open(path, encoding="utf-8") as f:
                lines = f.read().splitlines()
        except (UnicodeDecodeError, OSError):
            continue  # binary
        for number, line in enumerate(lines, 1):
            if any(rel == f and text in line for f, text in KNOWN):
                continue
            for who, what, rx in checks:
                if rx.search(line):
                    print(f"{rel}:{number}: {who}{what}: {line.strip()}")
                    findings += 1
    print(f"{findings} mentions of a product outside products/ ({len(checks)} names looked for)")
    return 1 if findings else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv))
