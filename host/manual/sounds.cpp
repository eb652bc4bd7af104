#include "host/manual/manual.h"

#include <array>

namespace host {
namespace {

constexpr auto kNames = std::to_array<std::string_view>({"Media_CreateSound",
                                                         "Media_AppendSound",
                                                         "Media_ExtractSound",
                                                         "Media_MixSounds",
                                                         "Media_Amplify",
                                                         "Media_FadeSound",
                                                         "Media_Normalize",
                                                         "Media_DrawWaveform",
                                                         "Media_GetSoundInfo",
                                                         "Media_GetMetadata",
                                                         "Media_SetMetadata",
                                                         "Media_ConvertSound",
                                                         "Media_ListSoundOutputFormats",
                                                         "Media_SoundFormatDialog",
                                                         "Media_PlaySound",
                                                         "Media_PlayPause",
                                                         "Media_StopSound",
                                                         "Media_RecordSoundStart",
                                                         "Media_RecordSoundPause",
                                                         "Media_RecordSoundStop",
                                                         "Media_RecordSoundFormatDialog",
                                                         "Media_InsertQuickTime"});

constexpr auto kPages = std::to_array<ManualPage>({
    {"Media_CreateSound", "A tone, noise or silence, made from nothing.",
     R"(type       sin or sine, saw or sawtooth, square or rectangle, noise, silence or none; in any case
duration   seconds, above 0; without it 1
frequency  a note from C1 to B8 ("A4", "c#5", "Bb3"; B is B flat, H is B natural) or a number of hertz;
           without it A4, 440 Hz)",
     "A container with a sound resource: 8-bit, mono, 44,100 Hz.",
     R"(-50   no such type, no duration or frequency that can be read, a duration of 0 or less or too long
-108  a sound of more than 2 GiB
With a code the result is empty; Media_GetLastError has the message.)",
     R"(Media_CreateSound ( "sine" ; 0.5 ; "c5" ))", R"(container
  snd  22092 bytes)"},
    {"Media_AppendSound", "One sound behind another.",
     R"(container1, container2   sounds: paths of sound or movie files as text, reference texts, or containers
                         with a sound resource or a reference)",
     R"(Text: the reference to a WAVE file in the temporary folder, 16-bit, stereo, 44,100 Hz; through a
reference movie beside it (NAME_ref.mov) while the setting lmworkaround is on.)",
     R"(-1     the temporary folder (TMPDIR, else /tmp) lies outside every drive: --drive T:=/tmp brings it in
-43    the file that a reference names is missing
-50    not two parameters, a path that leads to no file, or a number
-1302  a path leads to a folder
-2010  a container is empty
-2014  the first sound is empty
-2048  a file is no sound
-2114  a container holds no sound
other codes of files and sounds)",
     R"(Media_AppendSound ( "/C:/sounds/intro.mp3" ; "/C:/sounds/talk.wav" ))",
     R"(size:0,0
movie:…
moviewin:…)"},
    {"Media_ExtractSound", "A part of a sound.",
     R"(container   a sound (see Media_AppendSound)
beginTime   H:M:S or H:M:S.F, from the sound's beginning
endTime     the same; an end beyond the sound's is that)",
     R"(Text: the reference to a WAVE file (see Media_AppendSound), or empty. Answers the host 0: a failure is
only in Media_GetLastError.)",
     R"(-50    not three parameters, or one that can't be read
-2014  nothing lies between the times
codes of Media_AppendSound)",
     R"(Media_ExtractSound ( "/C:/sounds/talk.wav" ; "0:1:0" ; "0:1:30.5" ))",
     R"(size:0,0
movie:…
moviewin:…)"},
    {"Media_MixSounds",
     "Two sounds at the same time, each at half its volume; what is longer goes on as it is.",
     R"(container1, container2   sounds (see Media_AppendSound). 16-bit little-endian ones of up to 65,535 Hz,
                         as in WAVE files, are mixed frame for frame, to be played at the rate of the
                         second, and need as many channels, one or two; others are brought to 16-bit
                         stereo at 44,100 Hz first)",
     R"(Text: the reference to a WAVE file (see Media_AppendSound), or empty. Answers the host 0: a failure is
only in Media_GetLastError.)",
     R"(-4     sounds of more than two channels
-50    not two parameters, one is no sound, or the sounds differ in channels
codes of Media_AppendSound)",
     R"(Media_MixSounds ( "/C:/sounds/talk.wav" ; "/C:/sounds/intro.mp3" ))",
     R"(size:0,0
