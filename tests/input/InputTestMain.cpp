#include "SdlTestEnvironment.h"

namespace
{
const auto* const s_environment = ::testing::AddGlobalTestEnvironment(new input::test::SdlEnvironment());
} // namespace
