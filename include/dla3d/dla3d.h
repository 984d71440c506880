// dla3d: grow three-dimensional diffusion limited aggregates in your own
// program, with the growth, the statistics and the writers of dla3d-batch.
//
//   dla3d::Simulation *sim = dla3d::Create({{"seed", "7"}, {"walk", "fast"}}, &error);
//   dla3d::Grow(sim, 100000);
//   dla3d::Write(sim, "dla.ply");
//   dla3d::Destroy(sim);
//
// Each simulation is a value of its own: several may grow at once in
// several threads (one thread per simulation at a time). A seed reproduces
// a run exactly, as dla3d-batch's --seed does.
#ifndef DLA3D_DLA3D_H
#define DLA3D_DLA3D_H

#include <stddef.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace dla3d {

// One aggregate, its settings and everything its growth keeps.
struct Simulation;

// Settings by dla3d-batch's option names without the leading dashes, each
// with its value as typed on dla3d-batch's command line ("" for a switch):
// {"bias", "0.5"}, {"roots", "3"}, {"associate", ""}, {"walk", "fast"},
// {"stl", "part.stl"}, {"thickness", "0.4 0.01"}, {"transform", "1,1,2 0,0,0 0,0,45"}.
// Output options (csv, pov, gltf, png, ...) are not settings: see Write.
typedef std::vector<std::pair<std::string, std::string>> Settings;

// A new simulation: the settings applied, the constraint surface read or
// made and the roots placed, as dla3d-batch does before growth. Returns
// NULL, with dla3d-batch's message in *error (when error is not NULL), for
// a refused setting, a seed or STL file that cannot be read, or a run that
// can never grow. An output (csv, stats, ...), a run limit (cells, steps)
// or an option of dla3d-batch's command line (progress, help) is refused
// too. On success *error holds dla3d-batch's warnings (a setting that does
// less than it asks), usually none. Messages carry no line end.
Simulation *Create(const Settings &settings, std::string *error);

// Frees a simulation (NULL is allowed).
void Destroy(Simulation *sim);

// How a Grow ended.
enum { GROW_DONE = 0, GROW_STOPPED = 1, GROW_STALLED = 3 };

// Called during Grow, in Grow's thread, about twenty times a second (between
// runs of steps, which end at each new cell and after at most 2^20 steps),
// with the cells so far and the steps this Grow has taken; returning false
// stops the growth (GROW_STOPPED). An exception it throws stops the growth
// too and leaves Grow once the cells are complete.
typedef std::function<bool(int cells, long long steps)> Progress;

// Grows until the aggregate holds `cells` cells (0: no cell limit), until
// `steps` more steps were taken (-1: no step limit), until progress asks to
// stop, or until the stall limit ("stall-steps") passes without a new cell.
// Cells and weights are complete when it returns. Growing on by further
// calls, after a stop or to a larger count, gives the cells one call would;
// with the fast walk a step limit that ends a call mid-walk changes the
// cells that follow, and the weights may differ in their last digits (the
// walk owes them and adds them up as each call returns).
int Grow(Simulation *sim, int cells, long long steps = -1, const Progress &progress = Progress());

// The number of cells and the steps taken by every Grow so far.
int CellCount(const Simulation *sim);
long long StepCount(const Simulation *sim);

// The cells in growth order, read in place until the next Grow: cell i's
// position is at (const char *)Positions(sim) + i * CellStride(), its x, y,
// z doubles side by side; its weight and its parent (-1 for a root) at the
// same stride from Weights and Parents.
size_t CellStride(void);
const double *Positions(const Simulation *sim);
const double *Weights(const Simulation *sim);
const int *Parents(const Simulation *sim);

// The index of each cell's root cell.
std::vector<int> Roots(const Simulation *sim);

// Runs the statistics (branch distribution, box count) to completion, as
// dla3d-batch's --stats does; Summary and the report then hold them.
void Statistics(Simulation *sim);

// dla3d-batch's --summary JSON: cells, steps, radii, the fractal dimensions,
// the statistics when run, the time taken and every setting.
std::string Summary(const Simulation *sim);

// Writes the aggregate to path. format is a writer of dla3d-batch by its
// option name without the dashes ("csv", "pov", "pov-sweep", "geom", "vrml",
// "vrml-caps", "dxf-points", "geom-points", "stl-out", "info", "gltf",
// "ply", "vtp", "summary"); empty, it is chosen by the path's extension:
// .csv, .pov, .geom, .wrl (vrml), .dxf (dxf-points), .stl (stl-out), .txt
// (info), .gltf and .glb, .ply, .vtp, .json (summary). Returns "" when
// written, else dla3d-batch's message.
std::string Write(Simulation *sim, const std::string &path, const std::string &format = std::string());

// The writer Write would take for path and format, by its option name
// ("ply"), or "" when there is none.
std::string Writer(const std::string &path, const std::string &format = std::string());

// The program's version, as the report prints it ("1.02").
const char *Version(void);

}  // namespace dla3d

#endif
