"""A panel's half of the tray, run as a program of its own: the watcher that icons are offered to.

Beside the convention's members it has `SetPanel`, by which a test says whether a panel is there.
"""

import dbus
import dbus.mainloop.glib
import dbus.service
from gi.repository import GLib

NAME = "org.kde.StatusNotifierWatcher"
PATH = "/StatusNotifierWatcher"


class Watcher(dbus.service.Object):
    def __init__(self, bus):
        self.items = []
        self.panel = True
        super().__init__(bus, PATH)

    @dbus.service.method(NAME, "s", "", sender_keyword="sender")
    def RegisterStatusNotifierItem(self, service, sender):
        self.items.append(sender + service if service.startswith("/") else service)
        self.StatusNotifierItemRegistered(service)

    @dbus.service.method(NAME, "s", "")
    def RegisterStatusNotifierHost(self, service):
        self.SetPanel(True)

    @dbus.service.method(NAME, "b", "")
    def SetPanel(self, there):
        self.panel = bool(there)
        (self.StatusNotifierHostRegistered if there else self.StatusNotifierHostUnregistered)()

    @dbus.service.signal(NAME, "s")
    def StatusNotifierItemRegistered(self, service):
        pass

    @dbus.service.signal(NAME)
    def StatusNotifierHostRegistered(self):
        pass

    @dbus.service.signal(NAME)
    def StatusNotifierHostUnregistered(self):
        pass

    def all(self):
        return {"RegisteredStatusNotifierItems": dbus.Array(self.items, "s"),
                "IsStatusNotifierHostRegistered": dbus.Boolean(self.panel),
                "ProtocolVersion": dbus.Int32(0)}

    @dbus.service.method("org.freedesktop.DBus.Properties", "ss", "v")
    def Get(self, interface, name):
        return self.all()[name]

    @dbus.service.method("org.freedesktop.DBus.Properties", "s", "a{sv}")
    def GetAll(self, interface):
        return self.all()


dbus.mainloop.glib.DBusGMainLoop(set_as_default=True)
session = dbus.SessionBus()
watcher = Watcher(session)
owned = dbus.service.BusName(NAME, session, do_not_queue=True)
GLib.MainLoop().run()
