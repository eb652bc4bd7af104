#include "platform/quicktime/effects/parameter_dialog.h"

#include "platform/quicktime/effects/effect_preview.h"
#include "platform/quicktime/effects/settings_xml.h"
#include "platform/quicktime/graphics_exporter.h"
#include "platform/quicktime/movies/atoms.h"
#include "platform/quicktime/movies/handle_bytes.h"
#include "platform/quicktime/type_codes.h"
#include "platform/win32/settings_dialog.h"

#include <algorithm>
#include <new>

namespace qt {

struct ParameterDialog {
    std::vector<const Effect*> effects;
    QTAtomContainer parameters = nullptr;
    EffectPreview preview;
};

namespace {

using Kind = EffectParameter::Kind;

static_assert(kCompositeMinorClass == kCompositeClass);

constexpr std::string_view kEffectKey = "effect";

OSErr ListEffect(const Effect& effect, std::int32_t number, QTAtomContainer list) {
    const auto insert = [=](OSType type, std::span<const std::byte> data) {
        return QTInsertChild(list, kParentAtomIsContainer, type, number, data, nullptr);
    };
    const OSErr code = insert(kEffectTypeAtom, CodeBytes(effect.type));
    return code == noErr ? insert(kEffectNameAtom, std::as_bytes(std::span(effect.name))) : code;
}

win32::SettingControl DescribeControl(const EffectParameter& parameter) {
    win32::SettingControl control;
    control.key = parameter.key;
    control.label = parameter.label;
    control.value = EffectValues(std::span(&parameter, 1)).TextAt(0);
    control.minimum = parameter.minimum;
    control.maximum = parameter.maximum;
    control.unit = parameter.unit;
    switch (parameter.kind) {
    case Kind::kNumber:
        control.kind = win32::SettingControl::Kind::kNumber;
        control.step = 0.1;
        break;
    case Kind::kWhole: control.kind = win32::SettingControl::Kind::kNumber; break;
    case Kind::kChoice: control.kind = win32::SettingControl::Kind::kChoice; break;
    case Kind::kToggle: control.kind = win32::SettingControl::Kind::kToggle; break;
    case Kind::kColour: control.kind = win32::SettingControl::Kind::kColour; break;
    }
    for (const EffectChoice& choice : parameter.choices)
        control.choices.push_back({std::string(choice.word), std::string(choice.label)});
    return control;
}

/// The effect and values that the dialog shows or confirms; what makes no sense is as it was at first.
EffectSettings SettingsOf(const ParameterDialog& dialog, const win32::SettingValues& values) {
    const Effect* effect = dialog.effects.front();
    for (const auto& [key, value] : values) {
        const auto named = [&text = value](const Effect* other) { return TextOfCode(other->type) == text; };
        const auto found = std::ranges::find_if(dialog.effects, named);
        if (key == kEffectKey && found != dialog.effects.end()) effect = *found;
    }
    EffectSettings settings = {effect, EffectValues(effect->parameters)};
    for (const auto& [key, value] : values) {
        if (const auto index = settings.values.Find(key)) settings.values.SetText(*index, value);
    }
    return settings;
}

win32::SettingsDialog Describe(const ParameterDialog& dialog) {
    win32::SettingsDialog description;
    description.title = "Select Effect";
    description.page_key = kEffectKey;
    description.page_label = "Effect";
    for (const Effect* effect : dialog.effects) {
        win32::SettingsPage page = {TextOfCode(effect->type), std::string(effect->name), {}};
        for (const EffectParameter& parameter : effect->parameters)
            page.controls.push_back(DescribeControl(parameter));
        description.pages.push_back(std::move(page));
    }
    if (dialog.preview.IsShown())
        description.preview = [&dialog](const win32::SettingValues& values) {
            return dialog.preview.Draw(SettingsOf(dialog, values));
        };
    return description;
}

/// memFullErr where `act` runs out of memory.
template <class Act>
OSErr WithMemory(Act act) {
    try {
        return act();
    } catch (const std::bad_alloc&) {
        return memFullErr;
    }
}

} // namespace
} // namespace qt

