#include "images/transform_state.h"

namespace corvane {
namespace {

PendingTransform g_transform;

} // namespace

PendingTransform& CurrentTransform() {
    return g_transform;
}

void ResetTransform() {
    g_transform = {};
}

} // namespace corvane