movie:…
moviewin:…)"},
    {"Media_Amplify", "A sound, louder or softer.",
     R"(container   a sound (see Media_AppendSound) of one or two channels; of more, only as many samples are
            changed as one channel has: Media_ConvertSound makes it stereo
factor      what each sample is multiplied by; a negative one turns the wave over
limit       0 to 1: the part of full scale at which samples are clipped; without it 1. -1 normalises, as
            Media_Normalize does, whatever the factor)",
     R"(Text: the reference to a WAVE file (see Media_AppendSound), or empty. Answers the host 0: a failure is
only in Media_GetLastError.)",
     R"(-4     an uncompressed sound of 8 bits
-50    too few parameters, or one that can't be read
codes of Media_AppendSound)",
     R"(Media_Amplify ( "/C:/sounds/talk.wav" ; 1.5 ))", R"(size:0,0
movie:…
moviewin:…)"},
    {"Media_FadeSound", "A sound that fades in, or out.",
     R"(container   a sound (see Media_AppendSound)
startTime   H:M:S or H:M:S.F; with a "-" in front counted back from the end
endTime     the same. Times that are not in order are swapped; a start outside the sound is its beginning,
            an end outside it its end
level       0 to 1: the volume that is faded to or from; outside the fade the sound is as loud as before
inOrOut     true: out, and the result ends where the fade does; false: in, and it begins where the fade does)",
     "Text: the reference to a WAVE file (see Media_AppendSound).",
     R"(-50    not five parameters, one that can't be read, or a fade that takes no time
codes of Media_AppendSound)",
     R"(Media_FadeSound ( "/C:/sounds/talk.wav" ; "-0:0:3" ; "-0:0:0" ; 1 ; 1 ))",
     R"(size:0,0
movie:…
moviewin:…)"},
    {"Media_Normalize", "A sound as loud as it can be without being clipped.",
     "container   a sound (see Media_AppendSound) of one or two channels (see Media_Amplify)",
     R"(Text: the reference to a WAVE file (see Media_AppendSound), or empty. Answers the host 0: a failure is
only in Media_GetLastError.)",
     "codes of Media_Amplify", R"(Media_Normalize ( "/C:/sounds/talk.wav" ))",
     R"(size:0,0
movie:…
moviewin:…)"},
    {"Media_DrawWaveform", "A picture of a sound's waveform, a band for each channel.",
     R"(container   a sound or movie (see Media_AppendSound)
track       the sound track, from 1, and after a "/" the channel: left, right, all or its number from 0
            ("1", "1/left", "2/0"); all without it
width, height
            of the picture in pixels; 20 rows stay white above the bands and below each
startTime, endTime
            H:M:S or H:M:S.F, in either order, and not left out; 0:0:0 for both is the whole track
fgcolor, bgcolor
            of the wave and of the bands: "#" and six hexadecimal digits; without them green on black)",
     R"(A container with a JPEG image. Answers the host 0: a failure is only in Media_GetLastError, and the result
is empty then.)",
     R"(-4     an uncompressed sound of 8 bits
-39    both times are the same, and not 0
-50    a parameter that can't be read, or a height below 20 and 20 for each band
-108   a picture of more than 30,000 pixels either way
-205   no such channel
-2014  the times lie behind the sound's end
-2030  no such sound track
-5246  the start lies behind the track's end
codes of Media_AppendSound)",
     R"(Media_DrawWaveform ( "/C:/sounds/talk.wav" ; "1/left" ; 800 ; 120 ; "0:0:0" ; "0:1:0" ; "#ffffff" ; "#203040" ))",
     R"(container
  JPEG … bytes
  SIZE 4 bytes)"},
    {"Media_GetMetadata", "The tags of an MP3 file, or the text metadata of an image.",
     R"(container        a sound (see Media_AppendSound) in a file whose name ends in mp3, or an image
specificTagOnly  the name of one tag, in any case; of MP3 files only: Name, Album, Artist, Year, Composer, Genre,
                 Track, Disc Number, Album Artist, Copyright, Publisher, Comment, BPM)",
     R"(Text. Of an MP3 file the value of the tag, several joined by "/"; or an information list (see
Media_ExtractInfo) with a line "Name: value" for each tag in the order of the file, line ends, "&" and "#" of
comments as "&#13;", "&#10;", "&#38;", "&#35;". ID3v2 tags are read, of all versions. Of an image the lines of
its text items under IPTC, and its EXIF entries, cut at 199 characters a line and 1,999 in all; empty when it
has none.)",
     R"(-50    not one or two parameters
-208   an MP3 file without tags
-5240  no such tag, or not in this file
With a code the result is empty; Media_GetLastError has the message. What is no MP3 file and no image
gives an error text.)",
     R"(Media_GetMetadata ( "/C:/sounds/intro.mp3" ; "Artist" ))", "Ann"},
    {"Media_SetMetadata", "Sets or removes tags of an MP3 file.",
     R"(containerOrFile                a sound (see Media_AppendSound) in a file whose name ends in mp3
informationListOrTag1, value1  a list, "Name: value" in each line; or a tag's name and its value, as often as
                               needed. An empty value removes the tag, an empty list all tags. Names are those
                               of Media_GetMetadata; in comments "&#13;" stands for a line end)",
     R"(Empty. The file gets an ID3v2 and an ID3v1 tag; all other tags in it, pictures among them, and the sound
