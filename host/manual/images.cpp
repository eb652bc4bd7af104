#include "host/manual/manual.h"

#include <array>

namespace host {
namespace {

constexpr auto kNames = std::to_array<std::string_view>(
    {"Media_InsertImage", "Media_InsertFile", "Media_ExportField", "Media_GetImageInfo", "Media_TScale",
     "Media_TResize", "Media_TSkew", "Media_TRotate", "Media_TQuad", "Media_TCrop", "Media_TClear",
     "Media_TApply", "Media_EffectDialog", "Media_EffectApply", "Media_SetImageDefaults",
     "Media_ConversionDialog", "Media_ConvertImage", "Media_ListImageOutputTypes", "Media_GetMouseUp"});

constexpr auto kPages = std::to_array<ManualPage>({
    {"Media_InsertImage", "An image file as a container, or a reference to it.",
     R"(filepath      the path of an image file, an http:// address, or a container with an image
byReference   true: only a reference to the file)",
     R"(A container: the image as it is in the file, its size, and for images that hosts can't show (all but
JPEG and PICT) a JPEG preview; or the reference text.)",
     R"($CODE:MESSAGE as the result:
20100  not exactly two parameters
-43    there is no such file
-2005  nothing reads this kind of data
-2012  by reference, and the source is no file
other codes of files and of the image decoder)",
     R"(Media_InsertImage ( "/C:/home/ann/a.gif" ; False ))",
     R"(container
  GIFf … bytes
  SIZE 4 bytes
  JPEG … bytes)"},
    {"Media_InsertFile", "Any file as a container, as a reference to it, or as text.",
     R"(filepath      the path of a file, an http:// address, or a container with a stream "FILE"
byReference   true: only a reference to the file
asText        true: the file's bytes as text, in UTF-8)",
     R"(A container: the bytes as "FILE", and the file's path as "FNAM"; or the reference text; or the text.)",
     R"($CODE:MESSAGE as the result:
20100  not exactly three parameters
20400  the container has no stream "FILE"
-43    there is no such file
0      by reference, and the source is no file
other codes of paths, files and servers)",
     R"(Media_InsertFile ( "/C:/home/ann/a.txt" ; False ; True ))", "hello"},
    {"Media_ExportField", "Writes the main stream of a container, or a text, to a file.",
     R"(container   a container, or a text
path        the file; a name without extension gets that of the stream's type, where it is one that
            Media_ListImageOutputTypes lists, "snd " or a text
replace     true: a file that is there is deleted first, and another one made)",
     "Empty text.",
     R"($CODE:MESSAGE as the result:
20100  not exactly three parameters
20103  the container is empty
20200  the file is there, and replace is false
20401  a CV image, which Media_ConvertImage can convert
-1302  the path leads to a folder
-120   there is no such folder
other codes of paths and of the system)",
     R"(Media_ExportField ( "Hello" ; "/C:/home/ann/Archive/note" ; False ) &
Media_ListFolder ( "/C:/home/ann/Archive" ; False ))",
     "note.txt"},
    {"Media_TScale", "Adds a scaling to the pending transformation.",
     "xScale, yScale   factors, of widths and of heights; negative ones mirror",
     R"(Empty text. Steps take effect in the order of their calls, at Media_TApply, about the image's top left
corner. They stay pending, for all images, until Media_TClear or Media_TQuad.)",
     "$20100:MESSAGE as the result: not exactly two parameters",
     R"(Media_TScale ( 0.5 ; 0.5 ) & HostStream ( Media_TApply ( "/C:/home/ann/photo.jpg" ) ; "SIZE" ))",
     "00200018"},
    {"Media_TResize", "Asks for the size that Media_TApply makes of the image.",
     R"(xDim   pixels that the image, or the part of Media_TCrop, gets across; 0: as yDim asks
yDim   pixels down; 0: as xDim asks)",
     R"(Empty text. The scaling that brings the image to that size (before it is turned) is added at each
