// Colour maps of the support library.
#ifndef DLA_LIB_COLOUR_H
#define DLA_LIB_COLOUR_H

struct COLOUR {
  double r, g, b;  // each nominally in 0..1
};

// The colour of v on map type (1 to 31) over the range vmin..vmax (either
// order). A range narrower than 1e-6 is widened by 1 on each side; v is
// clamped to the range; an unknown type gives white.
COLOUR GetColour(double v, double vmin, double vmax, int type);

#endif
