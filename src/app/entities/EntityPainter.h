#pragma once

namespace app
{
class BoxEntity;
class CircleEntity;
class FixJointEntity;
class HingeEntity;
class PenEntity;
class PlaneEntity;
class PolyEntity;
class SpringEntity;

// How entities are drawn. The libraries that load, step and save scenes know no GL: the window program
// registers the painter that draws, and where none is registered (qlex-cli) entities draw nothing.
class EntityPainter
{
public:
    virtual ~EntityPainter() = default;

    virtual void Draw(const BoxEntity& box) = 0;
    virtual void Draw(const CircleEntity& circle) = 0;
    virtual void Draw(const PolyEntity& polygon) = 0;
    virtual void Draw(const PlaneEntity& plane) = 0;
    virtual void Draw(const HingeEntity& hinge) = 0;
    virtual void Draw(const SpringEntity& spring) = 0;
    virtual void Draw(const FixJointEntity& fixate) = 0;
    virtual void Draw(const PenEntity& pen) = 0;

    // The shape's area in black, for the mask that keeps water from showing through it.
    virtual void DrawBlack(const BoxEntity& box) = 0;
    virtual void DrawBlack(const CircleEntity& circle) = 0;
    virtual void DrawBlack(const PolyEntity& polygon) = 0;
    virtual void DrawBlack(const PlaneEntity& plane) = 0;

    // Null takes the painter away.
    static void Register(EntityPainter* painter) { s_painter = painter; }
    static EntityPainter* Get() { return s_painter; }

    // What the entities' Draw and DrawBlack call.
    template <class E> static void Paint(const E& entity)
    {
        if (s_painter)
            s_painter->Draw(entity);
    }
    template <class E> static void PaintBlack(const E& entity)
    {
        if (s_painter)
            s_painter->DrawBlack(entity);
    }

private:
    inline static EntityPainter* s_painter = nullptr;
};

} // namespace app
