#include "view/camera.h"

#include "app/records.h"

void CameraHome(void) {
  static bool first = false;
  if (!first) {
    camera.stereo = 0;
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
  first = true;
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
