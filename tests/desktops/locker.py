#!/usr/bin/env python3
"""A program that locks the screen: a window over all of it, which no manager has and which comes up again whenever
anything lies above it.

    locker.py FILE

Writes a byte into the file for each time it had to, the first when it is up.
"""

import ctypes
import sys

VISIBILITY_CHANGE = 1 << 16
VISIBILITY_NOTIFY = 15
OVERRIDE_REDIRECT = 1 << 9
BACK_PIXEL = 1 << 1
COLOUR = 0x303060


class Attributes(ctypes.Structure):
    _fields_ = [("background_pixmap", ctypes.c_ulong), ("background_pixel", ctypes.c_ulong),
                ("border_pixmap", ctypes.c_ulong), ("border_pixel", ctypes.c_ulong), ("bit_gravity", ctypes.c_int),
                ("win_gravity", ctypes.c_int), ("backing_store", ctypes.c_int), ("backing_planes", ctypes.c_ulong),
                ("backing_pixel", ctypes.c_ulong), ("save_under", ctypes.c_int), ("event_mask", ctypes.c_long),
                ("do_not_propagate_mask", ctypes.c_long), ("override_redirect", ctypes.c_int),
                ("colormap", ctypes.c_ulong), ("cursor", ctypes.c_ulong)]


class Visibility(ctypes.Structure):
    _fields_ = [("type", ctypes.c_int), ("serial", ctypes.c_ulong), ("send_event", ctypes.c_int),
                ("display", ctypes.c_void_p), ("window", ctypes.c_ulong), ("state", ctypes.c_int)]


class Event(ctypes.Union):
    _fields_ = [("visibility", Visibility), ("room", ctypes.c_long * 24)]


def main():
    x = ctypes.CDLL("libX11.so.6")
    x.XOpenDisplay.restype = ctypes.c_void_p
    x.XDefaultRootWindow.restype = x.XCreateWindow.restype = ctypes.c_ulong
    display = ctypes.c_void_p(x.XOpenDisplay(None))
    attributes = Attributes(background_pixel=COLOUR, override_redirect=1)
    window = ctypes.c_ulong(x.XCreateWindow(
        display, ctypes.c_ulong(x.XDefaultRootWindow(display)), 0, 0, x.XDisplayWidth(display, 0),
        x.XDisplayHeight(display, 0), 0, 0, 1, None, ctypes.c_ulong(OVERRIDE_REDIRECT | BACK_PIXEL),
        ctypes.byref(attributes)))
    x.XSelectInput(display, window, ctypes.c_long(VISIBILITY_CHANGE))
    x.XMapRaised(display, window)
    event = Event()
    with open(sys.argv[1], "wb", buffering=0) as told:
        while True:
            x.XNextEvent(display, ctypes.byref(event))
            if event.visibility.type == VISIBILITY_NOTIFY:
                if event.visibility.state != 0:
                    x.XRaiseWindow(display, window)
                told.write(b".")


if __name__ == "__main__":
    main()
