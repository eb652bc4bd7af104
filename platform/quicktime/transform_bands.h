// Work on the rows of an image by as many threads as the machine runs at a time.
#pragma once

#include <cstdint>
#include <functional>

namespace qt {

/// Calls `draw` for ranges of rows, the end not included, that cover all `rows` once, at the same time when
/// there is work enough: `pixels` counts it. `draw` may throw, and what it throws goes on to the caller when
/// all threads are done.
void DrawInBands(std::int32_t rows, std::int64_t pixels,
                 const std::function<void(std::int32_t first, std::int32_t end)>& draw);

} // namespace qt
