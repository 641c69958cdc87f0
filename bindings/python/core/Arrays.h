#pragma once

#include <lumivane/visibility/PolygonScene.h>

#include <cstddef>
#include <string>
#include <vector>

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>

namespace Lumivane::Python {

/// An array of C order, converted by the package before it comes here.
template <class Number>
using Array = pybind11::array_t<Number, pybind11::array::c_style>;

/// x, y and z as Python has them.
inline pybind11::tuple tupleOf(const Visibility::Vector& vector) {
  return pybind11::make_tuple(vector[0], vector[1], vector[2]);
}

/// The rows of an array of three columns.
inline std::vector<Visibility::Vector> vectorsOf(const Array<double>& array) {
  const double* at = array.data();
  std::vector<Visibility::Vector> result(static_cast<std::size_t>(array.shape(0)));
  for (Visibility::Vector& vector : result)
    for (double& coordinate : vector) coordinate = *at++;
  return result;
}

template <class Number>
std::vector<Number> valuesOf(const Array<Number>& array) {
  return std::vector<Number>(array.data(), array.data() + array.size());
}

/// A new array of plain rows, which nobody may write to: callers keep one array for all users.
template <class Row>
pybind11::array readOnly(const std::vector<Row>& rows) {
  pybind11::array_t<Row> array(static_cast<pybind11::ssize_t>(rows.size()), rows.data());
  array.attr("setflags")(pybind11::arg("write") = false);
  return std::move(array);
}

inline pybind11::array readOnly(const std::vector<Visibility::Vector>& rows) {
  pybind11::array_t<double> array(
      {static_cast<pybind11::ssize_t>(rows.size()), static_cast<pybind11::ssize_t>(3)});
  double* at = array.mutable_data();
  for (const Visibility::Vector& row : rows)
    for (const double coordinate : row) *at++ = coordinate;
  array.attr("setflags")(pybind11::arg("write") = false);
  return std::move(array);
}

/// Zeros, whose memory is first taken where something is written.
inline Array<double> zeros(std::size_t rows, std::size_t columns) {
  const auto shape = pybind11::make_tuple(rows, columns);
  return pybind11::module_::import("numpy").attr("zeros")(shape);
}

}  // namespace Lumivane::Python
