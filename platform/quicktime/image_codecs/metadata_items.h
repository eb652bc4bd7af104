// Text items from the blocks in which several formats carry them.
#pragma once

#include "platform/quicktime/image_codecs/codec.h"

#include <string_view>

namespace qt {

/// Appends an item, whose text is as utf::NearestLatin1 gives it. An empty text is passed over, and so is
/// what comes behind 32,767 items.
void AppendTextItem(OSType type, std::string_view text, std::vector<MetadataItem>& items);

/// Larger IPTC records and XMP packets are passed over: what reads them takes some forty times their size.
inline constexpr std::size_t kLargestMetadataBlock = 4 << 20;

/// Append the texts of an IPTC record, and those of an XMP packet whose types are not among the items yet, in
/// the order of the block. What is broken gives nothing.
void AppendIptcItems(std::span<const std::byte> record, std::vector<MetadataItem>& items);
void AppendXmpItems(std::string_view packet, std::vector<MetadataItem>& items);

/// The data of a numbered resource among Photoshop image resources ("8BIM" blocks); empty when it is absent.
std::span<const std::byte> FindImageResource(std::span<const std::byte> resources, std::uint32_t id);

inline constexpr std::uint32_t kIptcResource = 0x0404;
inline constexpr std::uint32_t kXmpResource = 0x0424;

} // namespace qt
