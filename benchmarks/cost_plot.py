"""The plot of processor time against the number of processes, as an SVG of its own."""
import math
from xml.sax.saxutils import escape

COLOURS = ("#1f6feb", "#8250df", "#57606a", "#1a7f37", "#bf3989", "#bc4c00", "#0e8a9a", "#9a6700")
WIDTH, HEIGHT = 860, 420
LEFT, RIGHT, TOP, BOTTOM = 60, 600, 24, 372


def decades(values):
    """Powers of ten around the values, which are above 0."""
    return (math.floor(math.log10(min(values))), math.ceil(math.log10(max(values))))


def spread(places, distance):
    """The places, sorted, moved down so far that neighbours keep the distance."""
    moved = []
    for place in places:
        moved.append(max(place, moved[-1] + distance) if moved else place)
    return moved


def cost_plot(counts, series):
    """series: for each name the CPU seconds a minute at each count. Both axes are logarithmic."""
    low_x, high_x = math.log10(counts[0]) - 0.1, math.log10(counts[-1]) + 0.1
    low_y, high_y = decades([value for values in series.values() for value in values])

    def x(count):
        return LEFT + (math.log10(count) - low_x) / (high_x - low_x) * (RIGHT - LEFT)

    def y(value):
        return BOTTOM - (math.log10(value) - low_y) / (high_y - low_y) * (BOTTOM - TOP)

    parts = [
        f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {WIDTH} {HEIGHT}" '
        'font-family="Inter, sans-serif" font-size="12" fill="#24292f">',
        f'<rect width="{WIDTH}" height="{HEIGHT}" fill="#ffffff"/>',
    ]
    for power in range(low_y, high_y + 1):
        line = y(10.0 ** power)
        parts.append(f'<path d="M{LEFT} {line:.1f}H{RIGHT}" stroke="#d0d7de"/>')
        parts.append(f'<text x="{LEFT - 8}" y="{line + 4:.1f}" text-anchor="end">{10.0 ** power:g}</text>')
    for count in counts:
        parts.append(f'<path d="M{x(count):.1f} {TOP}V{BOTTOM}" stroke="#eaeef2"/>')
        parts.append(f'<text x="{x(count):.1f}" y="{BOTTOM + 18}" text-anchor="middle">{count:,}</text>')
    parts.append(f'<text x="{(LEFT + RIGHT) / 2}" y="{HEIGHT - 10}" text-anchor="middle">processes</text>')
    parts.append(f'<text x="{LEFT}" y="14">CPU-seconds a minute</text>')

    ordered = sorted(series.items(), key=lambda item: -item[1][-1])
    labels = spread([y(values[-1]) for _, values in ordered], 16)
    for (name, values), label in zip(ordered, labels):
        colour = COLOURS[list(series).index(name) % len(COLOURS)]
        points = [(x(count), y(value)) for count, value in zip(counts, values)]
        path = "L".join(f"{left:.1f} {top:.1f}" for left, top in points)
        parts.append(f'<path d="M{path}" fill="none" stroke="{colour}" stroke-width="2"/>')
        parts += [f'<circle cx="{left:.1f}" cy="{top:.1f}" r="3" fill="{colour}"/>' for left, top in points]
        parts.append(f'<text x="{RIGHT + 12}" y="{label + 4:.1f}" fill="{colour}">{escape(name)}</text>')
    parts.append("</svg>")
    return "\n".join(parts) + "\n"
