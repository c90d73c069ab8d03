#include "gui/TextMetrics.h"

namespace gui
{

util::SharedPtr<TextMetrics> FixedWidthMetrics::Get()
{
    static util::SharedPtr<TextMetrics> s_instance = QLEX_NEW new FixedWidthMetrics();
    return s_instance;
}

} // namespace gui
