# SPDX-License-Identifier: GPL-3.0-or-later
"""Runs the scene of sparks once in one engine, and tells what a frame took.

A program of its own tells its frames and processor time itself. A page in Chromium tells a server of ours how many
frames it has drawn, at two moments of the steady state, and the processor time of all of Chromium's processes is read at
both. What starting takes is in neither.
"""

import dataclasses
import functools
import http.server
import json
import os
import pathlib
import queue
import shutil
import signal
import subprocess
import tempfile
import threading
import time

NAMES = "Starbloom", "Qt Quick Particles", "PixiJS", "canvas 2D", "tsParticles", "bare blit"  # in the order of the tables
HERE = pathlib.Path(__file__).resolve().parent
PROGRAM_LIMIT = 60  # seconds, and so many more than its measured window
PAGE_LIMIT = 180  # the slowest take a second for a frame of 100,000 sparks


class Failure(Exception):
    """An engine gave no figures; the text says which and why."""


@dataclasses.dataclass(frozen=True)
class Scene:
    sparks: int
    width: int
    height: int


@dataclasses.dataclass
class Figures:
    frames_per_second: float
    cpu_ms: float  # processor time of a frame, all threads and processes
    picture: bytes | None = None  # RGB, if it was asked for


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
            total += time.clock_gettime(~process << 3 | 2)  # the clock of another process' running time, see clock_getcpuclockid
        except OSError:
            continue
    return total


def run_program(name, command, screen, scene, seconds, wants_picture):
    """A program that prints its figures as one line of JSON, on that screen."""
    with tempfile.TemporaryDirectory() as home:
        picture = pathlib.Path(home) / "picture.ppm"
        arguments = ["--sparks", str(scene.sparks), "--size", f"{scene.width}x{scene.height}", "--seconds", str(seconds)]
        if wants_picture:
            arguments += ["--picture", str(picture)]
        environment = dict(os.environ, DISPLAY=screen, QT_QPA_PLATFORM="xcb", XDG_RUNTIME_DIR=home, XDG_CONFIG_HOME=home,
                           XDG_CACHE_HOME=home, QSG_RENDER_LOOP="basic", LIBGL_ALWAYS_SOFTWARE="1")
        try:
            done = subprocess.run([*command, *arguments], env=environment, capture_output=True, text=True,
                                  timeout=PROGRAM_LIMIT + seconds)
            figures = json.loads(done.stdout)
            return Figures(figures["fps"], figures["cpu_ms_per_frame"], read_ppm(picture) if wants_picture else None)
        except (subprocess.TimeoutExpired, json.JSONDecodeError, OSError) as error:
            raise Failure(f"{name}: {scene}: {error}") from None


def read_ppm(path):
    """The pixels of a picture as our programs write it, "P6\n640 480\n255\n"."""
    return path.read_bytes().split(b"\n", 3)[3]


class Handler(http.server.SimpleHTTPRequestHandler):
    """Gives out the pages and the engines, and takes what the pages tell."""

    protocol_version = "HTTP/1.1"
    extensions_map = {".js": "text/javascript", ".mjs": "text/javascript", ".html": "text/html"}

    def do_POST(self):
        body = self.rfile.read(int(self.headers["Content-Length"]))
        self.server.told(self.path, body)
        self.send_response(204)
        self.end_headers()

    def translate_path(self, path):
        path = path.partition("?")[0].lstrip("/")
        return str((self.server.packages if path.startswith("node_modules/") else HERE) / path)

    def log_message(self, *_):
        pass


class Server(http.server.ThreadingHTTPServer):
    """On a port of its own at this machine, for one page after another."""

    def __init__(self, packages):
        super().__init__(("127.0.0.1", 0), Handler)
        self.packages = packages
        self.told = lambda path, body: None
        threading.Thread(target=self.serve_forever, daemon=True).start()

    def handle_error(self, request, client_address):
        pass  # a browser that is ended leaves its connections


def run_page(name, engine, server, scene, seconds, wants_picture):
    """A page of web/ in a Chromium that is started for it."""
    messages = queue.Queue()
    query = f"engine=/web/{engine}.js&sparks={scene.sparks}&width={scene.width}&height={scene.height}&seconds={seconds}"
    if wants_picture:
        query += "&picture"
    with tempfile.TemporaryDirectory() as home:
        command = [
            # Of what there is without a graphics processor these are cheapest, for WebGL as well as for canvases.
            "chromium", "--headless", "--disable-gpu", "--enable-unsafe-swiftshader", "--disable-quic", "--no-first-run", "--disable-background-networking",
            "--disable-component-update", "--disable-sync", "--disable-extensions", "--hide-scrollbars",
            "--force-device-scale-factor=1", f"--window-size={scene.width},{scene.height + 200}", f"--user-data-dir={home}",
            *(["--no-sandbox"] if os.geteuid() == 0 else []),
            f"http://127.0.0.1:{server.server_address[1]}/web/page.html?{query}"]
        browser = subprocess.Popen(command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, start_new_session=True)
        server.told = lambda path, body: messages.put(
            (path, body, processor_seconds(browser.pid) if path == "/mark" else 0.0, time.monotonic()))

        def expect(kind):
            path, body, *moment = messages.get(timeout=PAGE_LIMIT)
            if path != kind:
                raise Failure(f"{name}: {path} {body[:300].decode(errors='replace')}")
            return body, *moment

        try:
            begin_frames, begin_cpu, begin = expect("/mark")
            end_frames, end_cpu, end = expect("/mark")
            picture = without_alpha(expect("/picture")[0]) if wants_picture else None
        except queue.Empty:
            raise Failure(f"{name}: {scene}: nothing heard from the page in {PAGE_LIMIT} s") from None
        finally:
            os.killpg(browser.pid, signal.SIGKILL)
            browser.wait()
            time.sleep(0.2)  # its last processes still write into the folder
            shutil.rmtree(home, ignore_errors=True)
            os.makedirs(home, exist_ok=True)
    frames = int(end_frames) - int(begin_frames)
    return Figures(frames / (end - begin), 1000.0 * (end_cpu - begin_cpu) / frames, picture)


def without_alpha(pixels):
    rgb = bytearray(len(pixels) // 4 * 3)
    for channel in range(3):
        rgb[channel::3] = pixels[channel::4]
    return bytes(rgb)


def all_engines(stage_bench, qtquick_bench, packages, screen):
    """Functions of (scene, seconds, wants_picture) by the engines' names."""
    server = Server(packages)

    def program(name, *command):
        return functools.partial(run_program, name, command, screen)

    def page(name, engine):
        return functools.partial(run_page, name, engine, server)

    runs = (program("Starbloom", stage_bench), program("Qt Quick Particles", qtquick_bench), page("PixiJS", "pixi"),
            page("canvas 2D", "canvas"), page("tsParticles", "tsparticles"), program("bare blit", stage_bench, "--bare"))
    return dict(zip(NAMES, runs))
