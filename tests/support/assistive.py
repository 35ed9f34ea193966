"""What assistive technology sees of the programs of this session."""

import sys
import time

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib  # noqa: E402

PATIENCE = 60  # seconds


def children(node):
    """What is directly in the accessible."""
    for i in range(node.get_child_count()):
        child = node.get_child_at_index(i)
        if child is not None:
            yield child


def below(node):
    """The accessible and all that is in it."""
    yield node
    for child in children(node):
        yield from below(child)


def wait_for(what, find):
    """What `find` returns, as soon as it is something."""
    end = time.monotonic() + PATIENCE
    while time.monotonic() < end:
        try:
            found = find()
        except GLib.Error:  # it went away meanwhile
            found = None
        if found is not None:
            return found
        time.sleep(0.05)
    sys.exit(f"{sys.argv[0]}: there is no {what}")


def press_below(root, name):
    """Presses the button of that name; something when there is one that can be pressed."""
    for node in below(root):
        is_button = node.get_role() in (Atspi.Role.PUSH_BUTTON, Atspi.Role.TOGGLE_BUTTON)
        if not is_button or node.get_name() != name:
            continue
        if not node.get_state_set().contains(Atspi.StateType.SENSITIVE):
            continue
        node.do_action(0)
        return True
    return None
