"""Images of 12 megapixels: facts, conversion, drawing."""

from . import media
from .row import PROGRAM, Row, START, call

NO_PREVIEW = "Media_SetImageDefaults(-1; 0)"  # other tools make none
HALF_QUALITY = "; -1; -1; -1; -1; 512; -1; -1; -1; -1"
PACK_BITS = "; -1; -1; -1; -1; -1; -1; -1; 1; -1"


def facts():
    for extension in ("jpg", *media.IMAGE_TYPES):
        name = f"photo.{extension}"
        peers = {"identify": f"identify -ping {name}", "gm": f"gm identify -ping {name}",
                 "vips": f"vipsheader {name}"}
        for tool, unread in (("vips", ("bmp", "psd", "sgi", "tga", "pcx", "pct", "pnt", "qti")),
                             ("gm", ("jp2", "psd", "pct", "pnt", "qti")), ("identify", ("pnt", "qti"))):
            if extension in unread:
                del peers[tool]
        if extension == "pnt":
            peers["identify"] = f"identify -ping mac:{name}"
        yield Row(f"info-{extension}", f"facts of a {extension}", call(f'Media_GetImageInfo("/C:/{name}")'), peers,
                  make=media.typed_photos, why=START)
    yield Row("metadata", "EXIF and IPTC of a jpg", call('Media_GetMetadata("/C:/photo.jpg")'),
              {"exiftool": "exiftool photo.jpg", "identify": "identify -verbose -ping photo.jpg"}, make=media.photo,
              why=START)


def conversion(name, image_type, arguments="", source="photo.jpg", **peers):
    convert = f'Media_ConvertImage("/C:/{source}"; "{image_type}"{arguments})'
    return Row(f"to-{name}", f"{source.split('.')[1]} to {name.split('-')[0]}",
               call(NO_PREVIEW, f'Media_ExportField({convert}; "/C:/temporary/ours.out"; 1)'), peers,
               make=media.typed_photos)


CONVERSIONS = [
    conversion("png", "PNGf", convert="convert photo.jpg temporary/peer.png",
               gm="gm convert photo.jpg temporary/peer.png",
               vips="vips pngsave photo.jpg temporary/peer.png --compression 1 --filter sub"),
    conversion("tiff", "TIFF", PACK_BITS, convert="convert photo.jpg -compress RLE temporary/peer.tif",
               gm="gm convert photo.jpg -compress RLE temporary/peer.tif",
               vips="vips tiffsave photo.jpg temporary/peer.tif --compression packbits"),
    conversion("bmp", "BMPf", convert="convert photo.jpg temporary/peer.bmp",
               gm="gm convert photo.jpg temporary/peer.bmp"),
    conversion("jpeg", "JPEG", HALF_QUALITY, convert="convert photo.jpg -quality 50 temporary/peer.jpg",
               gm="gm convert photo.jpg -quality 50 temporary/peer.jpg",
               vips="vips jpegsave photo.jpg temporary/peer.jpg -Q 50"),
    conversion("pict", "PICT", convert="convert photo.jpg temporary/peer.pct"),
    conversion("gif", "GIFf", convert="convert photo.jpg temporary/peer.gif",
               gm="gm convert photo.jpg temporary/peer.gif", vips="vips gifsave photo.jpg temporary/peer.gif"),
    conversion("jp2", "jp2 ", convert="convert photo.jpg temporary/peer.jp2",
               vips="vips jp2ksave photo.jpg temporary/peer.jp2"),
    conversion("psd", "8BPS", convert="convert photo.jpg temporary/peer.psd"),
    conversion("sgi", ".sgi", convert="convert photo.jpg temporary/peer.sgi",
               gm="gm convert photo.jpg temporary/peer.sgi"),
    conversion("tga", "TPIC", convert="convert photo.jpg -compress RLE temporary/peer.tga"),  # gm knows no runs
    conversion("qtif", "qtif"),
    conversion("macpaint", "PNTG"),
    conversion("jpeg-from-png", "JPEG", HALF_QUALITY, "photo.png",
               convert="convert photo.png -quality 50 temporary/peer.jpg",
               gm="gm convert photo.png -quality 50 temporary/peer.jpg",
               vips="vips jpegsave photo.png temporary/peer.jpg -Q 50"),
]


PACKED = "the result is a packed picture, others write plain pixels; packing took a quarter of the time of the blur, " \
         "a tenth of that of the levels"


