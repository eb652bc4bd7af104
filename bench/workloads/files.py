"""Files and folders, and files through containers."""

from . import media
from .row import Row, START, call

TREE_LISTS = " & ".join(f'Media_ListFolder("/C:/tree/{number:03}"; 1)' for number in range(200))
HIDDEN = "each entry's hidden bit of file servers (an extended attribute) is one system call, which ls does without"


def through_container(name):
    return call(f'Let($c = Media_InsertFile("/C:/{name}"; 0; 0); Media_ExportField($c; "/C:/temporary/copy"; 1))')


TWICE = "the bytes are read into the container and written from it; cp lets the kernel copy them"
ROWS = [
    Row("copy-tree", "a tree of 20,000 small files copied", call('Media_CopyItem("/C:/tree"; "/C:/temporary"; 0)'),
        {"cp": "cp -a tree temporary/"}, make=media.tree, why="both wait for the disk, whose times vary"),
    Row("delete-tree", "the same deleted", call('Media_DeleteItem("/C:/temporary/tree"; 1)'),
        {"rm": "rm -rf temporary/tree"}, make=media.tree, before=["cp", "-a", "tree", "temporary/"],
        why="both wait for the disk, whose times vary"),
    Row("list-tree", "200 folders of 100 names listed", call(TREE_LISTS), {"ls": "ls -U -R tree"}, make=media.tree,
        why=HIDDEN),
    Row("list-tree-named", "the same, hidden by name only", [*call(TREE_LISTS), "--hidden", "named"],
        {"ls": "ls -U -R tree"}, make=media.tree, why=START),
    Row("list-many", "a folder of 100,000 names listed", call('Media_ListFolder("/C:/many"; 1)'),
        {"ls": "ls -U many"}, make=media.tree, why=START + ", and the first 1,000 entries' hidden bit"),
    Row("export-1g", "1 GiB into a container and out to a file", through_container("1g.bin"),
        {"cp": "cp 1g.bin temporary/copy"}, make=media.large_file(1), why=TWICE),
    Row("export-2g", "2 GiB into a container and out to a file", through_container("2g.bin"),
        {"cp": "cp 2g.bin temporary/copy"}, make=media.large_file(2), why=TWICE),
]
