"""The files that workloads work on, each made once in the folder of the run."""

import os
import pathlib
import shutil
import subprocess

from .row import PROGRAM

IMAGE_TYPES = ("png", "tif", "bmp", "gif", "jp2", "psd", "sgi", "tga", "pcx", "pct", "qti", "pnt")
SOUND_ENCODERS = {  # file: ffmpeg's options
    "a.aif": "-c:a pcm_s16be", "a.aifc": "-f aiff -c:a pcm_s16le", "a.au": "-c:a pcm_s16be",
    "a.caf": "-c:a pcm_s16be", "a.mp3": "-c:a libmp3lame -b:a 128k", "a.m4a": "-c:a aac -b:a 128k",
    "alac.m4a": "-c:a alac", "a.flac": "-c:a flac", "a.ogg": "-c:a libvorbis -q:a 5",
    "a.opus": "-c:a libopus -b:a 96k", "a.mov": "-c:a pcm_s16le", "ima.wav": "-c:a adpcm_ima_wav",
    "ulaw.wav": "-c:a pcm_mulaw"}


def command(folder, *words):
    subprocess.run(words, cwd=folder, check=True, stdout=subprocess.DEVNULL)


def photo(folder):
    """A JPEG of 12 megapixels, with EXIF entries."""
    if not (folder / "photo.jpg").exists():
        command(folder, "convert", "-size", "4000x3000", "plasma:fractal", "-quality", "90", "photo.jpg")
        command(folder, "exiftool", "-q", "-overwrite_original", "-JFIF:all=", "-Make=Maker", "-Model=One",
                "-FNumber=4", "-ExposureTime=1/250", "-DateTimeOriginal=2004:05:06 07:08:09", "-IPTC:Headline=Plasma",
                "-IPTC:City=Basel", "photo.jpg")


def typed_photos(folder):
    """The same picture in all other types."""
    photo(folder)
    for extension in IMAGE_TYPES:
        if (folder / f"photo.{extension}").exists():
            continue
        if extension in ("qti", "pnt"):
            image_type = "qtif" if extension == "qti" else "PNTG"
            command(folder, PROGRAM, "eval", "--drive", "C:=.",
                    f'Media_ExportField(Media_ConvertImage("/C:/photo.jpg"; "{image_type}"); '
                    f'"/C:/photo.{extension}"; 1)')
        else:
            command(folder, "convert", "photo.jpg", f"photo.{extension}")


def wave(folder, name, seconds, sound):
    if not (folder / name).exists():
        command(folder, "sox", "-n", "-r", "44100", "-c", "2", "-b", "16", name, "synth", str(seconds),
                *sound.split(), "vol", "0.4")


def waves(folder):
    """Two WAVEs of 10 minutes and one of 2."""
    wave(folder, "a.wav", 600, "pinknoise")
    wave(folder, "b.wav", 600, "sine 440 sine 550")
    wave(folder, "short.wav", 120, "pinknoise")
    (folder / "list.txt").write_text("file a.wav\nfile b.wav\n")


def long_wave(folder):
    """A WAVE of an hour, 635 MB."""
    wave(folder, "hour.wav", 3600, "sine 440 sine 550")


def encoded_sounds(folder):
    """Ten minutes of sound in each format."""
    waves(folder)
    for name, options in SOUND_ENCODERS.items():
        if not (folder / name).exists():
            command(folder, "ffmpeg", "-v", "error", "-nostdin", "-i", "a.wav", *options.split(), name)


def tagged(folder):
    """A tagged MP3 of 4 MB three times, and a short one 300 times."""
    if (folder / "tags300.txt").exists():
        return
    for name, seconds in (("tagged.mp3", 240), ("tagged-10s.mp3", 10), ("tagged-short.mp3", 1)):
        wave(folder, f"{name}.wav", seconds, "pinknoise")
        command(folder, "lame", "--quiet", "--add-id3v2", "--tt", "Title", "--ta", "Artist", "--tl", "Album",
                "--ty", "2004", "--tg", "17", "--tc", "Comment", f"{name}.wav", name)
    for copy in ("ours.mp3", "peer.mp3"):
        shutil.copy(folder / "tagged.mp3", folder / copy)
    names = [f"short{number}.mp3" for number in range(300)]
    for name in names:
        shutil.copy(folder / "tagged-short.mp3", folder / name)
    (folder / "tags300.txt").write_text("".join(f'Media_GetMetadata("/C:/{name}")\n' for name in names))


def tree(folder):
    """20,000 small files in 200 folders, and 100,000 empty ones in one."""
    if (folder / "tree").exists():
        return
    for number in range(200):
        (folder / "tree" / f"{number:03}").mkdir(parents=True)
        for file in range(100):
            (folder / "tree" / f"{number:03}" / f"file {file}.txt").write_bytes(b"x" * (file * 20))
    (folder / "many").mkdir()
    for file in range(100_000):
        (folder / "many" / f"file {file}.txt").touch()


def large_file(gibibytes):
    def make(folder):
        name = folder / f"{gibibytes}g.bin"
        if not name.exists():
            block = os.urandom(1 << 20)
            with open(name, "wb") as file:
                for _ in range(gibibytes * 1024):
                    file.write(block)
    return make


def new_database(path, table):
    """A shell command for a database with one table."""
    return f"{PROGRAM} db create {path} && {PROGRAM} db table {path} records {table}"


def records(folder):
    """10,000 files of 1 to 30 kB, the same as statements for sqlite3, and databases that have them."""
    if (folder / "records").exists():
        return
    statements = ["PRAGMA journal_mode=WAL; PRAGMA synchronous=NORMAL;",
                  "CREATE TABLE files (id INTEGER PRIMARY KEY, name TEXT, data BLOB); BEGIN;"]
    for number in range(10_000):
        name = f"records/{number // 100:03}/file {number}.bin"
        (folder / name).parent.mkdir(parents=True, exist_ok=True)
        (folder / name).write_bytes(os.urandom(1000 + number * 7919 % 29_000))
        statements.append(f"INSERT INTO files (name, data) VALUES ('{name}', readfile('{name}'));")
    (folder / "import.sql").write_text("\n".join(statements + ["COMMIT;"]) + "\n")
    command(folder, "sh", "-ec", new_database("full.corvane", "name:text size:number data:container") + f"""
        {PROGRAM} import full.corvane records data records --name-field name
        {new_database("tenth.corvane", "name:text size:number data:container")}
        {PROGRAM} import tenth.corvane records data records/00* --name-field name
        sqlite3 full.db <import.sql""")


def photographs(folder):
    """A database with 500 photographs of 2 megapixels, five different ones."""
    target = folder / "photographs"
    if target.exists():
        return
    target.mkdir()
    for number in range(500):
        photograph = target / f"{number}.jpg"
        if number < 5:
            command(folder, "convert", "-seed", str(number), "-size", "1600x1200", "plasma:fractal", str(photograph))
        else:
            shutil.copy(target / f"{number % 5}.jpg", photograph)
    command(folder, "sh", "-ec", new_database("photographs.corvane", "picture:container copy:container") + f"""
        {PROGRAM} import photographs.corvane records picture photographs""")


def lines(name, count, calculations):
    """A file of `count` calculations, those given in turn."""
    def make(folder):
        text = "".join(calculations[number % len(calculations)] + "\n" for number in range(count))
        pathlib.Path(folder, name).write_text(text)
    return make
