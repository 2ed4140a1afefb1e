"""The report that is kept of a set: one HTML file, with its pictures in it."""

import base64
import html
from dataclasses import dataclass, field
from typing import List, Tuple


@dataclass
class Result:
    """What came of one check."""

    name: str
    title: str
    outcome: str = "passed"  # or "failed", "skipped"
    seconds: float = 0.0
    notes: List[Tuple[str, str]] = field(default_factory=list)
    pictures: List[Tuple[str, bytes]] = field(default_factory=list)  # what is to be seen; a PNG file
    reasons: List[Tuple[str, str]] = field(default_factory=list)  # in a line; with all that is known


STYLE = """
:root { --ink: #1c2430; --soft: #667085; --line: #dfe3ea; --back: #f5f6f8; --good: #1a7f45; --bad: #c0271d; }
* { box-sizing: border-box }
body { margin: 0; background: var(--back); color: var(--ink); font: 15px/1.45 system-ui, "DejaVu Sans", sans-serif }
header { color: #fff; padding: 22px 32px; background: var(--good) }
header.failed { background: var(--bad) }
h1 { margin: 0; font-size: 34px; letter-spacing: .04em }
header p { margin: 4px 0 0; opacity: .92 }
main { max-width: 1080px; margin: 22px auto; padding: 0 20px }
details { background: #fff; border: 1px solid var(--line); border-left: 6px solid var(--good); border-radius: 5px;
  margin: 7px 0 }
details.failed { border-left-color: var(--bad) }
details.skipped { border-left-color: #aab2bf; color: var(--soft) }
summary { display: grid; grid-template-columns: 2.2em 5.2em minmax(12em, 1fr) 1.3fr 5em; gap: 8px; padding: 9px 14px;
  cursor: pointer; align-items: baseline; list-style: none }
summary::-webkit-details-marker { display: none }
summary b { color: var(--good) }
.failed summary b { color: var(--bad) }
.skipped summary b { color: var(--soft) }
.seconds { grid-column: 5; grid-row: 1 }
.number, .seconds { color: var(--soft); text-align: right; font-variant-numeric: tabular-nums }
.gist { color: var(--soft); overflow: hidden; text-overflow: ellipsis; white-space: nowrap }
.failed .gist, [open] .gist { white-space: normal }
.failed .gist { color: var(--bad) }
.body { padding: 2px 16px 14px 60px }
table { border-collapse: collapse; margin: 4px 0 }
td { padding: 1px 18px 1px 0; vertical-align: top; overflow-wrap: anywhere }
td:first-child { color: var(--soft) }
pre { background: var(--back); padding: 10px 12px; overflow-x: auto; font-size: 12.5px; border-radius: 4px }
summary img { width: 224px; border: 1px solid #98a1b0; vertical-align: top; margin: 2px 8px 2px 0; cursor: zoom-in }
[open] > summary img { width: 100%; cursor: zoom-out }
[open] > summary .gist:has(img) { grid-column: 3 / 5; grid-row: 2 }
"""


def page(results, began, station):
    """The report as a text.

    :param began: when the first check began
    :param station: the machine that has checked
    """
    failed = [each for each in results if each.outcome == "failed"]
    passed = [each for each in results if each.outcome == "passed"]
    notes = dict(note for each in results if each.name == "test_versions" for note in each.notes)
    good = len(passed) == len(results)
    facts = [f"{len(passed)} of {len(results)} checks passed", *(f"{name} {value}" for name, value in notes.items()),
             f"{sum(each.seconds for each in results):.1f} s", f"{began:%Y-%m-%d %H:%M:%S %z}", f"on {station}"]
    verdict = "PASSED" if good else "FAILED"
    at_fault = "" if good or not failed else f"<p><strong>{escape(', '.join(each.title for each in failed))}</strong></p>"
    return f"""<!DOCTYPE html>
<html lang="en"><head><meta charset="utf-8"><meta name="viewport" content="width=device-width">
<title>{verdict}: {escape(" ".join(notes.values()))}</title><style>{STYLE}</style></head><body>
<header class="{'passed' if good else 'failed'}"><h1>{verdict}</h1>{at_fault}<p>{escape(" · ".join(facts))}</p></header>
<main>
{"".join(_check(number, result) for number, result in enumerate(results, 1))}</main></body></html>
"""


def escape(text):
    return html.escape(str(text))


def _check(number, result):
    gist = result.reasons[0][0] if result.reasons else ", ".join(f"{name} {value}" for name, value in result.notes)
    word = {"passed": "ok", "failed": "FAILED", "skipped": "not run"}[result.outcome]
    seen = "".join(f"<tr><td>{escape(name)}</td><td>{escape(value)}</td></tr>" for name, value in result.notes)
    shown = "".join(f'<img alt="{escape(what)}" title="{escape(what)}" '
                    f'src="data:image/png;base64,{base64.b64encode(png).decode()}">' for what, png in result.pictures)
    whole = "".join(f"<pre>{escape(text)}</pre>" for _, text in result.reasons if text)
    opened = " open" if result.outcome == "failed" else ""
    return (f'<details class="{result.outcome}"{opened}><summary><span class="number">{number}</span><b>{word}</b>'
            f'<span>{escape(result.title)}</span><span class="gist">{shown}{escape(gist)}</span>'
            f'<span class="seconds">{result.seconds:.2f} s</span></summary>'
            f'<div class="body"><table>{seen}</table>{whole}</div></details>\n')
