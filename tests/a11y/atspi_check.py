#!/usr/bin/python3
"""Checks Vantry's editor from a screen reader's side: through pyatspi (the
library Orca reads the AT-SPI bus with), against a running editor: the
standalone app, or the plug-in's UI in a host.

  atspi_check.py [--keys-to WINDOW_ID] [--session FILE] [--automation NAME]
                 [--mono] [--no-set]

The editor must be running (or start within 30 s). Prints one line per
check ("ok ..." or "FAIL ..."); exits 1 when one failed, 77 when there is
no AT-SPI bus to read."""

import argparse
import plistlib
import subprocess
import sys
import time

try:
    import pyatspi
    from gi.repository import GLib
except ImportError as e:  # the package is missing
    print(f"SKIP: pyatspi: {e}")
    sys.exit(77)

# Every parameter: role, minimum, maximum, value at default, its text then.
PARAMETERS = {
    "Low Cut": ("slider", 20, 20000, 20, "20 Hz"),
    "High Cut": ("slider", 20, 20000, 20000, "20.0 kHz"),
    "Slope": ("spin button", 6, 96, 12, "12 dB/oct"),
    "Degrade": ("slider", 0, 100, 0, "0.0 %"),
    "Drive": ("slider", 0, 100, 0, "0.0 %"),
    "Mix": ("slider", 0, 100, 100, "100.0 %"),
    "Output": ("slider", -24, 24, 0, "0.0 dB"),
    "Power": ("toggle button", 0, 1, 1, "On"),
    "Hiss": ("slider", -96, 0, -96, "-\u221e dB"),
    "Mode": ("combo box", 0, 2, 0, "Stereo"),
    "Width": ("slider", 0, 100, 100, "100.0 %"),
    "HQ": ("toggle button", 0, 1, 0, "Off"),
}
ADVANCED = {"Hiss", "Mode", "Width", "HQ"}
PANELS = ["Filter", "Degrade", "Output", "Power", "Presets", "Advanced", "Preset list"]

failed = False


def check(ok, what):
    global failed
    print(("ok " if ok else "FAIL ") + what, flush=True)
    if not ok:
        failed = True
    return ok


def pump(seconds, until=None):
    """Runs GLib's main context (pyatspi's events arrive there) for up to
    `seconds`, or until `until()` holds; returns whether it held."""
    context = GLib.MainContext.default()
    end = time.monotonic() + seconds
    while time.monotonic() < end:
        while context.pending():
            context.iteration(False)
        if until and until():
            return True
        time.sleep(0.02)
    return bool(until and until())


def find_app(seconds):
    end = time.monotonic() + seconds
    while time.monotonic() < end:
        desktop = pyatspi.Registry.getDesktop(0)
        for app in desktop:
            try:
                if app is not None and app.name == "Vantry" and app.childCount > 0:
                    return app
            except Exception:
                pass
        time.sleep(0.2)
    return None


def walk(node):
    yield node
    for child in node:
        if child is not None:
            yield from walk(child)


def states(node):
    return node.getState()


