#pragma once

#include <string>

namespace util
{

// 8-bit text throughout: file contents, script text and user-visible strings.
using String = std::string;

} // namespace util