Media_TApply, behind the steps that are pending; so call Media_TClear between images.)",
     "$20100:MESSAGE as the result: not exactly two parameters",
     R"(Media_TResize ( 128 ; 0 ) & HostStream ( Media_TApply ( "/C:/home/ann/photo.jpg" ) ; "SIZE" ))",
     "00800060"},
    {"Media_TSkew", "Adds a skew to the pending transformation.",
     R"(xSkew   pixels to the right for each pixel down
ySkew   pixels down for each pixel to the right)",
     "Empty text.", "$20100:MESSAGE as the result: not exactly two parameters",
     R"(Media_TSkew ( 0.5 ; 0 ) & HostStream ( Media_TApply ( "/C:/home/ann/photo.jpg" ) ; "SIZE" ))",
     "00580030"},
    {"Media_TRotate", "Adds a turn to the pending transformation.", "degrees   clockwise", "Empty text.",
     "$20100:MESSAGE as the result: not exactly one parameter",
     R"(Media_TRotate ( 90 ) & HostStream ( Media_TApply ( "/C:/home/ann/photo.jpg" ) ; "SIZE" ))",
     "00300040"},
    {"Media_TQuad", "Makes a quadrilateral the pending transformation, in place of all other steps.",
     R"(sourceScale   what stands for the image's width and height: 100 for percentages, 1 for fractions
topLeftX ; topLeftY ; topRightX ; topRigthY ; bottomRightX ; bottomRightY ; bottomLeftX ; bottomLeftY
              where the image's corners go, in that unit; the corners have to bulge outward)",
     R"(Empty text. The mapping is found at the next Media_TApply, for the size of its image, and stays pending.)",
     "$20100:MESSAGE as the result: not exactly nine parameters",
     R"(Media_TQuad ( 100 ; 0 ; 0 ; 100 ; 20 ; 80 ; 100 ; 10 ; 70 ) &
HostStream ( Media_TApply ( "/C:/home/ann/photo.jpg" ) ; "SIZE" ))",
     "00400030"},
    {"Media_TCrop", "Chooses the part of the image that Media_TApply uses.",
     "left ; top ; right ; bottom   edges in pixels of the image, -32768 to 32767; left -1: all of it",
     "Empty text. Of a part that reaches beyond the image, the rest stays unpainted.",
     "$20100:MESSAGE as the result: not exactly four parameters",
     R"(Media_TCrop ( 10 ; 10 ; 42 ; 26 ) & HostStream ( Media_TApply ( "/C:/home/ann/photo.jpg" ) ; "SIZE" ))",
     "00200010"},
    {"Media_TClear", "Forgets the pending transformation.", "", "Empty text.", "",
     R"(Media_TRotate ( 90 ) & Media_TClear & HostStream ( Media_TApply ( "/C:/home/ann/photo.jpg" ) ; "SIZE" ))",
     "00400030"},
    {"Media_TApply", "An image through the pending transformation.",
     "container   a container with an image, the path of an image file, or an http:// address",
     R"(A container: "CVIM" (a picture that fills the transformed image's bounding box, white or, for images with
transparency, transparent where the image is not), its size and a JPEG preview. Other functions take it as an
image; Media_ExportField takes what Media_ConvertImage makes of it.)",
     R"($CODE:MESSAGE as the result:
20100  not exactly one parameter
20400  no image
-2005  nothing reads this kind of data
-50    the part of Media_TCrop has no pixel of the image, or the quadrilateral is none
-8963  the result is empty, above 30,000 pixels either way, or above 1 GiB
other codes of files and of the image decoder)",
     R"(Let ( [ a = Media_TClear ; b = Media_TRotate ( 30 ) ] ; Media_TApply ( "/C:/home/ann/photo.jpg" ) ))",
     R"(container
  CVIM … bytes
  SIZE 4 bytes
  JPEG … bytes)"},
    {"Media_SetImageDefaults", "How previews of images are made from now on.",
     R"(previewQuality   0 lowest to 1024 best, 512 at start; -1: no previews
previewMark      true (at start): thin lines in the picture say that it is a preview)",
     "Empty text.", "$20100:MESSAGE as the result: not exactly two parameters",
     R"(Media_SetImageDefaults ( 700 ; False ) & "no text")", "no text"},
    {"Media_ConversionDialog", "Asks for an encoder's settings.",
     "imageType   a type of Media_ListImageOutputTypes; a whole line of that list will do",
     R"(Text: lines KEY=VALUE: format, depth, resolution, quality, size, method, as far as they are set or the
format has them. Without windows the answer "set:quality=300,depth=8" changes settings, "ok" none; Cancel leaves
them. The text is for the caller: Media_ConvertImage takes its settings as parameters.)",
     R"($CODE:MESSAGE as the result:
20100  not exactly one parameter
20101  no type code
20102  the type is no text
An unknown type gives empty text.)",
     R"(Media_ConversionDialog ( "JPEG" ))", R"(format=JPEG
quality=512
method=0)"},
    {"Media_ConvertImage", "An image in another format.",
     R"(container     a container with an image, the path of an image file, or an http:// address
imageType     a type of Media_ListImageOutputTypes; empty: the source's own
depth         1, 2, 4, 8, 16, 24 or 32 bits a pixel; 33, 34, 36, 40 for 1, 2, 4, 8 bits of grey
hres, vres    dots per inch
targetBytes   the size that the result should not exceed; goes before quality
quality       0 lowest, 512 normal, 1024 best
imageIndex    which of several images, from 1
transcode     1: compressed data is passed on as it is, not decoded, where possible: of JPEG,
              and of a single image that has the type, depth and resolution already
packBits      1: TIFF with PackBits; 0: without compression
interlace     1: progressive or interlaced; 0: not
-1 in any of them leaves it to the encoder. Two parameters alone use the settings of the latest call with all.)",
     R"(A container: the image, its size, and for images that hosts can't show (all but JPEG, BMP, PNG and TIFF)
