"""ZRFx in VTK: :class:`Reader`, a source for pipelines; :func:`to_vtk`, one state for pyvista; :func:`write`.

A model becomes a vtkMultiBlockDataSet with a named vtkUnstructuredGrid for each part. Coordinates, connectivity and
values are shared with the library's memory where VTK can take them as they are: parts then hold all nodes of their
block. User ids are global ids; undefined values are NaN. Tensors have six components, named XX to XZ.
"""

from __future__ import annotations

from typing import Any, List, Optional

from vtkmodules.util.vtkAlgorithm import VTKPythonAlgorithmBase
from vtkmodules.vtkCommonCore import vtkDataArraySelection
from vtkmodules.vtkCommonDataModel import vtkMultiBlockDataSet
from vtkmodules.vtkCommonExecutionModel import vtkAlgorithm, vtkStreamingDemandDrivenPipeline

from . import _file
from ._model import Model
from ._states import State
from ._vtk_cells import shared
from ._vtk_grids import Options, fill_blocks, selection, to_vtk
from ._vtk_write import from_vtk, write

__all__ = ["Options", "Reader", "from_vtk", "selection", "shared", "to_vtk", "write"]


class Reader(VTKPythonAlgorithmBase):  # type: ignore[misc]
    """A source that reads one model of a file, and gives a vtkMultiBlockDataSet for each time.

    ``Reader("run.zrfx")``, then ``GetResultSelection()`` and ``GetPartSelection()`` say what is read,
    ``SetDisplacementFactor``, ``SetExplode`` and ``SetCompact`` how (see :class:`Options`). ``Refresh`` takes in
    what a running solver has written.
    """

    def __init__(self, path: str = "", model: Optional[str] = None, password: Optional[str] = None) -> None:
        super().__init__(nInputPorts=0, nOutputPorts=1, outputType="vtkMultiBlockDataSet")
        self._path, self._name, self._password = path, model, password
        self._file: Optional[_file.File] = None
        self._options = Options()
        self._kept: List[Any] = []
        self._results, self._parts = vtkDataArraySelection(), vtkDataArraySelection()
        for selected in (self._results, self._parts):
            selected.AddObserver("ModifiedEvent", lambda *_: self.Modified())

    def SetFileName(self, path: str) -> None:
        if path != self._path:
            self.Close()
            self._path = path
            self.Modified()

    def GetFileName(self) -> str:
        return self._path

    def GetModel(self) -> Model:
        """The model that is read; opens the file."""
        if self._file is None:
            self._file = _file.open(self._path, self._password)
        model = next(iter(self._file.models.values())) if self._name is None else self._file.models[self._name]
        for selected, names in ((self._results, [*model.results]), (self._parts, [*model.parts])):
            for name in names:
                if not selected.ArrayExists(name):
                    selected.AddArray(name)
        return model

    def GetResultSelection(self) -> Any:
        """The vtkDataArraySelection of the results."""
        self.GetModel()
        return self._results

    def GetPartSelection(self) -> Any:
        """The vtkDataArraySelection of the parts."""
        self.GetModel()
        return self._parts

    def GetTimes(self) -> List[float]:
        """The values of the states; empty when there are none."""
        times: List[float] = self.GetModel().times.tolist()
        return times

    def SetDisplacementFactor(self, factor: float) -> None:
        self._change(displacement=factor)

    def SetExplode(self, explode: bool) -> None:
        self._change(explode=explode)

    def SetCompact(self, compact: bool) -> None:
        self._change(compact=compact)

    def _change(self, **options: Any) -> None:
        if self._options._replace(**options) != self._options:
            self._options = self._options._replace(**options)
            self.Modified()

    def Refresh(self) -> None:
        """Looks for states that were written since."""
        if self._file is not None and self._file.refresh():
            self._kept = []
            self.Modified()

    def Close(self) -> None:
        """Closes the file; the next update opens it again."""
        if self._file is not None:
            self._file.close()
        self._file, self._kept = None, []

    def RequestInformation(self, request: Any, inputs: Any, outputs: Any) -> int:
        information, keys = outputs.GetInformationObject(0), vtkStreamingDemandDrivenPipeline
        times = sorted(set(self.GetTimes()))
        information.Remove(keys.TIME_STEPS())
        information.Remove(keys.TIME_RANGE())
        for time in times:
            information.Append(keys.TIME_STEPS(), time)
        for time in (times[0], times[-1]) if times else ():
            information.Append(keys.TIME_RANGE(), time)
        information.Set(vtkAlgorithm.CAN_HANDLE_PIECE_REQUEST(), 1)
        return 1

    def RequestData(self, request: Any, inputs: Any, outputs: Any) -> int:
        information, keys = outputs.GetInformationObject(0), vtkStreamingDemandDrivenPipeline
        model, pieces = self.GetModel(), information.Get(keys.UPDATE_NUMBER_OF_PIECES()) or 1
        piece = (information.Get(keys.UPDATE_PIECE_NUMBER()) or 0, pieces)
        time = information.Get(keys.UPDATE_TIME_STEP()) if information.Has(keys.UPDATE_TIME_STEP()) else None
        state = _state_at(model, time)
        options = self._options._replace(results=_enabled(self._results), parts=_enabled(self._parts), piece=piece)
        fill_blocks(vtkMultiBlockDataSet.GetData(outputs, 0), model, state, options)
        self._kept = self._mesh(model, state)
        return 1

    @staticmethod
    def _mesh(model: Model, state: Optional[State]) -> List[Any]:
        """What the next state is likely to need again."""
        elements = [part.elements if state is None else part.elements_at(state) for part in model.parts.values()]
        return [*elements, *(model.node_blocks[block] for block in {each.node_block for each in elements})]


def _enabled(selected: Any) -> List[str]:
    names = [selected.GetArrayName(i) for i in range(selected.GetNumberOfArrays())]
    return [name for name in names if selected.ArrayIsEnabled(name)]


def _state_at(model: Model, time: Optional[float]) -> Optional[State]:
    """The last state that is not after a time, as a film shows it; the first before all."""
    states = list(model.states)
    if not states or time is None:
        return states[0] if states else None
    order = sorted(states, key=lambda state: state.value)
    before = [state for state in order if state.value <= time * (1 + 1e-9)]
    return before[-1] if before else order[0]
