"""The elements of the pictures, and the files that they are kept in."""
import sys
from pathlib import Path

INK, GREY = "#1c2228", "#5b6570"
FOLDER = Path(__file__).parents[1] / "pictures"


def element(name, words=None, **attributes):
    rest = "".join(f' {key.rstrip("_").replace("_", "-")}="{round(value, 1) if isinstance(value, float) else value}"'
                   for key, value in attributes.items())
    return f"<{name}{rest}/>" if words is None else f"<{name}{rest}>{words}</{name}>"


def line(a, b, **style):
    return element("line", x1=float(a[0]), y1=float(a[1]), x2=float(b[0]), y2=float(b[1]), **style)


def path(points, **style):
    return element("polyline", points=" ".join(f"{x:.1f},{y:.1f}" for x, y in points), fill="none", **style)


def text(x, y, words, **style):
    return element("text", words, x=float(x), y=float(y), **style)


def document(width, height, parts, arrows):
    """A picture on a ground of its own. arrows: the colour of each kind of arrow head."""
    heads = "".join(
        element("marker", element("path", d="M0 0L8 4L0 8z", fill=colour), id=name, viewBox="0 0 8 8", refX=5, refY=4,
                markerWidth=9, markerHeight=9, markerUnits="userSpaceOnUse", orient="auto")
        for name, colour in arrows.items())
    ground = element("rect", width=width, height=height, rx=8, fill="#fff")
    return element("svg", "\n".join(["", element("defs", heads), ground, *parts, ""]),
                   xmlns="http://www.w3.org/2000/svg", width=width, height=height, viewBox=f"0 0 {width} {height}",
                   font_family="DejaVu Sans, Verdana, sans-serif", font_size=13, fill=INK) + "\n"


def keep(pictures):
    """Writes (name, picture) to the folder of pictures, or with --check exits with 1 when one there is not current."""
    stale = []
    for name, picture in pictures:
        file = FOLDER / f"{name}.svg"
        if "--check" not in sys.argv:
            file.write_text(picture)
        elif not file.exists() or file.read_text() != picture:
            stale.append(file.name)
    if stale:
        raise SystemExit(f"not current, see scripts/pictures: {', '.join(stale)}")
