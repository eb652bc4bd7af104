// The functions of libtiff, which stands in a module: with the libraries that it brings, it would take a
// fifth of the start of every program that never sees a TIFF.
#pragma once

#include "platform/modules/modules.h"

#include <tiffio.h>

namespace qt {

/// libtiff's functions under their own names without the prefix, behaving as its manual says. Only the module
/// makes one of these: the addresses are what it is linked to.
struct TiffLibrary {
    decltype(&TIFFClientOpenExt) ClientOpenExt = &TIFFClientOpenExt;
    decltype(&TIFFClose) Close = &TIFFClose;
    decltype(&TIFFComputeStrip) ComputeStrip = &TIFFComputeStrip;
    decltype(&TIFFComputeTile) ComputeTile = &TIFFComputeTile;
    decltype(&TIFFGetField) GetField = &TIFFGetField;
    decltype(&TIFFGetFieldDefaulted) GetFieldDefaulted = &TIFFGetFieldDefaulted;
    decltype(&TIFFGetStrileOffset) GetStrileOffset = &TIFFGetStrileOffset;
    decltype(&TIFFIsByteSwapped) IsByteSwapped = &TIFFIsByteSwapped;
    decltype(&TIFFIsCODECConfigured) IsCODECConfigured = &TIFFIsCODECConfigured;
    decltype(&TIFFIsTiled) IsTiled = &TIFFIsTiled;
    decltype(&TIFFNumberOfDirectories) NumberOfDirectories = &TIFFNumberOfDirectories;
    decltype(&TIFFOpenOptionsAlloc) OpenOptionsAlloc = &TIFFOpenOptionsAlloc;
    decltype(&TIFFOpenOptionsFree) OpenOptionsFree = &TIFFOpenOptionsFree;
    decltype(&TIFFOpenOptionsSetErrorHandlerExtR) OpenOptionsSetErrorHandlerExtR =
        &TIFFOpenOptionsSetErrorHandlerExtR;
    decltype(&TIFFOpenOptionsSetMaxSingleMemAlloc) OpenOptionsSetMaxSingleMemAlloc =
        &TIFFOpenOptionsSetMaxSingleMemAlloc;
    decltype(&TIFFOpenOptionsSetWarningHandlerExtR) OpenOptionsSetWarningHandlerExtR =
        &TIFFOpenOptionsSetWarningHandlerExtR;
    decltype(&TIFFRGBAImageBegin) RGBAImageBegin = &TIFFRGBAImageBegin;
    decltype(&TIFFRGBAImageEnd) RGBAImageEnd = &TIFFRGBAImageEnd;
    decltype(&TIFFRGBAImageGet) RGBAImageGet = &TIFFRGBAImageGet;
    decltype(&TIFFRGBAImageOK) RGBAImageOK = &TIFFRGBAImageOK;
    decltype(&TIFFReadEncodedTile) ReadEncodedTile = &TIFFReadEncodedTile;
    decltype(&TIFFReadScanline) ReadScanline = &TIFFReadScanline;
    decltype(&TIFFReverseBits) ReverseBits = &TIFFReverseBits;
    decltype(&TIFFScanlineSize) ScanlineSize = &TIFFScanlineSize;
    decltype(&TIFFSetDirectory) SetDirectory = &TIFFSetDirectory;
    decltype(&TIFFSetField) SetField = &TIFFSetField;
    decltype(&TIFFSwabArrayOfLong) SwabArrayOfLong = &TIFFSwabArrayOfLong;
    decltype(&TIFFSwabArrayOfLong8) SwabArrayOfLong8 = &TIFFSwabArrayOfLong8;
    decltype(&TIFFSwabArrayOfShort) SwabArrayOfShort = &TIFFSwabArrayOfShort;
    decltype(&TIFFTileRowSize) TileRowSize = &TIFFTileRowSize;
    decltype(&TIFFTileSize) TileSize = &TIFFTileSize;
    decltype(&TIFFWriteDirectory) WriteDirectory = &TIFFWriteDirectory;
    decltype(&TIFFWriteEncodedStrip) WriteEncodedStrip = &TIFFWriteEncodedStrip;
    decltype(&TIFFWriteRawStrip) WriteRawStrip = &TIFFWriteRawStrip;
};

inline constinit modules::Library<TiffLibrary> g_tiff{"tiff"};

} // namespace qt
