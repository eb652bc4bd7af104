#include "platform/quicktime/image_codecs/psd_channels.h"

#include "platform/quicktime/image_codecs/packbits.h"

#include <algorithm>
#include <zlib.h>

namespace qt {
namespace {

enum Method : std::uint32_t { kPlain = 0, kPacked = 1, kDeflated = 2, kDeflatedDifferences = 3 };

std::size_t RowBytes(const PsdHeader& header) {
    return (std::size_t{header.width} * header.depth + 7) / 8;
}

/// Inflates what is there of the data from `offset` on, up to the size of `out`, and answers how much that
/// is.
std::size_t Inflate(DataSource& source, std::uint64_t offset, std::span<std::byte> out) {
    z_stream stream{};
    if (inflateInit(&stream) != Z_OK) return 0;
    std::array<std::byte, 65'536> input;
    std::size_t done = 0;
    int code = Z_OK;
    while (code == Z_OK && done < out.size()) {
        const std::size_t count = source.Read(offset, input);
        if (count == 0) break;
        offset += count;
        stream.next_in = reinterpret_cast<Bytef*>(input.data());
        stream.avail_in = static_cast<uInt>(count);
        while (code == Z_OK && stream.avail_in > 0 && done < out.size()) {
            const auto room = std::min<std::size_t>(out.size() - done, std::size_t{1} << 30);
            stream.next_out = reinterpret_cast<Bytef*>(&out[done]);
            stream.avail_out = static_cast<uInt>(room);
            code = inflate(&stream, Z_NO_FLUSH);
            done += room - stream.avail_out;
        }
    }
    inflateEnd(&stream);
    return done;
}

/// Adds to each byte that which stands `distance` in front of it.
void AddBytes(std::span<std::byte> row, std::size_t distance) {
    for (std::size_t i = distance; i < row.size(); ++i) {
        row[i] = static_cast<std::byte>(std::to_integer<unsigned>(row[i]) +
                                        std::to_integer<unsigned>(row[i - distance]));
    }
}

void AddWords(std::span<std::byte> row) {
    std::uint32_t sum = 0;
    for (std::size_t i = 0; i + 1 < row.size(); i += 2) {
        sum += BigEndian16(&row[i]);
        row[i] = static_cast<std::byte>(sum >> 8);
        row[i + 1] = static_cast<std::byte>(sum);
    }
}

/// Makes samples of a row's differences. Those of floating point stand plane by plane, all highest bytes
/// first.
void AddDifferences(std::span<std::byte> row, unsigned depth, std::vector<std::byte>& scratch) {
    if (depth == 16) return AddWords(row);
    AddBytes(row, 1);
    if (depth != 32) return;
    const std::size_t count = row.size() / 4;
    scratch.assign(row.begin(), row.end());
    for (std::size_t i = 0; i < count; ++i) {
        for (std::size_t plane = 0; plane < 4; ++plane) row[4 * i + plane] = scratch[plane * count + i];
    }
}

void OpenPlain(DataSource& source, std::uint64_t at, const PsdHeader& header,
               std::vector<PsdChannel>& channels) {
    const std::size_t row_bytes = RowBytes(header);
    for (std::uint32_t i = 0; i < header.PaintedChannels(); ++i, at += row_bytes * header.height) {
        channels.emplace_back(source, at, row_bytes, std::vector<std::uint32_t>{});
    }
}

ComponentResult OpenDeflated(DataSource& source, std::uint64_t at, const PsdHeader& header,
                             bool has_differences, PsdChannels& channels) {
    const std::size_t row_bytes = RowBytes(header);
    const std::uint64_t size = std::uint64_t{row_bytes} * header.height * header.PaintedChannels();
    if (size > kMaximumPixelBytes) return codecSizeErr;
    std::vector<std::byte> rows(static_cast<std::size_t>(size));
    rows.resize(Inflate(source, at, rows));
    if (rows.empty()) return codecBadDataErr;
    std::vector<std::byte> scratch;
    for (std::size_t i = 0; has_differences && i + row_bytes <= rows.size(); i += row_bytes) {
        AddDifferences(std::span(rows).subspan(i, row_bytes), header.depth, scratch);
    }
    channels.inflated = MemorySource(std::move(rows));
    OpenPlain(*channels.inflated, 0, header, channels.painted);
    return noErr;
}

/// The sizes of all channels' rows stand in front of all rows.
ComponentResult OpenPacked(DataSource& source, std::uint64_t at, const PsdHeader& header,
                           std::vector<PsdChannel>& channels) {
    const std::size_t count_bytes = header.is_large ? 4 : 2;
    std::uint64_t counts_at = at;
    at += std::uint64_t{count_bytes} * header.channels * header.height;
    std::vector<std::byte> counts(count_bytes * header.height);
    for (std::uint32_t i = 0; i < header.PaintedChannels(); ++i, counts_at += counts.size()) {
        if (source.Read(counts_at, counts) != counts.size())
            return i > 0 ? ComponentResult{noErr} : codecBadDataErr;
        std::vector<std::uint32_t> sizes(header.height);
        std::uint64_t all = 0;
        for (std::size_t y = 0; y < sizes.size(); ++y) {
            const std::byte* count = &counts[y * count_bytes];
            sizes[y] = header.is_large ? BigEndian32(count) : BigEndian16(count);
            all += sizes[y];
        }
        channels.emplace_back(source, at, RowBytes(header), std::move(sizes));
        at += all;
    }
    return noErr;
}

} // namespace

PsdChannel::PsdChannel(DataSource& source, std::uint64_t offset, std::size_t row_bytes,
                       std::vector<std::uint32_t> sizes)
    : reader_(std::make_unique<ByteReader>(source, offset)), row_(row_bytes), sizes_(std::move(sizes)) {}

const std::byte* PsdChannel::Next() {
    std::size_t count = 0;
    if (sizes_.empty()) {
        count = reader_->Read(row_);
    } else {
        // A sensible packed row is hardly longer than the plain one.
        const std::uint32_t size = sizes_[next_++];
        packed_.resize(std::min<std::size_t>(size, PackedBound(2 * row_.size())));
        packed_.resize(reader_->Read(packed_));
        reader_->Skip(size - std::min<std::size_t>(size, packed_.size()));
        count = UnpackBits(packed_, row_).written;
    }
    std::fill(row_.begin() + static_cast<std::ptrdiff_t>(count), row_.end(), std::byte{});
    return count > 0 ? row_.data() : nullptr;
}

ComponentResult OpenPsdChannels(DataSource& source, const PsdHeader& header, PsdChannels& channels) {
    std::array<std::byte, 2> compression;
    if (source.Read(header.image_at, compression) != compression.size()) return codecBadDataErr;
    const std::uint64_t at = header.image_at + compression.size();
    const std::uint32_t method = BigEndian16(compression.data());
    switch (method) {
    case kPlain: OpenPlain(source, at, header, channels.painted); return noErr;
    case kPacked: return OpenPacked(source, at, header, channels.painted);
    case kDeflated:
    case kDeflatedDifferences:
        return OpenDeflated(source, at, header, method == kDeflatedDifferences, channels);
    default: return codecBadDataErr;
    }
}

} // namespace qt
