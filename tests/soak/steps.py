# SPDX-License-Identifier: GPL-3.0-or-later
"""What the monkey can do. A step is a function of the driver and of random numbers of its own, so that the steps of a
seed are the same whatever the program makes of them."""
import random
import shutil
import signal
import sqlite3
import struct
import time
import zlib
from dataclasses import dataclass

import keepsakes
from driver import (COMPANIONS, PANELS, PATIENCE, PICTURE_SETTINGS, PRESET_BUTTONS, PROGRESS, RESCUE,
                    SLIDER_ENDS, SLIDER_ROWS, Finding)

SHORTCUTS = ("ctrl+comma", "ctrl+shift+q", "ctrl+o", "ctrl+e", "ctrl+shift+e", "ctrl+shift+p", "ctrl+p", "ctrl+z",
             "ctrl+shift+z", "ctrl+x", "ctrl+c", "ctrl+v", "ctrl+shift+v", "ctrl+a", "F5", "ctrl+r", "ctrl+m", "F9",
             "F11", "F1", "Escape")
KEYS = ("Tab", "Tab", "shift+Tab", "Return", "space", "Up", "Down", "Left", "Right", "Home", "End", "Page_Up",
        "Page_Down", "Escape", "F10", "alt+f", "alt+e", "alt+m", "alt+w", "alt+h", "a", "s", "n", "1", "9", "BackSpace")
SIZES_GOOD = ("480", "481", "640", "720", "800", "1024", "1279", "1600", "2500")
SIZES_BAD = ("", "0", "-640", "0640", "12", "479", "6.5", "abc", "1e3", "640 480", "%s%n")
FORMATS = 6
MOVIE = "Movie.m4v"
DONE, KILLED = 0, 137


@dataclass(frozen=True)
class Step:
    name: str
    weight: int
    run: object
    ends: frozenset = frozenset()  # Statuses with which the program may end through it, at once or a little later.
    lethal: bool = False  # Ends the program in any case.


STEPS = []


def step(weight, ends=(), lethal=False):
    def enter(function):
        STEPS.append(Step(function.__name__, weight, function, frozenset(ends), lethal))
        return function
    return enter


def chosen(seed, index, quiet):
    """The step of this number, and the random numbers that it uses. In a quiet stretch nothing ends the program."""
    rng = random.Random(f"{seed}/{index}")
    steps = [each for each in STEPS if not (quiet and each.lethal)]
    return rng.choices(steps, [each.weight for each in steps])[0], rng


# Hands that know nothing.

@step(10, ends=[DONE])
def click_anywhere(driver, rng):
    which, x, y, count = rng.random(), rng.random(), rng.random(), rng.choice((1, 1, 1, 2))
    button = rng.choice((1, 1, 1, 1, 3, 2))
    windows = driver.windows()
    if windows:
        window = windows[int(which * len(windows))]
        panel = window.title.startswith(PANELS)  # There one could rename the files that are checked.
        driver.screen.click(window.x + x * window.width, window.y + y * window.height, 1 if panel else button, count)


@step(4, ends=[DONE])
def drag_anywhere(driver, rng):
    which, points = rng.random(), [(rng.random(), rng.random()) for _ in range(rng.randint(2, 6))]
    windows = [each for each in driver.windows() if not each.title.startswith(PANELS)]
    if windows:
        window = windows[int(which * len(windows))]
        driver.screen.drag([(window.x + x * window.width, window.y + y * window.height) for x, y in points])


@step(4)
def turn_wheel(driver, rng):
    which, x, y, turns, button = rng.random(), rng.random(), rng.random(), rng.randint(1, 8), rng.choice((4, 5))
    windows = driver.windows()
    if windows:
        window = windows[int(which * len(windows))]
        driver.screen.click(window.x + x * window.width, window.y + y * window.height, button, turns)


@step(10, ends=[DONE])
def press_keys(driver, rng):
    for _ in range(rng.randint(1, 8)):
        driver.key(rng.choice(KEYS))


@step(12)
def press_shortcut(driver, rng):
    for _ in range(rng.choice((1, 1, 1, 2, 5))):
        driver.key(rng.choice(SHORTCUTS))


