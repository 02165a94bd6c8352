# SPDX-License-Identifier: GPL-3.0-or-later
"""The program under test: its home, the box that it cannot reach out of, its starts and its ends.

The whole file system is read-only to it but for the folder of the test, so whatever the monkey types into a file panel
stays there. It has no session bus and no browser: what it wants to open is written to a list instead.
"""
import json
import os
import pathlib
import resource
import shutil
import signal
import subprocess
import time

# With the sanitizers' reports; see their documentation of common flags.
SANITIZER_EXIT = 86

OPENER = """#!/bin/sh
printf '%s\\n' "$*" >>"{list}"
"""


class Home:
    """The folders of one test, below its work folder. The data folder and "Small" are little disks of their own, so
    that they can be full."""

    def __init__(self, work):
        self.work = pathlib.Path(work)
        self.data_home = self.work / "data"
        self.data = self.data_home / "Starbloom"
        self.documents = self.work / "home/Documents"
        self.pictures = self.work / "home/Pictures"
        self.small = self.work / "small"
        self.hostile = self.work / "hostile"
        self.reports = self.work / "reports"
        self.opened = self.work / "opened"
        self.robbed = {}  # Stores that the monkey changed the rows of, with their inodes.
        self.spoiled = {}  # What it made of other files.
        for folder in (self.data_home, self.documents, self.pictures, self.small, self.hostile, self.reports,
                       self.work / "bin", self.work / "tmp", self.work / "run"):
            folder.mkdir(parents=True, exist_ok=True)
        (self.work / "run").chmod(0o700)
        self._mount(self.data_home, "6m")
        self._mount(self.small, "8m")
        self.opened.touch()
        opener = self.work / "bin/xdg-open"
        opener.write_text(OPENER.format(list=self.opened))
        opener.chmod(0o755)

    @staticmethod
    def _mount(folder, size):
        subprocess.run(["mount", "-t", "tmpfs", "-o", f"size={size},mode=755", "none", folder], check=True)

    def close(self):
        subprocess.run(["umount", "--lazy", self.data_home, self.small], check=False)

    def export_folders(self):
        return [self.pictures, self.documents, self.small]

    def clear(self):
        """As for a person who never had the program."""
        self.robbed.clear()
        self.spoiled.clear()
        for folder in (self.data_home, *self.export_folders()):
            self.make_usable(folder)
            for entry in folder.iterdir():
                if entry.is_dir() and not entry.is_symlink():
                    self.make_usable(entry)
                    shutil.rmtree(entry, ignore_errors=True)
                else:
                    entry.unlink()

    @staticmethod
    def make_usable(path):
        if path.is_symlink() or not path.exists():
            return
        path.chmod(0o755 if path.is_dir() else 0o644)

    def environment(self, display, settings):
        own = {"HOME": self.work / "home", "XDG_DATA_HOME": self.data_home,
               "XDG_CONFIG_HOME": self.work / "home/config", "XDG_CACHE_HOME": self.work / "home/cache",
               "XDG_RUNTIME_DIR": self.work / "run",
               "TMPDIR": self.work / "tmp", "DISPLAY": display, "LANG": "C.UTF-8",
               "PATH": f"{self.work / 'bin'}:/usr/bin:/bin", "DBUS_SESSION_BUS_ADDRESS": "unix:path=/nonexistent",
               "QT_QPA_PLATFORM": "xcb"}
        own.update(settings)
        return {name: str(value) for name, value in own.items()}


class Program:
    """One run, from its start to its end."""

    def __init__(self, binary, home, display, settings, suppressions):
        self.home = home
        self.log = home.work / "program.log"
        self.before = set(home.reports.iterdir())
        self.log_before = self.log.stat().st_size if self.log.exists() else 0
        common = f"log_path={home.reports / 'report'}:exitcode={SANITIZER_EXIT}"
        settings = dict(settings)
        # A small quarantine: what is freed may not hide that memory grows. Slow unwinding: the toolkit has no frame
        # pointers, and without its functions' names no leak can be told from another.
        settings["ASAN_OPTIONS"] = (f"{common}:halt_on_error=1:detect_leaks=1:quarantine_size_mb=16"
                                    ":fast_unwind_on_malloc=0")
        settings["UBSAN_OPTIONS"] = f"{common}:halt_on_error=1:print_stacktrace=1"
        settings["LSAN_OPTIONS"] = f"suppressions={suppressions}:print_suppressions=0"
        info_read, info_write = os.pipe()
        box = ["bwrap", "--ro-bind", "/", "/", "--dev-bind", "/dev", "/dev", "--proc", "/proc", "--bind", home.work,
               home.work, "--unshare-net", "--cap-drop", "ALL", "--die-with-parent", "--info-fd", str(info_write),
               "--chdir", home.work, binary]
        with open(self.log, "ab") as log:
            self.process = subprocess.Popen([str(each) for each in box], pass_fds=[info_write], stdout=log, stderr=log,
                                            env=home.environment(display, settings), stdin=subprocess.DEVNULL,
                                            restore_signals=False)
        os.close(info_write)
        with os.fdopen(info_read) as info:
            self.pid = json.load(info)["child-pid"]
        self.started = time.monotonic()

    def status(self):
        """Nothing while it runs; then the exit status, 128 and more for a signal."""
        return self.process.poll()

    def signal(self, number):
        try:
            os.kill(self.pid, number)
        except ProcessLookupError:
            pass

    def wait(self, seconds):
        try:
            return self.process.wait(seconds)
        except subprocess.TimeoutExpired:
            return None

    def end(self):
        """For good, whatever state it is in."""
        self.signal(signal.SIGKILL)
        self.process.kill()
        self.process.wait()

    def limit_files(self, size):
        """No file may grow beyond this many bytes, as on a disk that is full; nothing lifts the limit."""
        hard = resource.prlimit(self.pid, resource.RLIMIT_FSIZE)[1]
        resource.prlimit(self.pid, resource.RLIMIT_FSIZE, (hard if size is None else size, hard))

    def reports(self):
        """What the sanitizers wrote since it started. One of them knows only the standard error output."""
        texts = [each.read_text(errors="replace") for each in self.home.reports.iterdir() if each not in self.before]
        with open(self.log, errors="replace") as log:
            log.seek(self.log_before)
            text = log.read()
        if "runtime error:" in text:
            texts.append(text[text.index("runtime error:") - 60:])
        return texts

    def memory(self):
        """Resident, in MB."""
        text = pathlib.Path(f"/proc/{self.pid}/status").read_text()
        return next(int(line.split()[1]) // 1024 for line in text.splitlines() if line.startswith("VmRSS"))

    def descriptors(self):
        return len(os.listdir(f"/proc/{self.pid}/fd"))

    def stacks(self):
        """Of all threads, for a program that does not answer."""
        try:
            return subprocess.run(["gdb", "-p", str(self.pid), "-batch", "-ex", "thread apply all bt 30"],
                                  capture_output=True, text=True, timeout=120).stdout
        except (OSError, subprocess.TimeoutExpired) as failure:
            return str(failure)
