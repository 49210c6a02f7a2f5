"""Looks at a program through the accessibility bus, and acts on it by keys or by the bus alone."""
import subprocess
import time

import pyatspi
from gi.repository import GLib

PATIENCE = 20  # seconds


class Missing(Exception):
    pass


def wait_for(what, told):
    end = time.monotonic() + PATIENCE
    while time.monotonic() < end:
        found = what()
        if found:
            return found
        time.sleep(0.05)
    raise Missing(told)


def below(node, depth=12):
    """All accessibles that are in use; of long lists the beginning."""
    yield node
    if depth == 0:
        return
    for i in range(min(node.childCount, 60)):
        try:
            child = node.getChildAtIndex(i)
            if child is not None:
                yield from below(child, depth - 1)
        except Exception:  # it went while we looked
            continue


def has(node, state):
    return node.getState().contains(state)


class Program:
    def __init__(self, name):
        self.app = wait_for(lambda: self._named(name), "no program " + name)

    @staticmethod
    def _named(name):
        return next((app for app in pyatspi.Registry.getDesktop(0) if app.name.lower() == name), None)

    def windows(self):
        return [w for w in self.app if w is not None and has(w, pyatspi.STATE_SHOWING)]

    def window(self, title):
        def look():
            return next((w for w in self.windows() if title in w.name), None)
        return wait_for(look, "no window " + title)

    def gone(self, title):
        wait_for(lambda: all(title not in w.name for w in self.windows()), title + " stays")

    def find(self, name, role=None, within=None):
        def look():
            for root in [within] if within else reversed(self.windows()):
                for node in below(root):
                    if node.name.replace("&", "") == name and has(node, pyatspi.STATE_SHOWING) and \
                            role in (None, node.getRoleName()):
                        return node
            return None
        return wait_for(look, "nothing is named " + name)

    def focused(self):
        for root in reversed(self.windows()):
            if not has(root, pyatspi.STATE_ACTIVE):
                continue
            # A row says that it has the focus whenever it is the current one of its list.
            held = [n for n in below(root) if has(n, pyatspi.STATE_FOCUSED) and
                    n.getRoleName() not in ("table cell", "list item", "tree item", "layered pane")]
            if held:
                return held[-1]
        return None


def key(*names):
    subprocess.run(["xdotool", "key", "--clearmodifiers", *names], check=True)
    time.sleep(0.12)


def type_text(text):
    subprocess.run(["xdotool", "type", "--delay", "8", text], check=True)
    time.sleep(0.12)


class Keyboard:
    """Keys only; the bus is looked at, as a person looks at the screen."""

    def __init__(self, program):
        self.program = program

    def go_to(self, name):
        for _ in range(60):
            focus = self.program.focused()
            if focus is not None and name == focus.name.replace("&", ""):
                return focus
            key("Tab")
        raise Missing("Tab does not reach " + name)

    def press(self, name, _within=None):
        self.go_to(name)
        key("space")

    def enter(self, name, text):
        self.go_to(name)
        key("ctrl+a")
        type_text(text)

    def take(self, row):
        """The pane's row of that name."""
        pane = self.go_to("Files and folders")
        key("Home")
        for _ in range(60):
            if any(cell.name == row and has(cell, pyatspi.STATE_FOCUSED) for cell in pane):
                return
            key("Down")
        raise Missing("no row " + row)

    def all_rows(self):
        key("ctrl+a")

    def menu(self, *names):
        key("alt+" + names[0][0].lower())
        for name in names[1:]:
            item = self.program.find(name, "menu item")
            for _ in range(20):
                if has(item, pyatspi.STATE_FOCUSED) or has(item, pyatspi.STATE_SELECTED):
                    break
                key("Down")
            key("Return")

    @staticmethod
    def open_archive():
        key("Return")


class Assistive:
    """Actions, values and texts of the bus; no key and no pointer."""

    def __init__(self, program):
        self.program = program

    @staticmethod
    def _act(node, wanted=("Press", "Toggle", "ShowMenu")):
        actions = node.queryAction()
        for name in wanted:
            for i in range(actions.nActions):
                if actions.getName(i) != name:
                    continue
                try:
                    actions.doAction(i)
                except GLib.GError:
                    pass  # it is answered when the dialog that it opened has closed
                return
        raise Missing("no action on " + node.name)

    def press(self, name, within=None):
        self._act(self.program.find(name, "push button", within))
        time.sleep(0.2)

    def enter(self, name, text):
        self.program.find(name, "text").queryEditableText().setTextContents(text)

    def take(self, row):
        cell = self.program.find(row, "table cell")
        table = cell.parent.queryTable()
        for chosen in table.getSelectedRows():
            table.removeRowSelection(chosen)
        table.addRowSelection(table.getRowAtIndex(cell.getIndexInParent()))

    def all_rows(self):
        self.press("Select All")

    def menu(self, *names):
        for name in names:
            self._act(self.program.find(name, "menu item"), ("ShowMenu", "Press"))
            time.sleep(0.3)

    def open_archive(self):
        self.press("Extract Tar File")
