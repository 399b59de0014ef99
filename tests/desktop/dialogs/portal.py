#!/usr/bin/python3
"""A desktop's portal with a file chooser whose person does what a script says.

    portal.py FOLDER

FOLDER/script.json: {"version": 4, "chooser": true, "silent": false, "answers": [ANSWER, ...]}, read at
each question. An answer, taken by one dialog each, in turn:

    {"uris": [...]}               these are chosen; where a name to save under exists, the chooser asks
                                  first, and "replace": false is the person's no, after which it is left
    {"response": 1}               the dialog ends like this
    {"error": true}               the call fails
    {"silent": true}              the call is never answered
    {"hold": true}                the dialog stays until the request is closed or the portal ends
    "early": true                 the answer comes ahead of the call's
    "own_handle": true            the request is put where its asker does not expect it

FOLDER/calls.json holds what was asked, one a line; bytes as hexadecimal digits.
"""

import json
import os
import sys
import urllib.parse

import dbus
import dbus.mainloop.glib
import dbus.service
from gi.repository import GLib

CHOOSER = "org.freedesktop.portal.FileChooser"
REQUEST = "org.freedesktop.portal.Request"
FOLDER = sys.argv[1]


def script():
    with open(FOLDER + "/script.json") as file:
        return json.load(file)


def tell(**what):
    with open(FOLDER + "/calls.json", "a") as file:
        file.write(json.dumps(what) + "\n")


def plain(value):
    if isinstance(value, dbus.Array) and value.signature == "y":
        return bytes(value).hex()
    if isinstance(value, dbus.Boolean):
        return bool(value)
    if isinstance(value, int):
        return int(value)
    if isinstance(value, str):
        return str(value)
    if isinstance(value, dict):
        return {str(key): plain(one) for key, one in value.items()}
    return [plain(one) for one in value]


class Request(dbus.service.Object):
    def __init__(self, bus, path, asker):
        super().__init__(bus, path)
        self.path, self.asker, self.bus = path, asker, bus

    @dbus.service.method(REQUEST)
    def Close(self):
        tell(closed=self.path)
        self.remove_from_connection()

    def answer(self, response, results):
        signal = dbus.lowlevel.SignalMessage(self.path, REQUEST, "Response")
        signal.set_destination(self.asker)
        signal.append(dbus.UInt32(response), dbus.Dictionary(results, signature="sv"), signature="ua{sv}")
        self.bus.send_message(signal)


class Portal(dbus.service.Object):
    def __init__(self, bus):
        super().__init__(bus, "/org/freedesktop/portal/desktop")
        self.bus, self.dialogs = bus, 0

    @dbus.service.method(dbus.PROPERTIES_IFACE, in_signature="ss", async_callbacks=("reply", "fail"))
    def Get(self, interface, name, reply, fail):
        now = script()
        tell(get=[str(interface), str(name)])
        if now.get("silent"):
            return
        if not now.get("chooser", True):
            fail(dbus.exceptions.DBusException("No such interface",
                                               name="org.freedesktop.DBus.Error.InvalidArgs"))
            return
        reply(dbus.UInt32(now.get("version", 4), variant_level=1))

    @dbus.service.method(CHOOSER, in_signature="ssa{sv}", out_signature="o", sender_keyword="asker",
                         async_callbacks=("reply", "fail"))
    def OpenFile(self, parent, title, options, reply, fail, asker):
        self.show("OpenFile", parent, title, options, reply, fail, asker)

    @dbus.service.method(CHOOSER, in_signature="ssa{sv}", out_signature="o", sender_keyword="asker",
                         async_callbacks=("reply", "fail"))
    def SaveFile(self, parent, title, options, reply, fail, asker):
        self.show("SaveFile", parent, title, options, reply, fail, asker)

    def show(self, member, parent, title, options, reply, fail, asker):
        answers = script()["answers"]
        answer = answers[self.dialogs] if self.dialogs < len(answers) else {"response": 1}
        self.dialogs += 1
        name = asker[1:].replace(".", "_")
        path = f"/org/freedesktop/portal/desktop/request/{name}/{options['handle_token']}"
        if answer.get("own_handle"):
            path += "_of_the_portal"
        tell(call=member, parent=str(parent), title=str(title), options=plain(options), path=path)
        if answer.get("error"):
            fail(dbus.exceptions.DBusException("None", name="org.freedesktop.portal.Error.Failed"))
            return
        request = Request(self.bus, path, asker)
        if answer.get("silent"):
            return
        if answer.get("early"):
            self.finish(member, request, answer)
        reply(dbus.ObjectPath(path))
        if not answer.get("early") and not answer.get("hold"):
            # Behind the answer of the call.
            GLib.idle_add(self.finish, member, request, answer)

    @staticmethod
    def finish(member, request, answer):
        uris = answer.get("uris", [])
        response = answer.get("response", 0)
        if member == "SaveFile" and uris and not response:
            path = urllib.parse.unquote_to_bytes(uris[0][len("file://"):])
            if os.path.lexists(path):
                tell(asked=os.path.basename(path).decode(errors="surrogateescape"))
                if not answer.get("replace", True):
                    response, uris = 1, []
        request.answer(response, {"choices": dbus.Array([], signature="(ss)"),
                                  "uris": dbus.Array(uris, signature="s")})


def main():
    dbus.mainloop.glib.DBusGMainLoop(set_as_default=True)
    bus = dbus.SessionBus()
    portal = Portal(bus)
    name = dbus.service.BusName("org.freedesktop.portal.Desktop", bus)
    tell(ready=True)
    GLib.MainLoop().run()
    del portal, name


main()
