#include "plugin/call_block.h"
#include "plugin/guard.h"
#include "plugin/lifecycle.h"
#include "plugin/string_table.h"

namespace corvane {
namespace {

void AnswerStartUp(FM_CallBlock& block) {
    block.result = kDoNotEnable;
    const FM_Error failure = Guarded([&] {
        block.result = StartUp(block.interface_version);
        return kFM_ErrorNone;
    });
    if (failure != kFM_ErrorNone) ShutDown();
}

void Dispatch(FM_CallBlock& block) {
    switch (block.selector) {
    case kFM_CallStartUp: AnswerStartUp(block); break;
    case kFM_CallShutdown: ShutDown(); break;
    case kFM_CallPreferences: ShowPreferences(); break;
    case kFM_CallGetString:
        GetString(block.parameter1, reinterpret_cast<char16_t*>(block.result), block.parameter3);
        break;
    default: break; // idle too: background work runs on timers of its own
    }
}

} // namespace
} // namespace corvane

/// The library's one export: the host calls it for everything but the registered functions.
extern "C" __attribute__((visibility("default"))) void FMExternCallProc(FM_CallBlock* block) {
    corvane::SetCurrentCallBlock(block);
    corvane::Guarded([&] {
        corvane::RegisterStrings(block->instance);
        corvane::Dispatch(*block);
        return kFM_ErrorNone;
    });
}
