"""Records of a database file, against the plain shell of SQLite; two workers, against one."""

from . import media
from .row import PROGRAM, Row

CONVERT = [PROGRAM, "update", "temporary/photographs.corvane", "records", 'copy=Media_ConvertImage(picture; "PNGf")',
           "--jobs"]
MEASURE = ["records", 'size=Media_ExtractInfo("a: 1"; "a") + Length(name)']
LISTING = """SELECT id, name, size, (SELECT group_concat(type || ' ' || length(bytes), ', ') FROM corvane_streams
             WHERE field = 3 AND record = records.id) FROM records"""
ROWS = [
    Row("import", "10,000 files imported",
        [PROGRAM, "import", "temporary/ours.corvane", "records", "data", "records", "--name-field", "name"],
        {"sqlite3": ["sh", "-c", "sqlite3 temporary/peer.db <import.sql"]}, make=media.records,
        before=["sh", "-c", media.new_database("temporary/ours.corvane", "name:text data:container")],
        why="two rows a file, the record and its stream"),
    Row("show", "10,000 records listed", [PROGRAM, "show", "full.corvane", "records"],
        {"sqlite3": ["sqlite3", "full.corvane", LISTING]}, make=media.records, why="the plug-in is started too"),
    Row("update-memory", "peak of an update of 10,000 records, against 1,000",
        [PROGRAM, "update", "temporary/full.corvane", *MEASURE],
        {"1,000 records": [PROGRAM, "update", "temporary/tenth.corvane", *MEASURE]}, make=media.records,
        before=["sh", "-c", "cp full.corvane tenth.corvane temporary/"], memory=True, calls=10_000,
        why="the allocator's reserve; it doesn't grow on"),
    Row("jobs", "500 photographs converted by two processes, against one", [*CONVERT, "2"], {"one": [*CONVERT, "1"]},
        make=media.photographs, before=["cp", "photographs.corvane", "temporary/"], once=True),
]
