#include "platform/quicktime/effects/parameter_set.h"

#include "platform/quicktime/movies/atoms.h"
#include "platform/quicktime/type_codes.h"

#include <cmath>

namespace qt {
namespace {

using Kind = EffectParameter::Kind;

constexpr double kFixedOne = 65'536;
constexpr std::uint32_t kSixteenBits = 257; ///< makes 0…255 into 0…65535

Bytes ValueBytes(Kind kind, double value) {
    AtomWriter bytes;
    if (kind == Kind::kColour) {
        const auto colour = static_cast<std::uint32_t>(value);
        for (const std::uint32_t channel : {Red(colour), Green(colour), Blue(colour)})
            bytes.Put16(static_cast<std::uint16_t>(channel * kSixteenBits));
    } else {
        const double units = kind == Kind::kNumber ? std::round(value * kFixedOne) : value;
        bytes.Put32(static_cast<std::uint32_t>(static_cast<std::int32_t>(units)));
    }
    return bytes.Take();
}

double ValueOf(Kind kind, std::span<const std::byte> bytes) {
    if (kind == Kind::kColour)
        return static_cast<double>(Pixel(BigEndian16(bytes, 0) / kSixteenBits,
                                         BigEndian16(bytes, 2) / kSixteenBits,
                                         BigEndian16(bytes, 4) / kSixteenBits, 0));
    const auto units = static_cast<std::int32_t>(BigEndian32(bytes, 0));
    return kind == Kind::kNumber ? units / kFixedOne : units;
}

std::span<const std::byte> FindAtom(QTAtomContainer set, OSType type) {
    return QTGetAtomData(set, QTFindChildByIndex(set, kParentAtomIsContainer, type, 1, nullptr));
}

} // namespace

OSErr WriteEffectSettings(const EffectSettings& settings, QTAtomContainer set) {
    const auto insert = [set](OSType type, std::span<const std::byte> data) {
        return QTInsertChild(set, kParentAtomIsContainer, type, 1, data, nullptr);
    };
    if (const OSErr code = insert(kParameterWhatName, CodeBytes(settings.effect->type)); code != noErr)
        return code;
    const auto parameters = settings.values.parameters();
    for (std::size_t i = 0; i < parameters.size(); ++i) {
        const Bytes value = ValueBytes(parameters[i].kind, settings.values.At(i));
        if (const OSErr code = insert(CodeOfText(parameters[i].key), value); code != noErr) return code;
    }
    return noErr;
}

std::optional<EffectSettings> ReadEffectSettings(QTAtomContainer set) {
    const Effect* effect = FindEffect(BigEndian32(FindAtom(set, kParameterWhatName), 0));
    if (effect == nullptr) return std::nullopt;
    EffectSettings settings = {effect, EffectValues(effect->parameters)};
    for (std::size_t i = 0; i < effect->parameters.size(); ++i) {
        const EffectParameter& parameter = effect->parameters[i];
        const auto bytes = FindAtom(set, CodeOfText(parameter.key));
        if (!bytes.empty()) settings.values.Set(i, ValueOf(parameter.kind, bytes));
    }
    return settings;
}

} // namespace qt
