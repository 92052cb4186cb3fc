"""Rows of the table in docs/performance.md."""


def row(work, against, ours, theirs, unit, most=None, least=None):
    """Prints what two sides cost in a unit; with `least` the ratio is how much less ours does.
    Returns whether the target is missed; without one it can't be."""
    ratio = theirs / ours if least else ours / theirs
    missed = (most is not None and ratio > most) or (least is not None and ratio < least)
    target = f"at most {most:.2f}" if most else f"at least {least:g}" if least else ""
    digits = 2 if isinstance(ours, float) and ours < 1000 else 0
    print(f"| {work} | {against} | {ours:,.{digits}f} {unit} | {theirs:,.{digits}f} {unit} "
          f"| {ratio:.2f} | {target}{' **missed**' if missed else ''} |", flush=True)
    return missed
