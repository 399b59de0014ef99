"""Reads a program's windows, presses what is in them and hears what changes, as a screen reader does.

    /usr/bin/python3 accessible_reader.py PROCESS      on the session's bus

One JSON line in, one out: {"do": "tree"}, {"do": "act", "which": 7, "action": "Press"},
{"do": "set", "which": 7, "value": 50}, {"do": "events"} (those since the last time),
{"do": "around"}: what what last told of having the focus stands in, such as an open menu, which is
no child of the program. What was told of once is known by its number from then on: its place among
its neighbours changes whenever a window comes or goes.
"""

import json
import sys
import time
import warnings

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib  # noqa: E402

warnings.simplefilter("ignore", DeprecationWarning)  # the binding complains of its own names
MOST_ROWS = 30  # of a list of thousands the first do
# The program's toolkit tells of values only to those who ask for them by name.
EVENTS = ("object:state-changed", "object:property-change", "object:selection-changed",
          "object:property-change:accessible-value", "object:children-changed")
seen = []
focused = []  # what last told so
told_of = []  # by its number
numbers = {}


def program(process):
    desktop = Atspi.get_desktop(0)
    desktop.clear_cache()
    for number in range(desktop.get_child_count()):
        found = desktop.get_child_at_index(number)
        if found is not None and found.get_process_id() == process:
            found.clear_cache()
            return found
    return None


def actions(node):
    interface = node.get_action_iface()
    if interface is None:
        return []
    return [Atspi.Action.get_action_name(interface, number)
            for number in range(Atspi.Action.get_n_actions(interface))]


def number_of(node):
    if node not in numbers:
        numbers[node] = len(told_of)
        told_of.append(node)
    return numbers[node]


def describe(node):
    node.clear_cache()
    states = node.get_state_set()
    place = node.get_component_iface()
    extents = Atspi.Component.get_extents(place, Atspi.CoordType.SCREEN) if place else None
    value = node.get_value_iface()
    text = node.get_text_iface()
    role = node.get_role_name()
    count = node.get_child_count()
    if role == "list":
        count = min(count, MOST_ROWS)
    return {
        "number": number_of(node), "name": node.get_name(), "role": role, "actions": actions(node),
        "states": [state.value_nick for state in states.get_states()],
        "place": [extents.x, extents.y, extents.width, extents.height] if extents else None,
        "value": Atspi.Value.get_current_value(value) if value else None,
        "count": node.get_child_count(),
        "text": Atspi.Text.get_text(text, 0, -1) if text else None,
        "children": [describe(child) for child in
                     (node.get_child_at_index(number) for number in range(count))
                     if child is not None],
    }


def answer(process, wish):
    if wish["do"] == "tree":
        found = program(process)
        return describe(found)["children"] if found else []
    if wish["do"] == "events":
        told = list(seen)
        seen.clear()
        return told
    if wish["do"] == "around":
        return describe(focused[0].get_parent()) if focused else None
    node = told_of[wish["which"]]
    node.clear_cache()
    if wish["do"] == "act":
        names = actions(node)
        return wish["action"] in names and Atspi.Action.do_action(
            node.get_action_iface(), names.index(wish["action"]))
    return Atspi.Value.set_current_value(node.get_value_iface(), wish["value"])


def heard(event, *_):
    try:
        source = event.source
        if event.type == "object:state-changed:focused" and event.detail1:
            focused[:] = [source]
        seen.append({"type": event.type, "name": source.get_name(), "role": source.get_role_name(),
                     "on": event.detail1})
    except GLib.Error:
        pass  # what it was about has gone


def wait_for_program(process, seconds=60):
    """The program joins the bus when somebody first uses it, asks once what is listened for and only
    then hears of what is registered: in between its toolkit would miss it."""
    end = time.monotonic() + seconds
    while time.monotonic() < end:
        try:
            if program(process) is not None:
                return
        except GLib.Error:
            pass  # another one went while it was being looked at
        time.sleep(0.02)


def main():
    process = int(sys.argv[1])
    Atspi.init()
    Atspi.set_timeout(60000, 60000)  # its own 0.8 s are over on a busy machine, and what was asked for is then none
    wait_for_program(process)
    listener = Atspi.EventListener.new(heard)
    for kind in EVENTS:
        listener.register(kind)
    loop = GLib.MainLoop()

    def asked(*_):
        line = sys.stdin.readline()
        if not line:
            loop.quit()
            return False
        try:
            told = answer(process, json.loads(line))
        except (GLib.Error, AttributeError, TypeError) as error:  # it went while it was being looked at
            told = {"error": str(error)}
        print(json.dumps(told), flush=True)
        return True
    GLib.io_add_watch(0, GLib.PRIORITY_LOW, GLib.IOCondition.IN | GLib.IOCondition.HUP, asked)
    print("ready", flush=True)
    loop.run()


main()
