"""The table and the picture of a run: what was measured at each rest, what the judge says of it, and what was done."""

from xml.sax.saxutils import escape

from judge import WARM_UP, judge
from measures import SERIES

WIDTH, HEIGHT, LEFT, TOP, GAP = 470, 120, 70, 34, 46
COLUMNS = 2


def judged(rests):
    """The verdict on each series that was measured at all."""
    found = {}
    for name, (_, least) in SERIES.items():
        kept = [(sample["hours"], sample[name]) for sample in rests if name in sample]
        if kept:
            found[name] = judge([hours for hours, _ in kept], [value for _, value in kept], least)
    return found


def word(verdict):
    if not verdict.judged:
        return "too short to say"
    return "**grows**" if verdict.grows else "stands"


def number(value):
    return f"{value:.0f}" if abs(value) >= 100 else f"{value:.2f}".rstrip("0").rstrip(".")


def table(head, rests, verdicts, acts, faults):
    """`acts` holds by name how often each was done and how long it took in all; `faults` are lines."""
    lines = [f"# {head}", "",
             f"{len(rests)} rests; behind the warm-up (the first {WARM_UP:.0%}) the slope of Theil and Sen, with its error.",
             "", "| at rest | unit | first | last | least | most | slope an hour | low | high | later half | |",
             "|---|---|---|---|---|---|---|---|---|---|---|"]
    for name, verdict in verdicts.items():
        values = [sample[name] for sample in rests if name in sample]
        cells = [number(each) for each in (values[0], values[-1], min(values), max(values), verdict.slope, verdict.low,
                                           verdict.high, verdict.later)]
        lines.append(f"| {name} | {SERIES[name][0]} | " + " | ".join(cells) + f" | {word(verdict)} |")
    lines += ["", "| act | done | seconds each |", "|---|---|---|"]
    lines += [f"| {name} | {count} | {seconds / count:.1f} |" for name, (count, seconds) in sorted(acts.items())]
    lines += ["", f"{sum(count for count, _ in acts.values())} acts, {len(faults)} faults."]
    lines += [f"- {fault}" for fault in faults]
    return "\n".join(lines) + "\n"


def line(points, colour):
    return f'<polyline fill="none" stroke="{colour}" points="' + " ".join(f"{x:.1f},{y:.1f}" for x, y in points) + '"/>'


def chart(name, place, span, rests, busy, verdict):
    """The rests over the hours, the busy moments pale behind them, and the fitted slope if it grows."""
    values = [(sample["hours"], sample[name]) for sample in rests if name in sample]
    pale = [(sample["hours"], sample[name]) for sample in busy if name in sample]
    low = min(value for _, value in values + pale)
    high = max(value for _, value in values + pale)
    room = (high - low) or max(abs(high), 1)
    x, y = place

    def at(hours, value):
        return x + WIDTH * hours / span, y + HEIGHT * (1 - (value - low) / room * 0.9 - 0.05)
    colour = "#c02020" if verdict.grows else "#205080"
    parts = [f'<rect x="{x}" y="{y}" width="{WIDTH}" height="{HEIGHT}" fill="#fafafa" stroke="#c8c8c8"/>',
             f'<rect x="{x}" y="{y}" width="{WIDTH * WARM_UP:.1f}" height="{HEIGHT}" fill="#eeeeee"/>',
             f'<text x="{x}" y="{y - 6}">{escape(name)} {escape(SERIES[name][0])}: {escape(word(verdict).strip("*"))}, '
             f'{number(verdict.slope)} an hour</text>',
             f'<text x="{x - 6}" y="{y + 10}" text-anchor="end">{number(high)}</text>',
             f'<text x="{x - 6}" y="{y + HEIGHT}" text-anchor="end">{number(low)}</text>']
    if pale:
        parts.append(line([at(*each) for each in pale], "#d0d8e0"))
    parts.append(line([at(*each) for each in values], colour))
    return parts


def picture(head, rests, busy, verdicts):
    span = max(sample["hours"] for sample in rests) or 1
    rows = -(-len(verdicts) // COLUMNS)
    width, height = COLUMNS * (LEFT + WIDTH) + 20, TOP + rows * (HEIGHT + GAP) + 10
    parts = [f'<svg xmlns="http://www.w3.org/2000/svg" width="{width}" height="{height}" font-family="sans-serif" '
             'font-size="11"><rect width="100%" height="100%" fill="white"/>',
             f'<text x="10" y="16" font-size="13">{escape(head)}; {span:.2f} hours</text>']
    for index, (name, verdict) in enumerate(verdicts.items()):
        place = LEFT + index % COLUMNS * (LEFT + WIDTH), TOP + 20 + index // COLUMNS * (HEIGHT + GAP)
        parts += chart(name, place, span, rests, busy, verdict)
    return "\n".join(parts) + "\n</svg>\n"
