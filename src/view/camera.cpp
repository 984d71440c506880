#include "view/camera.h"

#include <math.h>  // tan(), sqrt(), fabs()

#include "app/simulation.h"
#include "surface/stl.h"  // the drawn surface's vertices for DrawnBounds

void ForgetCameraHome(SIMULATION &sim) { sim.camerahomed = 0; }

void CameraHome(SIMULATION &sim) {
  if (!sim.camerahomed) {
    sim.camera.stereo = STEREO_MONO;
    sim.camera.screenwidth = 800;
    sim.camera.screenheight = 600;
  }
  sim.camera.aperture = 60;
  sim.camera.vp.x = 60;
  sim.camera.vp.y = 0;
  sim.camera.vp.z = 0;
  sim.camera.focallength = Modulus(sim.camera.vp);
  sim.camera.eyesep = sim.camera.focallength / 30;
  sim.camera.near = sim.camera.focallength / 10;
  sim.camera.far = sim.camera.focallength * 10;
  sim.camera.vd.x = -1;
  sim.camera.vd.y = 0;
  sim.camera.vd.z = 0;
  sim.camera.vu.x = 0;
  sim.camera.vu.y = 0;
  sim.camera.vu.z = 1;
  sim.camera.pr.x = 0;
  sim.camera.pr.y = 0;
  sim.camera.pr.z = 0;
  Normalise(&sim.camera.vd);
  Normalise(&sim.camera.vu);
  sim.camerahomed = 1;
}

void RotateCamera(SIMULATION &sim, double ix, double iy, double iz) {
  double radius = Modulus(sim.camera.vp);
  // Computed once: the up/down turn deliberately reuses it after a left/right turn.
  XYZ right = CrossProduct(sim.camera.vd, sim.camera.vu);

  if (iz != 0) sim.camera.vu = ArbitraryRotate(sim.camera.vu, iz, sim.camera.vd);
  if (ix != 0) {
    sim.camera.vd = ArbitraryRotate(sim.camera.vd, ix, sim.camera.vu);
    Normalise(&sim.camera.vd);
    sim.camera.vp.x = -radius * sim.camera.vd.x;
    sim.camera.vp.y = -radius * sim.camera.vd.y;
    sim.camera.vp.z = -radius * sim.camera.vd.z;
    sim.camera.vu = CrossProduct(right, sim.camera.vd);
  }
  if (iy != 0) {
    sim.camera.vd = ArbitraryRotate(sim.camera.vd, iy, right);
    Normalise(&sim.camera.vd);
    sim.camera.vp.x = -radius * sim.camera.vd.x;
    sim.camera.vp.y = -radius * sim.camera.vd.y;
    sim.camera.vp.z = -radius * sim.camera.vd.z;
    sim.camera.vu = CrossProduct(right, sim.camera.vd);
  }
  Normalise(&sim.camera.vu);
}

void ZoomCamera(SIMULATION &sim, int in) {
  if (in) {
    if (sim.camera.aperture > 1) sim.camera.aperture *= 0.95;
  } else {
    if (sim.camera.aperture < 90) sim.camera.aperture /= 0.95;
  }
}

void DollyCamera(SIMULATION &sim, int closer) {
  double d = Modulus(sim.camera.vp);
  Normalise(&sim.camera.vp);
  double s = closer ? d * 0.95 : d / 0.95;
  sim.camera.vp.x *= s;
  sim.camera.vp.y *= s;
  sim.camera.vp.z *= s;
}

void FrameCamera(SIMULATION &sim) {
  sim.camera.focallength = Modulus(sim.camera.vp);
  sim.camera.eyesep = sim.camera.focallength / 30;
  sim.camera.near = sim.camera.focallength / 10;
  sim.camera.far = sim.camera.focallength * 10;
}

EYEVIEW EyeView(SIMULATION &sim, int eye) {
  int w = sim.camera.screenwidth;
  int h = sim.camera.screenheight;
  int dual = sim.camera.stereo == STEREO_DUAL;
  double ratio = w / (double)h;
  if (dual) ratio *= 0.5;
  double halfheight = sim.camera.near * tan(sim.camera.aperture * DTOR * 0.5);
  double shift = 0.5 * sim.camera.eyesep * sim.camera.near / sim.camera.focallength;
  XYZ right = CrossProduct(sim.camera.vd, sim.camera.vu);
  Normalise(&right);
  right.x *= sim.camera.eyesep / 2;
  right.y *= sim.camera.eyesep / 2;
  right.z *= sim.camera.eyesep / 2;

  EYEVIEW v;
  v.bottom = -halfheight;
  v.top = halfheight;
  v.near = sim.camera.near;
  v.far = sim.camera.far;
  v.x = 0;
  v.y = 0;
  v.width = w;
  v.height = h;
  v.eye = sim.camera.vp;
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
  v.eye.x = sim.camera.vp.x + sign * right.x;
  v.eye.y = sim.camera.vp.y + sign * right.y;
  v.eye.z = sim.camera.vp.z + sign * right.z;
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

int DrawnBounds(SIMULATION &sim, XYZ *centre, double *radius) {
  int surface = sim.options.stldrawmode != STLDRAW_OFF && sim.nstltri > 0;
  XYZ min = {1e32, 1e32, 1e32}, max = {-1e32, -1e32, -1e32};
  if (sim.ncells == 0 && !surface) return 0;
  for (int i = 0; i < sim.ncells; i++) MinMaxXYZ(&min, &max, sim.cells[i].p);
  for (int i = 0; surface && i < sim.nstltri; i++)
    for (int k = 0; k < 3; k++) MinMaxXYZ(&min, &max, sim.stltri[i].p[k]);
  XYZ c = {(min.x + max.x) / 2, (min.y + max.y) / 2, (min.z + max.z) / 2};
  double r2 = 0;
  for (int i = 0; i < sim.ncells; i++) Reach(&r2, c, sim.cells[i].p);
  for (int i = 0; surface && i < sim.nstltri; i++)
    for (int k = 0; k < 3; k++) Reach(&r2, c, sim.stltri[i].p[k]);
  double r = sqrt(r2);
  const GROWTHSTATE &g = sim.growthstate;
  if (sim.options.dladrawmode == DLADRAW_TUBES) r += g.thickstart > g.thickend ? g.thickstart : g.thickend;
  if (r < g.branchlength) r = g.branchlength;
  *centre = c;
  *radius = r;
  return 1;
}

void FitCamera(SIMULATION &sim) {
  XYZ centre;
  double radius;
  if (!DrawnBounds(sim, &centre, &radius)) return;
  double d = FitCameraDistance(&sim.camera, centre, radius);
  sim.camera.vp.x = -d * sim.camera.vd.x;
  sim.camera.vp.y = -d * sim.camera.vd.y;
  sim.camera.vp.z = -d * sim.camera.vd.z;
  FrameCamera(sim);
}
