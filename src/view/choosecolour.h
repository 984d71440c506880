// The colour of a cell as the viewer draws it; the exporters use the same
// colours so that a saved model looks like the window. GL-free.
#ifndef DLA_VIEW_CHOOSECOLOUR_H
#define DLA_VIEW_CHOOSECOLOUR_H

#include "app/simulation.h"
#include "lib/colour.h"

// One colour per root when several roots grow separately (indexed 0..20).
extern const double rootcolours[21][3];

// By root (entry (cell mod nroots) mod 21) when nroots is not 1, association
// is on and drawmode is 1, 2 or 3; otherwise by weight on the blue to red
// ramp, full red from a third of maxweight on. nroots 0 colours by weight.
COLOUR ChooseColour(SIMULATION &sim, int cell, int drawmode);

// 1 when ChooseColour colours by root for this drawing mode.
int ColourByRoot(SIMULATION &sim, int drawmode);

// The colour by weight: what ChooseColour gives a cell of this weight.
COLOUR WeightColour(SIMULATION &sim, double weight);

#endif
