"""Sounds: facts, editing, conversion, drawing, tags."""

from . import media
from .row import PROGRAM, Row, START, call, shell, sound_call

FFMPEG = "ffmpeg -v error -nostdin -y "


def facts():
    for name in ("a.wav", *media.SOUND_ENCODERS):
        peers = {"ffprobe": f"ffprobe -v error -show_format -show_streams {name}"}
        if not name.endswith((".m4a", ".mov", ".opus")):
            peers["soxi"] = f"soxi {name}"
        kind = "alac" if name.startswith("alac") else name.split(".")[1] if name[1] == "." else name.replace(".", " ")
        yield Row(f"sound-info-{kind.replace(' ', '-')}", f"facts of a 10-minute {kind}",
                  sound_call(f'Media_GetSoundInfo("/C:/{name}")'), peers, make=media.encoded_sounds,
                  why=START + ", and libsndfile with its seven codec libraries, 0.8 ms")


def edit(name, what, calculation, ffmpeg=None, sox=None, make=media.waves, why=START):
    peers = {}
    if ffmpeg:
        peers["ffmpeg"] = FFMPEG + ffmpeg + " temporary/out.wav"
    if sox:
        peers["sox"] = "sox " + sox
    return Row(name, what, sound_call(calculation), peers, make=make, why=why)


EDITS = [
    edit("amplify", "louder, with clipping", 'Media_Amplify("/C:/a.wav"; 1.5)', "-i a.wav -af volume=1.5",
         "-v 1.5 a.wav temporary/out.wav"),
    edit("normalize", "normalised", 'Media_Normalize("/C:/a.wav")', sox="--norm a.wav temporary/out.wav"),
    edit("mix", "two mixed", 'Media_MixSounds("/C:/a.wav"; "/C:/b.wav")',
         "-i a.wav -i b.wav -filter_complex amix", "-m a.wav b.wav temporary/out.wav"),
    edit("extract", "a minute from the middle", 'Media_ExtractSound("/C:/a.wav"; "0:4:0"; "0:5:0")',
         "-ss 240 -t 60 -i a.wav -c copy", "a.wav temporary/out.wav trim 240 60"),
    edit("append", "two joined", 'Media_AppendSound("/C:/a.wav"; "/C:/b.wav")',
         "-f concat -safe 0 -i list.txt -c copy", "a.wav b.wav temporary/out.wav"),
    edit("fade", "faded out over all of it", 'Media_FadeSound("/C:/a.wav"; "0:0:0"; "0:10:0"; 1; 1)',
         "-i a.wav -af afade=t=out:st=0:d=600", "a.wav temporary/out.wav fade t 0 600 600"),
    edit("from-mp3", "an MP3 as WAVE", 'Media_ExtractSound("/C:/a.mp3"; "0:0:0"; "0:11:0")', "-i a.mp3",
         "a.mp3 temporary/out.wav", make=media.encoded_sounds),
    edit("from-m4a", "an AAC file as WAVE", 'Media_ExtractSound("/C:/a.m4a"; "0:0:0"; "0:11:0")', "-i a.m4a",
         make=media.encoded_sounds),
    edit("amplify-hour", "an hour (606 MiB) louder", 'Media_Amplify("/C:/hour.wav"; 1.5)',
         "-i hour.wav -af volume=1.5", make=media.long_wave),
    Row("waveform", "its waveform drawn, 1,800 × 300",
        call('Media_DrawWaveform("/C:/a.wav"; 1; 1800; 300; "0:0:0"; "0:0:0")'),
        {"ffmpeg": FFMPEG + "-i a.wav -filter_complex showwavespic=s=1800x300 -frames:v 1 temporary/wave.png"},
        make=media.waves),
]


def conversion(name, code, settings, encoder, extension, source="a.wav"):
    minutes = 10 if source == "a.wav" else 2
    return Row(f"sound-to-{name}", f"{minutes} minutes to {name}",
               [*call(answers=[f"set:{settings}"]),
                f'Media_ConvertSound("/C:/{source}"; "/C:/temporary/ours.{extension}"; "{code}")'],
               {"ffmpeg": f"{FFMPEG}-i {source} -c:a {encoder} temporary/peer.{extension}"}, make=media.waves,
               why="nearly all of it is the same encoder's work")


CONVERSIONS = [
    conversion("wave", "WAVE", "samples=int16", "pcm_s16le", "wav"),
    conversion("aiff", "AIFF", "samples=int16", "pcm_s16be", "aif"),
    conversion("aifc", "AIFC", "samples=int16,order=little", "pcm_s16le -f aiff", "aifc"),
    conversion("au", "ULAW", "samples=ulaw", "pcm_mulaw", "au"),
    conversion("caf", "caff", "samples=int16", "pcm_s16le", "caf"),
    conversion("ima", "ima4", "channels=2", "adpcm_ima_qt -f aiff", "aifc"),
    conversion("mov", "MooV", "samples=int16", "pcm_s16le", "mov"),
    conversion("flac", "FLAC", "samples=int16", "flac", "flac"),
    conversion("alac", "alac", "samples=int16", "alac", "m4a"),
    conversion("aac", "M4A ", "bitrate=128", "aac -b:a 128k", "m4a", "short.wav"),
    conversion("mp3", "MP3 ", "bitrate=128", "libmp3lame -b:a 128k", "mp3", "short.wav"),
    conversion("vorbis", "Ogg ", "quality=5", "libvorbis -q:a 5", "ogg", "short.wav"),
    conversion("opus", "Opus", "bitrate=96", "libopus -b:a 96k", "opus", "short.wav"),
]

SHORTS = " ".join(f"short{number}.mp3" for number in range(300))
WRITE_TAG = call('Media_SetMetadata("/C:/ours.mp3"; "Name"; "New")')


def fresh(name):
    """Puts the file in place as its encoder left it, and at rest on the disk."""
    return shell(f"cp {name} ours.mp3 && cp {name} peer.mp3 && sync -f peer.mp3")


TAGS = [
    Row("tags", "all tags of an MP3", sound_call('Media_GetMetadata("/C:/tagged.mp3")'),
        {"id3v2": "id3v2 -l tagged.mp3", "exiftool": "exiftool tagged.mp3"}, make=media.tagged, why=START),
    Row("tags-300", "all tags of 300 MP3s", [PROGRAM, "eval", "--drive", "C:=."], {"id3v2": f"id3v2 -l {SHORTS}"},
        make=media.tagged, source="tags300.txt"),
    Row("tag-write", "one tag added to a 10-second MP3", WRITE_TAG, {"id3v2": "id3v2 -t New peer.mp3"},
        make=media.tagged, before=fresh("tagged-10s.mp3")),
    Row("tag-write-4m", "one tag added to a 4-minute MP3", WRITE_TAG, {"id3v2": "id3v2 -t New peer.mp3"},
        make=media.tagged, before=fresh("tagged.mp3")),
    Row("tag-again-4m", "the same tag written once more", WRITE_TAG, {"id3v2": "id3v2 -t New peer.mp3"},
        make=media.tagged,
        why="all 4 MB are written anew and replace the old file in one step, so that nothing can be lost; id3v2, which "
            "has left itself room the first time, writes into the old file"),
]
