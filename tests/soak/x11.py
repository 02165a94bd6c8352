# SPDX-License-Identifier: GPL-3.0-or-later
"""What the monkey needs of an X server: hands (the XTEST extension) and eyes (the list of windows).

Bound by hand to Xlib, so that nothing beyond Python's own library is needed, and no program is started for each key.
Not for threads. An X error is noted and otherwise ignored: windows may go away at any moment.
"""
import ctypes
import time
from ctypes import POINTER, Structure, byref, c_char_p, c_int, c_long, c_uint, c_ulong, c_void_p
from dataclasses import dataclass

XID = c_ulong
CLIENT_MESSAGE = 33
SELECTION_REQUEST = 30
SELECTION_NOTIFY = 31
PROPERTY_REPLACE = 0
VIEWABLE = 2
STRUCTURE_NOTIFY = 1 << 17
SUBSTRUCTURE_NOTIFY = 1 << 19
SUBSTRUCTURE_BOTH = 1 << 20 | 1 << 19

# Names of keys for characters that are no key names themselves.
KEY_NAMES = {"/": "slash", ".": "period", "-": "minus", "_": "underscore", " ": "space", ":": "colon", ",": "comma",
             "\n": "Return", "(": "parenleft", ")": "parenright", "%": "percent", "+": "plus", "#": "numbersign"}
MODIFIERS = {"ctrl": "Control_L", "shift": "Shift_L", "alt": "Alt_L"}


class _Attributes(Structure):
    _fields_ = [("x", c_int), ("y", c_int), ("width", c_int), ("height", c_int), ("border_width", c_int),
                ("depth", c_int), ("visual", c_void_p), ("root", XID), ("window_class", c_int), ("bit_gravity", c_int),
                ("win_gravity", c_int), ("backing_store", c_int), ("backing_planes", c_ulong),
                ("backing_pixel", c_ulong), ("save_under", c_int), ("colormap", XID), ("map_installed", c_int),
                ("map_state", c_int), ("all_event_masks", c_long), ("your_event_mask", c_long),
                ("do_not_propagate_mask", c_long), ("override_redirect", c_int), ("screen", c_void_p)]


class _ClientMessage(Structure):
    _fields_ = [("type", c_int), ("serial", c_ulong), ("send_event", c_int), ("display", c_void_p), ("window", XID),
                ("message_type", XID), ("format", c_int), ("data", c_long * 5)]


class _SelectionRequest(Structure):
    _fields_ = [("type", c_int), ("serial", c_ulong), ("send_event", c_int), ("display", c_void_p), ("owner", XID),
                ("requestor", XID), ("selection", XID), ("target", XID), ("property", XID), ("time", c_ulong)]


class _SelectionNotify(Structure):
    _fields_ = [("type", c_int), ("serial", c_ulong), ("send_event", c_int), ("display", c_void_p),
                ("requestor", XID), ("selection", XID), ("target", XID), ("property", XID), ("time", c_ulong)]


class _Event(ctypes.Union):
    _fields_ = [("type", c_int), ("client", _ClientMessage), ("request", _SelectionRequest),
                ("notify", _SelectionNotify), ("pad", c_long * 24)]


@dataclass(frozen=True)
class Window:
    """A window that can be seen, in points of the screen."""
    xid: int
    title: str
    x: int
    y: int
    width: int
    height: int
    popup: bool  # A menu, a list, a tool tip: nothing that the window manager knows.
    modal: bool


_ERROR_HANDLER = ctypes.CFUNCTYPE(c_int, c_void_p, c_void_p)(lambda display, error: 0)


