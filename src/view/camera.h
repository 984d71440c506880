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

#endif
