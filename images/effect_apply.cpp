#include "images/cv_image.h"
#include "images/functions.h"
#include "images/image_importer.h"
#include "platform/quicktime/effects/image_sequences.h"
#include "platform/quicktime/effects/parameter_dialog.h"
#include "platform/quicktime/graphics_exporter.h"
#include "platform/quicktime/type_codes.h"
#include "plugin/results.h"

namespace corvane {
namespace {

constexpr OSType kSourceA = FourCC("srca");
constexpr OSType kSourceB = FourCC("srcb");

/// The parameter set that a description stands for; an empty one for a text that is none.
qt::MemoryHandle ParameterSet(std::string_view description) {
    constexpr std::size_t kLongest = 32'767;
    if (description.size() > kLongest) description = description.substr(0, 0);
    QTAtomContainer made = nullptr;
    QTNewAtomContainer(&made);
    qt::MemoryHandle settings(made);
    Handle bytes = nullptr;
    PtrToHand(description.data(), &bytes, static_cast<Size>(description.size()));
    const qt::MemoryHandle xml(bytes);
    QTStandardParameterDialogDoAction(nullptr, pdActionConvertXMLToSettings, {made, bytes});
    return settings;
}

OSErr MakePort(const Rect& bounds, qt::OwnedGWorld& port) {
    GWorldPtr made = nullptr;
    const OSErr code = NewGWorld(&made, 32, bounds);
    port.reset(made);
    return code;
}

/// The parameter's image in a port of its own size. False when there is none and that is reported.
bool DrawSource(const FM_Data* parameter, qt::OwnedGWorld& port) {
    const ImageImporter importer = OpenImageImporter(parameter);
    if (!importer) return false;
    Rect bounds;
    ComponentResult code = GraphicsImportGetNaturalBounds(importer.get(), &bounds);
    if (code == noErr) code = MakePort(bounds, port);
    if (code == noErr) code = GraphicsImportSetGWorld(importer.get(), port.get());
    if (code == noErr) code = GraphicsImportDraw(importer.get());
    if (code != noErr) ReportNoCvImage(code);
    return code == noErr;
}

OSErr AddSourceName(QTAtomContainer settings, std::int32_t number, OSType name) {
    return QTInsertChild(settings, kParentAtomIsContainer, kEffectDataSourceType, number, qt::CodeBytes(name),
                         nullptr);
}

/// Draws the effect of A and B (null: there is none) into `out`, a port of A's size.
OSErr DrawEffect(QTAtomContainer settings, GWorldPtr a, GWorldPtr b, GWorldPtr out) {
    ImageSequence begun = nullptr;
    OSErr code = AddSourceName(settings, 1, kSourceA);
    if (code == noErr && b != nullptr) code = AddSourceName(settings, 2, kSourceB);
    if (code == noErr) code = DecompressSequenceBeginS(&begun, settings, out);
    const qt::OwnedSequence sequence(begun);
    if (code == noErr) code = CDSequenceNewDataSource(begun, kSourceA, a);
    if (code == noErr && b != nullptr) code = CDSequenceNewDataSource(begun, kSourceB, b);
    return code == noErr ? DecompressSequenceFrameWhen(begun) : code;
}

/// The effect of the image, and of the second one when there is one, in `out`. False when that fails and is
/// reported.
bool Render(const FM_DataVect& parameters, qt::OwnedGWorld& out) {
    const qt::MemoryHandle settings = ParameterSet(ParameterAsUtf8(Host(FM_DataVect_At, &parameters, 1)));
    const FM_Data* second =
        Host(FM_DataVect_Size, &parameters) > 2 ? Host(FM_DataVect_At, &parameters, 2) : nullptr;
    qt::OwnedGWorld a;
    qt::OwnedGWorld b;
    if (second != nullptr && !Host(FM_Data_IsEmpty, second) && !DrawSource(second, b)) return false;
    if (!DrawSource(Host(FM_DataVect_At, &parameters, 0), a)) return false;
    OSErr code = MakePort(a->bounds, out);
    if (code == noErr) code = DrawEffect(settings.get(), a.get(), b.get(), out.get());
    if (code != noErr) ReportNoCvImage(code);
    return code == noErr;
}

/// True when the result is set; else the result buffer holds an error.
bool Apply(const FM_DataVect& parameters, FM_Data& result) {
    if (Host(FM_DataVect_Size, &parameters) < 2) {
        ReportError(kErrorParameterCount, "Requires either 2 or 3 parameters");
        return false;
    }
    qt::OwnedGWorld drawn;
    if (!Render(parameters, drawn)) return false;
    qt::OpenComponent exporter = OpenCvImageExporter();
    if (exporter == nullptr) return false;
    GraphicsExportSetInputGWorld(exporter.get(), drawn.get());
    qt::MemoryHandle picture = EncodeCvImage(exporter.get());
    if (!picture) return false;
    exporter.reset();
    drawn.reset();
    SetCvImageResult(std::move(picture), result);
    return true;
}

} // namespace

FM_Error EffectApply(std::int16_t, const FM_ExprEnv&, const FM_DataVect& parameters, FM_Data& result) {
    if (!Apply(parameters, result)) FinishResult(result);
    return kFM_ErrorNone;
}

} // namespace corvane
