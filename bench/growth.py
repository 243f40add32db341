"""The picture of how cost grows: the runs of growth_bench, each with the straight line through them."""
import statistics
import sys
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parent.parent / "docs" / "reference"))
from svg import FOLDER, GREY, document, element, line, text  # noqa: E402

WIDTH, HEIGHT, LEFT, TOP, GAP = 240, 180, 60, 44, 90
PANELS = {
    "connections": ("connections, a message on each", "µs of the receive thread"),
    "bytes_of_a_message": ("bytes of a message", "µs of the receive thread"),
    "set_points_a_second": ("set-points a second", "µs of the sender, a second"),
}


def points_of(runs, name):
    """(size, median microseconds) of each run of a benchmark."""
    return [(int(key.split("/")[1]), statistics.median(run["real_time"] for run in runs[key]))
            for key in runs if key.split("/")[0] == name]


def round_up(value):
    """To the next 1, 2 or 5 times a power of ten."""
    step = 10 ** (len(str(int(value))) - 1)
    return next(step * factor for factor in (1, 2, 5, 10) if step * factor >= value)


def panel(left, points, below, beside):
    most = [round_up(max(column)) for column in zip(*points)]

    def place(x, y):
        return left + WIDTH * x / most[0], TOP + HEIGHT - HEIGHT * y / most[1]
    slope, at_zero = statistics.linear_regression(*zip(*points))
    yield line(place(0, 0), place(most[0], 0), stroke=GREY)
    yield line(place(0, 0), place(0, most[1]), stroke=GREY)
    ends = [place(x, at_zero + slope * x) for x in (points[0][0], points[-1][0])]
    yield line(*ends, stroke="#c2410c", stroke_width=1.5)
    for x, y in points:
        yield element("circle", cx=place(x, y)[0], cy=place(x, y)[1], r=3, fill="#1f5fa8")
    for share in (0, 0.5, 1):
        x, y = place(most[0] * share, most[1] * share)
        yield text(x, TOP + HEIGHT + 18, f"{most[0] * share:,.10g}", text_anchor="middle", font_size=12)
        yield text(left - 6, y + 4, f"{most[1] * share:,.10g}", text_anchor="end", font_size=12)
    yield text(left + WIDTH / 2, TOP + HEIGHT + 38, below, text_anchor="middle")
    yield text(left - 40, TOP - 18, beside)


def draw(runs):
    """Writes docs/pictures/growth.svg from the runs by name."""
    parts = []
    for i, (name, words) in enumerate(PANELS.items()):
        parts += panel(LEFT + i * (WIDTH + GAP), points_of(runs, name), *words)
    width = LEFT + len(PANELS) * (WIDTH + GAP) - GAP + 30
    (FOLDER / "growth.svg").write_text(document(width, TOP + HEIGHT + 56, parts, {}))