def drawing(name, what, steps, **peers):
    """The results stay as lossless as each tool writes them soonest."""
    return Row(name, what, [PROGRAM, "eval", "--strict", "--drive", "C:=.", "--save-streams", "temporary",
                            NO_PREVIEW, *steps],
               {tool: ["sh", "-c", command] for tool, command in peers.items()}, make=media.photo, why=PACKED)


def effect(name, what, description, **peers):
    return drawing(f"effect-{name}", what, [f'Media_EffectApply("/C:/photo.jpg"; "{description}")'], **peers)


CORNERS = "0,0 0,0 4000,0 4000,600 4000,3000 3200,3000 0,3000 400,2100"
APPLY = 'Media_TApply("/C:/photo.jpg")'
DRAWINGS = [
    drawing("rotate", "turned by 30°, shrunk to 1,000 pixels", ["Media_TRotate(30)", "Media_TResize(806; 0)", APPLY],
            convert="convert -define jpeg:size=1612x1208 photo.jpg -resize 806x -background white -rotate 30 "
                    "temporary/peer.ppm",
            gm="gm convert -size 1612x1208 photo.jpg -resize 806x605 -background white -rotate 30 temporary/peer.ppm",
            vips="vipsthumbnail photo.jpg -s 806x605 -o temporary/peer.v && "
                 "vips similarity temporary/peer.v temporary/peer.ppm --angle 30 --background 255"),
    drawing("quad", "a perspective at full size", ["Media_TQuad(100; 0; 0; 100; 20; 80; 100; 10; 70)", APPLY],
            convert=f"convert photo.jpg -virtual-pixel white -distort Perspective '{CORNERS}' temporary/peer.ppm"),
    drawing("crop", "cropped to a half, shrunk to a half",
            ["Media_TCrop(500; 500; 3500; 2500)", "Media_TResize(1500; 0)", APPLY],
            convert="convert photo.jpg -crop 3000x2000+500+500 +repage -resize 1500x temporary/peer.ppm",
            gm="gm convert photo.jpg -crop 3000x2000+500+500 -resize 1500x1000 temporary/peer.ppm",
            vips="vips crop 'photo.jpg[shrink=2]' temporary/peer.ppm 250 250 1500 1000"),
    drawing("thumbnail", "shrunk to 320 pixels, a JPEG",
            ["Media_TResize(320; 0)",
             f'Media_ExportField(Media_ConvertImage({APPLY}; "JPEG"); "/C:/temporary/ours.jpg"; 1)'],
            convert="convert -define jpeg:size=640x480 photo.jpg -thumbnail 320x temporary/peer.jpg",
            gm="gm convert -size 640x480 photo.jpg -thumbnail 320x240 temporary/peer.jpg",
            vips="vipsthumbnail photo.jpg -s 320x -o temporary/peer.jpg"),
    effect("blur", "a Gaussian blur of 5 pixels", "<effect type='blur'><radius>5</radius></effect>",
           convert="convert photo.jpg -blur 0x5 temporary/peer.ppm", gm="gm convert photo.jpg -blur 0x5 "
           "temporary/peer.ppm", vips="vips gaussblur photo.jpg temporary/peer.v 5"),
    effect("sharpen", "sharpened", "<effect type='shrp'><radius>1.5</radius></effect>",
           convert="convert photo.jpg -unsharp 0x1.5+1+0 temporary/peer.ppm",
           gm="gm convert photo.jpg -unsharp 0x1.5+1+0 temporary/peer.ppm",
           vips="vips sharpen photo.jpg temporary/peer.v --sigma 1.5"),
    effect("levels", "black and white point, gamma", "<effect type='levl'/>",
           convert="convert photo.jpg -level 10,245,1.2 temporary/peer.ppm",
           gm="gm convert photo.jpg -level 10,1.2,245 temporary/peer.ppm"),
    effect("posterize", "posterized", "<effect type='post'/>",
           convert="convert photo.jpg -posterize 4 temporary/peer.ppm"),
    drawing("effect-fade", "a cross fade of two images",
            ["Media_EffectApply(\"/C:/photo.jpg\"; \"<effect type='dslv'/>\"; \"/C:/photo.jpg\")"],
            convert="convert photo.jpg photo.jpg -compose blend -define compose:args=50 -composite "
                    "temporary/peer.ppm"),
]