class Screen:
    """One connection to a display, such as ":77"."""

    def __init__(self, display):
        self._x = ctypes.CDLL("libX11.so.6")
        self._test = ctypes.CDLL("libXtst.so.6")
        self._declare()
        self._x.XSetErrorHandler(_ERROR_HANDLER)
        self._display = self._x.XOpenDisplay(display.encode())
        if not self._display:
            raise OSError(f"cannot open display {display}")
        self.root = self._x.XDefaultRootWindow(self._display)
        self._atoms = {}
        self._x.XSelectInput(self._display, self.root, STRUCTURE_NOTIFY | SUBSTRUCTURE_NOTIFY)
        attributes = self._attributes(self.root)
        self.width, self.height = attributes.width, attributes.height

    def _declare(self):
        x, test = self._x, self._test
        x.XOpenDisplay.restype = c_void_p
        x.XDefaultRootWindow.restype = XID
        x.XInternAtom.restype = XID
        x.XKeysymToKeycode.restype = ctypes.c_ubyte
        x.XStringToKeysym.restype = c_ulong
        x.XkbKeycodeToKeysym.restype = c_ulong
        x.XCreateSimpleWindow.restype = XID
        x.XDefaultRootWindow.argtypes = [c_void_p]
        x.XStringToKeysym.argtypes = [c_char_p]
        x.XKeysymToKeycode.argtypes = [c_void_p, c_ulong]
        x.XkbKeycodeToKeysym.argtypes = [c_void_p, ctypes.c_ubyte, c_int, c_int]
        x.XInternAtom.argtypes = [c_void_p, c_char_p, c_int]
        x.XQueryTree.argtypes = [c_void_p, XID, POINTER(XID), POINTER(XID), POINTER(POINTER(XID)), POINTER(c_uint)]
        x.XGetWindowAttributes.argtypes = [c_void_p, XID, POINTER(_Attributes)]
        x.XTranslateCoordinates.argtypes = [c_void_p, XID, XID, c_int, c_int, POINTER(c_int), POINTER(c_int),
                                            POINTER(XID)]
        x.XGetWindowProperty.argtypes = [c_void_p, XID, XID, c_long, c_long, c_int, XID, POINTER(XID), POINTER(c_int),
                                         POINTER(c_ulong), POINTER(c_ulong), POINTER(c_void_p)]
        x.XChangeProperty.argtypes = [c_void_p, XID, XID, XID, c_int, c_int, c_char_p, c_int]
        x.XSendEvent.argtypes = [c_void_p, XID, c_int, c_long, POINTER(_Event)]
        x.XCheckTypedEvent.argtypes = [c_void_p, c_int, POINTER(_Event)]
        x.XSetSelectionOwner.argtypes = [c_void_p, XID, XID, c_ulong]
        x.XCreateSimpleWindow.argtypes = [c_void_p, XID, c_int, c_int, c_uint, c_uint, c_uint, c_ulong, c_ulong]
        x.XMoveResizeWindow.argtypes = [c_void_p, XID, c_int, c_int, c_uint, c_uint]
        x.XSelectInput.argtypes = [c_void_p, XID, c_long]
        x.XFree.argtypes = [c_void_p]
        x.XSync.argtypes = [c_void_p, c_int]
        x.XIconifyWindow.argtypes = [c_void_p, XID, c_int]
        x.XGetInputFocus.argtypes = [c_void_p, POINTER(XID), POINTER(c_int)]
        x.XMapWindow.argtypes = [c_void_p, XID]
        x.XQueryPointer.argtypes = [c_void_p, XID, POINTER(XID), POINTER(XID), POINTER(c_int), POINTER(c_int),
                                    POINTER(c_int), POINTER(c_int), POINTER(c_uint)]
        test.XTestFakeKeyEvent.argtypes = [c_void_p, c_uint, c_int, c_ulong]
        test.XTestFakeButtonEvent.argtypes = [c_void_p, c_uint, c_int, c_ulong]
        test.XTestFakeMotionEvent.argtypes = [c_void_p, c_int, c_int, c_int, c_ulong]

    # Eyes.

    def windows(self, program_class):
        """The visible windows whose class has this name, the uppermost last."""
        found = []
        self._collect(self.root, program_class.lower(), found, 0)
        return found

    def _collect(self, parent, program_class, found, depth):
        root, above, children, count = XID(), XID(), POINTER(XID)(), c_uint()
        if not self._x.XQueryTree(self._display, parent, byref(root), byref(above), byref(children), byref(count)):
            return
        xids = [children[i] for i in range(count.value)]
        if children:
            self._x.XFree(children)
        for xid in xids:
            attributes = self._attributes(xid)
            if attributes is None or attributes.map_state != VIEWABLE:
                continue
            names = self._property(xid, "WM_CLASS").split(b"\0")
            if program_class.encode() in [name.lower() for name in names]:
                found.append(self._window(xid, attributes))
            elif depth < 2:
                self._collect(xid, program_class, found, depth + 1)

    def _window(self, xid, attributes):
        x, y, child = c_int(), c_int(), XID()
        self._x.XTranslateCoordinates(self._display, xid, self.root, 0, 0, byref(x), byref(y), byref(child))
        title = self._property(xid, "_NET_WM_NAME").decode("utf-8", "replace")
        states = self._longs(xid, "_NET_WM_STATE")
        return Window(xid, title, x.value, y.value, attributes.width, attributes.height,
                      bool(attributes.override_redirect), self.atom("_NET_WM_STATE_MODAL") in states)

    def active_window(self):
        longs = self._longs(self.root, "_NET_ACTIVE_WINDOW")
        return longs[0] if longs else 0

    def key_window(self):
        """Which one the server gives keys to."""
        focus, revert = XID(), c_int()
        self._x.XGetInputFocus(self._display, byref(focus), byref(revert))
        return focus.value

    def state(self, xid):
        """As the window manager has it."""
        names = {0: "withdrawn", 1: "shown", 3: "minimized"}
        return names.get((self._longs(xid, "WM_STATE") or [0])[0] & 0xFFFFFFFF, "unknown")

    def held(self):
        """Modifiers and buttons that are down, as a mask."""
        root, child, x, y, mask = XID(), XID(), c_int(), c_int(), c_uint()
        self._x.XQueryPointer(self._display, self.root, byref(root), byref(child), byref(x), byref(y), byref(x),
                              byref(y), byref(mask))
        return mask.value

    def _attributes(self, xid):
        attributes = _Attributes()
        return attributes if self._x.XGetWindowAttributes(self._display, xid, byref(attributes)) else None

    def atom(self, name):
        if name not in self._atoms:
            self._atoms[name] = self._x.XInternAtom(self._display, name.encode(), 0)
        return self._atoms[name]

    def _property(self, xid, name, size=1):
        kind, form, count, left, data = XID(), c_int(), c_ulong(), c_ulong(), c_void_p()
        status = self._x.XGetWindowProperty(self._display, xid, self.atom(name), 0, 1024, 0, 0, byref(kind),
                                            byref(form), byref(count), byref(left), byref(data))
        if status != 0 or not data:
            return b""
        content = ctypes.string_at(data, count.value * size)
        self._x.XFree(data)
        return content

    def _longs(self, xid, name):
        content = self._property(xid, name, ctypes.sizeof(c_long))
        return [int.from_bytes(content[i:i + 8], "little") for i in range(0, len(content) // 8 * 8, 8)]

    # Hands.

    def move(self, x, y):
        self._test.XTestFakeMotionEvent(self._display, -1, int(x), int(y), 0)
        self._sync()

    def button(self, number, down):
        self._test.XTestFakeButtonEvent(self._display, number, int(down), 0)
        self._sync()

    def click(self, x, y, number=1, count=1):
        self.move(x, y)
        for _ in range(count):
            self.button(number, True)
            self.button(number, False)

    def drag(self, path, number=1):
        self.move(*path[0])
        self.button(number, True)
        for point in path[1:]:
            self.move(*point)
            time.sleep(0.01)
        self.button(number, False)

    def key(self, combination):
        """Such as "ctrl+shift+e" or "F5"."""
        *modifiers, name = combination.split("+") if combination != "+" else ["plus"]
        codes = [self._keycode(MODIFIERS[each])[0] for each in modifiers]
        code, shifted = self._keycode(KEY_NAMES.get(name, name))
        if shifted and "shift" not in modifiers:
            codes.append(self._keycode("Shift_L")[0])
        for each in [*codes, code]:
            self._test.XTestFakeKeyEvent(self._display, each, 1, 0)
        for each in [code, *reversed(codes)]:
            self._test.XTestFakeKeyEvent(self._display, each, 0, 0)
        self._sync()

    def type(self, text):
        for letter in text:
            self.key(KEY_NAMES.get(letter, letter))

    def _keycode(self, name):
        symbol = self._x.XStringToKeysym(name.encode())
        code = self._x.XKeysymToKeycode(self._display, symbol)
        if not symbol or not code:
            raise ValueError(f"no key gives {name!r}")
        return code, self._x.XkbKeycodeToKeysym(self._display, code, 0, 0) != symbol

    def _sync(self):
        self._x.XSync(self._display, 0)

    # Asking the window manager, and the program as the window manager does.

    def tell(self, target, message, data, window=None, mask=SUBSTRUCTURE_BOTH):
        """Sends a message about a window (the target itself unless one is given)."""
        event = _Event()
        event.client.type = CLIENT_MESSAGE
        event.client.window = window or target
        event.client.message_type = self.atom(message)
        event.client.format = 32
        for i, each in enumerate(data):
            event.client.data[i] = each
        self._x.XSendEvent(self._display, target, 0, mask, byref(event))
        self._sync()

    def activate(self, xid):
        self.tell(self.root, "_NET_ACTIVE_WINDOW", [2, 0, 0], window=xid)

    def close(self, xid):
        self.tell(self.root, "_NET_CLOSE_WINDOW", [0, 2], window=xid)

    def minimise(self, xid):
        self._x.XIconifyWindow(self._display, xid, 0)
        self._sync()

    def restore(self, xid):
        self._x.XMapWindow(self._display, xid)
        self._sync()

    def resize(self, xid, x, y, width, height):
        self._x.XMoveResizeWindow(self._display, xid, x, y, width, height)
        self._sync()

    def answers(self, xid, seconds):
        """Whether the program answers what a window manager asks it about this window: its event loop turns."""
        token = int(time.monotonic() * 1000) & 0x7FFFFFFF
        ping = self.atom("_NET_WM_PING")
        self.tell(xid, "WM_PROTOCOLS", [ping, token, xid], mask=0)
        end = time.monotonic() + seconds
        event = _Event()
        while time.monotonic() < end:
            self._sync()
            while self._x.XCheckTypedEvent(self._display, CLIENT_MESSAGE, byref(event)):
                if event.client.data[0] == ping and event.client.data[1] == token:
                    return True
            time.sleep(0.02)
        return False

    # Dragging something in from another program.

    def drop(self, xid, x, y, content, seconds, leave=False):
        """Drags a text/uri-list over the point of the screen in the window, and drops it or leaves again. Gives whether
        the program took it."""
        source = self._x.XCreateSimpleWindow(self._display, self.root, 0, 0, 1, 1, 0, 0, 0)
        kind, copy, selection = (self.atom(each) for each in ("text/uri-list", "XdndActionCopy", "XdndSelection"))
        self._x.XSetSelectionOwner(self._display, selection, source, 0)
        where = int(x) << 16 | int(y)
        self.tell(xid, "XdndEnter", [source, 5 << 24, kind, 0, 0], mask=0)
        self.tell(xid, "XdndPosition", [source, 0, where, 0, copy], mask=0)
        status = self._answer(content, "XdndStatus", seconds)
        if status is None or leave or not status[1] & 1:
            self.tell(xid, "XdndLeave", [source, 0, 0, 0, 0], mask=0)
            return False
        self.tell(xid, "XdndDrop", [source, 0, 0, 0, 0], mask=0)
        finished = self._answer(content, "XdndFinished", seconds)
        return finished is not None and bool(finished[1] & 1)

    def _answer(self, content, message, seconds):
        """Hands out the content when it is asked for, until this message comes; its data."""
        end = time.monotonic() + seconds
        event = _Event()
        while time.monotonic() < end:
            self._sync()
            while self._x.XCheckTypedEvent(self._display, SELECTION_REQUEST, byref(event)):
                self._hand_out(event.request, content)
            while self._x.XCheckTypedEvent(self._display, CLIENT_MESSAGE, byref(event)):
                if event.client.message_type == self.atom(message):
                    return list(event.client.data)
            time.sleep(0.01)
        return None

    def _hand_out(self, request, content):
        self._x.XChangeProperty(self._display, request.requestor, request.property, request.target, 8,
                                PROPERTY_REPLACE, content, len(content))
        event = _Event()
        event.notify.type = SELECTION_NOTIFY
        event.notify.requestor, event.notify.selection = request.requestor, request.selection
        event.notify.target, event.notify.property = request.target, request.property
        self._x.XSendEvent(self._display, request.requestor, 0, 0, byref(event))
        self._sync()
