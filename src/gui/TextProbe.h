#pragma once

#include "gui/components/Component.h"

namespace gui
{

// A hook for the end-to-end tests until the interface shows text fields of its own: with the environment
// variable QLEX_TEXT_PROBE set, a text field holding its value stands at the top left of the window,
// focused, and each change of its text goes to the log as "Text probe: " and the text. Without the
// variable nothing is added.
void AddTextProbe(Component& root);

} // namespace gui
