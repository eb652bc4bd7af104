"""Sessions of the program over a small world of real files of all kinds, for the tools that try it for long."""

import json
import os
import re
import subprocess

WORLD = r"""
set -e
mkdir -p media/folder work tmp
cd media
convert -seed 1 -size 160x120 plasma:red-blue photo.jpg
convert photo.jpg -set Title Plasma photo.png
for type in gif bmp tga sgi pcx psd jp2 pict; do convert photo.jpg "photo.$type"; done
convert photo.jpg photo.png -compress lzw pages.tif
head -c 900 photo.png >broken.png
head -c 700 photo.jpg >broken.jpg
sox -n -r 44100 -c 2 -b 16 tone.wav synth 0.2 sine 440 vol 0.5
sox tone.wav -b 24 tone.aiff
sox tone.wav tone.flac
ffmpeg -v error -i tone.wav tone.m4a
lame --quiet --tt Tone tone.wav tone.mp3
head -c 3000 tone.wav >broken.wav
head -c 900 tone.mp3 >broken.mp3
printf 'some text' >note.txt
"""


def make_world(folder):
    """Writes the files: media/ and the empty folders work/ and tmp/."""
    subprocess.run(["sh", "-c", WORLD], cwd=folder, check=True)


class Session:
    """The program with the folder as its drive C:, answering each calculation with one line. Its dialogs are all
    answered with "ok", as many as are stated; what it says besides goes to `errors`."""

    def __init__(self, program, folder, dialogs, errors=subprocess.DEVNULL):
        environment = os.environ | {"TMPDIR": str(folder / "tmp"), "SDL_AUDIODRIVER": "dummy"}
        self.temporary = folder / "tmp"
        self.process = subprocess.Popen(
            [program, "eval", "--json", "--ui", "none", *["--answer", "ok"] * dialogs, "--drive", f"C:={folder}", "-"],
            cwd=folder, env=environment, text=True, stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=errors)

    def send(self, calls):
        """Asks for the calculations, one a line; their answers are to be read in time."""
        self.process.stdin.write("\n".join(calls) + "\n")
        self.process.stdin.flush()

    def answer(self):
        """The next answer, or None where the program ended instead."""
        line = self.process.stdout.readline()
        if line == "":
            return None
        answer = json.loads(line)
        # A sound that is a result stays until whoever asked for it deletes it, with its reference movie.
        for name in re.findall(r"/(tmp\w+\.tmp)_ref\.mov$", answer["value"]):
            for file in self.temporary.glob(name + "*"):
                file.unlink()
        return answer

    def end(self):
        """Ends the program and answers its exit status."""
        self.process.stdin.close()
        return self.process.wait()