stay as they are, byte for byte. The new file replaces the old one in one step: a failure leaves it as it was.
Answers the host 0: a failure is only in Media_GetLastError.)",
     R"(-1     the file's tag is broken
-34    the disk is full
-50    a wrong number of parameters
-61    the file or its folder can't be written to
-208   no MP3 file
-2740  a line without a colon, or with a name that isn't plain ASCII
-5240  no such tag, or one without a text
codes of Media_AppendSound)",
     R"(Media_SetMetadata ( "/C:/sounds/intro.mp3" ; "Artist" ; "Björk" ; "Year" ; "1993" ) &
Media_GetMetadata ( "/C:/sounds/intro.mp3" ))",
     R"(Name: Overture
Artist: Björk
Year: 1993)"},
    {"Media_InsertQuickTime", "A movie, sound or image file as a container that refers to it.",
     "path   the file, as a path or a reference text; without it, and for a number, the user chooses one",
     R"(Text: the reference to the file, with the size of an image. Of a sound it is that of a reference movie
beside the file, NAME_ref.mov, while the setting lmworkaround is on: it takes the place of a file of that name,
and files that differ only in their extension share one. A movie or sound on the network is copied into the
temporary folder first while rfworkaround is on; an alert says so before the first time.)",
     R"(-43    no such file
-50    more than one parameter
-61    a reference movie can't be written
-128   the dialog was cancelled
-2003  neither movie, sound nor image
-10000 the folder for a reference movie is read-only
other codes of files and sounds; with a code the result is empty, and Media_GetLastError has the message)",
     R"(Media_InsertQuickTime ( "/C:/sounds/intro.mp3" ))",
     R"(size:0,0
movie:sounds/intro_ref.mov
moviewin:/C:/sounds/intro_ref.mov)"},
    {"Media_GetSoundInfo",
     "The facts of a sound or of a movie's sounds, from the header alone where it has them.",
     "container   a sound (see Media_AppendSound)",
     R"(Text: an information list (see Media_ExtractInfo) with the lines Format (four characters) and, for each
track, Volume (256 is full), Duration, dates, the same of its media, and for each kind of samples in it Sample
Format (hexadecimal), Number of Channels, Sample Size, Sample Rate and Bit Rate (kbps).)",
     R"(-50    not one parameter, an empty container, or no sound
-2055  a movie without sound
codes of Media_AppendSound
With a code the result is empty; Media_GetLastError has the message.)",
     R"(Media_ExtractInfo ( Media_GetSoundInfo ( "/C:/sounds/talk.wav" ) ; "Track 1/Duration" ))",
     "000:02:00.000"},
    {"Media_ListSoundOutputFormats", "The formats that sounds can be converted into.", "none",
     R"(Text: a line for each format: its code as eight hexadecimal digits, the code as four characters, its
name and a description, with "|" between them.)",
     "none", "Media_ListSoundOutputFormats", "57415645|WAVE|Wave|…"},
    {"Media_SoundFormatDialog", "Asks for the settings of a format, to keep them for later.",
     "sound-output-format   four characters, or eight hexadecimal digits (see Media_ListSoundOutputFormats)",
     R"(Text: the settings as a block for Media_ConvertSound. With --ui none, --answer ok takes the usual settings
and --answer set:KEY=VALUE,… changes some, as far as the format has them:
rate       samples a second
channels   1 or 2, in many formats more
samples    uint8, int8, int16, int24, int32, float32, float64, ulaw or alaw
order      big or little: the order of a sample's bytes
bitrate    kbit/s
quality    0 to 10)",
     R"(-50    not one parameter, or no format's code
-128   cancelled
-2005  no such format
With a code the result is empty; Media_GetLastError has the message.)",
     R"(Media_SoundFormatDialog ( "MP3 " ))", "<hex>…</hex>"},
    {"Media_ConvertSound", "A sound as a file in another format.",
     R"(container    a sound (see Media_AppendSound)
filename     the file to write; one that is there is replaced once the new one is whole. A name without folder
             lies in the database's
soundType    four characters, or eight hexadecimal digits (see Media_ListSoundOutputFormats)
parameters   a block of Media_SoundFormatDialog for this format; without it the person is asked)",
     R"(Text: the reference to the file (see Media_AppendSound), or empty. Answers the host 0: a failure is
