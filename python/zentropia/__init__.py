"""Zentropia: thermophysical properties of pure fluids and mixtures.

Two layers:

* The procedures of the programming interface, at the top level, called as in C++: the
  arguments a procedure reads are positional; what it writes comes back, its result first and
  ``errormsg`` last (one value plainly, several as a tuple)::

      >>> zentropia.setunits("SI", "PerMass", "", "")
      'No errors'
      >>> zentropia.setfluid("IF97", 1, ["water"], [1.0])
      'Same fluid'
      >>> zentropia.calcprop("h", "PT", 1e5, 300.0)
      (112654.89..., 'No errors')

* :class:`Fluid`, for everyday use: methods that take NumPy arrays as well as numbers, loop in
  C++ and raise :class:`ZentropiaError` with the library's message instead of returning it::

      >>> water = zentropia.Fluid("IF97", ["water"], units="SI")
      >>> water.calc("h", "PT", 1e5, [300.0, 350.0])
      array([112654.89..., 321...])

The library keeps one process-wide selection of fluid and units; each Fluid selects its own
again whenever another one (or a direct call of setfluid, setunits ...) was used in between.
"""

from ._version import __version__  # noqa: F401
from ._core import *  # noqa: F401,F403 - the procedures of the programming interface
from ._fluid import Fluid, ZentropiaError, fluidfile  # noqa: F401
