# SPDX-License-Identifier: GPL-3.0-or-later
"""Tells when a window of an X screen got new pixels, and where (the DAMAGE extension, bound by hand to its library)."""

import ctypes
from ctypes import POINTER, Structure, byref, c_char_p, c_int, c_long, c_short, c_uint, c_ulong, c_ushort, c_void_p

RAW_RECTANGLES = 0  # an event for each thing drawn
PENDING_AFTER_READING = 1


class _Rectangle(Structure):
    _fields_ = [("x", c_short), ("y", c_short), ("width", c_ushort), ("height", c_ushort)]


class _Notice(Structure):
    _fields_ = [("type", c_int), ("serial", c_ulong), ("send_event", c_int), ("display", c_void_p),
                ("drawable", c_ulong), ("damage", c_ulong), ("level", c_int), ("more", c_int), ("timestamp", c_ulong),
                ("area", _Rectangle), ("geometry", _Rectangle)]


class _Event(ctypes.Union):
    _fields_ = [("notice", _Notice), ("pad", c_long * 24)]


class Damage:
    """Watches all of a screen, from now on."""

    def __init__(self, display):
        self._x = ctypes.CDLL("libX11.so.6")
        extension = ctypes.CDLL("libXdamage.so.1")
        self._x.XOpenDisplay.restype = c_void_p
        self._x.XOpenDisplay.argtypes = [c_char_p]
        self._x.XDefaultRootWindow.restype = c_ulong
        self._x.XDefaultRootWindow.argtypes = [c_void_p]
        self._x.XEventsQueued.argtypes = [c_void_p, c_int]
        self._x.XNextEvent.argtypes = [c_void_p, POINTER(_Event)]
        self._x.XSync.argtypes = [c_void_p, c_int]
        extension.XDamageQueryExtension.argtypes = [c_void_p, POINTER(c_int), POINTER(c_int)]
        extension.XDamageCreate.restype = c_ulong
        extension.XDamageCreate.argtypes = [c_void_p, c_ulong, c_uint]
        self._display = self._x.XOpenDisplay(display.encode())
        if not self._display:
            raise OSError(f"cannot open display {display}")
        self._first = c_int()
        if not extension.XDamageQueryExtension(self._display, byref(self._first), byref(c_int())):
            raise OSError(f"display {display} does not tell what is drawn")
        extension.XDamageCreate(self._display, self._x.XDefaultRootWindow(self._display), RAW_RECTANGLES)
        self._x.XSync(self._display, 0)

    def take(self):
        """What has been drawn since the last call: (milliseconds of the server's clock, left, top, right, bottom)."""
        event = _Event()
        found = []
        while self._x.XEventsQueued(self._display, PENDING_AFTER_READING) > 0:
            self._x.XNextEvent(self._display, byref(event))
            if event.notice.type == self._first.value:
                area = event.notice.area
                found.append((event.notice.timestamp, area.x, area.y, area.x + area.width, area.y + area.height))
        return found
