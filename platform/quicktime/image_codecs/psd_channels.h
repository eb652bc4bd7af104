// The rows of a Photoshop document's merged image, each channel's for itself.
#pragma once

#include "platform/quicktime/image_codecs/psd_header.h"

namespace qt {

/// The rows of one channel, front to back.
class PsdChannel {
public:
    /// Rows from `offset` on. `sizes`: of the channel's packed rows, in bytes; empty for plain rows.
    PsdChannel(DataSource& source, std::uint64_t offset, std::size_t row_bytes,
               std::vector<std::uint32_t> sizes);

    /// The row's bytes as stored, zero behind what is there; null at the end of the data.
    const std::byte* Next();

private:
    std::unique_ptr<ByteReader> reader_;
    std::vector<std::byte> row_;
    std::vector<std::byte> packed_;
    std::vector<std::uint32_t> sizes_;
    std::size_t next_ = 0;
};

struct PsdChannels {
    std::unique_ptr<DataSource> inflated; ///< where the rows are, when the document has them deflated
    std::vector<PsdChannel> painted;      ///< those that are painted and, as far as it is known, there
};

/// codecBadDataErr for unknown methods and when there is no data for any row; codecSizeErr for deflated rows
/// that would take too much memory.
ComponentResult OpenPsdChannels(DataSource& source, const PsdHeader& header, PsdChannels& channels);

} // namespace qt
