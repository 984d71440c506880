#include "view/choosecolour.h"

#include <math.h>  // log()

#include "app/simulation.h"

const double rootcolours[21][3] = {
    {1, 0, 0},       {0, 1, 0},      {0, 0, 1},      {1, 1, 0},       {0, 1, 1},       {1, 0, 1},
    {1, 0.5, 0.5},   {0.5, 1, 0.5},  {0.5, 0.5, 1},  {1, 1, 0.5},     {0.5, 1, 1},     {1, 0.5, 1},
    {0.5, 0, 0},     {0, 0.5, 0},    {0, 0, 0.5},    {0.5, 0.5, 0},   {0, 0.5, 0.5},   {0.5, 0, 0.5},
    {0.25, 0.25, 0.25}, {0.5, 0.5, 0.5}, {0.75, 0.75, 0.75}};

int ColourByRoot(SIMULATION &sim, int drawmode) {
  // nroots 0 would divide by zero below; it has no roots to tell apart anyway.
  return sim.growthstate.nroots != 1 && sim.growthstate.nroots != 0 && sim.growthstate.associate &&
         drawmode >= DLADRAW_OFF && drawmode <= DLADRAW_LINES;
}

COLOUR WeightColour(SIMULATION &sim, double weight) {
  return GetColour(log(weight + 1), 0, log(sim.growthstate.maxweight / 3 + 1), 1);
}

COLOUR ChooseColour(SIMULATION &sim, int cell, int drawmode) {
  if (ColourByRoot(sim, drawmode)) {
    int k = (cell % sim.growthstate.nroots) % 21;
    COLOUR c = {rootcolours[k][0], rootcolours[k][1], rootcolours[k][2]};
    return c;
  }
  return WeightColour(sim, sim.cells[cell].weight);
}
