// Colour maps of the support library: 29 piecewise linear maps given as
// stop tables, a hue wheel (30) and a twelve-step wheel (31).
#include "lib/colour.h"

namespace {

struct COLOURSTOP {
  double t;        // position in the range, 0..1
  double r, g, b;  // colour at t (0..1, or 0..255 for the scaled maps)
};

struct COLOURMAP {
  int nstops;
  int scaled;       // colours are in 0..255 units
  double width0;    // two-piece maps: width of the first piece; 0: even stops
  COLOURSTOP stop[7];
};

const double SIXTH = 1.0 / 6;
const double THIRD = 1.0 / 3;

// Index 0 is unused so that the map number is the index.
const COLOURMAP colourmaps[30] = {
    {0, 0, 0, {}},
    {5, 0, 0, {{0, 0, 0, 1}, {0.25, 0, 1, 1}, {0.5, 0, 1, 0}, {0.75, 1, 1, 0}, {1, 1, 0, 0}}},
    {2, 0, 0, {{0, 0, 0, 1}, {1, 1, 0, 0}}},
    {2, 0, 0, {{0, 0, 0, 0}, {1, 1, 1, 1}}},
    {7, 0, 0, {{0, 1, 0, 0}, {SIXTH, 1, 1, 0}, {2 * SIXTH, 0, 1, 0}, {3 * SIXTH, 0, 1, 1},
               {4 * SIXTH, 0, 0, 1}, {5 * SIXTH, 1, 0, 1}, {1, 1, 0, 0}}},
    {2, 0, 0, {{0, 0, 1, 0}, {1, 1, 1, 0}}},
    {2, 0, 0, {{0, 0, 1, 0}, {1, 1, 0, 1}}},
    {5, 0, 0, {{0, 0, 0, 1}, {0.25, 0, 1, 0}, {0.5, 1, 0, 0}, {0.75, 0, 1, 0}, {1, 0, 0, 1}}},
    {3, 0, 0, {{0, 0, 0, 0}, {0.5, 1, 1, 1}, {1, 0, 0, 0}}},
    {4, 0, 0, {{0, 1, 0, 0}, {THIRD, 0, 0, 1}, {2 * THIRD, 0, 1, 1}, {1, 1, 0, 1}}},
    {6, 0, 0, {{0, 0, 0, 1}, {0.2, 0, 1, 1}, {0.4, 0, 1, 0}, {0.6, 1, 1, 0}, {0.8, 1, 0, 0},
               {1, 1, 1, 1}}},
    {2, 1, 0, {{0, 200, 60, 0}, {1, 250, 160, 110}}},
    {3, 1, 0.4, {{0, 55, 55, 45}, {0.4, 235, 90, 30}, {1, 250, 160, 110}}},
    {3, 1, 0.3, {{0, 0, 255, 0}, {0.3, 255, 150, 0}, {1, 255, 250, 240}}},
    {2, 0, 0, {{0, 1, 1, 0}, {1, 1, 0, 0}}},
    {5, 0, 0, {{0, 0, 0, 1}, {0.25, 0, 1, 1}, {0.5, 0, 1, 0}, {0.75, 1, 1, 0}, {1, 1, 1, 1}}},
    {3, 0, 0, {{0, 0, 0, 1}, {0.5, 0, 1, 0}, {1, 1, 0, 0}}},
    {3, 0, 0, {{0, 1, 1, 0}, {0.5, 1, 0, 1}, {1, 0, 1, 1}}},
    {2, 0, 0, {{0, 0, 0, 1}, {1, 0, 1, 1}}},
    {2, 0, 0, {{0, 0, 0, 1}, {1, 1, 1, 1}}},
    {3, 1, 0.3, {{0, 0, 160, 0}, {0.3, 180, 220, 0}, {1, 250, 220, 170}}},
    {2, 1, 0, {{0, 255, 255, 200}, {1, 150, 150, 255}}},
    {2, 0, 0, {{0, 1, 1, 0}, {1, 0, 0, 1}}},
    {3, 0, 0, {{0, 1, 0, 0}, {0.5, 1, 1, 1}, {1, 0, 0, 1}}},
    {3, 0, 0, {{0, 0, 0, 1}, {0.5, 1, 1, 0}, {1, 1, 0, 0}}},
    {4, 0, 0, {{0, 0, 0, 1}, {THIRD, 0, 1, 1}, {2 * THIRD, 1, 0, 1}, {1, 1, 0, 0}}},
    {3, 0, 0, {{0, 0, 1, 0}, {0.5, 1, 1, 0}, {1, 0, 1, 0}}},
    {3, 0, 0, {{0, 0, 0, 0}, {0.5, 1, 0, 0}, {1, 1, 1, 1}}},
    {3, 0, 0, {{0, 0, 0, 0}, {0.5, 0, 1, 0}, {1, 1, 1, 1}}},
    {3, 0, 0, {{0, 0, 0, 0}, {0.5, 0, 0, 1}, {1, 1, 1, 1}}},
};

COLOUR StopMap(const COLOURMAP *map, double v, double lo, double dv) {
  int nseg = map->nstops - 1;
  int k = nseg - 1;
  for (int i = 1; i < nseg; i++) {
    if (v < lo + map->stop[i].t * dv) {
      k = i - 1;
      break;
    }
  }
  const COLOURSTOP *c0 = &map->stop[k];
  const COLOURSTOP *c1 = &map->stop[k + 1];
  double start = lo + c0->t * dv;
  double f;
  if (map->width0 > 0)  // two pieces, each measured against its own width
    f = (v - start) / ((k == 0 ? map->width0 : 1 - map->width0) * dv);
  else
    f = nseg * (v - start) / dv;  // every other map has evenly spaced stops
  // The segment's start is rounded: at its ends f may overshoot by an ulp,
  // which would put a colour a hair outside its stops (and outside 0..1).
  if (f > 1) f = 1;
  if (f < 0) f = 0;
  COLOUR c = {c0->r + (c1->r - c0->r) * f, c0->g + (c1->g - c0->g) * f,
              c0->b + (c1->b - c0->b) * f};
  if (map->scaled) {
    c.r /= 255;
    c.g /= 255;
    c.b /= 255;
  }
  return c;
}

COLOUR HueWheel(double v, double lo, double dv) {
  double h = (v - lo) * 360 / dv;
  while (h < 0)
    h += 360;
  while (h > 360)
    h -= 360;
  COLOUR c;
  if (h < 120) {
    c.r = (120 - h) / 60;
    c.g = h / 60;
    c.b = 0;
  } else if (h < 240) {
    c.r = 0;
    c.g = (240 - h) / 60;
    c.b = (h - 120) / 60;
  } else {
    c.r = (h - 240) / 60;
    c.g = 0;
    c.b = (360 - h) / 60;
  }
  // Upper clamp only, as the wheel has always done.
  if (c.r > 1) c.r = 1;
  if (c.g > 1) c.g = 1;
  if (c.b > 1) c.b = 1;
  return c;
}

COLOUR TwelveSteps(double v, double lo, double dv) {
  COLOUR c = {1, 1, 1};
  double s = (v - lo) / dv * 12;
  int k = (int)s;
  if (k < 0 || k > 12)
    return c;
  double f = s - k;
  // Each sixty degrees of hue in two steps: 0.8 of the change, then 0.2.
  switch (k) {
    case 0: c = {1, 0.8 * f, 0}; break;
    case 1: c = {1, 0.8 + 0.2 * f, 0}; break;
    case 2: c = {1 - 0.2 * f, 1, 0}; break;
    case 3: c = {0.8 - 0.8 * f, 1, 0}; break;
    case 4: c = {0, 1, 0.8 * f}; break;
    case 5: c = {0, 1, 0.8 + 0.2 * f}; break;
    case 6: c = {0, 1 - 0.2 * f, 1}; break;
    case 7: c = {0, 0.8 - 0.8 * f, 1}; break;
    case 8: c = {0.8 * f, 0, 1}; break;
    case 9: c = {0.8 + 0.2 * f, 0, 1}; break;
    case 10: c = {1, 0, 1 - 0.2 * f}; break;
    case 11: c = {1, 0, 0.8 - 0.8 * f}; break;
    case 12: c = {1, 0, 0}; break;
  }
  return c;
}

}  // namespace

COLOUR GetColour(double v, double vmin, double vmax, int type) {
  COLOUR white = {1, 1, 1};
  double lo = vmin < vmax ? vmin : vmax;
  double hi = vmin < vmax ? vmax : vmin;
  if (hi - lo < 0.000001) {
    hi += 1;
    lo -= 1;
  }
  if (type < 1 || type > 31)
    return white;
  double dv = hi - lo;
  v = lo < v ? v : lo;  // written so that a NaN lands on lo
  v = v < hi ? v : hi;
  if (type == 30)
    return HueWheel(v, lo, dv);
  if (type == 31)
    return TwelveSteps(v, lo, dv);
  return StopMap(&colourmaps[type], v, lo, dv);
}
