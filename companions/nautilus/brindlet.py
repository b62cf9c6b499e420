"""Tells the bar which folder the active tab of Nautilus shows, and what is selected in it.

Nautilus asks its extensions for menu items whenever either has changed in the tab that the user works in: first for
those of the selected files, where there are any, then for those of the folder (seen with Nautilus 43: some 0.1 s after
the change, several times for one). This one has no menu items. On going to another tab or window it isn't asked, so
that it remembers what each tab was asked about. Without a bar nothing is sent, and nothing here ever waits.

An extension that imports another Gtk than that of Nautilus hangs it at its start. Without the right one windows have no
numbers here, but their properties can be asked for all the same.
"""

import gi

try:
    gi.require_version("Gtk", "4.0")
    gi.require_version("GdkX11", "4.0")
    from gi.repository import GdkX11, Gtk
except (ImportError, ValueError):
    Gtk = None

from gi.repository import Gio, GLib, GObject, Nautilus

BAR_NAME = "com.fenwold.Brindlet"
BAR_OBJECT = "/com/fenwold/Brindlet"
BAR_INTERFACE = "com.fenwold.Brindlet.Bar1"
# The window of Nautilus that was active last, where the number by which the X server knows it can't be told.
ACTIVE_WINDOW = 0
# An empty folder: no files on a disk of this machine are shown, or it isn't known which.
NOTHING = (b"", [])


def bytes_of(location):
    """The path of a Gio.File as bytes; None where it isn't on a disk of this machine."""
    path = location.get_path() if location.is_native() else None
    # What is no UTF-8 comes with the surrogates of os.fsdecode.
    return path.encode("utf-8", "surrogateescape") if path else None


def property_of(thing, name):
    """None as well where an object has no such property, as in another version of Nautilus."""
    return thing.get_property(name) if thing and thing.find_property(name) else None


def number_of(window):
    surface = window.get_surface() if Gtk and isinstance(window, Gtk.Native) else None
    return surface.get_xid() if surface and isinstance(surface, GdkX11.X11Surface) else ACTIVE_WINDOW


class BrindletCompanion(GObject.GObject, Nautilus.MenuProvider):
    def __init__(self):
        super().__init__()
        self._bar = None
        self._application = None
        self._files = []
        self._told = None
        Gio.bus_watch_name(
            Gio.BusType.SESSION, BAR_NAME, Gio.BusNameWatcherFlags.NONE, self._bar_came, self._bar_left
        )

    def get_file_items(self, *arguments):
        self._files = arguments[-1]
        return []

    def get_background_items(self, *arguments):
        files, self._files = self._files, []
        location = arguments[-1].get_location()
        tab = self._active_tab()
        shown = property_of(tab, "location")
        if shown and shown.equal(location):
            folder = bytes_of(location)
            paths = [bytes_of(file.get_location()) for file in files] if folder else []
            # Kept for as long as the tab is there.
            tab.brindlet_shown = (folder, [path for path in paths if path]) if folder else NOTHING
            self._tell()
        return []

    def _active_tab(self):
        if self._application is None:
            self._application = Gio.Application.get_default()
            if self._application is None:
                return None
            self._application.connect("notify::active-window", self._tell)
        window = self._active_window()
        tab = property_of(window, "active-slot")
        if tab and not getattr(window, "brindlet_is_watched", False):
            window.brindlet_is_watched = True
            window.connect("notify::active-slot", self._tell)
        return tab

    def _active_window(self):
        return property_of(self._application, "active-window")

    def _bar_came(self, bus, _name, _owner):
        self._bar = bus
        self._told = None
        self._tell()

    def _bar_left(self, _bus, _name):
        self._bar = None

    def _tell(self, *_signal):
        tab = self._active_tab()
        # The active window may be one without tabs, such as that of preferences.
        if self._bar is None or tab is None:
            return
        folder, files = getattr(tab, "brindlet_shown", NOTHING)
        location = property_of(tab, "location")
        if location is None or bytes_of(location) != folder:
            folder, files = NOTHING
        message = (number_of(self._active_window()), folder, files)
        if message == self._told:
            return
        self._told = message
        # Without a callback no reply is asked for.
        self._bar.call(
            BAR_NAME,
            BAR_OBJECT,
            BAR_INTERFACE,
            "SelectionChanged",
            GLib.Variant("(uayaay)", message),
            None,
            Gio.DBusCallFlags.NO_AUTO_START,
            -1,
            None,
            None,
        )
