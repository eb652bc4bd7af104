// The standard dialog in which a person chooses an effect and its parameters, and the text form of what was
// chosen.
#pragma once

#include "platform/quicktime/movies/atom_containers.h"
#include "platform/quicktime/pictures.h"

#include <functional>

inline constexpr OSErr codecParameterDialogConfirm = -8986;

/// Atoms of a list of effects: for each, numbered from 1, the type (four bytes) and the name.
inline constexpr OSType kEffectTypeAtom = qt::Code("type");
inline constexpr OSType kEffectNameAtom = qt::Code("name");

inline constexpr OSType kCompositeMinorClass =
    qt::Code("comp"); ///< of effects that put one image over another

/// What is known of an effect before it is used.
struct QTEffectProperties {
    OSType subtype = 0;
    std::int32_t sources = 0; ///< images that it needs
    OSType major_class = 0;
    OSType minor_class = 0;
};

/// The effects with so many sources that the filter wants, in the order of their names; the caller disposes
/// of the list, which may be empty. memFullErr.
OSErr QTGetEffectsListExtended(QTAtomContainer* list, std::int32_t minimum_sources,
                               std::int32_t maximum_sources,
                               const std::function<bool(const QTEffectProperties&)>& filter);

namespace qt {
struct ParameterDialog;
}
using QTParameterDialog = qt::ParameterDialog*;

/// Makes the dialog for a choice among the list's effects; paramErr when it names none. What is confirmed
/// goes into `parameters`, an empty parameter set that stays the caller's and outlives the dialog.
OSErr QTCreateStandardParameterDialog(QTAtomContainer effects, QTAtomContainer parameters,
                                      QTParameterDialog* dialog);

/// Shows the dialog until the person closes it: codecParameterDialogConfirm with the parameters written,
/// userCanceledErr, or memFullErr.
OSErr QTIsStandardParameterDialogEvent(QTParameterDialog dialog);

/// Null is allowed.
void QTDismissStandardParameterDialog(QTParameterDialog dialog);

inline constexpr std::int32_t pdActionSetPreviewPicture = 6;
inline constexpr std::int32_t pdActionConvertSettingsToXMLWithComments = 14;
inline constexpr std::int32_t pdActionConvertXMLToSettings = 15;

/// A picture that the dialog shows the effect on; the dialog keeps a smaller copy of it.
struct QTParamPreviewRecord {
    std::int32_t sourceID = 0; ///< 1 or 2
    PicHandle sourcePicture = nullptr;
};

struct QTParamXMLRecord {
    QTAtomContainer settings = nullptr;
    Handle xml = nullptr; ///< UTF-8
};

/// pdActionSetPreviewPicture. paramErr for another action or source, or without a picture.
OSErr QTStandardParameterDialogDoAction(QTParameterDialog dialog, std::int32_t action,
                                        const QTParamPreviewRecord& preview);
/// Either conversion; neither needs a dialog. To XML: replaces the block's bytes, paramErr for settings
/// without a known effect. From XML: adds to empty settings; to a text that can't be read, and is so for any
/// reason, nothing is added.
OSErr QTStandardParameterDialogDoAction(QTParameterDialog dialog, std::int32_t action,
                                        const QTParamXMLRecord& conversion);

namespace qt {

struct ParameterDialogDismisser {
    void operator()(QTParameterDialog dialog) const { QTDismissStandardParameterDialog(dialog); }
};

/// Owner of a dialog.
using OwnedParameterDialog = std::unique_ptr<ParameterDialog, ParameterDialogDismisser>;

} // namespace qt
