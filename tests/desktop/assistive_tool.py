"""assistive_tool.py: reads what other programs say over the accessibility bus, as a screen reader does. Announces itself
to the desktop, writes "ready", and then answers each line of input:

list PROGRAM             a line for each control on the screen, then an empty line
find PROGRAM ROLE NAME   one such line, or an empty one
press PROGRAM ROLE NAME  does the control's first action; then as "find"

A control's line holds role, name, x, y, width, height, states with commas between them and value. All words are
separated by tabs."""

import sys

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, Gio, GLib  # noqa: E402

# Not controls: what holds them together, and what is written or painted beside them.
HOLDERS = {"application", "panel", "filler", "viewport", "scroll pane"}
REST = {"label", "image", "separator", "scroll bar"}

# An open menu hangs under no window; whoever wants to know of it listens.
menus = []

# What was found before, for speed.
found = {}


def menu_shown(event):
    try:
        if event.detail1 and event.source.get_role() == Atspi.Role.POPUP_MENU:
            menus.append(event.source)
    except GLib.Error:
        pass  # it is gone again


def role_of(element):
    role = element.get_role_name()
    return "push button" if role == "button" else role  # the newer name, in AT-SPI 2.56 for one


def value(element):
    interfaces = element.get_interfaces()
    if "Text" in interfaces:
        return Atspi.Text.get_text(element, 0, -1)
    if "Value" in interfaces:
        return f"{Atspi.Value.get_current_value(element):g}"
    return element.get_description()


def controls(element):
    """Each question takes a millisecond, so that as few as possible are asked."""
    try:
        role = role_of(element)
        if role in REST:
            return
        if role not in HOLDERS and element.get_state_set().contains(Atspi.StateType.SHOWING):
            yield element
        if role in {"page tab", "check box", "push button", "spin button", "text", "menu item"}:
            return
        children = [element.get_child_at_index(index) for index in range(element.get_child_count())]
    except GLib.Error:
        return  # it went while it was being looked at
    for child in filter(None, children):
        yield from controls(child)


def controls_of(program):
    desktop = Atspi.get_desktop(0)
    for index in range(desktop.get_child_count()):
        root = desktop.get_child_at_index(index)
        if root and root.get_name() == program:
            root.set_cache_mask(Atspi.Cache.NONE)  # not every program tells of every change
            for menu in menus:
                if menu.get_application() == root:
                    yield from controls(menu)
            yield from controls(root)


def find(program, role, name):
    known = found.get((program, role, name))
    try:
        if known and known.get_state_set().contains(Atspi.StateType.SHOWING):
            return known
    except GLib.Error:
        pass  # it is gone
    for element in controls_of(program):
        seen = (program, role_of(element), element.get_name())
        found[seen] = element
        if seen == (program, role, name):
            return element
    return None


def row(element):
    place = element.get_extents(Atspi.CoordType.SCREEN)
    states = ",".join(state.value_nick for state in element.get_state_set().get_states())
    facts = [role_of(element), element.get_name(), place.x, place.y, place.width, place.height, states]
    return "\t".join(map(str, [*facts, value(element)]))


def rows(elements):
    for element in filter(None, elements):
        try:
            yield row(element)
        except GLib.Error:
            pass  # it is gone


def answer(command, program, *rest):
    if command == "list":
        return "".join(f"{line}\n" for line in rows(controls_of(program)))
    element = find(program, *rest)
    if command == "press" and element:
        Atspi.Action.do_action(element, 0)
    return next(rows([element]), "")


def asked(source, condition):
    line = sys.stdin.readline()
    if not line:
        sys.exit()
    print(answer(*line.rstrip("\n").split("\t")), flush=True)
    return True


def announce():
    """Programs speak on the bus only when somebody listens."""
    status = GLib.Variant("(ssv)", ("org.a11y.Status", "IsEnabled", GLib.Variant("b", True)))
    bus = Gio.bus_get_sync(Gio.BusType.SESSION)
    bus.call_sync("org.a11y.Bus", "/org/a11y/bus", "org.freedesktop.DBus.Properties", "Set", status, None, 0, -1)


announce()
listener = Atspi.EventListener.new(menu_shown)
listener.register("object:state-changed:showing")
GLib.io_add_watch(sys.stdin, GLib.PRIORITY_DEFAULT, GLib.IO_IN | GLib.IO_HUP, asked)
print("ready", flush=True)
GLib.MainLoop().run()