a JPEG preview.)",
     R"($CODE:MESSAGE as the result:
20100  neither 2 nor 11 parameters
20101  no type code
20102  the type is no text
-2005  no encoder for the type, or no decoder for the data
-8969  the data of the image are broken
other codes of files, decoders and encoders)",
     R"(Media_ConvertImage ( "/C:/home/ann/pages.tif" ; "JPEG" ; -1 ; -1 ; -1 ; 100000 ; -1 ; 2 ; -1 ; -1 ; -1 ))",
     R"(container
  JPEG … bytes
  SIZE 4 bytes)"},
    {"Media_EffectDialog", "Asks for an effect and its parameters.",
     R"(effectType      the effect to choose; empty: the person chooses among
                one image: blur brco embs edge fmns genk hslb levl mosa post rgbb shrp solr tint
                two images: blnd chnl ckey dslv iris matt push pxds slid smpt
previewImage    an image that the dialog shows the effect on: a container, a path, an address
previewImage2   the second one, for effects of two images)",
     R"(Text: the description for Media_EffectApply, XML to read and edit; its comments name the parameters, their
ranges and defaults. Without windows the answer "set:effect=blur,radius=5" chooses, "ok" takes what is first.)",
     R"($CODE:MESSAGE as the result:
0      Cancel; or there is no such effect
20101  no type code
20102  the type is no text
other codes of files and of the image decoder)",
     R"(Media_EffectDialog ( "blur" ; "/C:/home/ann/photo.jpg" ))",
     R"(<?xml version="1.0"?>
<!-- Blur: one image -->
<effect type="blur">
  <!-- Radius: …
  <radius>4</radius>
</effect>)"},
    {"Media_EffectApply", "An image, or two, drawn through an effect.",
     R"(container           the image, source A: a container, the path of an image file, or an http:// address
effectDescription   text of Media_EffectDialog, as it is or edited: parameters that are missing have their
                    default, values out of range are brought into it, unknown elements are passed over
container2          source B, for effects of two images; drawn at its own size, nothing beside it)",
     R"(A container of source A's size: the picture ("CVIM"), its size and a JPEG preview. A description that is no
XML, names no known effect, or has more than 32767 bytes leaves the image as it is; so does one for two images
without the second.)",
     R"($CODE:MESSAGE as the result:
20100  fewer than two parameters
20400  no image
-43    there is no such file
-8969  the data of the image are broken
other codes of files and of the image decoder)",
     R"(Media_EffectApply ( "/C:/home/ann/photo.jpg" ; "<effect type='blur'><radius>5</radius></effect>" ))",
     R"(container
  CVIM … bytes
  SIZE 4 bytes
  JPEG … bytes)"},
    {"Media_GetMouseUp", "Where the pointer is in the front window of the database.", "",
     R"(Text: X|Y|RIGHT|BOTTOM in pixels: the pointer from the upper left corner of the window's content, and how far
the window's right and lower edge lie from it. Without a window, what the latest call found; -1 in all at first.)",
     "$20100:MESSAGE as the result: there are parameters", R"(Media_GetMouseUp)", "-1|-1|-1|-1"},
    {"Media_ListImageOutputTypes", "The types that images can be converted to.", "",
     "Text: a line TYPE|EXTENSION|DESCRIPTION for each.",
     "$20100:MESSAGE as the result: there are parameters", R"(Media_ListImageOutputTypes)",
     "…JPEG|jpg|JPEG…TIFF|tif|TIFF…"},
    {"Media_GetImageInfo", "The facts of an image, from its header alone.",
     "container   a container with an image or a reference to one, or the path of an image file as text",
     R"(Text: an information list (see Media_ExtractInfo) with the lines
Height (px), Width (px), Depth (bits), Quality, V Resolution (dpi), H Resolution (dpi), Image Count,
Size (bytes), Compressor Type (four characters), Compressor Description.)",
     R"($CODE:MESSAGE as the result:
20100  not exactly one parameter
20400  the container has no image
-43    there is no such file
-2005  nothing reads this kind of data
-989   the data of the image are not valid
other codes of files and of the image decoder)",
     R"(Media_GetImageInfo ( "/C:/home/ann/photo.jpg" ))",
     R"(Height (px): 48
Width (px): 64
Depth (bits): 24
Quality: …
V Resolution (dpi): 72
H Resolution (dpi): 72
Image Count: 1
Size (bytes): …
Compressor Type: jpeg
Compressor Description: Photo - JPEG)"},
});

} // namespace

const ManualGroup kImageManual = {"Images and containers", kNames, kPages};

} // namespace host
