// The Python module dla3d, on the public library alone: settings by
// dla3d-batch's option names, growth with the GIL released, the cells as
// numpy views.
//
//   sim = dla3d.grow(cells=100000, seed=7, walk="fast")
//   sim.positions, sim.parent, sim.weight, sim.root, sim.summary(), sim.write("a.ply")
#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <functional>
#include <string>

#include "dla3d/dla3d.h"

namespace py = pybind11;

namespace {

// One simulation and what guards it while the GIL is released: busy while
// it grows, counts or writes; views counts the numpy arrays on its cells,
// which a growth could move.
struct PySimulation {
  dla3d::Simulation *sim = nullptr;
  bool busy = false;
  int views = 0;
  PySimulation() = default;
  PySimulation(const PySimulation &) = delete;
  PySimulation &operator=(const PySimulation &) = delete;
  ~PySimulation() { dla3d::Destroy(sim); }
};

PySimulation &Ready(py::handle self) {
  PySimulation &s = self.cast<PySimulation &>();
  if (s.busy)
    throw std::runtime_error(
        "dla3d: this Simulation is busy (growing in another thread, or its progress callback "
        "called it)");
  return s;
}

// Runs work with the GIL released, the simulation busy meanwhile (also
// when work throws).
void Released(PySimulation &s, const std::function<void()> &work) {
  struct Busy {
    PySimulation &s;
    ~Busy() { s.busy = false; }
  } busy{s};
  s.busy = true;
  py::gil_scoped_release release;
  work();
}

// A number, text or path as dla3d-batch's command line would hold it. str()
// of a float is its shortest exact form, so the double comes back unchanged.
std::string Word(py::handle v) {
  if (py::hasattr(v, "__fspath__")) return py::str(py::module_::import("os").attr("fspath")(v));
  return py::str(v);
}

bool IsSequence(py::handle v) { return py::isinstance<py::list>(v) || py::isinstance<py::tuple>(v); }

// Pairs as "START END", triples as "X,Y,Z", several triples "X,Y,Z X,Y,Z ...".
std::string Value(py::handle v) {
  if (!IsSequence(v)) return Word(v);
  std::string text;
  for (py::handle e : v) {
    if (!text.empty()) text += " ";
    if (!IsSequence(e)) {
      text += Word(e);
      continue;
    }
    std::string triple;
    for (py::handle x : e) triple += (triple.empty() ? "" : ",") + Word(x);
    text += triple;
  }
  return text;
}

// Keyword arguments as settings: underscores for dashes, True for a switch
// given, False and None for one left out; transform may be a list of
// transforms, applied in order.
dla3d::Settings ToSettings(const py::kwargs &kwargs) {
  dla3d::Settings settings;
  for (auto item : kwargs) {
    std::string name = py::str(item.first);
    for (char &c : name)
      if (c == '_') c = '-';
    py::handle v = item.second;
    if (v.is_none() || (py::isinstance<py::bool_>(v) && !v.cast<bool>())) continue;
    if (py::isinstance<py::bool_>(v)) {
      settings.push_back({name, ""});
    } else if (name == "transform" && IsSequence(v) && py::len(v) > 0 && IsSequence(v[py::int_(0)]) &&
               py::len(v[py::int_(0)]) > 0 && IsSequence(v[py::int_(0)][py::int_(0)])) {
      for (py::handle t : v) settings.push_back({name, Value(t)});
    } else {
      settings.push_back({name, Value(v)});
    }
  }
  return settings;
}

std::unique_ptr<PySimulation> Create(const py::kwargs &kwargs) {
  std::string message;
  dla3d::Simulation *sim = dla3d::Create(ToSettings(kwargs), &message);
  if (sim == nullptr) throw py::value_error(message);
  std::unique_ptr<PySimulation> s(new PySimulation);
  s->sim = sim;
  if (!message.empty() && PyErr_WarnEx(PyExc_UserWarning, message.c_str(), 2) != 0) throw py::error_already_set();
  return s;
}

// A whole number (int or numpy integer) from least to most.
long long Count(py::handle v, const char *name, long long least, long long most) {
  PyObject *index = PyNumber_Index(v.ptr());  // TypeError for a float
  if (index == nullptr) throw py::error_already_set();
  long long n = py::reinterpret_steal<py::int_>(index).cast<long long>();
  if (n < least || n > most)
    throw py::value_error(std::string("dla3d: ") + name + " must be from " + std::to_string(least) + " to " +
                          std::to_string(most) + " or None, not " + std::to_string(n));
  return n;
}

// Grows with the GIL released. The hook takes the GIL about twenty times a
// second to let Python handle signals (Ctrl-C raises KeyboardInterrupt
// there) and to call progress(cells, steps), which stops the growth by
// returning False; an exception of either stops it and is raised once the
// cells are complete.
std::string Grow(py::object self, py::object cells, py::object steps, py::object progress) {
  PySimulation &s = Ready(self);
  if (s.views > 0)
    throw py::buffer_error("dla3d: " + std::to_string(s.views) +
                           " numpy arrays still view the cells, which growth may move: delete them (or copy "
                           "them with numpy.array) before growing");
  int n = cells.is_none() ? 0 : (int)Count(cells, "cells", 1, 2147483647);
  long long k = steps.is_none() ? -1 : Count(steps, "steps", 0, 9200000000000000000LL);
  dla3d::Progress hook = [&progress](int ncells, long long nsteps) {
    py::gil_scoped_acquire gil;
    if (PyErr_CheckSignals() != 0) return false;  // the error stays set in this thread
    if (progress.is_none()) return true;
    try {
      py::object answer = progress(ncells, nsteps);
      return answer.is_none() || PyObject_IsTrue(answer.ptr()) > 0;  // an error in bool() stays set
    } catch (py::error_already_set &e) {
      e.restore();
      return false;
    }
  };
  int grown;
  Released(s, [&] { grown = dla3d::Grow(s.sim, n, k, hook); });
  if (PyErr_Occurred()) throw py::error_already_set();
  return grown == dla3d::GROW_STALLED ? "stalled" : grown == dla3d::GROW_STOPPED ? "stopped" : "done";
}

// The base of a view is gone: the Simulation may grow again when no view is left.
void ReleaseView(void *owner) {
  py::handle o((PyObject *)owner);
  o.cast<PySimulation &>().views--;
  o.dec_ref();
}

// A read-only view of the cells: n rows of width values of type, from
// first at the cell stride. Its base holds the Simulation and counts it.
py::array View(py::object self, py::dtype type, const void *first, int width) {
  PySimulation &s = Ready(self);
  ssize_t n = dla3d::CellCount(s.sim);
  std::vector<ssize_t> shape = {n}, strides = {(ssize_t)dla3d::CellStride()};
  if (width > 1) shape.push_back(width), strides.push_back(type.itemsize());
  if (n == 0 || first == nullptr) return py::array(type, shape);
  s.views++;
  self.inc_ref();
  py::capsule base((const void *)self.ptr(), ReleaseView);
  py::array view(type, shape, strides, first, base);
  view.attr("flags").attr("writeable") = false;
  return view;
}

py::object Summary(PySimulation &s) { return py::module_::import("json").attr("loads")(dla3d::Summary(s.sim)); }

}  // namespace

