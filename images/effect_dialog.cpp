#include "images/functions.h"
#include "images/image_importer.h"
#include "images/streams.h"
#include "platform/quicktime/effects/parameter_dialog.h"
#include "plugin/results.h"

#include <algorithm>
#include <array>
#include <string>

namespace corvane {
namespace {

/// Pictures to show the effect on; null ones are not there.
using PreviewPictures = std::array<qt::OwnedPicture, 2>;

/// False when a parameter is no image and that is reported.
bool ReadPreviewPictures(const FM_DataVect& parameters, PreviewPictures& pictures) {
    const std::int32_t count = Host(FM_DataVect_Size, &parameters);
    for (std::int32_t i = 1; i < count; ++i) {
        const FM_Data* parameter = Host(FM_DataVect_At, &parameters, i);
        if (Host(FM_Data_IsEmpty, parameter)) continue;
        const ImageImporter importer = OpenImageImporter(parameter);
        if (!importer) return false;
        PicHandle picture = nullptr; // an image that can't be drawn is not shown
        GraphicsImportGetAsPicture(importer.get(), &picture);
        pictures.at(static_cast<std::size_t>(i - 1)).reset(picture);
    }
    return true;
}

/// The effects that the person can choose from; `type` 0 is any. Null without memory.
qt::MemoryHandle OfferedEffects(OSType type) {
    QTAtomContainer list = nullptr;
    QTGetEffectsListExtended(&list, 1, 2, [type](const QTEffectProperties& effect) {
        const bool draws_still_images = effect.sources == 1 || effect.minor_class == kCompositeMinorClass;
        return draws_still_images && (type == 0 || effect.subtype == type);
    });
    return qt::MemoryHandle(list);
}

/// What the person chose goes into `settings`; false on Cancel, and when there is nothing to choose from.
bool AskForEffect(OSType type, PreviewPictures pictures, QTAtomContainer settings) {
    const qt::MemoryHandle effects = OfferedEffects(type);
    QTParameterDialog created = nullptr;
    if (QTCreateStandardParameterDialog(effects.get(), settings, &created) != noErr) return false;
    const qt::OwnedParameterDialog dialog(created);
    for (std::size_t i = 0; i < pictures.size(); ++i) {
        if (pictures[i] == nullptr) continue;
        QTStandardParameterDialogDoAction(created, pdActionSetPreviewPicture,
                                          {static_cast<std::int32_t>(i + 1), pictures[i].get()});
        pictures[i].reset();
    }
    return QTIsStandardParameterDialogEvent(created) == codecParameterDialogConfirm;
}

/// The description in its lines, which end as the host's do; empty when there is none.
std::string Describe(QTAtomContainer settings) {
    const qt::MemoryHandle xml(NewHandle(0));
    QTStandardParameterDialogDoAction(nullptr, pdActionConvertSettingsToXMLWithComments,
                                      {settings, xml.get()});
    const std::span<const std::byte> bytes = qt::HandleBytes(xml.get());
    std::string text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    std::ranges::replace(text, '\n', '\r');
    return text;
}

void ChooseEffect(const FM_DataVect& parameters) {
    if (Host(FM_DataVect_Size, &parameters) < 1)
        return ReportError(kErrorParameterCount, "Requires either 1, 2 or 3 parameters");
    const std::optional<std::uint32_t> type = ParseImageTypeCode(Host(FM_DataVect_At, &parameters, 0));
    if (!type) return;
    PreviewPictures pictures;
    if (!ReadPreviewPictures(parameters, pictures)) return;
    QTAtomContainer made = nullptr;
    QTNewAtomContainer(&made);
    const qt::MemoryHandle settings(made);
    if (!AskForEffect(*type, std::move(pictures), made)) return ReportError(0, "Cancel");
    const std::string description = Describe(made);
    if (description.empty()) return ReportError(kErrorMediaMalfunction, "Some inexplicable QT malfunction");
    SetResultBufferText(description);
}

} // namespace

FM_Error EffectDialog(std::int16_t, const FM_ExprEnv&, const FM_DataVect& parameters, FM_Data& result) {
    ChooseEffect(parameters);
    FinishResult(result);
    return kFM_ErrorNone;
}

} // namespace corvane
