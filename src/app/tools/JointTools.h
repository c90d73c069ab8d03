#pragma once
// The tools that put one joint or pen into the scene by a click on an entity, at the default joint size.

#include "app/tools/Tool.h"

namespace app
{
class Entity;

// The common click: on an entity only, one click (not the second of a double click) of the left button.
class ClickJointTool : public Tool
{
public:
    void OnClick(const input::ClickEvent& event) override;

protected:
    // The new entity, attached at p; and its undo key.
    virtual util::SharedPtr<Entity> Make(math::Vec2 p) const = 0;
    virtual const char* UndoName() const = 0;
};

class FixJointTool : public ClickJointTool
{
protected:
    util::SharedPtr<Entity> Make(math::Vec2 p) const override;
    const char* UndoName() const override { return "UndoFixate"; }
};

class HingeTool : public ClickJointTool
{
protected:
    util::SharedPtr<Entity> Make(math::Vec2 p) const override;
    const char* UndoName() const override { return "UndoHinge"; }
};

class PenTool : public ClickJointTool
{
protected:
    util::SharedPtr<Entity> Make(math::Vec2 p) const override;
    const char* UndoName() const override { return "UndoPen"; }
};

} // namespace app
