# SPDX-License-Identifier: GPL-3.0-or-later
"""What the benchmarks need of the machine: a screen of their own, the processor time of others, and programs built."""

import os
import pathlib
import subprocess
import sys
import time

ROOT = pathlib.Path(__file__).resolve().parent.parent
RELEASE = ROOT / "build" / "release"
PEERS_BUILD = ROOT / "build" / "peers"


def start_screen(width, height):
    """A virtual screen, to be killed by the caller, and its name as DISPLAY wants it."""
    screen = subprocess.Popen(["Xvfb", "-displayfd", "1", "-screen", "0", f"{width}x{height}x24"],
                              stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)
    display = screen.stdout.readline().strip()
    if not display:
        sys.exit("Xvfb did not start.")
    return screen, f":{display}"


def processor_seconds(root):
    """What the process and all its descendants have used so far."""
    children = {}
    for entry in os.listdir("/proc"):
        if entry.isdigit():
            try:
                # After the name, which may hold anything, come the state and the parent.
                parent = pathlib.Path("/proc", entry, "stat").read_text().rpartition(")")[2].split()[1]
            except OSError:
                continue
            children.setdefault(int(parent), []).append(int(entry))
    total = 0.0
    pending = [root]
    while pending:
        process = pending.pop()
        pending += children.get(process, [])
        try:
            total += time.clock_gettime(~process << 3 | 2)  # as clock_getcpuclockid() numbers the clocks of processes
        except OSError:
            continue
    return total


def quietly(*command, folder=ROOT):
    """Runs it. What it printed is kept only if it failed."""
    script = pathlib.Path(sys.argv[0]).resolve().relative_to(ROOT)
    try:
        done = subprocess.run(command, cwd=folder, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
    except FileNotFoundError:
        sys.exit(f"{script} needs {command[0]}.")
    if done.returncode != 0:
        PEERS_BUILD.mkdir(parents=True, exist_ok=True)
        (PEERS_BUILD / "failure.log").write_text(done.stdout)
        sys.exit(f"This failed, build/peers/failure.log tells why: {' '.join(map(str, command))}")
    return done.stdout.strip()


def build_qtquick():
    """The scene of sparks in Qt Quick Particles. Needs the packages of the section "bench"."""
    folder = PEERS_BUILD / "qtquick"
    quietly("cmake", "-S", ROOT / "bench" / "peers" / "qtquick", "-B", folder, "-G", "Ninja",
            "-DCMAKE_BUILD_TYPE=Release")
    quietly("cmake", "--build", folder)
    return folder / "qtquick_bench"
