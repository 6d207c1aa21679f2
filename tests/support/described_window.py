#!/usr/bin/python3
"""What a program says on the accessibility bus, without a window: the registry and one application in it.

Usage: described_window.py MODE, with the bus's address in $AT_SPI_BUS_ADDRESS. Prints "ready" when it may be asked.

A tree's name (see TREES): the application answers as the toolkit does, with a reference to nothing among the children.
slow: every object has eight children, and every answer takes a fiftieth of a second. Prints "asked" when a
    conversation begins.
deaf: the registry answers when four questions are waiting; the line "most" on standard input prints how many have waited
    at the same time.
"""
import os
import sys

from gi.repository import Gio, GLib

FRAME, PANEL, LABEL, BUTTON, GROUPING = 23, 39, 29, 43, 99
VISIBLE = 1 << 30 | 1 << 24
ROOT = "/org/a11y/atspi/accessible/root"
NOTHING = ("", "/org/a11y/atspi/null")


def controls(*places):
    return [(BUTTON, name, rect, []) for name, rect in places]


# Role, name, rectangle and children of a window of 600 by 300 with a header bar, as GTK 4.18 and libadwaita 1.7 tell
# them where the window manager composes (shadow) and where it does not (border).
TREES = {
    "gtk-border": (FRAME, "", (-5, -5, 600, 300), [
        (LABEL, "", (-5, 41, 590, 244), []),
        (GROUPING, "", (-6, -6, 592, 47), [
            (PANEL, "", (-6, -6, 580, 46), [
                (PANEL, "", (-6, -6, 580, 46), [
                    (LABEL, "", (250, 9, 69, 16), []),
                    (PANEL, "", (453, -6, 121, 46), [
                        (GROUPING, "", (460, -6, 120, 46),
                         controls(("Minimize", (460, -6, 34, 46)), ("Maximize", (500, -6, 34, 46)),
                                  ("Close", (540, -6, 40, 46))))])])])])]),
    "gtk-border-left": (FRAME, "", (-5, -5, 600, 300), [
        (LABEL, "", (-5, 41, 590, 244), []),
        (GROUPING, "", (-6, -6, 592, 47), [
            (PANEL, "", (-6, -6, 580, 46), [
                (PANEL, "", (-6, -6, 580, 46), [
                    (PANEL, "", (-6, -6, 200, 46), [
                        (GROUPING, "", (-12, -6, 120, 46),
                         controls(("Close", (-12, -6, 40, 46)), ("Minimize", (34, -6, 34, 46)),
                                  ("Maximize", (74, -6, 34, 46)))),
                        (LABEL, "", (121, 0, 73, 34), [])]),
                    (LABEL, "", (250, 9, 69, 16), []),
                    (PANEL, "", (574, -6, 0, 46), [])])])])]),
    "adwaita-shadow": (FRAME, "", (0, 0, 600, 300), [
        (PANEL, "", (0, 0, 600, 300), [
            (GROUPING, "", (-1, 0, 602, 47), [
                (PANEL, "", (-1, 0, 602, 47), [
                    (PANEL, "", (-1, 0, 84, 34), []),
                    (PANEL, "", (259, 0, 69, 34), []),
                    (PANEL, "", (473, 0, 114, 34), [
                        (PANEL, "", (479, 0, 108, 34), [
                            (GROUPING, "", (479, 0, 108, 34),
                             controls(("Minimize", (479, 0, 34, 34)), ("Maximize", (516, 0, 34, 34)),
                                      ("Close", (553, 0, 34, 34))))])])])]),
            (PANEL, "", (0, 0, 588355024, 0), []),
            (LABEL, "", (0, 47, 600, 253), [])])]),
}

INTERFACES = Gio.DBusNodeInfo.new_for_xml("""<node>
<interface name="org.a11y.atspi.Accessible">
  <method name="GetChildren"><arg type="a(so)" direction="out"/></method>
  <method name="GetRole"><arg type="u" direction="out"/></method>
  <method name="GetState"><arg type="au" direction="out"/></method>
  <property name="Name" type="s" access="read"/>
  <property name="Locale" type="s" access="read"/>
</interface>
<interface name="org.a11y.atspi.Component">
  <method name="GetExtents"><arg type="u"/><arg type="(iiii)" direction="out"/></method>
</interface>
<interface name="org.a11y.atspi.Application">
  <property name="ToolkitName" type="s" access="read"/>
  <property name="Version" type="s" access="read"/>
</interface>
</node>""").interfaces

mode = sys.argv[1]
flags = Gio.DBusConnectionFlags
bus = Gio.DBusConnection.new_for_address_sync(
    os.environ["AT_SPI_BUS_ADDRESS"], flags.AUTHENTICATION_CLIENT | flags.MESSAGE_BUS_CONNECTION, None, None)
objects = {}
waiting = []
most = 0


def add(path, role, name, rect, children):
    objects[path] = (role, name, rect, children)
    for interface in INTERFACES:
        bus.register_object(path, interface, call, read, None)


def add_tree(path, node):
    role, name, rect, children = node
    paths = [f"{path}/{number}" for number in range(len(children))]
    add(path, role, name, rect, [NOTHING] + paths)
    for child, below in zip(paths, children):
        add_tree(child, below)


def call(_bus, _sender, path, _interface, method, _arguments, invocation):
    role, _name, rect, children = objects[path]
    to_registry = invocation.get_message().get_destination() == "org.a11y.atspi.Registry"
    if method == "GetChildren":
        listed = [ROOT] if to_registry else children
        named = [child if child == NOTHING else (bus.get_unique_name(), child) for child in listed]
        answer = GLib.Variant("(a(so))", (named,))
        if to_registry and mode == "deaf":
            return hold(invocation, answer)
        if to_registry and mode == "slow":
            print("asked", flush=True)
    elif method == "GetRole":
        answer = GLib.Variant("(u)", (role,))
    elif method == "GetState":
        answer = GLib.Variant("(au)", ([VISIBLE, 0],))
    else:
        answer = GLib.Variant("((iiii))", (rect,))
    if mode == "slow":
        GLib.timeout_add(20, lambda: invocation.return_value(answer))
    else:
        invocation.return_value(answer)


def hold(invocation, answer):
    global most
    waiting.append(lambda: invocation.return_value(answer))
    most = max(most, len(waiting))
    if len(waiting) == 4:
        GLib.timeout_add(100, release)


def release():
    while waiting:
        waiting.pop()()


def read(_bus, _sender, path, _interface, name):
    texts = {"ToolkitName": "GTK", "Version": "4.18.6", "Locale": "C", "Name": objects[path][1]}
    return GLib.Variant("s", texts[name])


def command(source, _condition):
    line = source.readline()
    if line:
        print(most, flush=True)
    return bool(line)


if mode == "slow":
    children = [f"/slow/{number}" for number in range(8)]
    add(ROOT, PANEL, "", (0, 0, 0, 0), children)
    for child in children:
        add(child, PANEL, "", (0, 0, 600, 300), children)
else:
    add(ROOT, PANEL, "", (0, 0, 0, 0), [NOTHING, "/window"])
    add_tree("/window", TREES.get(mode, TREES["gtk-border"]))
bus.call_sync("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "RequestName",
              GLib.Variant("(su)", ("org.a11y.atspi.Registry", 4)), None, 0, -1, None)
GLib.io_add_watch(sys.stdin, GLib.IO_IN | GLib.IO_HUP, command)
print("ready", flush=True)
GLib.MainLoop().run()
