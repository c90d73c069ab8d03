#pragma once

// INTERIM STAND-IN: see Math.h beside this file.
#include "math/Math.h"
