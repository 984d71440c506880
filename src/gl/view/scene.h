// OpenGL drawing of the scene: the aggregate, the constraint surface and the
// extras. No window system: the caller owns the context.
#ifndef DLA_GL_VIEW_SCENE_H
#define DLA_GL_VIEW_SCENE_H

#include "app/simulation.h"
#include "view/camera.h"

// Viewport, frustum and the look-at matrix of one eye (the same matrix as
// gluLookAt); leaves the model-view current.
void LookThrough(SIMULATION &sim, const EYEVIEW *view);

// Fixed OpenGL state (depth, blending, material, lights) for a drawing mode.
void CreateEnvironment(SIMULATION &sim, int drawmode);

// The aggregate in a DLADRAW_* mode. Points and lines come from buffer
// objects kept in step with the cells.
void DrawDLA(SIMULATION &sim, int drawmode);

// Non-zero draws points and lines vertex by vertex instead (glBegin/glEnd):
// the reference the arrays must match pixel for pixel. Default 0.
extern int drawimmediate;

// Brings the vertex arrays up to date with the cells (appending new ones,
// rebuilding after any other change), picks the lines that can show under
// the current projection and model-view matrices (a GL context must be
// current) and works out their colours for DLADRAW_POINTS or DLADRAW_LINES
// (only what changed). DrawDLA does this every frame, then uploads what
// changed to its buffer objects; declared for the benchmark.
void UpdateDLAArrays(SIMULATION &sim, int drawmode);

// The constraint surface in an STLDRAW_* mode from its display list;
// STL_REBUILD recompiles the list for the mode without drawing.
enum { STL_DRAW = 0, STL_REBUILD = 1 };
void DrawSTL(SIMULATION &sim, int drawmode, int rebuild);

// Circles, axes, release points, root and light spheres when showextras is set.
void DrawExtras(SIMULATION &sim);

#endif
