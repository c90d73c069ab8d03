#include "MathTestUtil.h"

using namespace math;
using mathtest::FailedAssertionText;
using mathtest::Near;
using mathtest::NearMatrix;

TEST(Matrix3, InverseUndoesAGeneralMatrixAndRefusesASingularOne)
{
    const Mat3 m(2, -1, 0.5f, 1, 3, -2, 0.25f, 0, 4);
    EXPECT_TRUE(NearMatrix(Mat3(), Inverted(m) * m));
    EXPECT_TRUE(NearMatrix(Mat3(), m * Inverted(m)));
    // The adjugate is the inverse scaled by the determinant.
    EXPECT_TRUE(NearMatrix(m.Adj(), Inverted(m) * m.Determinant(), 1e-4f));

    const Mat3 singular(1, 2, 3, 2, 4, 6, 0, 1, 1);
    EXPECT_NE(std::string::npos, FailedAssertionText([&] { Inverted(singular); }).find("det != 0"));

    const Mat2 m2(4, 7, 2, 6);
    EXPECT_TRUE(NearMatrix(Mat2(), Inverted(m2) * m2));
    EXPECT_TRUE(Near(Vec2(1, 2), Inverted(m2) * (m2 * Vec2(1, 2))));
    EXPECT_NE(std::string::npos, FailedAssertionText([] { Inverted(Mat2(1, 2, 2, 4)); }).find("det != 0"));
}

TEST(Matrix3, TransformCoordinateDividesByTheHomogeneousCoordinate)
{
    Mat3 m;
    m[8] = 2;
    m[2] = 4;
    EXPECT_TRUE(Near(Vec2(3, 1), TransformCoordinate(m, Vec2(2, 2))));
    // Directions lose the translation.
    EXPECT_TRUE(Near(Vec2(1, 1), TransformDirection(m, Vec2(2, 2))));
}

TEST(Matrix3, TransformNormal2DKeepsNormalsPerpendicularUnderNonUniformScale)
{
    const Mat3 m = Mat3::Translation2D(Vec2(5, 7)) * Mat3::RotationZ(0.3f) * Mat3::Scale2D(Vec2(3, 0.5f));
    const Vec2 tangent(1, 2);
    const Vec2 normal = Rot90CCW(tangent);
    const Vec2 newTangent = TransformDirection(m, tangent);
    const Vec2 newNormal = TransformNormal2D(m, normal);
    EXPECT_NEAR(0, Dot(newTangent, newNormal), 1e-5f);
    // Orientation is kept, not flipped.
    EXPECT_GT(Cross(newTangent, newNormal), 0);
    // Transforming the normal as a direction would be wrong here.
    EXPECT_GT(std::fabs(Dot(newTangent, TransformDirection(m, normal))), 0.1f);
}

TEST(Matrix4, WidenedPlaneTransformActsOnXYAndKeepsZ)
{
    const Mat3 m = Mat3::Translation2D(Vec2(1, 2)) * Mat3::RotationZ(0.7f);
    const Mat4 w = Mat4FromMat2D(m);
    const Vec4 p = w * Vec4(3, -1, 5, 1);
    EXPECT_TRUE(Near(TransformCoordinate(m, Vec2(3, -1)), Vec2(p.x, p.y)));
    EXPECT_FLOAT_EQ(5, p.z);
    EXPECT_FLOAT_EQ(1, p.w);

    const Mat2D pose = Mat2D::TranslationRotation(Vec2(1, 2), 0.7f);
    EXPECT_TRUE(NearMatrix(w, Mat4FromMat2D(pose)));

    Mat4 t = Mat4::Translation(Vec3(1, 2, 3));
    EXPECT_EQ(3, t.Transpose()[14]);
    EXPECT_EQ(t, t.Transpose().Transpose());
    EXPECT_EQ(t, t * Mat4());
}

TEST(Mat2D, CompositionEqualsApplyingInSequence)
{
    const Mat2D a = Mat2D::TranslationRotation(Vec2(1, -2), 0.4f);
    const Mat2D b = Mat2D::TranslationRotation(Vec2(-3, 5), -1.1f);
    const Vec2 p(0.7f, 2.5f);
    EXPECT_TRUE(Near(TransformCoordinate(a, TransformCoordinate(b, p)), TransformCoordinate(a * b, p)));
    EXPECT_TRUE(Near(TransformNormal(a, TransformNormal(b, p)), TransformNormal(a * b, p)));
    // Composition is not commutative.
    EXPECT_FALSE(Near(TransformCoordinate(b * a, p), TransformCoordinate(a * b, p)));

    // Translation after rotation, as the name reads as a product.
    const Mat2D tr = Mat2D::Translation(Vec2(1, -2)) * Mat2D::Rotation(0.4f);
    EXPECT_TRUE(Near(Vec2(tr.c, tr.s), Vec2(a.c, a.s)));
    EXPECT_TRUE(Near(tr.GetTranslation(), a.GetTranslation()));
    EXPECT_TRUE(
        Near(Vec2(-1, 1), TransformCoordinate(Mat2D::TranslationRotation(Vec2(-1, 0), PIf / 2), Vec2(1, 0))));

    // The 3x3 form and the inverse agree with the direct formulas.
    EXPECT_TRUE(Near(TransformCoordinate(a, p), TransformCoordinate(a.ToMatrix3(), p)));
    EXPECT_TRUE(Near(p, TransformCoordinate(Inverted(a), TransformCoordinate(a, p))));
    EXPECT_TRUE(Near(p, InvTransformCoordinate(a, TransformCoordinate(a, p))));
    EXPECT_TRUE(Near(p, InvTransformNormal(a, TransformNormal(a, p))));
    EXPECT_NEAR(0.4f, a.GetAngle(), 1e-6f);

    Mat2D m;
    m.SetColumn0(Vec2(0, 1));
    m.SetTranslation(Vec2(2, 3));
    EXPECT_TRUE(Near(Vec2(2, 4), TransformCoordinate(m, Vec2(1, 0))));
    EXPECT_TRUE(Near(Vec2(-1, 0), m.GetColumn1()));
}
