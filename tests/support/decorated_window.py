#!/usr/bin/python3
"""A window that draws its own title bar.

Usage: decorated_window.py gtk3|gtk4|adwaita TITLE

The title bar also holds buttons of the application's own, one of them called as the toolkit calls its closing button.
Lines on standard input: "plain" takes the title-bar buttons away, "buttons" brings them back; "fullscreen" makes the
window fill the screen; "other page" turns to another page of the stack that adwaita has the title bar in. Each is
printed when done. Prints "closed" when the person has closed the window, and ends.
"""
import gettext
import os
import sys

kind, title = sys.argv[1:3]

import gi

gi.require_version("Gtk", "3.0" if kind == "gtk3" else "4.0")
from gi.repository import GLib, Gtk

loop = GLib.MainLoop()
domain = "gtk30" if kind == "gtk3" else "gtk40"
language = os.environ.get("LANGUAGE")
translation = gettext.translation(domain, "/usr/share/locale", [language] if language else [], fallback=True)
own_close = Gtk.Button(label=translation.gettext("Close"))
own_open = Gtk.Button(label="Open")


def closed(*_):
    print("closed", flush=True)
    loop.quit()
    return False


if kind == "gtk3":
    window = Gtk.Window(title=title)
    bar = Gtk.HeaderBar(show_close_button=True, title=title)
    window.set_titlebar(bar)
    window.add(Gtk.Label(label="content"))
    window.connect("delete-event", closed)
    show_buttons = bar.set_show_close_button
    show = window.show_all
elif kind == "gtk4":
    Gtk.init()
    window = Gtk.Window(title=title)
    bar = Gtk.HeaderBar()
    window.set_titlebar(bar)
    window.set_child(Gtk.Label(label="content"))
    window.connect("close-request", closed)
    show_buttons = bar.set_show_title_buttons
    show = window.present
else:
    gi.require_version("Adw", "1")
    from gi.repository import Adw

    Adw.init()
    window = Adw.Window(title=title)
    bar = Adw.HeaderBar()
    pages = Gtk.Stack()
    pages.add_named(bar, "bar")
    pages.add_named(Gtk.Box(), "other")
    box = Gtk.Box(orientation=Gtk.Orientation.VERTICAL)
    box.append(pages)
    box.append(Gtk.Label(label="content", vexpand=True))
    window.set_content(box)
    window.connect("close-request", closed)

    def show_buttons(shown):
        bar.set_show_end_title_buttons(shown)

    show = window.present

bar.pack_start(own_open)
bar.pack_end(own_close)
window.set_default_size(600, 300)


def say_when(condition, line):
    """At once or a hundredth of a second after `condition` has come to hold."""
    if condition():
        print(line, flush=True)
        return False
    return True


def command(source, _condition):
    line = source.readline().strip()
    done = lambda: True
    if line == "fullscreen":
        window.fullscreen()
        done = lambda: not bar.get_mapped()
    elif line == "other page":
        pages.set_visible_child_name("other")
        done = lambda: not bar.get_mapped()
    elif line:
        show_buttons(line == "buttons")
    if line:
        GLib.timeout_add(10, say_when, done, line)
    return bool(line)


GLib.io_add_watch(sys.stdin, GLib.IO_IN | GLib.IO_HUP, command)
show()
loop.run()
