"""What came of each row on each desktop, as a table in Markdown."""


def table(columns):
    rows = list(next(iter(columns.values())))
    lines = ["| | " + " | ".join(columns) + " |", "|" + "---|" * (len(columns) + 1)]
    for row in rows:
        lines.append(f"| {row} | " + " | ".join(cells.get(row, "-") for cells in columns.values()) + " |")
    return "\n".join(lines) + "\n"
