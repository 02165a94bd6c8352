# SPDX-License-Identifier: GPL-3.0-or-later
"""Knows the program's windows as a person does: finds them, gets out of whatever is open, and checks that what must
work does. A check that fails raises a Finding, the program's end an Ended."""
import shutil
import signal
import time

import keepsakes
from program import Program, SANITIZER_EXIT

# Long enough for a build with sanitizers on a busy machine; what takes longer is a finding.
PATIENCE = 40
# An animation of a window, a delayed save: after this long nothing changes by itself any more.
REST = 0.5

# A leak check at the end may fail itself, which says nothing of leaks; seen at one of some hundred ends. The second is
# said of a thread that is gone by then.
BROKEN_CHECKS = ("LeakSanitizer has encountered a fatal error", "Unable to get registers from thread")
REPORTS = ("ERROR: AddressSanitizer", "detected memory leaks", "runtime error:")
# Looking for leaks, and naming those that are to be overlooked, may take so long after the last window has gone.
LAST_CHECKS = 90

MAIN = "Starbloom"
COMPANIONS = ("Settings", "Introduction", "Emitter Guide")
PROGRESS = "Movie"
PICTURE_SETTINGS = "Picture Settings"
RESCUE = "Unfinished movie"
PANELS = ("Open Picture", "Export Folder", "Choose a Folder", "Save Movie")

# In the main window, points from the left and the top, or from the right where negative.
CONTROLS = {"on": (32, 50), "off": (77, 50), "width": (136, 50), "height": (218, 50), "colour": (279, 50),
            "folder": (-235, 50), "picture": (-126, 50), "movie": (-92, 50), "settings": (-56, 50),
            "preferences": (-22, 50), "drop": (-15, -12)}
# In the settings sidebar: the rows of the sliders from the top, their ends from the left, buttons from the bottom.
SLIDER_ROWS = (41, 64, 87, 110, 133, 156, 213, 236, 259, 282, 339, 362, 385, 442)
SLIDER_ENDS = (80, 216)
PRESET_BUTTONS = {"reset": (48, -19), "load": (160, -19), "save": (248, -19)}


class Finding(Exception):
    """Something that must not be."""


class Ended(Exception):
    """The program is no more; its status tells how."""


