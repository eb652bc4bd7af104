#include "platform/quicktime/movies/movie_model.h"

#include <algorithm>

namespace qt {

OSErr MediaSamples::LoadRuns() {
    if (!find_runs) return noErr;
    const auto find = std::exchange(find_runs, nullptr);
    return find(*this);
}

void MediaSamples::Append(const SampleRun& run) {
    if (run.count == 0) return;
    if (!runs.empty()) {
        SampleRun& last = runs.back();
        const bool continues = last.description == run.description && last.source == run.source &&
                               last.duration == run.duration && last.size == run.size &&
                               last.offset + last.count * last.size == run.offset && last.End() == run.start;
        if (continues) {
            last.count += run.count;
            return;
        }
    }
    runs.push_back(run);
}

const SampleRun* FindRun(const MediaSamples& samples, TimeValue time) {
    const auto behind = std::upper_bound(samples.runs.begin(), samples.runs.end(), time,
                                         [](TimeValue at, const SampleRun& run) { return at < run.start; });
    if (behind == samples.runs.begin()) return nullptr;
    const SampleRun& run = *(behind - 1);
    return time < run.End() ? &run : nullptr;
}

OSErr ReadSamples(const MediaSamples& samples, TimeValue time, std::int64_t count, std::span<std::byte> out,
                  std::int64_t& read) {
    read = 0;
    const SampleRun* first = FindRun(samples, time);
    if (first == nullptr) return invalidTime;
    const SampleRun* const end = samples.runs.data() + samples.runs.size();
    for (const SampleRun* run = first; run != end && count > 0; ++run) {
        if (run->description != first->description) break;
        const auto skipped =
            run == first ? static_cast<std::uint64_t>((time - run->start) / run->duration) : 0;
        const std::uint64_t wanted = std::min(run->count - skipped, static_cast<std::uint64_t>(count));
        const std::uint64_t fitting =
            run->size > 0 ? std::min<std::uint64_t>(wanted, out.size() / run->size) : wanted;
        const std::uint64_t size = fitting * run->size;
        const auto& source = samples.sources[run->source].data;
        if (source == nullptr) return read > 0 ? noErr : fnfErr;
        const std::size_t got = source->Read(run->offset + skipped * run->size, out.first(size));
        const std::uint64_t whole = run->size > 0 ? got / run->size : fitting;
        read += static_cast<std::int64_t>(whole);
        count -= static_cast<std::int64_t>(whole);
        out = out.subspan(whole * run->size);
        if (whole < wanted) break;
    }
    return read > 0 || count == 0 ? noErr : eofErr;
}

DataReference CopyDataReference(Handle reference, OSType type) {
    const auto bytes = HandleBytes(reference);
    Handle copy = nullptr;
    if (reference != nullptr) PtrToHand(bytes.data(), &copy, static_cast<Size>(bytes.size()));
    return {MemoryHandle(copy), type};
}

DataReference MemoryReference() {
    constexpr Handle kNowhere = nullptr;
    Handle reference = nullptr;
    PtrToHand(&kNowhere, &reference, sizeof(kNowhere));
    return {MemoryHandle(reference), kHandleDataHandler};
}

} // namespace qt
