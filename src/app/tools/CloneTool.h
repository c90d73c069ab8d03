#pragma once

#include "app/Group.h"
#include "app/tools/Tool.h"

namespace app
{

// Drags a ghost of the selection with Ctrl and the left button, and drops a copy where it is let go.
class CloneTool : public Tool
{
public:
    void OnDragBegin(const input::DragEvent& event) override;
    void OnDrag(const input::DragEvent& event) override;
    void OnDragEnd(const input::DragEvent& event) override;
    bool Disband() override;
    util::String GetCursorName() const override;

    math::Vec2 GetOffset() const { return m_offset; }

private:
    void ClearOffsets();

    GroupPtr m_group;
    math::Vec2 m_offset;
};

} // namespace app
