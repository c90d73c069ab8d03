#pragma once
// What the tools share when they act on the scene or draw a gesture in progress.

#include "app/entities/Entity.h"
#include "app/tools/Line.h"
#include "input/Events.h"

namespace app
{

// The common way a tool adds something: a snapshot right before the entity joins the scene and the undo
// step, under the language key `undoKey`, right after.
void AddUndoable(const EntityPtr& entity, const char* undoKey);

// One line strip through the points in the current colour; nothing for fewer than two points.
void DrawLine(const Line& line);

// Whether a Shift key is held now.
bool IsShiftHeld();

// A GUI position in the world, through the scene's camera.
math::Vec2 ToWorld(const math::Vec2& guiPos);

// Whether a left drag that no one has taken may make a new shape: it starts on empty background, or the
// "freeDrawing" setting lets shapes be drawn over others. A drag on an entity is left to other tools.
bool MayStartShape(const input::DragEvent& event);

} // namespace app
