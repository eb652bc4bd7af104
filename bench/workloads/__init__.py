"""The rows of bench/compare's table by group: name: (title, rows)."""

from . import fields, files, general, images, sounds

GROUPS = {
    "start": ("Start, calls and paths", general.ROWS),
    "files": ("Files and folders", files.ROWS),
    "image-facts": ("Facts of images of 12 megapixels", list(images.facts())),
    "image-conversion": ("Conversion of images of 12 megapixels", images.CONVERSIONS),
    "image-drawing": ("Transforms and effects on images of 12 megapixels", images.DRAWINGS),
    "sound-facts": ("Facts of sounds", list(sounds.facts())),
    "sound-editing": ("Editing of sounds, 10 minutes of stereo", sounds.EDITS),
    "sound-conversion": ("Conversion of sounds, stereo", sounds.CONVERSIONS),
    "tags": ("Tags", sounds.TAGS),
    "records": ("Records of a database file", fields.ROWS),
}
