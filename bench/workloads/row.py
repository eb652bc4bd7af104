"""A row of bench/compare's table, and the commands that rows are made of."""

import dataclasses
import pathlib
import shlex
import typing

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
LAUNCHER = str(ROOT / "corvane")
PROGRAM = str(ROOT / "build/release/bin/corvane")


@dataclasses.dataclass
class Row:
    """One workload. All commands run in one folder, which holds what `make` made there, with an empty folder
    "temporary" beside."""
    name: str
    what: str
    ours: list
    peers: dict = dataclasses.field(default_factory=dict)  # tool: command; none where nothing compares
    make: typing.Callable = None  # makes the input, if it isn't there yet
    source: str = ""  # our standard input
    before: list = None  # a command before each run, outside the time
    calls: int = 0  # how many calls our command makes, where calls a second tell something
    memory: bool = False  # the ratio is that of the peaks, not of the times
    once: bool = False  # long enough to be measured once
    why: str = ""  # shown where the ratio is above 1

    def peer_commands(self):
        return {tool: command if isinstance(command, list) else shlex.split(command)
                for tool, command in self.peers.items()}


def call(*calculations, answers=()):
    """Our command for calculations over the files of the workload's folder; a failure is a failure of the run."""
    options = [word for answer in answers for word in ("--answer", answer)]
    return [PROGRAM, "eval", "--strict", "--drive", "C:=.", "--database", "file:/C:/x.fp7", *options, *calculations]


def sound_call(calculation):
    """The same for a sound function, which answers nothing when it failed."""
    return call(f'Let(result = {calculation}; If(IsEmpty(result); "$1:no result"; result))')


def shell(command):
    return ["sh", "-c", command]


START = "the program's start"  # why a small call takes longer than a small tool