@step(6, ends=[DONE])
def walk_menus(driver, rng):
    opener, keys = rng.choice(("alt+f", "alt+e", "alt+t", "alt+m", "alt+w", "alt+h", "F10")), []
    for _ in range(rng.randint(1, 12)):
        keys.append(rng.choice(("Down", "Down", "Down", "Up", "Right", "Left")))
    keys.append(rng.choice(("Return", "Return", "Escape")))
    driver.key(opener)
    for each in keys:
        driver.key(each)


# Controls.

@step(6)
def use_toolbar(driver, rng):
    driver.click_control(rng.choice(("on", "off", "on", "picture", "movie", "settings", "preferences", "folder",
                                     "colour", "drop", "width")), rng.choice((1, 1, 2)))


def sidebar(driver):
    """Opens it, if it is not, and brings it up."""
    driver.settle()
    if not driver.window("Settings"):
        driver.focus_main()
        driver.key("F9")
        driver.comes(lambda: driver.window("Settings"), 5)
    if window := driver.window("Settings"):
        driver.focus(window)
    return window


@step(8)
def move_sliders(driver, rng):
    moves = [(rng.choice(SLIDER_ROWS), rng.random(), rng.random(), rng.choice(("drag", "drag", "keys", "reset")),
              [rng.choice(("Left", "Right", "Home", "End", "Page_Up", "Page_Down")) for _ in range(4)])
             for _ in range(rng.randint(1, 5))]
    window = sidebar(driver)
    if not window:
        return
    left, right = SLIDER_ENDS
    for row, start, end, how, keys in moves:
        x0, x1 = (window.x + left + (right - left) * part for part in (start, end))
        y = window.y + row
        if how == "drag":
            driver.screen.drag([(x0, y), ((x0 + x1) / 2, y), (x1, y)])
        elif how == "keys":
            driver.screen.click(x0, y)
            for each in keys:
                driver.key(each)
        else:
            driver.screen.click(x0, y, count=2)


@step(6)
def use_presets(driver, rng):
    buttons = [rng.choice(tuple(PRESET_BUTTONS)) for _ in range(rng.randint(1, 4))]
    if window := sidebar(driver):
        for each in buttons:
            x, y = PRESET_BUTTONS[each]
            driver.screen.click(window.x + x, window.y + window.height + y)
            time.sleep(0.1)


@step(6)
def type_size(driver, rng):
    width, height = (rng.choice(SIZES_GOOD + SIZES_BAD) for _ in range(2))
    driver.settle()
    driver.type_size(width, height)


@step(3)
def choose_colour(driver, rng):
    clicks = [(rng.random(), rng.random()) for _ in range(rng.randint(1, 6))]
    last = rng.choice(("Return", "Escape"))
    driver.settle()
    driver.click_control("colour")
    if driver.comes(lambda: driver.window("Background Color"), 5):
        window = driver.window("Background Color")
        for x, y in clicks:
            driver.screen.click(window.x + x * window.width, window.y + y * window.height)
        driver.key(last)


@step(4)
def choose_folder(driver, rng):
    folder = rng.choice([driver.home.pictures, driver.home.documents, driver.home.small, driver.home.hostile,
                         driver.home.work / "nowhere", "", driver.home.hostile / "short.png"])
    answer = rng.choice(("answer", "answer", "Escape"))
    driver.settle()
    driver.click_control("folder")
    if driver.comes(lambda: driver.window("Export Folder"), 5):
        driver.focus(driver.window("Export Folder"))
        driver.answer_panel(folder) if answer == "answer" else driver.key("Escape")


@step(5)
def use_preferences(driver, rng):
    clicks = [(rng.random(), rng.random()) for _ in range(rng.randint(0, 6))]
    tab, last = rng.choice(("alt+g", "alt+f")), rng.choice(("alt+s", "alt+c", "Escape"))
    driver.settle()
    driver.focus_main()
    driver.key("ctrl+comma")
    if driver.comes(lambda: driver.window("Preferences"), 5):
        window = driver.window("Preferences")
        driver.focus(window)
        driver.key(tab)
        for x, y in clicks:
            driver.screen.click(window.x + x * window.width, window.y + y * window.height)
        driver.key(last)


@step(3)
def leaf_through_tour(driver, rng):
    choices = ("alt+n", "alt+n", "alt+n", "alt+b", "alt+d", "Right", "Left")
    keys = [rng.choice(choices) for _ in range(rng.randint(1, 16))]
    driver.settle()
    driver.focus_main()
    driver.key("ctrl+shift+q")
    if driver.comes(lambda: driver.window("Introduction"), 5):
        driver.focus(driver.window("Introduction"))
        for each in keys:
            driver.key(each)


