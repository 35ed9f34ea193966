// The steps that a picture is drawn with.
//
// Lengths are pixels from the top left, angles degrees clockwise from the right. FILL and LINE are
// names of colours, "-" none. Outlines run inside the shape's edge, so that shapes at whole pixels
// are sharp.
//
//   pen WIDTH                           width of the lines that follow
//   move X Y | turn DEG | scale S       what follows is shifted, turned, enlarged
//   push | pop                          keep and restore pen and position
//   norim X Y W H                       no light rim inside this rectangle (whole pixels); the last
//                                       one counts
//   box X Y W H RADIUS FILL LINE        a rectangle, its corners rounded
//   poly FILL LINE X Y ...              a closed polygon
//   line LINE X Y ...                   a line through points
//   curve LINE X0 Y0 X1 Y1 X2 Y2 X3 Y3  a Bezier curve
//   arc LINE X Y RADIUS FROM TO         part of a circle, clockwise
//   dashes LINE X Y ...                 like line, dashed
//   disc X Y RADIUS FILL LINE           a circle
//   arrow LINE X0 Y0 X1 Y1              its head at the second point
//   turnarrow LINE X Y RADIUS FROM TO   an arc with a head at its end; TO below FROM turns left
//   lines LINE X Y W COUNT STEP         lines of print, the last one shorter
//   text COLOUR X Y SIZE WORDS...       X is the middle, Y the top; capitals are 6 x SIZE high

#pragma once

#include <map>
#include <string>

#include "canvas.h"
#include "description.h"

namespace kpx::pixmaps {

// Draws the picture's steps, each of its pixels as `scale` by `scale` of the image; throws
// DescriptionError for any other step.
Image Draw(const Picture &picture, const std::map<std::string, unsigned> &colours, int scale = 1);

}  // namespace kpx::pixmaps
