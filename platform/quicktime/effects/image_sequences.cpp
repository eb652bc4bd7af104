#include "platform/quicktime/effects/image_sequences.h"

#include "platform/quicktime/effects/render.h"
#include "platform/quicktime/movies/atoms.h"

#include <map>
#include <new>

namespace qt {

struct EffectSequence {
    QTAtomContainer parameters = nullptr;
    GWorldPtr port = nullptr;
    std::map<OSType, GWorldPtr> sources; ///< by name
};

namespace {

bool HasPixels(GWorldPtr port) {
    return port != nullptr && port->pixels.width() > 0;
}

/// The source for the effect's n-th image; null when there is none.
const PixelImage* Source(const EffectSequence& sequence, std::int32_t number) {
    const std::int32_t count =
        QTCountChildrenOfType(sequence.parameters, kParentAtomIsContainer, kEffectDataSourceType);
    for (std::int32_t i = 1; i <= count; ++i) {
        std::int32_t id = 0;
        const QTAtom atom =
            QTFindChildByIndex(sequence.parameters, kParentAtomIsContainer, kEffectDataSourceType, i, &id);
        if (id != number) continue;
        const auto found = sequence.sources.find(BigEndian32(QTGetAtomData(sequence.parameters, atom), 0));
        if (found != sequence.sources.end()) return &found->second->pixels;
    }
    return nullptr;
}

} // namespace
} // namespace qt

OSErr DecompressSequenceBeginS(ImageSequence* sequence, QTAtomContainer parameters, GWorldPtr port) {
    *sequence = nullptr;
    if (!qt::HasPixels(port)) return paramErr;
    try {
        *sequence = std::make_unique<qt::EffectSequence>(qt::EffectSequence{parameters, port, {}}).release();
    } catch (const std::bad_alloc&) {
        return memFullErr;
    }
    return noErr;
}

OSErr CDSequenceNewDataSource(ImageSequence sequence, OSType name, GWorldPtr source) {
    if (!qt::HasPixels(source)) return paramErr;
    try {
        sequence->sources[name] = source;
    } catch (const std::bad_alloc&) {
        return memFullErr;
    }
    return noErr;
}

OSErr DecompressSequenceFrameWhen(ImageSequence sequence) {
    const qt::PixelImage* a = qt::Source(*sequence, 1);
    qt::PixelImage& out = sequence->port->pixels;
    if (a == nullptr || a->width() != out.width() || a->height() != out.height()) return paramErr;
    const auto settings = qt::ReadEffectSettings(sequence->parameters);
    return static_cast<OSErr>(qt::RenderEffect(settings, *a, qt::Source(*sequence, 2), out));
}

void CDSequenceEnd(ImageSequence sequence) {
    const std::unique_ptr<qt::EffectSequence> ended(sequence);
}
