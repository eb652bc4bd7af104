#include "platform/fmwrapper/host_engine.h"
#include "platform/fmwrapper/objects.h"
#include "platform/fmwrapper/operation.h"

using fm::Operation;

namespace fm {
namespace {

HostEngine* g_engine = nullptr;

} // namespace

void SetHostEngine(HostEngine* engine) {
    g_engine = engine;
}

HostEngine* CurrentHostEngine() {
    return g_engine;
}

} // namespace fm

FM_ExprEnv* FM_ExprEnv_Constructor1(FM_Status* status) {
    return Operation("FM_ExprEnv_Constructor1", status, [] { return new FM_ExprEnv; });
}

void FM_ExprEnv_Delete(FM_ExprEnv* environment, FM_Status* status) {
    fm::Delete("FM_ExprEnv_Delete", environment, status);
}

FM_Error FM_ExprEnv_Evaluate(const FM_ExprEnv* environment, const FM_Text* expression, FM_Data* result,
                             FM_Status* status) {
    return Operation("FM_ExprEnv_Evaluate", status, [&]() -> FM_Error {
        if (environment->engine == nullptr) return kFM_ErrorWrongParameter;
        return environment->engine->Evaluate(expression->units, *result);
    });
}

FM_Error FM_ExprEnv_RegisterExternalFunction(const FM_QuadChar* plugin_id, std::int16_t function_id,
                                             const FM_Text* name, const FM_Text* prototype,
                                             std::int16_t minimum, std::int16_t maximum, std::uint32_t flags,
                                             FM_ExternalFunction handler, FM_Status* status) {
    return Operation("FM_ExprEnv_RegisterExternalFunction", status, [&]() -> FM_Error {
        if (fm::g_engine == nullptr || handler == nullptr) return kFM_ErrorWrongParameter;
        return fm::g_engine->Register(
            {plugin_id->code, function_id, name->units, prototype->units, minimum, maximum, flags, handler});
    });
}

FM_Error FM_ExprEnv_UnRegisterExternalFunction(const FM_QuadChar* plugin_id, std::int16_t function_id,
                                               FM_Status* status) {
    return Operation("FM_ExprEnv_UnRegisterExternalFunction", status, [&]() -> FM_Error {
        if (fm::g_engine == nullptr) return kFM_ErrorWrongParameter;
        return fm::g_engine->Unregister(plugin_id->code, function_id);
    });
}
