"""View factors from face to face."""

from __future__ import annotations

from functools import cached_property
from typing import TYPE_CHECKING, Any, NamedTuple, Optional

import numpy as np
import numpy.typing as npt

from ._arguments import FloatArray

if TYPE_CHECKING:
    import scipy.sparse


class Reciprocity(NamedTuple):
    """{{Reciprocity}}

    `greatest`: {{Reciprocity.greatest}};
    `mean_square`: {{Reciprocity.meanSquare}}.
    """

    greatest: float
    mean_square: float


class FaceFactors:
    """{{FaceFactors}}

    Made by `Scene.factors`. Rows i and columns j are positions in `elements`; F_ij is the part of
    what element i sends out, diffusely, that reaches element j.
    """

    def __init__(self, parts: dict[str, Any]) -> None:
        self._parts = parts

    @property
    def elements(self) -> npt.NDArray[np.void]:
        """The elements, a structured array, in the scene's order; with two sides the front of each
        polygon is followed by its back.

        `object`, `face`, `region`: {{FactorElement.label}};
        `polygon`: the position in the arrays of `Scene.from_arrays`, or in `Scene.regions`;
        `class`: a position in `Scene.classes`; -1 for none;
        `is_back`: {{FactorElement.isBack}};
        `area`: {{FactorElement.area}};
        `centre`: {{FactorElement.centre}};
        `normal`: {{FactorElement.normal}}.
        """
        return self._array("elements")

    @property
    def areas(self) -> FloatArray:
        """Of each element: {{FactorElement.area}}. Shape (elements,)."""
        return self.elements["area"]

    @property
    def rows(self) -> npt.NDArray[np.int64]:
        """The rows that were asked for, positions in `elements`."""
        return self._array("rows")

    @cached_property
    def row(self) -> npt.NDArray[np.int64]:
        """The row i of each entry, shape (entries,). Elements that are not seen have no entry."""
        lengths = np.diff(self._parts["indptr"])
        result = np.repeat(np.arange(len(lengths)), lengths)
        result.setflags(write=False)
        return result

    @property
    def column(self) -> npt.NDArray[np.int64]:
        """The column j of each entry, shape (entries,)."""
        return self._array("indices")

    @property
    def value(self) -> FloatArray:
        """F_ij of each entry, shape (entries,): {{FactorEntry.factor}}."""
        return self._array("data")

    @property
    def estimate(self) -> FloatArray:
        """For each entry, shape (entries,), an estimate {{FactorEntry.estimate}}."""
        return self._array("estimate")

    @cached_property
    def matrix(self) -> "scipy.sparse.csr_matrix":
        """F as SciPy's `csr_matrix`, shape (elements, elements). Needs scipy; `row`, `column` and
        `value` are the same without it. A row that was not asked for is empty."""
        return self._matrix("data")

    @cached_property
    def estimates(self) -> "scipy.sparse.csr_matrix":
        """An estimate {{FactorEntry.estimate}}, with the structure of `matrix`. Needs scipy."""
        return self._matrix("estimate")

    @property
    def sky(self) -> FloatArray:
        """For each element {{FactorRow.sky}}, with which its row adds up to 1.

        Not a number for rows that were not asked for.
        """
        return self._array("sky")

    @property
    def sky_estimate(self) -> FloatArray:
        """For each element an estimate {{FactorRow.skyEstimate}}."""
        return self._array("sky_estimate")

    @property
    def residual(self) -> FloatArray:
        """For each element {{FactorRow.residual}}."""
        return self._array("residual")

    @property
    def points(self) -> npt.NDArray[np.int64]:
        """For each element {{FactorRow.looks}}; 0 for rows not asked for."""
        return self._array("points")

    @property
    def within_tolerance(self) -> npt.NDArray[np.bool_]:
        """For each element whether `most_points` was enough to come below the tolerance."""
        return self._array("within_tolerance")

    @property
    def reciprocity(self) -> Optional[Reciprocity]:
        """How far the rows were from A_i F_ij = A_j F_ji as they were integrated: a check of all.
        None if not all rows were asked for."""
        apart = self._parts["reciprocity"]
        return None if apart is None else Reciprocity(*apart)

    def __len__(self) -> int:
        """How many elements there are."""
        return len(self.elements)

    def __repr__(self) -> str:
        return f"<lumivane.FaceFactors: {len(self)} elements, {len(self.value)} factors>"

    def _array(self, name: str) -> npt.NDArray[Any]:
        result: npt.NDArray[Any] = self._parts[name]
        return result

    def _matrix(self, name: str) -> "scipy.sparse.csr_matrix":
        import scipy.sparse

        parts = (self._parts[name], self._parts["indices"], self._parts["indptr"])
        return scipy.sparse.csr_matrix(parts, shape=(len(self), len(self)))
