"""What one point of a 3D scene of flat polygons sees: exactly, as arrays.

    >>> import lumivane
    >>> scene = lumivane.Scene.read("house.city.json")
    >>> scene.look((0, -10, 1.7), forward=(0, 0, 1)).sky_view_factor

A `Scene` is read from a scene file, a mesh (OBJ, STL, PLY, glTF), a city model (CityJSON), or made
of arrays. `Scene.look` gives the exact visibility map of one eye, `Scene.shares` the numbers of
many eyes, `Scene.factors` the view factors from face to face, `Scene.sun_hours` when the sun
shines, `Scene.shot` a picture of whole polygons in drawing order.

Lengths are in scene units, angles in steradian unless said otherwise. Objects, faces and regions
are numbered from 1 as in the scene and in all files; 0 is the sky. Positions in arrays are from 0.
Arrays that belong to a scene, map or shot are read-only. All operations may be used by several
threads at once, and the interpreter's lock is released while the library works. Nothing is
printed.
"""

from ._core import Error, __version__
from ._factors import FaceFactors, Reciprocity
from ._map import EDGE_KINDS, VisibleMap
from ._scene import Finding, Scene, check
from ._shot import Shot
from ._sun import SunHours

__all__ = [
    "EDGE_KINDS",
    "Error",
    "FaceFactors",
    "Finding",
    "Reciprocity",
    "Scene",
    "Shot",
    "SunHours",
    "VisibleMap",
    "__version__",
    "check",
]