@step(3)
def close_companions(driver, rng):
    which = rng.sample(COMPANIONS, rng.randint(1, 3))
    driver.settle()
    for title in which:
        if window := driver.window(title):
            driver.screen.close(window.xid)


@step(2)
def open_guide(driver, rng):
    keys = [rng.choice(("Page_Down", "Page_Up", "End", "Home", "Tab", "Down")) for _ in range(rng.randint(0, 5))]
    driver.settle()
    driver.focus_main()
    driver.key("alt+m")
    driver.key("g")
    if driver.comes(lambda: driver.window("Emitter Guide"), 5):
        driver.focus(driver.window("Emitter Guide"))
        for each in keys:
            driver.key(each)


@step(3)
def open_help(driver, rng):
    open_page = rng.random() < 0.5
    driver.settle()
    driver.focus_main()
    driver.key("F1")
    if driver.comes(driver.modals, 5):
        driver.key("alt+o" if open_page else "Escape")


@step(3)
def print_something(driver, rng):
    keys = rng.choice(("ctrl+p", "ctrl+shift+p"))
    clicks = [(rng.random(), rng.random()) for _ in range(rng.randint(0, 3))]
    driver.settle()
    driver.focus_main()
    driver.key(keys)
    if driver.comes(driver.modals, 5):
        window = driver.modals()[-1]
        for x, y in clicks:
            driver.screen.click(window.x + x * window.width, window.y + y * window.height)


# Windows.

@step(5)
def resize(driver, rng):
    x, y, width, height = (rng.random() for _ in range(4))
    jumps = rng.choice((1, 1, 6))
    if main := driver.main():
        for i in range(jumps):
            driver.screen.resize(main.xid, int(x * 700), int(y * 400), int(300 + width * 1200) + i * 7,
                                 int(200 + height * 800) - i * 5)


@step(4)
def minimise(driver, rng):
    pause = rng.random() * 1.5
    if main := driver.main():
        driver.screen.minimise(main.xid)
        time.sleep(pause)
        driver.screen.restore(main.xid)


@step(1)
def hide(driver, rng):
    """All windows, and the desktop's bar brings one of them back."""
    pause = rng.random()
    driver.settle()
    driver.focus_main()
    driver.key("alt+w")
    driver.key("h")
    time.sleep(pause)
    driver.focus_main()


@step(2)
def maximise_or_fill(driver, rng):
    keys = rng.choice((("F11",), ("F11", "F11"), ("alt+w", "x"), ("F11", "Escape"), ("ctrl+m",)))
    driver.settle()
    driver.focus_main()
    for each in keys:
        driver.key(each)
        time.sleep(0.2)


# Pictures and movies.

@step(10)
def export_pictures(driver, rng):
    form, quality, name, save = rng.randrange(FORMATS), rng.randrange(20), rng.choice(NAMES), rng.random() < 0.5
    count = rng.choice((1, 1, 2, 5))
    driver.settle()
    driver.focus_main()
    driver.key("alt+f")
    driver.key("t")
    if driver.comes(lambda: driver.window(PICTURE_SETTINGS), 5):
        driver.key("alt+f")
        driver.key("Home")
        for _ in range(form):
            driver.key("Down")
        driver.key("alt+q")
        driver.key("Home")
        for _ in range(quality):
            driver.key("Down")
        driver.name_pictures(name)
        if save:
            driver.key("alt+s")
        driver.settle()
    driver.focus_main()
    for _ in range(count):
        driver.key("ctrl+e")
        time.sleep(0.2)


NAMES = ("Fire", "Fire", "F", "Night 1", "a_b-c.d", "", ".hidden", "a:b", "   ", "x/y", "100%s", "n" * 120)


def asks_to_replace_movie(driver):
    """The question lies above the panel, and has its title."""
    return len([each for each in driver.modals() if each.title.startswith("Save Movie")]) > 1


