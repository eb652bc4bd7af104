#include "platform/quicktime/components.h"

OSErr OpenADefaultComponent(OSType type, OSType subtype, ComponentInstance* instance) {
    *instance = nullptr;
    for (const qt::ComponentKind& kind : qt::ComponentKinds()) {
        if (kind.type == type) *instance = kind.open(subtype).release();
    }
    return *instance != nullptr ? noErr : badComponentType;
}

void CloseComponent(ComponentInstance instance) {
    const std::unique_ptr<qt::Component> closed(instance);
}
