#include "plugin/call_block.h"

namespace corvane {
namespace {

FM_CallBlock* g_block = nullptr;

} // namespace

void SetCurrentCallBlock(FM_CallBlock* block) {
    g_block = block;
}

FM_CallBlock& CurrentCallBlock() {
    return *g_block;
}

} // namespace corvane