OSErr QTGetEffectsListExtended(QTAtomContainer* list, std::int32_t minimum_sources,
                               std::int32_t maximum_sources,
                               const std::function<bool(const QTEffectProperties&)>& filter) {
    OSErr code = QTNewAtomContainer(list);
    if (code != noErr) return code;
    std::int32_t number = 0;
    for (const qt::Effect* effect : qt::Effects()) {
        if (effect->sources < minimum_sources || effect->sources > maximum_sources) continue;
        if (!filter({effect->type, effect->sources, effect->major_class, effect->minor_class})) continue;
        if (code == noErr) code = qt::ListEffect(*effect, ++number, *list);
    }
    if (code != noErr) {
        QTDisposeAtomContainer(*list);
        *list = nullptr;
    }
    return code;
}

OSErr QTCreateStandardParameterDialog(QTAtomContainer effects, QTAtomContainer parameters,
                                      QTParameterDialog* dialog) {
    *dialog = nullptr;
    return qt::WithMemory([&]() -> OSErr {
        auto made = std::make_unique<qt::ParameterDialog>();
        made->parameters = parameters;
        const std::int32_t count = QTCountChildrenOfType(effects, kParentAtomIsContainer, kEffectTypeAtom);
        for (std::int32_t i = 1; i <= count; ++i) {
            const QTAtom atom =
                QTFindChildByIndex(effects, kParentAtomIsContainer, kEffectTypeAtom, i, nullptr);
            const qt::Effect* effect = qt::FindEffect(qt::BigEndian32(QTGetAtomData(effects, atom), 0));
            if (effect != nullptr) made->effects.push_back(effect);
        }
        if (made->effects.empty()) return paramErr;
        *dialog = made.release();
        return noErr;
    });
}

OSErr QTIsStandardParameterDialogEvent(QTParameterDialog dialog) {
    return qt::WithMemory([&]() -> OSErr {
        const auto answer = win32::AskForSettings(qt::Describe(*dialog));
        if (!answer) return userCanceledErr;
        const OSErr code = qt::WriteEffectSettings(qt::SettingsOf(*dialog, *answer), dialog->parameters);
        return code == noErr ? codecParameterDialogConfirm : code;
    });
}

void QTDismissStandardParameterDialog(QTParameterDialog dialog) {
    const std::unique_ptr<qt::ParameterDialog> dismissed(dialog);
}

OSErr QTStandardParameterDialogDoAction(QTParameterDialog dialog, std::int32_t action,
                                        const QTParamPreviewRecord& preview) {
    const bool known = preview.sourceID == 1 || preview.sourceID == 2;
    if (action != pdActionSetPreviewPicture || !known || preview.sourcePicture == nullptr) return paramErr;
    return static_cast<OSErr>(dialog->preview.SetSource(preview.sourceID, preview.sourcePicture->pixels));
}

OSErr QTStandardParameterDialogDoAction(QTParameterDialog, std::int32_t action,
                                        const QTParamXMLRecord& conversion) {
    return qt::WithMemory([&]() -> OSErr {
        if (action == pdActionConvertSettingsToXMLWithComments) {
            const auto settings = qt::ReadEffectSettings(conversion.settings);
            if (!settings) return paramErr;
            const std::string xml = qt::EffectSettingsToXml(*settings);
            return static_cast<OSErr>(qt::SetHandleBytes(conversion.xml, std::as_bytes(std::span(xml))));
        }
        if (action != pdActionConvertXMLToSettings) return paramErr;
        const std::span<const std::byte> bytes = qt::HandleBytes(conversion.xml);
        const auto settings =
            qt::EffectSettingsFromXml({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
        return settings ? qt::WriteEffectSettings(*settings, conversion.settings) : noErr;
    });
}