only in Media_GetLastError.)",
     R"(-34    the disk is full
-50    too few parameters, one that can't be read, or settings of another format
-61    the file may not be written
-128   cancelled
-1309  more than the format can hold
-2014  a sound without samples, which the format can't hold
-2005  no such format
codes of Media_AppendSound)",
     R"(Let ( $settings = Media_SoundFormatDialog ( "FLAC" ) ;
Media_ConvertSound ( "/C:/sounds/short.wav" ; "/C:/sounds/short.flac" ; "FLAC" ; $settings ) ))",
     R"(size:0,0
movie:…
moviewin:…)"},
    {"Media_PlaySound", "Plays a sound, or the sound of a movie.",
     R"(container       a sound (see Media_AppendSound)
in background   true: the call returns at once, and the sound plays while the host handles messages;
                without it the call returns when the sound has ended, or with Escape or Control and period
start, end      H:M:S or H:M:S.F: what is played of it; in the wrong order they are exchanged
It plays at the volume, tempo and balance that Media_Set has set. docs/sound.md tells of devices.)",
     "Text: $CODE:MESSAGE as of Media_GetLastError, whether it succeeded or not.",
     R"(-50    wrong number of parameters, an empty container, or one that can't be read
-128   stopped by the keys
-200   there is no sound output
-2014  nothing lies between the times
codes of Media_AppendSound)",
     R"(Media_PlaySound ( "/C:/sounds/talk.wav" ; True ; "0:0:10" ))", "$0:Media_PlaySound: No error."},
    {"Media_PlayPause", "Pauses the sounds in the background, or lets them go on where they stopped.",
     "number   0, or nothing: all of them; they are numbered from 1 in the order of starting",
     "Text: $CODE:MESSAGE as of Media_GetLastError.", "-50   more than one parameter", "Media_PlayPause",
     "$0:Media_PlayPause: No error."},
    {"Media_StopSound", "Ends all sounds in the background.", "none", "Text: $0:Media_StopSound: No error.",
     "none", "Media_StopSound", "$0:Media_StopSound: No error."},
    {"Media_RecordSoundStart", "Records sound from the machine's input.",
     R"(path            a file as text, which is made or loses what it had; nothing, "" or 0: a file in the
                temporary folder. Another number records nothing
in background   true: the call returns at once, and records while the host handles messages, until
                Media_RecordSoundStop; without it until a mouse button is pressed, or Return on a terminal
hex settings    must be empty
It records as chosen in Media_RecordSoundFormatDialog, else in 16-bit stereo at 44,100 Hz, into a
QuickTime movie whatever the file's name. docs/sound.md tells of devices.)",
     R"(In the background nothing. Else text, the reference to the file, for a path; and for the temporary
folder a container with a sound resource, 8-bit, mono, 44,100 Hz.)",
     R"(-1     another recording is paused
-4     hex settings are given
-34    the disk is full
-43    there is no such folder
-50    the path is none, or a container
-61    the file can't be written to
-120   the folder is a file
-200   there is no sound input
-227   another recording runs
-1302  the path is a folder
other codes of files: the file can't be made
With a code the result is empty; Media_GetLastError has the message.)",
     R"(Media_RecordSoundStart ( "/C:/sounds/memo.mov" ; True ) & Media_Get ( "recording" ))", "1"},
    {"Media_RecordSoundPause", "Pauses the recording in the background, or lets it go on.", "none",
     "Nothing; answers the host 0, whatever happened.",
     "-3155  nothing is recorded; only in Media_GetLastError", "Media_RecordSoundPause & Media_GetLastError",
     "$-3155:Media_RecordSoundPause: …"},
    {"Media_RecordSoundStop", "Ends the recording in the background.", "none",
     R"(Text: the reference to the file; through a reference movie beside it, as Media_InsertQuickTime makes it,
while the setting lmworkaround is on.)",
     R"(-3155  nothing is recorded, or the recording broke off: what was recorded until then is in the file
codes of files)",
     R"(Media_RecordSoundStart ( "/C:/sounds/memo.mov" ; True ) & Media_RecordSoundStop)",
     R"(size:0,0
movie:…)"},
    {"Media_RecordSoundFormatDialog", "Asks for rate and channels of the recordings to come.",
     "none; keys for a scripted answer: rate 8000, 11025, 16000, 22050, 32000, 44100 or 48000; channels 1 or "
     "2",
     "Text: the settings as <hex>…</hex>; empty on Cancel. Answers the host 0.",
     R"(-1     a recording runs; only in Media_GetLastError
-128   cancelled; only there)",
     "Media_RecordSoundFormatDialog", "<hex>…</hex>"},
});

} // namespace

const ManualGroup kSoundManual = {"Sounds and movies", kNames, kPages};

} // namespace host
