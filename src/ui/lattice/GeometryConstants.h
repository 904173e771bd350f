#pragma once

#include <array>

// What the lattice is drawn by. The plain ints can be edited while the program runs; they are
// read anew when a scene is built. Lengths are in scene units, angles in degrees
// anticlockwise from the right, dim and brighten factors in percent as QColor::darker and
// QColor::lighter take them.

extern int ANGLE_2_PLUS; // direction of a step of +2; -1: its child is a leaf
extern int ANGLE_3_PLUS;
extern int ANGLE_FRONT_OFFSET;        // no effect on the drawing
extern int ANGLE_FRONT_ROTATE_OFFSET; // no effect on the drawing
extern int STRUT_2_LENGTH;
extern int STRUT_3_LENGTH;
extern int STRUT_WIDTH;
extern int LINK_WIDTH;           // of a link, and of a thinned strut
extern int LEAVES_PLUS_OFFSET_X; // of the flowers from their ball
extern int LEAVES_PLUS_OFFSET_Y;
extern int GRAPE_LEAVES_WIDTH;  // of the column of grapes
extern int GRAPE_LEAVES_HEIGHT; // of one octave of it
extern int BALL_DIAMETER;
extern int LEAF_DIAMETER;
extern int LEAVES_RADIUS; // of the flower's circle
extern int LEAVES_START_ANGLE;
extern int BALL_DIM_FACTOR;      // a ball at rest, a strut
extern int BALL_BRIGHTEN_FACTOR; // a playing ball
extern int OUTLINE_BRIGHTEN_FACTOR;
extern int BALL_GLOW_SIZE_FACTOR; // percent of the ball's diameter
extern int GLOW_ALPHA_START;      // at the glow's centre, 0 to 255
extern int PRIME_DISABLED_DIM_FACTOR;

/// Deliberately this short: every position of the picture follows from it.
inline constexpr double PI = 3.14159265;
inline constexpr double CIRCLE_NODE_DISTANCE_FACTOR = 1.0;

inline constexpr double radiansFromDegrees(int degrees)
{
    return degrees / (180 / PI);
}

struct GeometryConstant
{
    const char* name;
    int* value;
};

/// The ints above, in their order, for a dialog that edits them.
extern const std::array<GeometryConstant, 22> GEOMETRY_CONSTANTS;
