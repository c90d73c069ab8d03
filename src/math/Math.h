#pragma once

// All of the math library. Code that hands matrices to GL also includes math/MatrixGL.h.

#include "math/BoundingBox.h"
#include "math/BoundingSphere.h"
#include "math/Mat2D.h"
#include "math/MathUtil.h"
#include "math/Matrix.h"
#include "math/OBB2D.h"
#include "math/Plane.h"
#include "math/Vector.h"
