# SPDX-License-Identifier: GPL-3.0-or-later
"""Writes what was measured: tables in Markdown, and plots on logarithmic scales in SVG."""

import html
import math
import statistics

OURS = "Starbloom"
UNPACED = "Starbloom unpaced"
LIMIT = "bare blit"
COLORS = {
    OURS: "#c2410c",
    UNPACED: "#c2410c",
    LIMIT: "#a8a29e",
    "Qt Quick Particles": "#15803d",
    "PixiJS": "#7e22ce",
    "canvas 2D": "#0369a1",
    "tsParticles": "#334155",
}
WIDTH, HEIGHT = 760, 460
LEFT, RIGHT, TOP, BOTTOM = 70, 600, 62, 408  # of the plot's field


def number(value):
    """With as many digits as a measurement has."""
    return f"{value:,.{max(0, 2 - max(0, int(math.floor(math.log10(value)))))}f}"


def table(found, size, counts, engines, cell, last=None):
    """`found` holds lists of figures, one of each round, by (engine, scene)."""
    heads = [f"{count:,}" for count in counts] + ([last[0]] if last else [])
    lines = [f"| {size[0]}x{size[1]}, sparks: | {' | '.join(heads)} |", "|---|" + "--:|" * len(heads)]
    for engine in engines:
        rows = [found[engine, count, *size] for count in counts]
        cells = [cell(rounds) for rounds in rows] + ([last[1](rows)] if last else [])
        lines.append(f"| {engine} | {' | '.join(cells)} |")
    return lines


def middle(rounds):
    return statistics.median(figures.cpu_ms for figures in rounds)


def spread(rows):
    """Of the least settled of the row's figures."""
    return f"{max(100 * (max(f.cpu_ms for f in rounds) / min(f.cpu_ms for f in rounds) - 1) for rounds in rows):.0f} %"


def ratios(found, size, counts, engine, other):
    times = [f"{middle(found[engine, count, *size]) / middle(found[other, count, *size]):.1f}" for count in counts]
    return f"| *{engine}, times {other}* | {' | '.join(times)} | |"


def tables(found, sizes, counts, engines):
    lines = []
    for size in sizes:
        lines += ["Milliseconds of processor time for a frame:", ""]
        lines += table(found, size, counts, engines, lambda rounds: number(middle(rounds)), ("spread", spread))
        if OURS in engines:
            for engine in engines:
                if engine not in (OURS, UNPACED, LIMIT):
                    lines.append(ratios(found, size, counts, engine, OURS))
        if UNPACED in engines:
            for engine, other in ("Qt Quick Particles", UNPACED), (UNPACED, LIMIT):
                if {engine, other} <= set(engines):
                    lines.append(ratios(found, size, counts, engine, other))
        lines += ["", "Frames per second:", ""]
        played = [engine for engine in engines if engine != LIMIT]
        lines += table(found, size, counts, played,
                       lambda rounds: number(statistics.median(f.frames_per_second for f in rounds)))
        lines.append("")
    return "\n".join(lines)


def limits(values):
    """1, 2 or 5 times a power of ten, around all values."""
    steps = [factor * 10.0**power for power in range(-5, 7) for factor in (1, 2, 5)]
    return max(step for step in steps if step < min(values)), min(step for step in steps if step > max(values))


def decades(lowest, highest):
    return [10.0**power for power in range(math.ceil(math.log10(lowest)), math.floor(math.log10(highest)) + 1)]


def apart(wanted, gap):
    """Heights near the wanted ones, none nearer to the next than the gap."""
    placed = []
    for height in sorted(wanted):
        placed.append(max(height, placed[-1] + gap) if placed else height)
    excess = max(0.0, placed[-1] - BOTTOM) if placed else 0.0
    for i in range(len(placed) - 1, -1, -1):
        placed[i] = min(placed[i], (placed[i + 1] - gap) if i + 1 < len(placed) else placed[i] - excess)
    return placed


