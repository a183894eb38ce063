// The widget's way in: what the extension host is given to create the widget from.
#pragma once

#include "platform/extension.h"

namespace virelune {

/// The controllers that the bundle can name as its principal class, by class name.
platform::PrincipalClasses principalClasses();

}  // namespace virelune