def start_recording(driver, rng):
    """Three seconds, 24 to 30 frames each; gives whether it runs. The same name may be there already."""
    rate, fade, replace = rng.randrange(3), rng.random() < 0.3, rng.random() < 0.7
    folder = rng.choice((driver.home.pictures, driver.home.pictures, driver.home.small))
    driver.settle()
    driver.leave_full_screen()
    driver.type_size("640", "480")
    driver.key("ctrl+shift+e")
    if not driver.comes(lambda: driver.window("Make a Movie"), 4):
        driver.key("F5")  # Perhaps the animation is off.
        driver.key("ctrl+shift+e")
        if not driver.comes(lambda: driver.window("Make a Movie"), 4):
            return False
    driver.focus(driver.window("Make a Movie"))
    driver.key("alt+r")
    driver.key("Home")
    for _ in range(rate):
        driver.key("Down")
    driver.key("alt+e")
    driver.key("Home")
    if fade:
        driver.key("alt+f")
    driver.key("alt+c")
    if not driver.comes(lambda: driver.window("Save Movie"), 5):
        return False
    driver.focus(driver.window("Save Movie"))
    driver.answer_panel(folder / MOVIE)
    if driver.comes(lambda: driver.window(PROGRESS) or asks_to_replace_movie(driver), 3):
        if not driver.window(PROGRESS):
            driver.focus(driver.window("Save Movie"))
            driver.key("alt+y" if replace else "alt+n")
            if not driver.comes(lambda: not asks_to_replace_movie(driver), 4):
                raise Finding("the question whether to replace a movie stays")
    return driver.comes(lambda: driver.window(PROGRESS), 4)


def movies(driver):
    return {each: each.stat().st_mtime_ns for folder in driver.home.export_folders() for each in folder.glob("*.m4v")}


@step(3)
def record(driver, rng):
    before = movies(driver)
    if start_recording(driver, rng):
        driver.wait_for(lambda: not driver.window(PROGRESS), "the recording ends", 4 * PATIENCE)
        full = driver.home.small.is_dir() and shutil.disk_usage(driver.home.small).free < 4_000_000
        if movies(driver) == before and not full:
            raise Finding("a recording ended without a movie")


@step(3)
def record_and_abort(driver, rng):
    pause = rng.random() * 6
    before = movies(driver)
    if start_recording(driver, rng):
        time.sleep(pause)
        progress = driver.window(PROGRESS)
        if progress:
            driver.focus(progress)
            driver.key("alt+c")
            driver.wait_for(lambda: not driver.window(PROGRESS), "the recording is given up")
        elif movies(driver) == before:
            driver.settle()


@step(2)
def leave_movie_settings(driver, rng):
    choices = ("alt+l", "alt+s", "alt+f", "Tab", "Down", "Up", "alt+e", "alt+r")
    keys = [rng.choice(choices) for _ in range(rng.randint(1, 9))]
    last = rng.choice(("Escape", "alt+n", "alt+c"))
    driver.settle()
    driver.focus_main()
    driver.key("ctrl+shift+e")
    if driver.comes(lambda: driver.window("Make a Movie"), 4):
        for each in [*keys, last]:
            driver.key(each)


# Files that others made.

@step(6)
def open_file(driver, rng):
    name = rng.choice(HOSTILE)
    driver.settle()
    driver.focus_main()
    driver.key("ctrl+o")
    if driver.comes(lambda: driver.window("Open Picture"), 5):
        driver.focus(driver.window("Open Picture"))
        if name:
            driver.answer_panel(driver.home.hostile / name)
        else:
            driver.key("Escape")


HOSTILE = ("", "short.png", "large.png", "good.png", "tiny.png", "noise.jpg", "noise.gif", "noise.tif", "noise.jp2",
           "noise.bmp", "noise.pdf", "noise.psd", "empty.png", "pipe.png", "folder.png", "loop.png", "gone.png",
           "text.xyz")


def png(width, height, rows):
    def chunk(kind, body):
        return struct.pack(">I", len(body)) + kind + body + struct.pack(">I", zlib.crc32(kind + body))
    header = struct.pack(">IIBBBBB", width, height, 8, 2, 0, 0, 0)
    return b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) + chunk(b"IDAT", zlib.compress(rows)) + chunk(b"IEND", b"")


