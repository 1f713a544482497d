"""Bar charts as SVG, readable on light and on dark pages."""

import math
from xml.sax.saxutils import escape

STYLE = """
text { font: 13px system-ui, 'DejaVu Sans', sans-serif; fill: #1f2328; }
.title { font-size: 16px; font-weight: 600; }
.quiet { fill: #59636e; font-size: 12px; }
.page { fill: #ffffff; }
.line { stroke: #d1d9e0; stroke-width: 1; }
.one { stroke: #59636e; stroke-width: 1.5; }
.ours { fill: #1a7f5a; }
.peer { fill: #a9b4c0; }
@media (prefers-color-scheme: dark) {
text { fill: #e6edf3; }
.quiet { fill: #9198a1; }
.page { fill: #0d1117; }
.line { stroke: #3d444d; }
.one { stroke: #9198a1; }
.ours { fill: #3fb98a; }
.peer { fill: #59636e; }
}"""

WIDTH = 820
LEFT = 250
RIGHT = 190
ROW = 26
BAR = 16
TOP = 68


def _document(height, title, subtitle, body):
    return "\n".join([
        f'<svg xmlns="http://www.w3.org/2000/svg" width="{WIDTH}" height="{height}" '
        f'viewBox="0 0 {WIDTH} {height}" role="img" aria-label="{escape(title)}">',
        f"<style>{STYLE}</style>",
        f'<rect class="page" width="{WIDTH}" height="{height}" rx="8"/>',
        f'<text class="title" x="20" y="30">{escape(title)}</text>',
        f'<text class="quiet" x="20" y="50">{escape(subtitle)}</text>',
        *body, "</svg>", ""])


def _ticks(top):
    """1, 10, 100 ... up to what is above the longest bar, with 2 and 5 between where few."""
    decades = math.ceil(math.log10(top))
    steps = [1, 2, 5] if decades <= 2 else [1]
    ticks = [step * 10**power for power in range(decades + 1) for step in steps]
    return [tick for tick in ticks if tick <= top]


def times_as_fast(title, subtitle, rows):
    """Rows of label, ratio and peer, on a logarithmic scale that begins at 1."""
    top = max(2.0, max(ratio for _, ratio, _ in rows)) * 1.05
    left, row_height = LEFT + 20, 42
    scale = (WIDTH - left - 80) / math.log10(top)
    bottom = TOP + row_height * len(rows)
    body = []
    for tick in _ticks(top):
        x = left + math.log10(tick) * scale
        style = "one" if tick == 1 else "line"
        body.append(f'<line class="{style}" x1="{x:.1f}" x2="{x:.1f}" y1="{TOP - 4}" y2="{bottom}"/>')
        body.append(f'<text class="quiet" x="{x:.1f}" y="{bottom + 18}" '
                    f'text-anchor="middle">{tick:g}×</text>')
    for row, (label, ratio, peer) in enumerate(rows):
        y = TOP + row * row_height
        length = max(1.0, math.log10(max(ratio, 1)) * scale)
        body.append(f'<text x="{left - 12}" y="{y + 13}" text-anchor="end">{escape(label)}</text>')
        body.append(f'<text class="quiet" x="{left - 12}" y="{y + 28}" '
                    f'text-anchor="end">{escape(peer)}</text>')
        body.append(f'<rect class="ours" x="{left}" y="{y + 4}" width="{length:.1f}" '
                    f'height="{BAR + 4}" rx="2"/>')
        body.append(f'<text x="{left + length + 8:.1f}" y="{y + 19}">{ratio:.3g}×</text>')
    return _document(bottom + 34, title, subtitle, body)


def times_taken(title, subtitle, groups):
    """Groups of a label and bars, which are of name, nanoseconds and whether they are ours; each
    group has a scale of its own, so that what takes long does not flatten the rest."""
    body = []
    y = TOP
    room = WIDTH - LEFT - RIGHT
    for label, bars in groups:
        longest = max(time for _, time, _ in bars)
        body.append(f'<text class="quiet" x="20" y="{y + 12}">{escape(label)}</text>')
        y += 20
        for name, time, is_ours in bars:
            length = max(1.0, time / longest * room)
            style = "ours" if is_ours else "peer"
            body.append(f'<text x="{LEFT - 10}" y="{y + 13}" text-anchor="end">{escape(name)}</text>')
            body.append(f'<rect class="{style}" x="{LEFT}" y="{y}" width="{length:.1f}" '
                        f'height="{BAR}" rx="2"/>')
            body.append(f'<text x="{LEFT + length + 8:.1f}" y="{y + 13}">{time_text(time)}</text>')
            y += ROW - 4
        y += 10
    return _document(y + 6, title, subtitle, body)


def time_text(nanoseconds):
    for unit, size in (("s", 1e9), ("ms", 1e6), ("µs", 1e3)):
        if nanoseconds >= size:
            return f"{nanoseconds / size:.3g} {unit}"
    return f"{nanoseconds:.3g} ns"
