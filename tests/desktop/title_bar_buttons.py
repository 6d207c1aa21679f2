"""title_bar_buttons.py X Y: the centres of the minimise, zoom and close buttons of the GTK 3 window that draws its own
title bar and whose frame's top-left corner is at X, Y; one a line. Prints nothing when there are no such buttons yet."""

import sys

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi  # noqa: E402

TITLE_BAR_HEIGHT = 60


def descendants(element, depth):
    yield element
    if depth > 0:
        for index in range(element.get_child_count()):
            child = element.get_child_at_index(index)
            if child:
                yield from descendants(child, depth - 1)


def centres(frame, left, top):
    for element in descendants(frame, 5):
        if element.get_role() == Atspi.Role.PUSH_BUTTON and element.get_state_set().contains(Atspi.StateType.SHOWING):
            extents = element.get_extents(Atspi.CoordType.SCREEN)
            x, y = extents.x + extents.width // 2, extents.y + extents.height // 2
            if x >= left and top <= y < top + TITLE_BAR_HEIGHT:
                yield x, y


def main():
    left, top = int(sys.argv[1]), int(sys.argv[2])
    desktop = Atspi.get_desktop(0)
    for index in range(desktop.get_child_count()):
        application = desktop.get_child_at_index(index)
        for number in range(application.get_child_count() if application else 0):
            frame = application.get_child_at_index(number)
            found = sorted(centres(frame, left, top)) if frame and frame.get_role() == Atspi.Role.FRAME else []
            if len(found) >= 3:
                for x, y in found[-3:]:
                    print(x, y)
                return


main()
