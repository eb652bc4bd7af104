// The entry point of a fuzz target. Each target defines Fuzz.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

/// Uses the input in every way that it can reach; Require what has to be true of it.
void Fuzz(std::string_view);

inline void Require(bool holds) {
    if (!holds) std::abort();
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Fuzz({reinterpret_cast<const char*>(data), size});
    return 0;
}
