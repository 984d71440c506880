// The orbiting camera: home position and the one rotation primitive. Pure
// arithmetic on the camera record; no GL.
#ifndef DLA_VIEW_CAMERA_H
#define DLA_VIEW_CAMERA_H

// Home view. The first call also sets mono and an 800 x 600 window; later
// calls keep the stereo mode and the window size.
void CameraHome(void);

// Turns the view: ix about the up vector, iy about the right vector, iz about
// the view direction (radians). A zero angle skips that turn.
void RotateCamera(double ix, double iy, double iz);

// Zoom by field of view: in != 0 narrows the aperture by 0.95 while it is
// above 1 degree, else widens it by 1/0.95 while it is below 90. The limit
// is tested before the step, so the ends are just below 1 and just at or
// above 90.
void ZoomCamera(int in);

// Moves the eye along its own direction: closer != 0 scales |vp| by 0.95,
// else by 1/0.95. No bounds; vd is left alone.
void DollyCamera(int closer);

#endif
