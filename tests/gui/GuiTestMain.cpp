#include "SdlTestEnvironment.h"
#include "gui/GUI.h"

namespace
{
// The interface listens to input, so it goes first.
const auto* const s_environment =
    ::testing::AddGlobalTestEnvironment(new input::test::SdlEnvironment([] { gui::GUI::Destroy(); }));
} // namespace