class Plot:
    """Processor time of a frame by the number of sparks, a line for each engine, named where it ends."""

    def __init__(self, size, counts, lines):
        self.counts = counts
        self.lines = lines  # milliseconds of each count, by engine
        values = [value for line in lines.values() for value in line]
        self.lowest, self.highest = limits(values)
        self.parts = [
            f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {WIDTH} {HEIGHT}" width="{WIDTH}" height="{HEIGHT}" '
            'font-family="system-ui, sans-serif" font-size="13">',
            f'<rect width="{WIDTH}" height="{HEIGHT}" rx="8" fill="#fafaf9"/>',
            f'<text x="20" y="28" font-size="15" font-weight="600" fill="#1c1917">Processor time of a frame, '
            f"{size[0]}×{size[1]}</text>",
            '<text x="20" y="47" fill="#57534e">milliseconds on all cores, by the number of sparks; both scales are '
            "logarithmic</text>",
        ]

    def x(self, count):
        low, high = math.log(self.counts[0]), math.log(self.counts[-1])
        return LEFT + (math.log(count) - low) / (high - low) * (RIGHT - LEFT)

    def y(self, value):
        low, high = math.log(self.lowest), math.log(self.highest)
        return BOTTOM - (math.log(value) - low) / (high - low) * (BOTTOM - TOP)

    def text(self, x, y, anchor, color, text, more=""):
        self.parts.append(f'<text x="{x:.1f}" y="{y:.1f}" text-anchor="{anchor}" fill="{color}"{more}>'
                          f"{html.escape(text)}</text>")

    def draw_axes(self):
        for value in decades(self.lowest, self.highest):
            self.parts.append(f'<path d="M{LEFT} {self.y(value):.1f}H{RIGHT}" stroke="#e7e5e4"/>')
            self.text(LEFT - 10, self.y(value) + 4, "end", "#57534e", f"{value:,g}" if value < 1 else f"{value:,.0f}")
        for count in self.counts:
            self.parts.append(f'<path d="M{self.x(count):.1f} {TOP}V{BOTTOM}" stroke="#e7e5e4"/>')
            self.text(self.x(count), BOTTOM + 20, "middle", "#57534e", f"{count:,}")
        self.text((LEFT + RIGHT) / 2, BOTTOM + 40, "middle", "#57534e", "sparks")
        core = 1000.0 / 60.0
        if self.lowest < core < self.highest:
            self.parts.append(f'<path d="M{LEFT} {self.y(core):.1f}H{RIGHT}" stroke="#a8a29e" '
                              'stroke-dasharray="2 4"/>')
            self.text(RIGHT - 6, self.y(core) - 6, "end", "#78716c", "one core at 60 frames per second",
                      ' font-size="11"')

    def draw_lines(self):
        for engine, values in self.lines.items():
            points = " ".join(f"{self.x(count):.1f},{self.y(value):.1f}" for count, value in zip(self.counts, values))
            dashes = ' stroke-dasharray="5 4"' if engine == LIMIT else ""
            thickness = 3 if engine == OURS else 1.8
            self.parts.append(f'<polyline points="{points}" fill="none" stroke="{COLORS[engine]}" '
                              f'stroke-width="{thickness}" stroke-linejoin="round"{dashes}/>')
            for count, value in zip(self.counts, values):
                self.parts.append(f'<circle cx="{self.x(count):.1f}" cy="{self.y(value):.1f}" '
                                  f'r="{thickness + 0.7:.1f}" fill="{COLORS[engine]}"/>')

    def draw_names(self):
        order = sorted(self.lines, key=lambda engine: self.y(self.lines[engine][-1]))
        heights = apart([self.y(self.lines[engine][-1]) for engine in order], 18)
        for engine, height in zip(order, heights):
            weight = ' font-weight="700"' if engine == OURS else ""
            color = "#78716c" if engine == LIMIT else COLORS[engine]
            self.text(RIGHT + 14, height + 4, "start", color, engine, weight)

    def svg(self):
        self.draw_axes()
        self.draw_lines()
        self.draw_names()
        return "\n".join([*self.parts, "</svg>", ""])


def plot(found, size, counts, engines):
    lines = {engine: [middle(found[engine, count, *size]) for count in counts]
             for engine in engines if engine != UNPACED or OURS not in engines}
    return Plot(size, counts, lines).svg()
