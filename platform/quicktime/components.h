// Components: the kinds of work that the media layer does, by four-character type and subtype.
#pragma once

#include "platform/quicktime/types.h"

#include <memory>
#include <span>

namespace qt {

/// Base of everything that can be opened as a component.
class Component {
public:
    Component() = default;
    Component(const Component&) = delete;
    Component& operator=(const Component&) = delete;
    virtual ~Component() = default;
};

inline constexpr OSType kGraphicsImporter = Code("grip"); ///< subtype: the file type, as 'JPEG'
inline constexpr OSType kGraphicsExporter = Code("grex");
inline constexpr OSType kAnySubtype = 0;

/// One row opens all components of a type. Null: there is none of that subtype.
struct ComponentKind {
    OSType type;
    std::unique_ptr<Component> (*open)(OSType subtype);
};

std::span<const ComponentKind> ComponentKinds();

} // namespace qt

using ComponentInstance = qt::Component*;

/// Opens the component of that type and subtype (qt::kAnySubtype: the first of its type), which the caller
/// closes. badComponentType when there is none; `instance` is null then.
OSErr OpenADefaultComponent(OSType type, OSType subtype, ComponentInstance* instance);
void CloseComponent(ComponentInstance instance);

namespace qt {

struct ComponentCloser {
    void operator()(ComponentInstance instance) const { CloseComponent(instance); }
};

/// Owner of an opened component.
using OpenComponent = std::unique_ptr<Component, ComponentCloser>;

} // namespace qt