def make_hostile_files(folder):
    import os
    noise = random.Random(0)
    good = png(40, 30, (b"\0" + b"\x10\x20\x30" * 40) * 30)
    contents = {"good.png": good, "tiny.png": png(2, 2, b"\0" + b"\1" * 6 + b"\0" + b"\1" * 6), "short.png": good[:70],
                "large.png": png(2_000_000_000, 2_000_000_000, b"\0" * 100), "empty.png": b"", "text.xyz": b"text"}
    heads = {"jpg": b"\xff\xd8\xff\xe0", "gif": b"GIF89a", "tif": b"II*\0\x08\0\0\0",
             "jp2": b"\0\0\0\x0cjP  \r\n\x87\n", "bmp": b"BM", "pdf": b"%PDF-1.4\n", "psd": b"8BPS\0\1"}
    contents.update({f"noise.{kind}": head + noise.randbytes(4000) for kind, head in heads.items()})
    for name, content in contents.items():
        (folder / name).write_bytes(content)
    (folder / "folder.png").mkdir(exist_ok=True)
    for name, make in (("pipe.png", os.mkfifo), ("loop.png", lambda path: path.symlink_to("loop.png"))):
        if not os.path.lexists(folder / name):
            make(folder / name)


@step(4)
def drop_files(driver, rng):
    names = [rng.choice(HOSTILE) for _ in range(rng.choice((1, 1, 3)))]
    leave, anywhere, x, y = rng.random() < 0.2, rng.random() < 0.3, rng.random(), rng.random()
    lines = [rng.choice(("file://{}", "file://{}", "http://example.invalid/{}", "{}")) for _ in names]
    content = "".join(line.format(driver.home.hostile / name) + "\r\n" for line, name in zip(lines, names))
    driver.settle()
    main = driver.focus_main()
    where = (main.x + x * main.width, main.y + y * main.height) if anywhere else driver.place(main, "drop")
    driver.screen.drop(main.xid, *where, content.encode(), 5, leave)


# The disk.

@step(3)
def spoil_folder(driver, rng):
    """What happens to the folder for exports while it is in use; the next look at everything puts it right."""
    how = rng.choice(("gone", "read-only", "full"))
    folder = keepsakes.shared_folder(driver.home.data)
    if folder not in driver.home.export_folders():
        return
    if how == "gone" and not folder.is_mount():
        shutil.rmtree(folder)
    elif how == "full" and folder == driver.home.small:
        fill(folder)
    else:
        folder.chmod(0o555)
    driver.settle()
    driver.focus_main()
    driver.key("ctrl+e")
    time.sleep(1)


@step(2)
def spoil_data_folder(driver, rng):
    """The same with what the program keeps its settings in, for the while of a few attempts to save."""
    how = rng.choice(("full", "read-only file", "read-only folder", "limit"))
    data = driver.home.data
    if how == "full":
        fill(driver.home.data_home)
    elif how == "limit":
        driver.program.limit_files(8192)
    elif data.is_dir():
        (data if how.endswith("folder") else data / "Data1.data").chmod(0o555)
    try:
        use_presets(driver, rng)
        use_preferences(driver, rng)
        choose_colour(driver, rng)
        time.sleep(3)
    finally:
        unfill(driver.home.data_home)
        if driver.program.status() is None:
            driver.program.limit_files(None)
        for each in [data, *data.glob("Data*")]:
            driver.home.make_usable(each)


def fill(folder):
    with open(folder / ".filler", "wb", buffering=0) as file:
        try:
            while file.write(bytes(4096)):
                pass
        except OSError:
            pass


def unfill(folder):
    (folder / ".filler").unlink(missing_ok=True)


def damage(home, rng):
    """Something happens to the kept files between two runs. Gives what it was."""
    how = rng.choice(("nothing", "nothing", "bytes", "cut", "empty", "gone", "noise", "folder", "row", "table",
                      "stale"))
    data = home.data
    file = data / f"Data{rng.choice((0, 1, 2, 3, 4, 6))}.data"
    noise = rng.randbytes(3000)
    offsets = [rng.random() for _ in range(rng.randint(1, 40))]
    if not file.is_file():
        return "nothing"
    content = bytearray(file.read_bytes())
    if how == "bytes":
        for each in offsets:
            content[int(each * len(content))] = noise[int(each * 3000)]
    elif how == "cut":
        content = content[:int(offsets[0] * len(content))]
    elif how == "empty":
        content = b""
    elif how == "noise":
        content = noise
    file.write_bytes(content)
    home.spoiled[file.name] = bytes(content)
    if how in ("gone", "folder"):
        file.unlink()
    if how == "folder":
        file.mkdir()
    if how in ("row", "table"):
        for name, table, _ in keepsakes.STORES:
            if name == file.name:
                with sqlite3.connect(file) as database:
                    database.execute(f"delete from {table} where ID = 3" if how == "row" else f"drop table {table}")
                database.close()
    if how in ("row", "bytes", "folder"):
        home.robbed[file.name] = file.stat().st_ino
    if how == "stale":
        (data / ".starbloom.1999999-0.part").write_bytes(noise)
    return f"{how} {file.name}"


