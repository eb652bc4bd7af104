// CV images: what comes of transforming an image, or of applying an effect to it. The container's stream
// "CVIM" has the type code "PICT" and a picture without its file header; "SIZE" and a preview follow.
//
// Making one takes three steps, so that the caller can release the exporter's input, and the pixels in it,
// between the second and the third.
#pragma once

#include "platform/quicktime/components.h"
#include "platform/quicktime/handles.h"
#include "plugin/host_data.h"

namespace corvane {

/// An exporter of lossless pictures of 24 bits, for the caller to give its input. Null when there is none and
/// that is reported.
qt::OpenComponent OpenCvImageExporter();

/// Encodes the exporter's input as a picture file. Null when that fails and is reported.
qt::MemoryHandle EncodeCvImage(qt::Component* exporter);

/// Makes an encoded picture, with its preview, the result.
void SetCvImageResult(qt::MemoryHandle picture, FM_Data& result);

/// Reports that an image could not be brought into this form.
void ReportNoCvImage(std::int32_t code);

} // namespace corvane