class Driver:
    def __init__(self, home, screen, display, binary, suppressions):
        self.home, self.screen, self.display = home, screen, display
        self.binary, self.suppressions = binary, suppressions
        self.program = None
        self.main_xid = 0
        self.measured = []  # Of this run, seconds, MB and descriptors, each time it was idle.
        self.seen = {}  # Exports that were looked at already, with their size.
        self.broken_checks = 0

    # Start and end.

    def start(self, settings):
        self.measured = []
        self.program = Program(self.binary, self.home, self.display, settings, self.suppressions)
        self.wait_for(self.main, "shows its window")
        time.sleep(REST)

    def check_running(self):
        if self.program.status() is not None:
            raise Ended()
        self.check_reports()

    def check_reports(self):
        reports = [each for each in self.program.reports()
                   if not any(mark in each for mark in BROKEN_CHECKS) or any(mark in each for mark in REPORTS)]
        if reports:
            self.program.wait(20)
            raise Finding("sanitizer: " + "\n".join(each[:6000] for each in reports))

    def check_end(self, accepted):
        """After its end, with the statuses that the monkey can have caused. Looks at what it left behind, and gives the
        status that it ended with."""
        status = self.program.status()
        self.check_reports()
        if status == SANITIZER_EXIT and self.program.reports():
            self.broken_checks += 1
            status = 0  # It had come to its own end.
        if status == SANITIZER_EXIT:
            raise Finding("a sanitizer ended it without a report")
        if status not in accepted:
            raise Finding(f"ended with status {status}, expected {sorted(accepted)}")
        if status == 0:
            self.check_no_temporaries()
        return status

    def check_ending(self):
        """It may have closed its windows and not be gone yet."""
        if not self.windows():
            self.program.wait(LAST_CHECKS)
        self.check_running()

    def end(self, number, seconds=90):
        """Ends it by a signal, and gives its status."""
        self.program.signal(number)
        status = self.program.wait(seconds)
        if status is None:
            stacks = self.program.stacks()
            self.program.end()
            raise Finding(f"still runs {seconds} seconds after signal {number}\n{stacks}")
        return status

    def kill(self):
        self.end(signal.SIGKILL)

    # Windows.

    def windows(self):
        return self.screen.windows("starbloom")

    def main(self):
        mains = [each for each in self.windows() if each.title == MAIN and not each.popup and not each.modal]
        if not mains:
            return None
        self.main_xid = mains[0].xid  # Of several, such as an alert that is closing, the lowest one.
        return mains[0]

    def window(self, title):
        """The uppermost window whose title begins like that."""
        found = [each for each in self.windows() if not each.popup and each.title.startswith(title)]
        return found[-1] if found else None

    def modals(self):
        return [each for each in self.windows() if each.modal and not each.popup]

    def popups(self):
        return [each for each in self.windows() if each.popup]

    def wait_for(self, what, expected, seconds=PATIENCE):
        """What the function gives as soon as that is something; a Finding when it is not in time."""
        end = time.monotonic() + seconds
        while True:
            self.check_running()
            if found := what():
                return found
            if time.monotonic() > end:
                raise Finding(f"waited {seconds} s in vain: {expected}\n{self._describe()}")
            time.sleep(0.05)

    def comes(self, what, seconds):
        """Whether it comes, without complaint."""
        end = time.monotonic() + seconds
        while time.monotonic() < end:
            self.check_running()
            if what():
                return True
            time.sleep(0.05)
        return False

    def _describe(self):
        lines = [f"{each.xid:#x} {each.title!r} {each.width}x{each.height}+{each.x}+{each.y}"
                 f"{' popup' if each.popup else ''}{' modal' if each.modal else ''}" for each in self.windows()]
        active, keys = self.screen.active_window(), self.screen.key_window()
        return ("windows: " + "; ".join(lines) + f"; active {active:#x}, keys go to {keys:#x}, main window "
                f"{self.main_xid:#x} {self.screen.state(self.main_xid)}, held: {self.screen.held():#x}")

    def has_keys(self, window):
        """The manager names the active window a little before or after the server hands it the keys."""
        return self.screen.active_window() == window.xid == self.screen.key_window()

    def focus(self, window):
        if not self.has_keys(window):
            self.screen.activate(window.xid)
            self.comes(lambda: self.has_keys(window), 3)

    def focus_main(self):
        main = self.main()
        for _ in range(5):
            if main is None:
                self.screen.restore(self.main_xid)
                self.screen.activate(self.main_xid)
                self.comes(self.main, PATIENCE / 5)
                main = self.main()
        if main is None:
            self.check_ending()
            raise Finding(f"the main window does not come back\n{self._describe()}")
        self.focus(main)
        return main

    def key(self, combination):
        self.screen.key(combination)
        time.sleep(0.03)

    def click_control(self, name, count=1):
        main = self.main()
        if main:
            x, y = self.place(main, name)
            self.uncover(x, y)
            self.screen.click(x, y, count=count)

    def uncover(self, x, y):
        """The companions stay above the main window; what covers this point is closed."""
        for each in self.windows():
            covers = each.x - 8 <= x <= each.x + each.width + 8 and each.y - 32 <= y <= each.y + each.height + 8
            if each.title in COMPANIONS and covers:
                self.screen.close(each.xid)
                self.comes(lambda gone=each.xid: gone not in [window.xid for window in self.windows()], 5)

    @staticmethod
    def place(main, name):
        x, y = CONTROLS[name]
        return main.x + (x if x >= 0 else main.width + x), main.y + (y if y >= 0 else main.height + y)

    # Getting out of everything.

    def settle(self):
        """Closes what is open over the main window, as a person would."""
        self.screen.move(self.screen.width - 2, self.screen.height - 2)
        end = time.monotonic() + 2 * PATIENCE
        tries = 0
        while True:
            self.check_running()
            if not self.popups() and not self.modals():
                self.check_answers()  # What the last keys asked for may be on its way, on a busy machine for long.
                time.sleep(0.1)
                if colour := self.window("Background Color"):
                    self.focus(colour)
                elif not self.popups() and not self.modals():
                    return
            if time.monotonic() > end:
                raise Finding(f"cannot get back to the main window\n{self._describe()}")
            self._leave(tries)
            tries += 1
            time.sleep(0.15)

    def _leave(self, tries):
        modals = self.modals()
        if self.popups() or not modals:
            self.key("Escape")
            return
        # Of several the one that takes keys; another one each time when that is none of them.
        active = [each for each in modals if each.xid == self.screen.active_window()]
        window = active[0] if active else modals[-1 - tries % len(modals)]
        self.focus(window)
        if window.title == PROGRESS:
            self.key("alt+c")
        else:
            self.key("Escape")
            if window.title == PICTURE_SETTINGS and self.comes(lambda: self.window(PICTURE_SETTINGS), 0.4):
                self.name_pictures("Soak")  # An empty name holds the window open.
                self.key("Escape")

    def name_pictures(self, name):
        self.key("alt+n")
        self.key("ctrl+a")
        self.screen.type(name)

    # Checks.

    def check_answers(self):
        """The main window is there all along, if perhaps minimized; others may close while they are asked."""
        end = time.monotonic() + PATIENCE
        while not self.screen.answers(self.main_xid, PATIENCE / 4):
            self.check_running()
            if time.monotonic() > end:
                self.check_ending()
                raise Finding("does not answer")

    def check_kept(self):
        home = self.home
        complaints = keepsakes.stores(home.data, home.robbed) + keepsakes.lists(home.data, home.spoiled)
        if complaints:
            raise Finding("kept files: " + "; ".join(complaints))

    def check_opened(self):
        """It wanted to open nothing but its pages and what lies in its folders."""
        for line in self.home.opened.read_text().splitlines():
            if not line.startswith(("https://", f"file://{self.home.work}")):
                raise Finding(f"wanted to open {line!r}")

    def check_no_temporaries(self):
        def left():
            return keepsakes.temporaries(self.home.export_folders(), self.home.data)
        end = time.monotonic() + 15
        while left() and time.monotonic() < end:
            time.sleep(0.2)
        if left():
            raise Finding(f"hidden files left (process {self.program.pid}): " + ", ".join(map(str, left())))

    def check_exports(self):
        """Decodes what was exported since the last time, and gives how many files that were."""
        count = 0
        for folder in self.home.export_folders():
            for file in sorted(folder.glob("*.*")):
                if file.name.startswith(".") or not file.is_file() or self.seen.get(file) == file.stat().st_size:
                    continue
                if complaints := keepsakes.export(file):
                    raise Finding("; ".join(complaints))
                self.seen[file] = file.stat().st_size
                count += 1
        return count

    def ask(self, keys, what, expected):
        """Presses keys in the main window, and gives what they bring. A window that is coming or going may take the keys
        first on a busy machine; then they are pressed again."""
        for _ in range(3):
            main = self.focus_main()
            self.key(keys)
            if self.comes(what, PATIENCE / 4) or self.has_keys(main):
                break
        return self.wait_for(what, expected)

    def check_window(self, keys, title):
        """A shortcut opens its window, and Escape closes it."""
        window = self.ask(keys, lambda: self.window(title) if title else self.modals(), f"{keys} opens {title!r}")
        self.focus(window if title else window[-1])
        self.settle()

    def check_companion(self, keys, title):
        window = self.ask(keys, lambda: self.window(title), f"{keys} shows {title!r}")
        # It takes the keys a little later, and else would take them from the main window.
        self.comes(lambda: self.has_keys(window), 3)

    def exported(self):
        folders = self.home.export_folders()
        return {each for folder in folders for each in folder.glob("*.*")
                if each.suffix in keepsakes.PICTURES and not each.name.startswith(".")}

    def export_gives_file(self, seconds):
        before = self.exported()
        self.focus_main()
        self.key("ctrl+e")
        return self.comes(lambda: self.exported() - before, seconds)

    def check_export_and_animation(self):
        """In one of the two states of the animation the export key gives a picture, in the other one nothing."""
        self.choose_folder(self.home.pictures)
        self.name_afresh()
        self.focus_main()
        if not self.export_gives_file(6):
            self.key("F5")
            if not self.export_gives_file(PATIENCE):
                raise Finding(f"no picture, whether the animation is on or off\n{self._describe()}")
        self.key("F5")
        if self.export_gives_file(1.0):
            raise Finding("a picture is exported while the animation is off")
        self.key("F5")
        self.click_control("height")  # A text field may not keep the key for itself.
        if not self.export_gives_file(PATIENCE):
            raise Finding("no picture after the animation was switched off and on")

    def name_afresh(self):
        self.ask("alt+f", self.popups, "the file menu opens")
        self.key("t")
        window = self.wait_for(lambda: self.window(PICTURE_SETTINGS), "the picture settings open")
        self.focus(window)
        self.name_pictures("Soak")
        self.settle()

    def choose_folder(self, folder):
        """Through the panel, unless it is the folder for exports already."""
        if keepsakes.shared_folder(self.home.data) == folder:
            return
        self.home.make_usable(folder)
        self.usual_size()  # A narrow window has the folder elsewhere.
        self.click_control("folder")
        if not self.comes(lambda: self.window("Export Folder"), 8):
            self.settle()
            self.toggle_toolbar()  # It may be hidden.
            self.usual_size()
            self.click_control("folder")
        panel = self.wait_for(lambda: self.window("Export Folder"), "a click on the folder opens the panel")
        self.focus(panel)
        self.answer_panel(folder)
        self.comes(lambda: keepsakes.shared_folder(self.home.data) == folder, 10)
        if keepsakes.shared_folder(self.home.data) != folder:
            raise Finding(f"chose {folder}, and {keepsakes.shared_folder(self.home.data)} was written down")
        self.settle()

    def usual_size(self):
        self.type_size("640", "480")
        self.comes(lambda: self.main() and (self.main().width, self.main().height) == (650, 589), 3)
        time.sleep(REST)

    def toggle_toolbar(self):
        self.focus_main()
        self.key("alt+t")
        if self.comes(self.popups, 2):
            self.key("s")
            time.sleep(REST)

    def leave_full_screen(self):
        main = self.focus_main()
        if main.y <= 0 and main.height >= self.screen.height:
            self.key("Escape")
            self.wait_for(lambda: self.main() and self.main().height < self.screen.height, "Escape leaves full screen")

    def type_size(self, width, height):
        self.focus_main()
        self.click_control("width", count=2)
        for text in (width, height):
            self.key("ctrl+a")
            self.screen.type(text)
            self.key("Tab")

    def answer_panel(self, path):
        self.key("ctrl+a")
        self.screen.type(str(path))
        self.key("Return")

    def measure(self):
        self.measured.append((time.monotonic() - self.program.started, self.program.memory(),
                              self.program.descriptors()))
        descriptors = [each[2] for each in self.measured]
        # The first look is early: fonts, menus and panels open files of their own once.
        if len(descriptors) > 2 and descriptors[-1] > max(descriptors[:3]) + 12:
            raise Finding(f"open files grow: {descriptors}")
        memory = [each[1] for each in self.measured[2:]]
        if len(memory) >= 9:
            first, last = sorted(memory[:3])[1], sorted(memory[-3:])[1]
            if last > first * 1.25 + 80:
                raise Finding(f"memory grows: {memory} MB")

    def folder_is_full(self):
        return shutil.disk_usage(self.home.small).free < 4_000_000

    def tidy_exports(self):
        """Of what was looked at, a few stay, for names that are taken."""
        for folder in self.home.export_folders():
            looked_at = sorted(each for each in folder.iterdir() if each in self.seen)
            for each in looked_at[6:]:
                each.unlink()
                del self.seen[each]