PYBIND11_MODULE(dla3d, m) {
  m.doc() =
      "Three-dimensional diffusion limited aggregation: dla3d-batch's growth, statistics and writers.\n\n"
      "Settings are dla3d-batch's options with underscores for dashes (seed=7, walk='fast', root_range=4,\n"
      "thickness=(0.4, 0.01), associate=True); a refused one raises ValueError with dla3d-batch's message.";
  m.attr("__version__") = dla3d::Version();

  py::class_<PySimulation>(m, "Simulation",
                           "One aggregate: Simulation(**settings), the settings applied and the roots placed.")
      .def(py::init(&Create))
      .def("grow", &Grow, py::arg("cells") = py::none(), py::arg("steps") = py::none(),
           py::arg("progress") = py::none(),
           "Grows until the aggregate holds cells cells, steps more steps were taken, progress(cells, steps)\n"
           "returned False, or the growth stalled (stall_steps). None: no such limit. Returns 'done',\n"
           "'stopped' or 'stalled'. Ctrl-C stops it and raises KeyboardInterrupt; the GIL is released.")
      .def_property_readonly("cells", [](py::object self) { return dla3d::CellCount(Ready(self).sim); })
      .def_property_readonly("steps", [](py::object self) { return dla3d::StepCount(Ready(self).sim); })
      .def_property_readonly(
          "positions",
          [](py::object self) { return View(self, py::dtype::of<double>(), dla3d::Positions(Ready(self).sim), 3); },
          "(n, 3) float64: x, y, z of each cell in growth order; a read-only view while it lives, the\n"
          "Simulation cannot grow")
      .def_property_readonly(
          "weight",
          [](py::object self) { return View(self, py::dtype::of<double>(), dla3d::Weights(Ready(self).sim), 1); },
          "(n,) float64: each cell's weight (a view)")
      .def_property_readonly(
          "parent",
          [](py::object self) { return View(self, py::dtype::of<int>(), dla3d::Parents(Ready(self).sim), 1); },
          "(n,) int32: each cell's parent, -1 for a root (a view)")
      .def_property_readonly(
          "root",
          [](py::object self) {
            std::vector<int> root = dla3d::Roots(Ready(self).sim);
            return py::array_t<int>((ssize_t)root.size(), root.data());
          },
          "(n,) int32: the index of each cell's root cell (computed)")
      .def(
          "summary", [](py::object self) { return Summary(Ready(self)); },
          "dla3d-batch's --summary as a dict: cells, steps, radii, dimension_gyration, the statistics...")
      .def(
          "statistics",
          [](py::object self) {
            PySimulation &s = Ready(self);
            Released(s, [&] { dla3d::Statistics(s.sim); });
            py::dict all = Summary(s), stats;
            for (const char *key : {"statistics_timestep", "branch_distribution", "box_counts", "dimension_boxcount"})
              stats[key] = all[key];
            return stats;
          },
          "Runs the statistics (branch distribution, box count) as --stats does; returns them as a dict.")
      .def(
          "write",
          [](py::object self, py::object path, py::object format) {
            PySimulation &s = Ready(self);
            std::string p = Word(path), f = format.is_none() ? "" : py::str(format).cast<std::string>();
            if (dla3d::Writer(p, f).empty()) throw py::value_error(dla3d::Write(s.sim, p, f));
            std::string message;
            Released(s, [&] { message = dla3d::Write(s.sim, p, f); });
            if (!message.empty()) {
              PyErr_SetString(PyExc_OSError, message.c_str());
              throw py::error_already_set();
            }
          },
          py::arg("path"), py::arg("format") = py::none(),
          "Writes the aggregate with dla3d-batch's writer format ('ply', 'pov-sweep', ...) or, when None,\n"
          "the one path's ending chooses. ValueError when there is none; OSError when it cannot be written.")
      .def("__repr__", [](py::object self) {
        PySimulation &s = Ready(self);
        return "<dla3d.Simulation: " + std::to_string(dla3d::CellCount(s.sim)) + " cells, " +
               std::to_string(dla3d::StepCount(s.sim)) + " steps>";
      });

  m.def(
      "grow",
      [](py::object cells, py::object steps, py::object progress, py::kwargs settings) {
        py::object sim = py::cast(Create(settings));
        Grow(sim, cells, steps, progress);
        return sim;
      },
      py::arg("cells") = 10000, py::kw_only(), py::arg("steps") = py::none(), py::arg("progress") = py::none(),
      "A Simulation(**settings) grown to cells cells: dla3d.grow(cells=100000, seed=7, walk='fast').");
}