def has(node, state):
    return node.getState().contains(state)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--keys-to", help="the X window that gets the keys (xdotool)")
    parser.add_argument("--session", help="the standalone app's session file (the unit's values)")
    parser.add_argument("--automation", help="a parameter the host's automation moves meanwhile")
    parser.add_argument("--mono", action="store_true", help="a mono editor: Mode and Width are disabled")
    parser.add_argument("--no-set", action="store_true", help="only read")
    args = parser.parse_args()

    app = find_app(30)
    if not check(app is not None, "an application named \"Vantry\" is on the accessibility bus"):
        return 1
    events = []

    def on_event(event):
        try:
            events.append((event.type, event.source.name, event.detail1, time.monotonic()))
        except Exception:
            pass

    pyatspi.Registry.registerEventListener(on_event, "object:state-changed:focused",
                                           "object:property-change:accessible-value")
    check(app.getRoleName() == "application", f"its role is application ({app.getRoleName()})")
    frame = app[0]
    check(frame.getRoleName() == "frame" and frame.name == "Vantry",
          f"its window is a frame named Vantry ({frame.getRoleName()} {frame.name!r})")
    panels = [c.name for c in frame if c.getRoleName() == "panel"]
    check(panels == PANELS, f"the window's panels: {panels}")
    advanced = [c for c in frame if c.name == "Advanced"][0]
    check([c.name for c in advanced if c.getRoleName() == "panel"] == ["Noise", "Stereo", "Quality"],
          "the Advanced drawer holds the panels Noise, Stereo and Quality")

    controls = {}
    for node in walk(frame):
        if node.name in PARAMETERS and node.getRoleName() != "panel":
            controls.setdefault(node.name, node)
    check(sorted(controls) == sorted(PARAMETERS), f"all 12 parameters are there ({len(controls)})")
    for name, (role, lo, hi, default, text) in PARAMETERS.items():
        node = controls.get(name)
        if node is None:
            continue
        value = node.queryValue()
        if args.mono and name in ("Mode",):
            default, text = 1, "Mono"
        got = (node.getRoleName(), value.minimumValue, value.maximumValue, value.currentValue, node.description)
        if name == args.automation:  # moving already
            got, default, text = got[:3], None, None
        check(got == (role, lo, hi, default, text)[:len(got)], f"{name}: {got}")
        check(value.minimumIncrement > 0, f"{name} steps by {value.minimumIncrement}")
        actions = node.queryAction()
        names = [actions.getName(i) for i in range(actions.nActions)]
        check({"increment", "decrement", "reset"} <= set(names), f"{name} has the actions {names}")
        check(has(node, pyatspi.STATE_FOCUSABLE), f"{name} is focusable")
        showing = has(node, pyatspi.STATE_SHOWING)
        check(showing == (name not in ADVANCED), f"{name} {'is' if showing else 'is not'} showing")
        enabled = has(node, pyatspi.STATE_ENABLED) and has(node, pyatspi.STATE_SENSITIVE)
        should = not (args.mono and name in ("Mode", "Width"))
        check(enabled == should, f"{name} {'is' if enabled else 'is not'} enabled")
    for name in ("HQ", "Power"):
        if name in controls:
            names = [controls[name].queryAction().getName(i) for i in range(controls[name].queryAction().nActions)]
            check("toggle" in names, f"{name} can be toggled")
    buttons = {n.name: n for n in walk(frame) if n.getRoleName() == "push button"}
    check({"Undo", "Redo", "Manual", "Advanced controls", "Light or dark theme", "About", "Preset list"} <= set(buttons),
          f"the buttons: {sorted(buttons)}")
    preset = [n for n in walk(frame) if n.name == "Preset"]
    # (A mono editor's Mode differs from the preset's: it becomes modified.)
    check(preset and preset[0].getRoleName() == "combo box" and
          (preset[0].description.startswith("Default") if args.mono else preset[0].description == "Default"),
          f"the preset bar says the preset's name ({preset[0].description!r})" if preset else "the preset combo box")
    if args.mono:
        return 1 if failed else 0


    if args.automation:
        # The host moves the parameter 50 times a second for a few seconds:
        # value events come, at most about ten a second.
        def moves():
            return [e for e in events if e[1] == args.automation and e[0].endswith("accessible-value")]
        check(pump(max(10, 20), lambda: moves()), f"automation moving {args.automation} gives value-changed events")
        quiet = [time.monotonic(), len(moves())]

        def settled():
            if len(moves()) != quiet[1]:
                quiet[:] = [time.monotonic(), len(moves())]
            return time.monotonic() - quiet[0] > 1.5
        pump(30, settled)
        times = [e[3] for e in moves()]
        seconds = times[-1] - times[0] if times else 0
        print(f"  {len(times)} value events for {args.automation} over {seconds:.1f} s of automation", flush=True)
        check(2 <= len(times) <= 12 * seconds + 2, f"the value events are rate-limited ({len(times)} in {seconds:.1f} s)")

    if not args.no_set:
        low = controls["Low Cut"]
        low.queryValue().currentValue = 1000.0
        check(pump(max(10, 2), lambda: low.description == "1.00 kHz"),
              f"setting Low Cut to 1000 through the bus: the editor reads {low.description!r}")
        check(low.queryValue().currentValue == 1000, f"Low Cut's value is {low.queryValue().currentValue}")
        check(pump(max(10, 2), lambda: any(t.endswith("accessible-value") and n == "Low Cut" for t, n, *_ in events)),
              "a value-changed event for Low Cut")
        # What a typed value does besides: an undo step, the preset marked modified.
        check(pump(max(10, 3), lambda: has(buttons["Undo"], pyatspi.STATE_ENABLED)), "Undo is enabled after the change")
        check(pump(max(10, 3), lambda: preset[0].description == "Default, modified"),
              f"the preset bar says {preset[0].description!r}")
        if args.session:
            def unit_value():
                try:
                    with open(args.session, "rb") as f:
                        return plistlib.load(f)["values"]["LowCut"]
                except Exception:
                    return None
            check(pump(max(10, 4), lambda: abs((unit_value() or 0) - 1000) < 0.01),
                  f"the unit's Low Cut is {unit_value()} (the session file)")

    # Tab: the focus moves to the next control in the tab order. The keys
    # are typed (XTest) into the window, focused first.
    def key(name):
        subprocess.run(["xdotool", "mousemove", "--window", args.keys_to, "240", "190"], check=False)
        subprocess.run(["xdotool", "windowfocus", args.keys_to], check=False)
        subprocess.run(["xdotool", "key", name], check=False)

    if args.keys_to:
        events.clear()
        key("Tab")
        got = pump(max(10, 3), lambda: any(t == "object:state-changed:focused" and d == 1 for t, _, d, *_ in events))
        focus = [n for t, n, d, *_ in events if t == "object:state-changed:focused" and d == 1]
        check(got and focus[-1] == "Low Cut", f"Tab focuses Low Cut first ({focus})")
        check(has(controls["Low Cut"], pyatspi.STATE_FOCUSED), "Low Cut is focused")
        events.clear()
        key("Tab")
        pump(max(10, 3), lambda: any(t == "object:state-changed:focused" and d == 1 for t, _, d, *_ in events))
        focus = [n for t, n, d, *_ in events if t == "object:state-changed:focused" and d == 1]
        check(focus[-1:] == ["High Cut"], f"the next Tab focuses High Cut ({focus})")
        lost = [n for t, n, d, *_ in events if t == "object:state-changed:focused" and d == 0]
        check("Low Cut" in lost, f"Low Cut lost the focus ({lost})")
        # A keyboard change is a value change too.
        events.clear()
        key("Down")
        check(pump(max(10, 3), lambda: any(t.endswith("accessible-value") and n == "High Cut" for t, n, *_ in events)),
              f"an arrow key on High Cut gives a value-changed event ({controls['High Cut'].description!r})")

    # The Advanced drawer: closed, its controls are not showing; opened
    # through its button's action, they are; closed again, not.
    gear = buttons.get("Advanced controls")
    hiss = controls["Hiss"]
    check(not has(hiss, pyatspi.STATE_SHOWING), "Hiss is not showing while the Advanced drawer is closed")
    if gear is not None:
        gear.queryAction().doAction(0)
        check(pump(max(10, 3), lambda: has(hiss, pyatspi.STATE_SHOWING)), "Hiss is showing once the drawer opened")
        check(has(gear, pyatspi.STATE_CHECKED), "the Advanced controls button is checked while the drawer is open")
        gear.queryAction().doAction(0)
        check(pump(max(10, 3), lambda: not has(hiss, pyatspi.STATE_SHOWING)), "Hiss is not showing once it closed again")

    # Toggle: HQ through its action.
    hq = controls["HQ"]
    actions = hq.queryAction()
    actions.doAction([actions.getName(i) for i in range(actions.nActions)].index("toggle"))
    check(pump(max(10, 2), lambda: hq.queryValue().currentValue == 1 and has(hq, pyatspi.STATE_CHECKED)),
          f"toggling HQ turns it on ({hq.description!r})")
    pyatspi.Registry.deregisterEventListener(on_event, "object:state-changed:focused",
                                             "object:property-change:accessible-value")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