# Ends. The run goes on with a new start.

def ends(driver):
    """Whether the program comes to its end. A picture that could not be saved keeps it until its question is answered."""
    latest = time.monotonic() + PATIENCE
    while driver.program.wait(1) is None:
        if time.monotonic() > latest:
            return False
        if question := driver.window("Picture not saved"):
            driver.focus(question)
            driver.key("Escape")
    return True


@step(1, ends=[DONE], lethal=True)
def quit_by_key(driver, rng):
    keys = rng.choice(("ctrl+q", "ctrl+w"))
    driver.settle()
    driver.focus_main()
    driver.key(keys)
    if not ends(driver):
        raise Finding(f"{keys} does not end it")


@step(1, ends=[DONE], lethal=True)
def close_main_window(driver, rng):
    driver.settle()
    main = driver.focus_main()
    driver.screen.close(main.xid)
    if not ends(driver):
        raise Finding("closing the main window does not end it")


@step(2, ends=[DONE], lethal=True)
def terminate(driver, rng):
    time.sleep(rng.random())
    driver.end(rng.choice((signal.SIGTERM, signal.SIGINT, signal.SIGHUP)))


@step(1, ends=[DONE], lethal=True)
def terminate_while_recording(driver, rng):
    pause = 1.0 + rng.random() * 4
    before = movies(driver)
    if start_recording(driver, rng):
        time.sleep(pause)
        driver.check_answers()
        running = driver.window(PROGRESS)
        driver.end(signal.SIGTERM)
        full = shutil.disk_usage(driver.home.small).free < 4_000_000
        if running and movies(driver) == before and not full:
            raise Finding(f"no movie, although it was asked to end {pause:.1f} s into a recording")
    else:
        driver.end(signal.SIGTERM)


@step(2, ends=[KILLED], lethal=True)
def kill(driver, rng):
    time.sleep(rng.random())
    driver.kill()


@step(2, ends=[KILLED], lethal=True)
def kill_while_exporting(driver, rng):
    pause, count = rng.random() * 0.4, rng.randint(1, 3)
    driver.settle()
    driver.focus_main()
    for _ in range(count):
        driver.key("ctrl+e")
    time.sleep(pause)
    driver.kill()


@step(2, ends=[KILLED], lethal=True)
def kill_while_recording(driver, rng):
    pause = 2.5 + rng.random() * 3.5
    if start_recording(driver, rng):
        time.sleep(pause)
    driver.kill()


@step(2, ends=[KILLED], lethal=True)
def kill_while_saving(driver, rng):
    pause = rng.random() * 2.3
    use_presets(driver, rng)
    time.sleep(pause)
    driver.kill()


def answer_rescue(driver, rng):
    """After a start: a movie that a killed run left behind is offered, unless there is nothing of it, or its folder is
    not there."""
    answer = rng.choice(("alt+r", "alt+r", "alt+d", "alt+l"))
    for _ in range(12):
        left = keepsakes.journals(driver.home.data)
        if not left or not all(keepsakes.target_folder(each) for each in left):
            return
        driver.wait_for(lambda: driver.window(RESCUE) or not keepsakes.journals(driver.home.data),
                        "an unfinished movie is offered")
        if not driver.window(RESCUE):
            return
        driver.focus(driver.window(RESCUE))
        driver.key(answer)
        may_change = all(keepsakes.target_folder(each).stat().st_mode & 0o200 for each in left)
        if answer == "alt+l" or not may_change:
            driver.settle()
            return
        driver.wait_for(lambda: set(keepsakes.journals(driver.home.data)) != set(left) or driver.folder_is_full(),
                        "an unfinished movie is recovered or deleted")
        if driver.folder_is_full():
            return
