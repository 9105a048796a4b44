"""What every product's description script shares: layout cells and grids,
clump entries, and writing the description (or checking that the committed
one is current) after the schema has vetted its keys.

A product's tools/make_config.py builds its description as plain Python
values and ends with

    sys.exit(write_or_check(description(), OUT, sys.argv[1:]))
"""

import plistlib
import sys

from zel_description_schema import SCHEMA


def cell(x, y, w, h):
    return {"origin": {"x": x, "y": y}, "size": {"w": w, "h": h}}


def grid(width, height, **frames):
    """A layout dictionary; frame names given as keyword args (f0 -> "0")."""
    matrix = {}
    for name, rect in frames.items():
        matrix[name[1:] if name.startswith("f") and name[1:].isdigit() else name] = cell(*rect)
    return {"width": width, "height": height, "matrix": matrix}


def rule_under_title():
    # Hairline under the clump's title strip: top, right, bottom, left.
    return [0, 0, 1, 0]


def clump_entry(name, kind, params, layout):
    meta = {
        "name": name, "codesafeName": name, "labelString": name,
        "clumpType": kind, "computedLayout": layout,
    }
    if kind != "PowerBox":
        meta["labelBorder"] = rule_under_title()
    return {"metadata": meta, "parameters": params}


def without_label_images(node):
    """The description without the label images that zel-make-labels renders
    into it ("label" and "logo" strings starting with "base64,")."""
    if isinstance(node, dict):
        return {k: without_label_images(v) for k, v in node.items()
                if not (k in ("label", "logo") and isinstance(v, str) and v.startswith("base64,"))}
    if isinstance(node, list):
        return [without_label_images(v) for v in node]
    return node


def write_or_check(description, out, argv):
    """Writes `description` to `out`; with --check in `argv`, returns 1 when
    the file differs from it (label images aside) instead. Returns 1, and
    writes nothing, when it has keys or kinds the format does not have."""
    problems = SCHEMA.problems(description)
    if problems:
        print("\n".join(f"make_config: {p}" for p in problems), file=sys.stderr)
        return 1
    data = plistlib.dumps(description, fmt=plistlib.FMT_XML, sort_keys=True)
    if "--check" in argv:
        with open(out, "rb") as f:
            current = without_label_images(plistlib.loads(f.read()))
        if plistlib.dumps(current, fmt=plistlib.FMT_XML, sort_keys=True) != data:
            print(f"{out} is stale: run {sys.argv[0]}", file=sys.stderr)
            return 1
        return 0
    with open(out, "wb") as f:
        f.write(data)
    return 0
