// Tags for the tests, put together byte by byte.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace corvane {

inline std::string Number(std::size_t number, int count, int bits_each) {
    std::string bytes;
    for (int i = count - 1; i >= 0; --i)
        bytes += static_cast<char>(number >> (i * bits_each) & ((1U << bits_each) - 1));
    return bytes;
}

inline std::string FrameBytes(int version, std::string_view id, std::string_view content,
                              std::size_t flags = 0) {
    std::string bytes(id);
    bytes += Number(content.size(), version == 2 ? 3 : 4, version == 4 ? 7 : 8);
    if (version != 2) bytes += Number(flags, 2, 8);
    return bytes.append(content);
}

inline std::string TagBytes(int version, std::string_view body, int flags = 0) {
    std::string bytes = "ID3";
    bytes.append({static_cast<char>(version), '\0', static_cast<char>(flags)});
    return bytes.append(Number(body.size(), 4, 7)).append(body);
}

} // namespace corvane
