#include "platform/quicktime/projection.h"

namespace qt {

Projection ScaleAndMove(double scale_x, double scale_y, double left, double top) {
    return {{{{scale_x, 0.0, 0.0}, {0.0, scale_y, 0.0}, {left, top, 1.0}}}};
}

Projection Product(const Projection& first, const Projection& second) {
    Projection result{};
    for (std::size_t i = 0; i < 3; ++i) {
        for (std::size_t j = 0; j < 3; ++j) {
            for (std::size_t k = 0; k < 3; ++k) result.rows[i][j] += first.rows[i][k] * second.rows[k][j];
        }
    }
    return result;
}

Projection Inverse(const Projection& map) {
    const auto& m = map.rows;
    Projection result;
    for (std::size_t i = 0; i < 3; ++i) {
        for (std::size_t j = 0; j < 3; ++j) {
            const std::size_t row = (j + 1) % 3;
            const std::size_t next_row = (j + 2) % 3;
            const std::size_t column = (i + 1) % 3;
            const std::size_t next_column = (i + 2) % 3;
            result.rows[i][j] = m[row][column] * m[next_row][next_column] - //
                                m[row][next_column] * m[next_row][column];
        }
    }
    return result;
}

double Determinant(const Projection& map) {
    const Projection inverse = Inverse(map);
    double sum = 0.0;
    for (std::size_t i = 0; i < 3; ++i) sum += map.rows[0][i] * inverse.rows[i][0];
    return sum;
}

} // namespace qt
