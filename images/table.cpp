#include "images/table.h"

#include "images/functions.h"
#include "plugin/functions.h"

#include <array>

namespace corvane {
namespace {

// The file functions take their ids between these two lists.
constexpr std::array<CountedFunction, 13> kFunctionsBeforeFiles = {{
    {"Media_ExportField", "Media_ExportField ( container ; path ; replace )", 3, 3, ExportField},
    {"Media_TScale", "Media_TScale ( xScale ; yScale )", 2, 2, TScale},
    {"Media_TSkew", "Media_TSkew ( xSkew ; ySkew )", 2, 2, TSkew},
    {"Media_GetImageInfo", "Media_GetImageInfo ( container )", 1, 1, GetImageInfo},
    {"Media_TQuad",
     "Media_TQuad ( sourceScale ; topLeftX ; topLeftY ; topRightX ; topRigthY ; bottomRightX ; bottomRightY "
     "; bottomLeftX ; bottomLeftY )",
     9, 9, TQuad},
    {"Media_GetMouseUp", "Media_GetMouseUp", 0, 0, GetMouseUp},
    {"Media_TApply", "Media_TApply ( container ) ", 1, 1, TApply},
    {"Media_TCrop", "Media_TCrop ( left ; top ; right ; bottom )", 4, 4, TCrop},
    {"Media_TRotate", "Media_TRotate ( degrees )", 1, 1, TRotate},
    {"Media_TClear", "Media_TClear", 0, 0, TClear},
    {"Media_EffectDialog", "Media_EffectDialog ( effectType [; previewImage [; previewImage2 ]] )", 1, 3,
     EffectDialog},
    {"Media_EffectApply", "Media_EffectApply ( container ; effectDescription [; container2 ] )", 2, 3,
     EffectApply},
    {"Media_InsertImage", "Media_InsertImage ( filepath ; byReference )", 2, 2, InsertImage},
}};

constexpr std::array<CountedFunction, 18> kFunctionsAfterFiles = {{
    kReservedFunction,
    kReservedFunction,
    kReservedFunction,
    kReservedFunction,
    kReservedFunction,
    kReservedFunction,
    kReservedFunction,
    kReservedFunction,
    kReservedFunction,
    {"Media_TResize", "Media_TResize ( xDim ; yDim )", 2, 2, TResize},
    kReservedFunction,
    {"Media_SetImageDefaults", "Media_SetImageDefaults ( previewQuality ; previewMark )", 2, 2,
     SetImageDefaults},
    {"Media_ConversionDialog", "Media_ConversionDialog ( imageType )", 1, 1, ConversionDialog},
    {"Media_ConvertImage",
     "Media_ConvertImage ( container ; imageType ; depth ; hres ; vres ; targetBytes ; quality ; imageIndex "
     "; transcode ; packBits ; interlace )",
     2, 11, ConvertImage},
    {"Media_ListImageOutputTypes", "Media_ListImageOutputTypes", 0, 0, ListImageOutputTypes},
    {"Media_GetMetadata", "Media_GetMetadata ( containerOrFile {; tag} )", 1, 2, GetMetadata},
    {"Media_InsertFile", "Media_InsertFile ( filepath ; byReference ; asText )", 3, 3, InsertFile},
    kReservedFunction,
}};

} // namespace

std::span<const CountedFunction> ImageFunctionsBeforeFiles() {
    return kFunctionsBeforeFiles;
}

std::span<const CountedFunction> ImageFunctionsAfterFiles() {
    return kFunctionsAfterFiles;
}

} // namespace corvane
