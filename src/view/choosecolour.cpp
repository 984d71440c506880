#include "view/choosecolour.h"

#include <math.h>  // log()

#include "app/records.h"

const double rootcolours[21][3] = {
    {1, 0, 0},       {0, 1, 0},      {0, 0, 1},      {1, 1, 0},       {0, 1, 1},       {1, 0, 1},
    {1, 0.5, 0.5},   {0.5, 1, 0.5},  {0.5, 0.5, 1},  {1, 1, 0.5},     {0.5, 1, 1},     {1, 0.5, 1},
    {0.5, 0, 0},     {0, 0.5, 0},    {0, 0, 0.5},    {0.5, 0.5, 0},   {0, 0.5, 0.5},   {0.5, 0, 0.5},
    {0.25, 0.25, 0.25}, {0.5, 0.5, 0.5}, {0.75, 0.75, 0.75}};

int ColourByRoot(int drawmode) {
  // nroots 0 would divide by zero below; it has no roots to tell apart anyway.
  return growthstate.nroots != 1 && growthstate.nroots != 0 && growthstate.associate &&
         drawmode >= DLADRAW_OFF && drawmode <= DLADRAW_LINES;
}

COLOUR WeightColour(double weight) {
  return GetColour(log(weight + 1), 0, log(growthstate.maxweight / 3 + 1), 1);
}

COLOUR ChooseColour(int cell, int drawmode) {
  if (ColourByRoot(drawmode)) {
    int k = (cell % growthstate.nroots) % 21;
    COLOUR c = {rootcolours[k][0], rootcolours[k][1], rootcolours[k][2]};
    return c;
  }
  return WeightColour(cells[cell].weight);
}
