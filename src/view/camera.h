// The orbiting camera: home position and the one rotation primitive. Pure
// arithmetic on the camera record; no GL.
#ifndef DLA_VIEW_CAMERA_H
#define DLA_VIEW_CAMERA_H

#include "app/simulation.h"  // CAMERA
#include "lib/vector.h"

// Home view. The first call also sets mono and an 800 x 600 window; later
// calls keep the stereo mode and the window size.
void CameraHome(SIMULATION &sim);

// Makes the next CameraHome a first one again (a program reset).
void ForgetCameraHome(SIMULATION &sim);

// Turns the view: ix about the up vector, iy about the right vector, iz about
// the view direction (radians). A zero angle skips that turn.
void RotateCamera(SIMULATION &sim, double ix, double iy, double iz);

// Zoom by field of view: ZOOM_IN narrows the aperture by 0.95 while it is
// above 1 degree, else widens it by 1/0.95 while it is below 90. The limit
// is tested before the step, so the ends are just below 1 and just at or
// above 90.
enum { ZOOM_OUT = 0, ZOOM_IN = 1 };
void ZoomCamera(SIMULATION &sim, int in);

// Moves the eye along its own direction: DOLLY_CLOSER scales |vp| by 0.95,
// else by 1/0.95. No bounds; vd is left alone.
enum { DOLLY_AWAY = 0, DOLLY_CLOSER = 1 };
void DollyCamera(SIMULATION &sim, int closer);

// The projection of one eye for the frame being drawn: glFrustum bounds at
// the near plane, the viewport, and the eye, which looks along vd with vu up.
struct EYEVIEW {
  double left, right, bottom, top, near, far;
  int x, y, width, height;
  XYZ eye;
};
enum { EYE_MONO = 0, EYE_RIGHT, EYE_LEFT };

// Every frame: focallength = |vp|, and eyesep, near and far from it, so
// dollying moves the clip planes and the eye separation with the eye.
void FrameCamera(SIMULATION &sim);

// One eye's view for the window size and stereo mode in camera. Side by
// side stereo gives each eye half the window (integer halving), the right
// eye the right half; the eyes sit half the separation either side of vp.
EYEVIEW EyeView(SIMULATION &sim, int eye);

// dla3d-batch --fit. The distance from the origin, along -cam->vd, at which
// an eye looking along vd (up cam->vu) sees the whole sphere (centre,
// radius), widened by a twentieth, inside the frame of cam->aperture
// (vertical, degrees) and cam->screenwidth / cam->screenheight (halved
// for side by side stereo, as EyeView halves it); farther when FrameCamera's
// clipping planes (a tenth and ten times that distance) would cut the sphere.
// The sphere may lie off the axis. Positive for any radius > 0.
double FitCameraDistance(const CAMERA *cam, XYZ centre, double radius);

// The sphere around what the picture draws of the model: the box centre of
// every cell, and of the constraint surface's vertices when it is drawn
// (options.stldrawmode not off and facets present); tubes widen it by their
// thicker end, and it is at least a branch length. Returns 0, setting
// nothing, when there is no cell and no drawn surface.
int DrawnBounds(SIMULATION &sim, XYZ *centre, double *radius);

// Moves camera.vp along its own direction to FitCameraDistance of
// DrawnBounds and frames it (FrameCamera). Leaves the camera alone when
// DrawnBounds finds nothing.
void FitCamera(SIMULATION &sim);

#endif
