// Drawing the figure: rounded limbs, the trunk, the neck and the head with hair and face.
#pragma once

#include "Drawing.h"
#include "Posture.h"

namespace tarvex::media {

// Adds the shapes of a placed figure to the drawing's body list.
void DrawFigure(Drawing& d, const Skeleton& world, const Posture& posture);

} // namespace tarvex::media
