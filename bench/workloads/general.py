"""Start, calls, paths, and what stays in memory."""

from . import media
from .row import LAUNCHER, PROGRAM, Row, START, shell

MIXED = ['Media_Version("long")', 'Media_Get("volume")', 'Media_GetImageInfo("/C:/nothing.jpg")',
         'Media_ExtractInfo("a: 1¶b: 2"; "b")', '1 + 1 / 3', 'Media_Set("lmworkaround"; 0)']
PATHS = ['Media_GetPath("/C:/usr/bin/env"; 1)', 'Media_GetName("usr/bin/../bin/./env")',
         'Media_GetName("filewin:/C:/usr/nothing/none.txt")']


def mixed(folder):
    media.lines("mixed1000.txt", 1_000, MIXED)(folder)
    media.lines("mixed100000.txt", 100_000, MIXED)(folder)


ROWS = [
    Row("launcher", "`./corvane eval 1`, launcher included", [LAUNCHER, "eval", "1"], {"sox": "sox --version"},
        why=START + " and the launcher's look at the age of the sources, 2 ms"),
    Row("start", "the program alone", [PROGRAM, "eval", "1"], {"sox": "sox --version"}, why=START),
    Row("calls", "200,000 calls of `Media_Version` from standard input", [PROGRAM, "eval"],
        make=media.lines("version.txt", 200_000, ['Media_Version("short")']), source="version.txt", calls=200_000),
    Row("paths", "100,000 paths: absolute, relative, missing", [PROGRAM, "eval"],
        make=media.lines("paths.txt", 100_000, PATHS), source="paths.txt", calls=100_000),
    Row("memory", "peak of 100,000 mixed calls, against 1,000", [PROGRAM, "eval"],
        {"1,000 calls": shell(f"{PROGRAM} eval <mixed1000.txt")}, make=mixed, source="mixed100000.txt",
        calls=100_000, memory=True, why="the allocator's reserve; it doesn't grow on"),
]
