// Drawing of the scene.
#ifndef DLA_VIEW_RENDER_H
#define DLA_VIEW_RENDER_H

// GLUT display callback.
void HandleDisplay(void);

// Fixed OpenGL state (depth, blending, material, lights) for a drawing mode.
void CreateEnvironment(int drawmode);

// The aggregate in the given mode (1 off, 2 points, 3 lines, 5 tubes).
// Points and lines come from vertex arrays kept in step with the cells.
void DrawDLA(int drawmode);

// Non-zero draws points and lines vertex by vertex instead (glBegin/glEnd):
// the reference the arrays must match pixel for pixel. Default 0.
extern int drawimmediate;

// Brings the vertex arrays up to date with the cells (appending new ones,
// rebuilding after any other change) and works out their colours for mode 2
// or 3. DrawDLA does this every frame; declared for the benchmark.
void UpdateDLAArrays(int drawmode);

// The constraint surface from its display list; rebuild non-zero recompiles
// the list for the given mode without drawing.
void DrawSTL(int drawmode, int rebuild);

// Circles, axes, release points, root and light spheres when showextras is set.
void DrawExtras(void);

#endif
