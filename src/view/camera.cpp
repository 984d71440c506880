#include "view/camera.h"

#include <math.h>  // tan(), sqrt(), fabs()

#include "app/records.h"
#include "surface/stl.h"  // the drawn surface's vertices for DrawnBounds

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

// The sphere fits when it lies inside each of the frustum's four side planes:
// for a half-angle of tangent t the plane through the eye is at distance
// (z t - |off|) / sqrt(1 + t^2) from a centre at depth z and offset off.
double FitCameraDistance(const CAMERA *cam, XYZ centre, double radius) {
  double r = radius * 1.05;  // the margin
  double ratio = cam->screenwidth / (double)cam->screenheight;
  if (cam->stereo == STEREO_DUAL) ratio *= 0.5;
  double tv = tan(cam->aperture * DTOR * 0.5);
  double th = ratio * tv;
  XYZ right = CrossProduct(cam->vd, cam->vu);
  Normalise(&right);
  double across = DotProduct(centre, right), up = DotProduct(centre, cam->vu);
  double along = DotProduct(centre, cam->vd);  // the centre's depth is distance + along
  double zv = (r * sqrt(1 + tv * tv) + fabs(up)) / tv;
  double zh = (r * sqrt(1 + th * th) + fabs(across)) / th;
  double d = (zv > zh ? zv : zh) - along;
  // near = d / 10 <= d + along - r and far = 10 d >= d + along + r.
  double nearest = (r - along) * 10 / 9, farthest = (r + along) / 9;
  if (d < nearest) d = nearest;
  if (d < farthest) d = farthest;
  return d;
}

static void Reach(double *r2, XYZ c, XYZ p) {
  double dx = p.x - c.x, dy = p.y - c.y, dz = p.z - c.z;
  double d2 = dx * dx + dy * dy + dz * dz;
  if (d2 > *r2) *r2 = d2;
}

int DrawnBounds(XYZ *centre, double *radius) {
  int surface = options.stldrawmode != STLDRAW_OFF && nstltri > 0;
  XYZ min = {1e32, 1e32, 1e32}, max = {-1e32, -1e32, -1e32};
  if (ncells == 0 && !surface) return 0;
  for (int i = 0; i < ncells; i++) MinMaxXYZ(&min, &max, cells[i].p);
  for (int i = 0; surface && i < nstltri; i++)
    for (int k = 0; k < 3; k++) MinMaxXYZ(&min, &max, stltri[i].p[k]);
  XYZ c = {(min.x + max.x) / 2, (min.y + max.y) / 2, (min.z + max.z) / 2};
  double r2 = 0;
  for (int i = 0; i < ncells; i++) Reach(&r2, c, cells[i].p);
  for (int i = 0; surface && i < nstltri; i++)
    for (int k = 0; k < 3; k++) Reach(&r2, c, stltri[i].p[k]);
  double r = sqrt(r2);
  const GROWTHSTATE &g = growthstate;
  if (options.dladrawmode == DLADRAW_TUBES) r += g.thickstart > g.thickend ? g.thickstart : g.thickend;
  if (r < g.branchlength) r = g.branchlength;
  *centre = c;
  *radius = r;
  return 1;
}

void FitCamera(void) {
  XYZ centre;
  double radius;
  if (!DrawnBounds(&centre, &radius)) return;
  double d = FitCameraDistance(&camera, centre, radius);
  camera.vp.x = -d * camera.vd.x;
  camera.vp.y = -d * camera.vd.y;
  camera.vp.z = -d * camera.vd.z;
  FrameCamera();
}
