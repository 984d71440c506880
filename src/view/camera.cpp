#include "view/camera.h"

#include <math.h>  // tan()

#include "app/records.h"

// The first home also sets mono and the window size; later ones keep them.
static int first = 0;

void ForgetCameraHome(void) { first = 0; }

void CameraHome(void) {
  if (!first) {
    camera.stereo = STEREO_MONO;
    camera.screenwidth = 800;
    camera.screenheight = 600;
  }
  camera.aperture = 60;
  camera.vp.x = 60;
  camera.vp.y = 0;
  camera.vp.z = 0;
  camera.focallength = Modulus(camera.vp);
  camera.eyesep = camera.focallength / 30;
  camera.near = camera.focallength / 10;
  camera.far = camera.focallength * 10;
  camera.vd.x = -1;
  camera.vd.y = 0;
  camera.vd.z = 0;
  camera.vu.x = 0;
  camera.vu.y = 0;
  camera.vu.z = 1;
  camera.pr.x = 0;
  camera.pr.y = 0;
  camera.pr.z = 0;
  Normalise(&camera.vd);
  Normalise(&camera.vu);
  first = 1;
}

void RotateCamera(double ix, double iy, double iz) {
  double radius = Modulus(camera.vp);
  // Computed once: the up/down turn deliberately reuses it after a left/right turn.
  XYZ right = CrossProduct(camera.vd, camera.vu);

  if (iz != 0) camera.vu = ArbitraryRotate(camera.vu, iz, camera.vd);
  if (ix != 0) {
    camera.vd = ArbitraryRotate(camera.vd, ix, camera.vu);
    Normalise(&camera.vd);
    camera.vp.x = -radius * camera.vd.x;
    camera.vp.y = -radius * camera.vd.y;
    camera.vp.z = -radius * camera.vd.z;
    camera.vu = CrossProduct(right, camera.vd);
  }
  if (iy != 0) {
    camera.vd = ArbitraryRotate(camera.vd, iy, right);
    Normalise(&camera.vd);
    camera.vp.x = -radius * camera.vd.x;
    camera.vp.y = -radius * camera.vd.y;
    camera.vp.z = -radius * camera.vd.z;
    camera.vu = CrossProduct(right, camera.vd);
  }
  Normalise(&camera.vu);
}

void ZoomCamera(int in) {
  if (in) {
    if (camera.aperture > 1) camera.aperture *= 0.95;
  } else {
    if (camera.aperture < 90) camera.aperture /= 0.95;
  }
}

void DollyCamera(int closer) {
  double d = Modulus(camera.vp);
  Normalise(&camera.vp);
  double s = closer ? d * 0.95 : d / 0.95;
  camera.vp.x *= s;
  camera.vp.y *= s;
  camera.vp.z *= s;
}

void FrameCamera(void) {
  camera.focallength = Modulus(camera.vp);
  camera.eyesep = camera.focallength / 30;
  camera.near = camera.focallength / 10;
  camera.far = camera.focallength * 10;
}

EYEVIEW EyeView(int eye) {
  int w = camera.screenwidth;
  int h = camera.screenheight;
  int dual = camera.stereo == STEREO_DUAL;
  double ratio = w / (double)h;
  if (dual) ratio *= 0.5;
  double halfheight = camera.near * tan(camera.aperture * DTOR * 0.5);
  double shift = 0.5 * camera.eyesep * camera.near / camera.focallength;
  XYZ right = CrossProduct(camera.vd, camera.vu);
  Normalise(&right);
  right.x *= camera.eyesep / 2;
  right.y *= camera.eyesep / 2;
  right.z *= camera.eyesep / 2;

  EYEVIEW v;
  v.bottom = -halfheight;
  v.top = halfheight;
  v.near = camera.near;
  v.far = camera.far;
  v.x = 0;
  v.y = 0;
  v.width = w;
  v.height = h;
  v.eye = camera.vp;
  if (eye == EYE_MONO) {
    v.left = -ratio * halfheight;
    v.right = ratio * halfheight;
    return v;
  }
  double sign = eye == EYE_RIGHT ? 1 : -1;
  v.left = -ratio * halfheight - sign * shift;
  v.right = ratio * halfheight - sign * shift;
  if (dual) {
    v.width = w / 2;
    if (eye == EYE_RIGHT) v.x = w / 2;
  }
  v.eye.x = camera.vp.x + sign * right.x;
  v.eye.y = camera.vp.y + sign * right.y;
  v.eye.z = camera.vp.z + sign * right.z;
  return v;
}
