// What the dialog forms store when the toolkit returns one of their inputs:
// the text is parsed with atof (atoi for the slice count), clamped or
// negated, and stored in the records at once. Text that is not a number
// reads as 0 and is then clamped like any other value.
#ifndef DLA_FORMS_READBACK_H
#define DLA_FORMS_READBACK_H

#include "app/simulation.h"
#include "lib/vector.h"

// atof of text truncated toward zero (held within the int range).
int TruncateText(const char *text);

// Settings form.
void ReadBiasText(SIMULATION &sim, const char *text);            // bias, 0 .. 1
void ReadRotationText(SIMULATION &sim, const char *text);        // rotation, -5 .. 5
void ReadSeedText(SIMULATION &sim, const char *text);            // seed, truncated, negative negated
void ReadBranchLengthText(SIMULATION &sim, const char *text);    // branchlength, at least 0.01
void ReadStickinessText(SIMULATION &sim, const char *text);      // stickiness, 1 .. 100
void ReadThickEndText(SIMULATION &sim, const char *text);        // thickend, negative negated
void ReadThickStartText(SIMULATION &sim, const char *text);      // thickstart, negative negated
void ReadIntersectRangeText(SIMULATION &sim, const char *text);  // intersectrange, 0 .. 90
// The three root settings restart the growth on new roots
// (InitialiseGrowth, then ResetSeeds).
void ReadNumberOfRootsText(SIMULATION &sim, const char *text);  // nroots, truncated, absolute value
void ReadRootRangeText(SIMULATION &sim, const char *text);      // rootrange, unclamped
void SetAssociate(SIMULATION &sim, int on);                     // associate, the check button's 0 or 1

// Slice form.
void ReadSliceNormalText(SIMULATION &sim, int axis, const char *text);  // slicenormal x (0), y (1), z (2), unclamped
void ReadSliceCountText(SIMULATION &sim, const char *text);             // nslices = atoi, at least 2

// The normal the Slice button cuts along: a stored normal shorter than 1e-5
// first gets z = 1 (x and y stay); the result is a unit copy, the stored
// field itself is not normalised.
XYZ SliceNormalForCut(SIMULATION &sim);

// Transform form Apply: atof of scale x, y, z, shift x, y, z, rotate x, y,
// z (degrees), then TransformSTL and UpdateSTL.
void ApplyTransformText(SIMULATION &sim, const char *const text[9]);

#endif
