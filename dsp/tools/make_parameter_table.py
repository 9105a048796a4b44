#!/usr/bin/python3
"""Writes the unit's parameter table, a C++ header, from the description.

    make_parameter_table.py CONFIG.plist OUT.h

The header is the one vocabulary the unit (dsp/), the host bridge and the
plug-in description share: per parameter its pid, code name, range, default,
conversion kind, logarithmic flag and value names, and the oversampling
factors of the high-quality mode by sample rate. It needs nothing but the
standard library.
"""

import plistlib
import re
import sys


def fail(message):
    print(f"make_parameter_table: {message}", file=sys.stderr)
    sys.exit(1)


def kind_of(p):
    unit = p.get("unit", "")
    if unit == "Boolean":
        return "Switch"
    if unit == "Hertz":
        return "Frequency"
    if unit == "Indexed":
        return "WholeNumber"
    return "Plain"


def c_string(text):
    return '"' + text.replace("\\", "\\\\").replace('"', '\\"') + '"'


def c_float(value):
    text = repr(float(value))
    return text + "f" if ("." in text or "e" in text) else text + ".0f"


def parameters(description):
    found = []
    for clump in description.get("clumps", []):
        for p in clump.get("parameters", []):
            found.append(p)
    by_pid = {}
    for p in found:
        pid = p.get("pid")
        if not isinstance(pid, int) or pid < 0:
            fail(f"parameter {p.get('codesafeName')!r} has no valid pid")
        if pid in by_pid:
            fail(f"pid {pid} is used twice")
        if not re.fullmatch(r"[A-Za-z][A-Za-z0-9]*", p.get("codesafeName", "")):
            fail(f"pid {pid} has no code-safe name")
        by_pid[pid] = p
    if sorted(by_pid) != list(range(len(by_pid))):
        fail("the pids are not 0 to N-1")
    return [by_pid[i] for i in range(len(by_pid))]


def hq_mults(metadata):
    table = metadata.get("genericHQMultsBySampleRate", {})
    rows = []
    for rate, factor in table.items():
        try:
            rate_value = float(rate)
        except ValueError:
            fail(f"genericHQMultsBySampleRate: {rate!r} is not a sample rate")
        if not isinstance(factor, int) or factor not in (1, 2, 4):
            fail(f"genericHQMultsBySampleRate: {factor!r} at {rate} is not 1, 2 or 4")
        rows.append((rate_value, factor))
    return sorted(rows)


def product_tag(metadata):
    prefix = metadata.get("classPrefix", "")
    if not re.fullmatch(r"[A-Za-z][A-Za-z0-9]*", prefix):
        fail(f"classPrefix {prefix!r} is not a C++ name")
    version = metadata.get("versionInteger")
    if not isinstance(version, int) or version < 0:
        fail(f"versionInteger {version!r} is not a whole number")
    return f"{prefix}_{version}"


def header(description, source):
    params = parameters(description)
    metadata = description.get("metadata", {})
    out = []
    w = out.append
    w(f"// Generated from {source} by dsp/tools/make_parameter_table.py: do not edit.")
    w("#pragma once")
    w("")
    w('#include "dsp/ZelUnitParameter.h"')
    w("")
    w("// The product's own code lives in an inline namespace of its own, named")
    w("// after its class prefix and version, inside the editor's.")
    w(f"#define ZEL_PRODUCT_TAG {product_tag(metadata)}")
    w("#define ZEL_PRODUCT_NAMESPACE_BEGIN namespace zel { inline namespace ZEL_ABI_TAG { inline namespace ZEL_PRODUCT_TAG {")
    w("#define ZEL_PRODUCT_NAMESPACE_END } } }")
    w("")
    w("ZEL_PRODUCT_NAMESPACE_BEGIN")
    w("")
    w("// The description's metadata that the build and the generic sides use.")
    for key in ("pluginURLSlug", "pluginName", "classPrefix", "version"):
        w(f"inline constexpr char kZelProduct{key[0].upper() + key[1:]}[] = {c_string(str(metadata.get(key, '')))};")
    w("")
    w(f"inline constexpr int kZelParameterCount = {len(params)};")
    w("")
    w("enum ZelPid : int {")
    for p in params:
        w(f"  kPid{p['codesafeName']} = {p['pid']},")
    w("};")
    w("")
    for p in params:
        names = p.get("stringValues")
        if names:
            joined = ", ".join(c_string(n) for n in names)
            w(f"inline constexpr const char* kZel{p['codesafeName']}Strings[] = {{{joined}}};")
    w("")
    w("inline constexpr ZelUnitParameter kZelParameters[kZelParameterCount] = {")
    for p in params:
        names = p.get("stringValues")
        strings = f"kZel{p['codesafeName']}Strings, {len(names)}" if names else "nullptr, 0"
        w(f"  {{{p['pid']}, {c_string(p['codesafeName'])}, {c_string(p.get('name', p['codesafeName']))}, "
          f"{c_string(p.get('unit', 'Generic'))}, {c_float(p.get('minValue', 0))}, "
          f"{c_float(p.get('maxValue', 0))}, {c_float(p.get('initialValue', 0))}, "
          f"ZelParameterKind::{kind_of(p)}, {'true' if p.get('logarithmic') else 'false'}, {strings}}},")
    w("};")
    w("")
    w("// Oversampling factors of the high-quality mode, by sample rate.")
    rows = hq_mults(metadata)
    w(f"inline constexpr int kZelHQMultCount = {len(rows)};")
    body = ", ".join(f"{{{rate:.1f}, {factor}}}" for rate, factor in rows) or "{0.0, 1}"
    w(f"inline constexpr ZelHQMult kZelHQMults[{max(len(rows), 1)}] = {{{body}}};")
    w("")
    w("// The factor of the lowest listed rate at or above `sampleRate` (a rate")
    w("// within 1 Hz of a listed one counts as that one); 1 above them all.")
    w("constexpr int ZelHQFactorForSampleRate(double sampleRate) {")
    w("  for (int i = 0; i < kZelHQMultCount; ++i)")
    w("    if (sampleRate <= kZelHQMults[i].sampleRate + 1.0) return kZelHQMults[i].factor;")
    w("  return 1;")
    w("}")
    w("")
    w("ZEL_PRODUCT_NAMESPACE_END")
    return "\n".join(out) + "\n"


def read_description(path, fail=fail):
    """The description file's top-level dictionary; `fail` on an unreadable file."""
    try:
        with open(path, "rb") as f:
            return plistlib.load(f)
    except (OSError, plistlib.InvalidFileException, ValueError) as e:
        fail(f"cannot read {path}: {e}")


def main(argv):
    if len(argv) != 3:
        print(__doc__.strip().splitlines()[2].strip(), file=sys.stderr)
        return 2
    description = read_description(argv[1])
    text = header(description, "/".join(argv[1].rsplit("/", 3)[-3:]))
    try:
        with open(argv[2]) as f:
            if f.read() == text:
                return 0  # unchanged: keep the timestamp, rebuild nothing
    except OSError:
        pass
    with open(argv[2], "w") as f:
        f.write(text)
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv))
