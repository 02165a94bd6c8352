# SPDX-License-Identifier: GPL-3.0-or-later
"""Runs the scene of sparks once in one engine, and tells what a frame took.

A program of its own tells its frames and processor time itself. A page in Chromium tells a server of ours how many
frames it has drawn, at two moments of the steady state, and the processor time of all of Chromium's processes is read
at both. What starting takes is in neither.
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

from machine import processor_seconds

# As tables have them. Unpaced is what draws as often as it can, as Qt Quick Particles and the bare blit do.
NAMES = ("Starbloom", "Starbloom unpaced", "Qt Quick Particles", "PixiJS", "canvas 2D", "tsParticles", "bare blit")
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

    def __str__(self):
        return f"{self.sparks} sparks at {self.width}x{self.height}"


@dataclasses.dataclass
class Figures:
    frames_per_second: float
    cpu_ms: float  # processor time of a frame, all threads and processes
    picture: bytes | None = None  # RGB, if it was asked for


def run_program(name, command, screen, scene, seconds, wants_picture):
    """A program that prints its figures as one line of JSON, on that screen."""
    with tempfile.TemporaryDirectory() as home:
        picture = pathlib.Path(home) / "picture.ppm"
        arguments = ["--sparks", str(scene.sparks), "--size", f"{scene.width}x{scene.height}",
                     "--seconds", str(seconds)]
        if wants_picture:
            arguments += ["--picture", str(picture)]
        environment = dict(os.environ, DISPLAY=screen, QT_QPA_PLATFORM="xcb", XDG_RUNTIME_DIR=home,
                           XDG_CONFIG_HOME=home, XDG_CACHE_HOME=home, QSG_RENDER_LOOP="basic",
                           QSG_FIXED_ANIMATION_STEP="1", LIBGL_ALWAYS_SOFTWARE="1")
        try:
            done = subprocess.run([*command, *arguments], env=environment, capture_output=True, text=True,
                                  timeout=PROGRAM_LIMIT + seconds)
            figures = json.loads(done.stdout)
        except subprocess.TimeoutExpired as error:
            raise Failure(f"{name}, {scene}: not done after {error.timeout} s") from None
        except json.JSONDecodeError:
            raise Failure(f"{name}, {scene}: {last_line(done.stderr)}") from None
        return Figures(figures["fps"], figures["cpu_ms_per_frame"], read_ppm(picture) if wants_picture else None)


def last_line(text):
    return (text.strip().splitlines() or ["ended without a word"])[-1]


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


class Browser:
    """Chromium with one page, until it is closed. What the page tells waits in line, with the processor time so far."""

    def __init__(self, server, query, size):
        self.home = tempfile.mkdtemp()
        self.errors = tempfile.TemporaryFile(mode="w+")
        self.messages = queue.Queue()
        server.told = self.told
        command = [
            # Of what there is without a graphics processor these are cheapest, for WebGL as well as for canvases.
            "chromium", "--headless", "--disable-gpu", "--enable-unsafe-swiftshader",
            "--disable-quic", "--no-first-run", "--disable-background-networking", "--disable-component-update",
            "--disable-sync", "--disable-extensions", "--hide-scrollbars", "--force-device-scale-factor=1",
            f"--window-size={size[0]},{size[1] + 200}",  # the bars of a browser are a part of its window
            f"--user-data-dir={self.home}", *(["--no-sandbox"] if os.geteuid() == 0 else []),
            f"http://127.0.0.1:{server.server_address[1]}/web/page.html?{query}"]
        self.process = subprocess.Popen(command, stdout=subprocess.DEVNULL, stderr=self.errors,
                                        start_new_session=True, env=dict(os.environ, TMPDIR=self.home))

    def told(self, path, body):
        used = processor_seconds(self.process.pid) if path == "/mark" else 0.0
        self.messages.put((path, body, used, time.monotonic()))

    def expect(self, wanted):
        """What the page tells next, which is to be of that kind."""
        limit = time.monotonic() + PAGE_LIMIT
        while time.monotonic() < limit:
            try:
                path, *message = self.messages.get(timeout=1)
            except queue.Empty:
                if self.process.poll() is not None:
                    self.errors.seek(0)
                    raise Failure(f"Chromium ended: {last_line(self.errors.read())}") from None
                continue
            if path != wanted:
                raise Failure(f"the page told {path} {message[0][:300].decode(errors='replace')}")
            return message
        raise Failure(f"nothing heard from the page in {PAGE_LIMIT} s")

    def close(self):
        limit = time.monotonic() + 5
        try:
            while time.monotonic() < limit:  # until its last process is gone and writes no more
                os.killpg(self.process.pid, signal.SIGKILL)
                self.process.poll()
                time.sleep(0.05)
        except ProcessLookupError:
            pass
        self.errors.close()
        shutil.rmtree(self.home, ignore_errors=True)


def run_page(name, engine, server, scene, seconds, wants_picture):
    """A page of web/ in a Chromium that is started for it."""
    query = (f"engine=/web/{engine}.js&sparks={scene.sparks}&width={scene.width}&height={scene.height}"
             f"&seconds={seconds}{'&picture' if wants_picture else ''}")
    browser = Browser(server, query, (scene.width, scene.height))
    try:
        begin_frames, begin_cpu, begin = browser.expect("/mark")
        end_frames, end_cpu, end = browser.expect("/mark")
        picture = without_alpha(browser.expect("/picture")[0]) if wants_picture else None
    except Failure as failure:
        raise Failure(f"{name}, {scene}: {failure}") from None
    finally:
        browser.close()
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

    stages = program("Starbloom", stage_bench), program("Starbloom unpaced", stage_bench, "--fps", "0")
    limit = program("bare blit", stage_bench, "--bare")
    pages = page("PixiJS", "pixi"), page("canvas 2D", "canvas"), page("tsParticles", "tsparticles")
    return dict(zip(NAMES, (*stages, program("Qt Quick Particles", qtquick_bench), *pages, limit)))
