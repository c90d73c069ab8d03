#pragma once

#include "app/entities/EntityPainter.h"
#include "rendering/Texture.h"
#include "util/Mentor.h"
#include "util/SharedPtr.h"

namespace app
{
class AppSettings;
class Entity;

// The pictures of the entities in GL, registered by the window program's root. Circles and pens share
// textures made once, on first use, and made again after a window change.
class GLEntityPainter : public EntityPainter
{
public:
    static GLEntityPainter& GetInstance();

    void Draw(const BoxEntity& box) override;
    void Draw(const CircleEntity& circle) override;
    void Draw(const PolyEntity& polygon) override;
    void Draw(const PlaneEntity& plane) override;
    void Draw(const HingeEntity& hinge) override;
    void Draw(const SpringEntity& spring) override;
    void Draw(const FixJointEntity& fixate) override;
    void Draw(const PenEntity& pen) override;

    void DrawBlack(const BoxEntity& box) override;
    void DrawBlack(const CircleEntity& circle) override;
    void DrawBlack(const PolyEntity& polygon) override;
    void DrawBlack(const PlaneEntity& plane) override;

    // Makes the textures of circles (with the cake slice and without) and of pens. Once.
    static void LoadResources();
    // The polygon's distance texture, made on its first picture and shared with its clones.
    static void LoadRenderingResources(const PolyEntity& polygon);

private:
    using TextureMentorPtr = util::SharedPtr<util::Mentor<rendering::Texture>>;

    // Boxes and circle of the polygon, as the application's debug switches ask.
    static void DrawDebugPictures(const PolyEntity& polygon, const AppSettings& settings);

    static TextureMentorPtr s_circleTex;
    static TextureMentorPtr s_circleTexNoCake;
    static TextureMentorPtr s_penTex;
    static TextureMentorPtr s_ringTex;
};

} // namespace app
