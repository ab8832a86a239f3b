#pragma once

#include <QPixmap>

namespace tarvex {

// The product's picture, drawn: a figure in a lunge with a resistance band on the
// program's blue, at the size asked for (square).
QPixmap ProductPicture(int size);

} // namespace tarvex
