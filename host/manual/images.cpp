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
    {"Media_GetImageInfo", "The facts of an image, from its header alone.",
     "container   a container with an image or a reference to one, or the path of an image file as text",
     R"(Text: an information list (see Media_ExtractInfo) with the lines
Height (px), Width (px), Depth (bits), Quality, V Resolution (dpi), H Resolution (dpi), Image Count,
Size (bytes), Compressor Type (four characters), Compressor Description.)",
     "$CODE:MESSAGE as the result:\n20100  not exactly one parameter\n20103  the container is empty\n"
     "-43    there is no such file\n-989   the data of the image are not valid\n"
     "other codes of files and of the image decoder",
     R"(Media_GetImageInfo ( HostContainer ( "JPEG" ; "/home/ann/a.jpg" ) ))"},
});

} // namespace

const ManualGroup kImageManual = {"Images and containers", kNames, kPages};

} // namespace host
