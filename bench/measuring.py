"""What compare and charts share: running commands, their times and their peak memory."""

import datetime
import os
import re
import shutil
import statistics
import subprocess
import sys
import tempfile
import time

from workloads.row import LAUNCHER

os.environ["PATH"] = "/usr/bin:/bin:" + os.environ.get("PATH", "")


def require(tools):
    """Builds what is due, and ends the script where something is missing."""
    if subprocess.run([LAUNCHER, "eval", "1"], stdout=subprocess.DEVNULL, check=False).returncode != 0:
        sys.exit("./corvane does not start")
    for tool in tools:
        if not shutil.which(tool):
            sys.exit(f"{tool} is missing; packages.txt lists what benchmarks need")


class Side:
    """One command of a row, and what was measured."""

    def __init__(self, tool, command, source=""):
        self.tool = tool
        self.command = command
        self.source = source
        self.seconds = []
        self.peak = 0.0  # MiB

    def median(self):
        return statistics.median(self.seconds)

    def run(self, folder, before, command=None):
        """One run, in a temporary folder of its own."""
        temporary = folder / "temporary"
        shutil.rmtree(temporary, ignore_errors=True)
        temporary.mkdir()
        if before:
            subprocess.run(before, cwd=folder, check=True)
        with open(folder / self.source if self.source else os.devnull, "rb") as source:
            start = time.perf_counter()
            status = subprocess.call(command or self.command, cwd=folder, stdin=source, stdout=subprocess.DEVNULL,
                                     stderr=subprocess.DEVNULL, env={**os.environ, "TMPDIR": str(temporary)})
            self.seconds.append(time.perf_counter() - start)
        if status != 0:
            sys.exit(f"{' '.join(self.command)} ended with status {status}")

    def measure_peak(self, folder, before):
        """Of a process that this script starts itself the system would count the script's own memory, which the
        process has until it becomes the command: time(1) stands between."""
        with tempfile.NamedTemporaryFile(mode="r") as report:
            self.run(folder, before, ["/usr/bin/time", "-o", report.name, "-f", "%M", *self.command])
            self.peak = int(report.read()) / 1024


def time_text(seconds):
    return f"{seconds:.2f} s" if seconds >= 1 else f"{seconds * 1000:.0f} ms" if seconds >= 0.1 \
        else f"{seconds * 1000:.1f} ms"


def machine():
    with open("/proc/cpuinfo", encoding="utf-8") as file:
        model = re.search(r"model name\s*: (.*)", file.read()).group(1)
    return f"Machine: {os.cpu_count()} processors ({model}), Debian 12; medians of whole processes, in turn."


def when_text(load):
    """The day, and whether others used the machine."""
    today = datetime.date.today()
    busy = f", while others kept {load:.1f} of {os.cpu_count()} processors busy" if load > 0.3 else ""
    return f"{today.day} {today:%B %Y}{busy}"


def put(page, name, text):
    """Replaces what stands between the marks of `name` in the page."""
    begin, end = f"<!-- bench: {name} -->", "<!-- end -->"
    before, mark, after = page.read_text(encoding="utf-8").partition(begin)
    if not mark:
        sys.exit(f"{page} has no mark {begin}")
    page.write_text(f"{before}{begin}\n\n{text}\n\n{end}{after.partition(end)[2]}", encoding="utf-8")


def other_load():
    """How many processors others keep busy now."""
    def busy():
        with open("/proc/stat", encoding="ascii") as file:
            fields = [int(field) for field in file.readline().split()[1:9]]
        return sum(fields) - fields[3] - fields[4], sum(fields)
    first = busy()
    time.sleep(2)
    second = busy()
    return os.cpu_count() * (second[0] - first[0]) / max(1, second[1] - first[1])
