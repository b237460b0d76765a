"""ParaView's reader of ZRFx files: Tools, Manage Plugins, Load New, this file.

It needs nothing but ParaView's own Python. Where the package zrfx can be imported, that reads: it is faster, opens
encrypted files (with the password in ZRFX_PASSWORD) and follows running solvers. Parts are blocks; results on the
nodes of elements are cell data, the mean of the element; sets are cell arrays "set NAME" of 0 and 1. On several
ranks each makes its share of the elements of each part, with the nodes that they use.
"""

import os
import xml.etree.ElementTree as ElementTree
import zipfile

import numpy as np
from vtkmodules.util.numpy_support import numpy_to_vtk
from vtkmodules.util.vtkAlgorithm import VTKPythonAlgorithmBase
from vtkmodules.vtkCommonCore import vtkDataArraySelection, vtkIdList, vtkPoints
from vtkmodules.vtkCommonDataModel import vtkCellArray, vtkMultiBlockDataSet, vtkUnstructuredGrid
from vtkmodules.vtkCommonExecutionModel import vtkAlgorithm, vtkStreamingDemandDrivenPipeline

try:
    import zrfx
except ImportError:
    zrfx = None
try:
    from paraview.util.vtkAlgorithm import smdomain, smhint, smproperty, smproxy
except ImportError:  # under VTK alone the class is the same, without ParaView's panel
    class _Nothing:
        def __getattr__(self, name):
            return lambda *args, **options: lambda decorated: decorated

    smdomain = smhint = smproperty = smproxy = _Nothing()

_VTK = {"Point": 1, "Beam": 3, "Beam_3": 21, "Triangle": 5, "Triangle_6": 22, "Quad": 9, "Quad_8": 23, "Quad_9": 28,
        "Tetrahedron": 10, "Tetrahedron_10": 24, "Hexahedron": 12, "Hexahedron_20": 25, "Pentahedron": 13,
        "Pentahedron_15": 26, "Pyramid": 14, "Pyramid_13": 27, "Brick": 12, "Thick shell": 12, "Shell": 9,
        "Rigid Shell": 9, "Polyhedron": 42}
_COMPONENTS = {3: ("X", "Y", "Z"), 6: ("XX", "YY", "ZZ", "XY", "YZ", "XZ")}
_WIDTHS = {"Vector": 3, "Displacement": 3, "Tensor": 6}
_UNDEFINED = np.float32(2.99e38)


def _tag(element):
    return element.tag.rpartition("}")[2]


def _true(element, name):
    return element.get(name, "").lower() == "true"


class _Run:
    """Elements of one type: nodes as positions, (elements, nodes); for polyhedrons lists of faces."""

    def __init__(self, kind, nodes, counts):
        self.kind, self.nodes, self.counts = kind, nodes, counts


class _Mesh:
    """A part in a state: nodes, their ids, runs of elements, ids of these."""

    def __init__(self, xyz, node_ids, runs, ids, block, node_block):
        self.xyz, self.node_ids, self.runs, self.ids = xyz, node_ids, runs, ids
        self.block, self.node_block = block, node_block
        self.count = sum(len(run.counts) for run in runs)
        self.node_counts = np.concatenate([run.counts for run in runs] or [np.zeros(0, int)])


def _faces(nodes, node_counts, face_counts, face_sizes, local):
    cells, node, face, corner = [], 0, 0, 0
    for own_nodes, own_faces in zip(node_counts, face_counts):
        own, faces = nodes[node:node + own_nodes], []
        for size in face_sizes[face:face + own_faces]:
            faces.append(own[local[corner:corner + size]])
            corner += size
        cells.append(faces)
        node, face = node + own_nodes, face + own_faces
    return cells


def _positions(ids, wanted):
    order = np.argsort(ids, kind="stable")
    return order[np.searchsorted(ids, wanted, sorter=order)]


class PlainModel:
    """The first model of a file, read by Python's own modules: ZIP, XML, arrays."""

    def __init__(self, path):
        self._path = path
        self.refresh()

    def refresh(self):
        """Reads the lists; says whether the file has changed."""
        status = os.stat(self._path)
        stamp = (status.st_mtime_ns, status.st_size, status.st_ino)
        if stamp == getattr(self, "_stamp", None):
            return False
        self._stamp, self._archive = stamp, zipfile.ZipFile(self._path)
        self._names = {name.replace("\\", "/"): name for name in self._archive.namelist()}
        if any(entry.flag_bits & 1 for entry in self._archive.infolist()):
            raise OSError(f"{self._path}: the file is encrypted; the package zrfx can open it")
        root = next(e for e in ElementTree.fromstring(self._archive.read("ZRF.xml")).iter()
                    if _tag(e) == "Database")
        self._folder = root.get("Folder") + "/"
        self._files = {}
        for entry in self._xml(self._folder + "Database-TOC.xml"):
            name = entry.get("File").replace("\\", "/")
            name = name if name in self._names else self._folder + name
            self._files.setdefault(_tag(entry), {})[int(entry.get("ID"))] = name
        self._read_lists()
        return True

    def _read_lists(self):
        states = [e for e in self._lists("StateInfo") if _tag(e) == "State"]
        self.states = [(int(e.get("ID")), float(e.get("RefValue"))) for e in states]
        names = {(own, int(part.get("PartID"))): part.get("PartName")
                 for own, geometry in enumerate(self._lists("GeometryInfo")) for part in geometry}
        self._blocks = {}
        for state in self._lists("Geometry"):
            groups = [e for e in state if _tag(e) == "Geometry"] or [state]
            self._blocks[int(state.get("ID"))] = [
                (names.get((own, int(e.get("PartID"))), f"Part {e.get('PartID')}"), int(e.get("BlockID")))
                for own, group in enumerate(groups) for e in group if _tag(e) == "Elements"]
        self.parts = [name for name, _ in next(iter(self._blocks.values()), [])]
        self.results = {}
        for block in sorted(self._files.get("Results", {})):
            root = self._block("Results", block)
            values = {int(state.get("ID")): [int(item.text) for each in state for item in each]
                      for state in root if _tag(state) == "State"}
            self.results[root.get("Name")] = (root.get("ResultType"), root.get("ResultMapping"), values)
        self.sets = {}
        for block in sorted(self._files.get("Set", {})):
            root = self._block("Set", block)
            items = [(int(e.get("BlockID")), self._array(e[0].get("Filename"), "i")) for e in root]
            self.sets[root.get("Name")] = (_true(root, "ItemsSpecifiedAsIDs"), items)

    def _xml(self, name):
        return ElementTree.fromstring(self._archive.read(self._names[name]))

    def _block(self, kind, number):
        return self._xml(self._files[kind][number])

    def _lists(self, kind):
        return list(self._block(kind, min(self._files[kind]))) if kind in self._files else []

    def _array(self, base, code, width=1):
        name = self._folder + base.replace("\\", "/")
        if name + ".dat" in self._names:
            data = self._archive.read(self._names[name + ".dat"])
            return np.frombuffer(data, "<" + code + "4", len(data) // 4 // width * width)
        text = self._archive.read(self._names[name + ".txt"]).decode().replace("UNDEF", "3e38 " * width)
        return np.array(text.split(), code + "4")

    def _record(self, parent, name):
        return next((e for e in parent if _tag(e) == name), None)

    def _named(self, parent, name, code="i"):
        record = self._record(parent, name)
        return None if record is None else self._array(record.get("Filename"), code)

    def _nodes(self, number):
        record = self._record(self._block("Nodes", number), "File")
        if record is None:
            return np.zeros((0, 3), np.float32), None
        ids = record.get("IDs")
        return self._array(record.get("Filename"), "f", 3).reshape(-1, 3), ids and self._array(ids, "i")

    def mesh(self, part, state):
        """The part of an index."""
        block = self._blocks.get(state, next(iter(self._blocks.values())))[part][1]
        root = self._block("Elements", block)
        node_block = int(root.get("NodeBlock"))
        xyz, node_ids = self._nodes(node_block)
        runs, ids = [], []
        for group in root:
            if _tag(group) != "ElementGroup":
                continue
            record, kind = self._record(group, "File"), _VTK[group.get("Type")]
            nodes = self._array(record.get("Filename"), "i")
            nodes = _positions(node_ids, nodes) if _true(root, "MapToNodeIDs") else nodes - 1
            if record.get("IDs"):
                ids.append(self._array(record.get("IDs"), "i"))
            if kind == 42:
                counts = self._named(group, "PolyhedronElementNodeCounts")
                cells = _faces(nodes, counts, self._named(group, "PolyhedronFaceCounts"),
                               self._named(group, "PolyhedronFaceNodeCounts"),
                               self._named(group, "PolyhedronFaceLocalNodes"))
                runs.append(_Run(kind, cells, counts))
            else:
                count = int(record.get("NumItems"))
                runs.append(_Run(kind, nodes.reshape(count, -1), np.full(count, len(nodes) // max(count, 1))))
        return _Mesh(xyz, node_ids, runs, np.concatenate(ids) if ids else None, block, node_block)

    def values(self, name, state, mesh):
        """On what, and the values on all items; None where the state has none."""
        kind, on, blocks = self.results[name]
        on = {"Node": "nodes", "Element": "elements", "Polygon": "elements", "ElementNode": "element_nodes",
              "PolygonNode": "element_nodes"}.get(on)
        target = mesh.node_block if on == "nodes" else mesh.block
        for block in blocks.get(state, []) if on else []:
            root = self._block("ResultValues", block)
            if int(root.get("MapToBlockID")) != target:
                continue
            width, record = int(root.get("NumDimensions")), self._record(root, "File")
            values = self._array(record.get("Filename"), "f", width).reshape(-1, width)
            if record.get("IDs") and _true(root, "WithID"):
                known, count = (mesh.node_ids, len(mesh.xyz)) if on == "nodes" else (mesh.ids, mesh.count)
                items, own = self._array(record.get("IDs"), "i"), values
                values = np.full((count, width), np.nan, np.float32)
                values[items if known is None else _positions(known, items)] = own
            return on, np.where(values < _UNDEFINED, values, np.float32(np.nan))
        if not on or state not in blocks:
            return None
        count = {"nodes": len(mesh.xyz), "elements": mesh.count, "element_nodes": int(mesh.node_counts.sum())}[on]
        return on, np.full((count, _WIDTHS.get(kind, 1)), np.nan, np.float32)

    def is_displacement(self, name):
        return self.results[name][0] == "Displacement"

    def set_mask(self, name, part, mesh):
        by_ids, groups = self.sets[name]
        mask = np.zeros(mesh.count, np.uint8)
        for block, items in groups:
            if block == mesh.block:
                mask[_positions(mesh.ids, items) if by_ids and mesh.ids is not None else items] = 1
        return mask


class PackageModel:
    """The same by the package zrfx."""

    def __init__(self, path):
        self._file = zrfx.open(path, os.environ.get("ZRFX_PASSWORD"))
        self._read_lists()

    def refresh(self):
        changed = self._file.refresh()
        if changed:
            self._read_lists()
        return changed

    def _read_lists(self):
        self._model = next(iter(self._file.models.values()))
        self.states = [(state.id, state.value) for state in self._model.states]
        self._parts, self.parts = list(self._model.parts.values()), list(self._model.parts)
        self.results, self.sets = dict(self._model.results), dict(self._model.sets)

    def mesh(self, part, state):
        own = self._parts[part]
        elements = own.elements if state is None else own.elements_at(self._model.states.by_id(state))
        nodes = self._model.node_blocks[elements.node_block]
        runs = []
        for group in elements.groups:
            index = nodes.index(group.nodes) if elements.by_ids else group.nodes
            if group.polyhedrons is not None:
                index = _faces(index, *group.polyhedrons)
            runs.append(_Run(group.kind.vtk, index, group.node_counts()))
        mesh = _Mesh(nodes.xyz, nodes.ids, runs, elements.ids, elements.block_id, elements.node_block)
        mesh.part = own
        return mesh

    def values(self, name, state, mesh):
        result = self.results[name]
        state = self._model.states.by_id(state)
        if state not in result.states or result.on not in ("nodes", "elements", "element_nodes"):
            return None
        values = result.at(state, part=mesh.part)
        return result.on, values.reshape(len(values), -1)

    def is_displacement(self, name):
        return self.results[name].kind == "displacement"

    def set_mask(self, name, part, mesh):
        return self.sets[name].mask(self._parts[part]).astype(np.uint8)


def _grid(model, part, state, results, factor, piece, pieces):
    """A share of the elements of a part, with the nodes that they use."""
    mesh = model.mesh(part, state)
    rows = slice(mesh.count * piece // pieces, mesh.count * (piece + 1) // pieces)
    runs, first = [], 0
    for run in mesh.runs:
        own = slice(max(rows.start - first, 0), max(rows.stop - first, 0))
        runs.append((run.kind, run.nodes[own]))
        first += len(run.counts)
    flat = [np.concatenate([np.unique(np.concatenate(cell)) for cell in nodes] or [np.zeros(0, int)])
            if kind == 42 else nodes.ravel() for kind, nodes in runs]
    used = np.unique(np.concatenate(flat or [np.zeros(0, int)])).astype(int)
    grid, points = vtkUnstructuredGrid(), vtkPoints()
    grid.SetPoints(points)
    _set_cells(grid, [(kind, nodes) for kind, nodes in runs if len(nodes)], used)
    xyz = np.array(mesh.xyz[used])
    for name in model.results:
        found = model.values(name, state, mesh) if name in results or factor else None
        if found is None:
            continue
        on, values = found
        if on == "nodes" and factor and model.is_displacement(name):
            xyz += np.float32(factor) * np.nan_to_num(values[used])
        if name in results:
            data = grid.GetPointData() if on == "nodes" else grid.GetCellData()
            data.AddArray(_array(values[used] if on == "nodes" else _means(values, on, mesh)[rows], name))
    points.SetData(_array(xyz, "Points"))
    for name in model.sets:
        grid.GetCellData().AddArray(_array(model.set_mask(name, part, mesh)[rows], "set " + name))
    if mesh.node_ids is not None:
        grid.GetPointData().SetGlobalIds(_array(mesh.node_ids[used].astype(np.int64), "NodeId", 12))
    if mesh.ids is not None:
        grid.GetCellData().SetGlobalIds(_array(mesh.ids[rows].astype(np.int64), "ElementId", 12))
    return grid


def _means(values, on, mesh):
    if on == "elements" or not mesh.count:
        return values
    starts = np.cumsum(mesh.node_counts) - mesh.node_counts
    return (np.add.reduceat(values, starts, axis=0) / mesh.node_counts[:, None]).astype(np.float32)


def _array(values, name, kind=None):
    """Copied, so that no memory of Python has to outlive this call."""
    array = numpy_to_vtk(np.ascontiguousarray(values), deep=1, array_type=kind)
    array.SetName(name)
    for i, component in enumerate(_COMPONENTS.get(array.GetNumberOfComponents(), ())):
        array.SetComponentName(i, component)
    return array


def _set_cells(grid, runs, used):
    if any(kind == 42 for kind, _ in runs):
        grid.Allocate(sum(len(nodes) for _, nodes in runs))
        for kind, cells in runs:
            for cell in cells:
                if kind != 42:
                    grid.InsertNextCell(kind, len(cell), np.searchsorted(used, cell).tolist())
                    continue
                stream = vtkIdList()
                for number in (len(cell), *(n for face in cell for n in (len(face), *np.searchsorted(used, face)))):
                    stream.InsertNextId(int(number))
                grid.InsertNextCell(42, stream)
        return
    if not runs:
        return
    sizes = np.concatenate([np.full(len(nodes), nodes.shape[1]) for _, nodes in runs])
    connectivity = np.searchsorted(used, np.concatenate([nodes.ravel() for _, nodes in runs]))
    cells = vtkCellArray()
    cells.SetData(_array(np.concatenate([[0], np.cumsum(sizes)]).astype(np.int64), "", 12),
                  _array(connectivity.astype(np.int64), "", 12))
    grid.SetCells(_array(np.concatenate([np.full(len(n), kind, np.uint8) for kind, n in runs]), ""), cells)


@smproxy.reader(name="ZrfxReader", label="ZRFx reader", extensions="zrfx", file_description="ZRFx files")
class ZrfxReader(VTKPythonAlgorithmBase):
    """The reader as ParaView shows it."""

    def __init__(self):
        super().__init__(nInputPorts=0, nOutputPorts=1, outputType="vtkMultiBlockDataSet")
        self._path, self._model, self._factor = None, None, 0.0
        self._results, self._parts = vtkDataArraySelection(), vtkDataArraySelection()
        for selected in (self._results, self._parts):
            selected.AddObserver("ModifiedEvent", lambda *_: self.Modified())

    @smproperty.stringvector(name="FileName")
    @smdomain.filelist()
    @smhint.filechooser(extensions="zrfx", file_description="ZRFx files")
    def SetFileName(self, path):
        if path != self._path:
            self._path, self._model = path, None
            self.Modified()

    @smproperty.doublevector(name="TimestepValues", information_only="1", si_class="vtkSITimeStepsProperty")
    def GetTimestepValues(self):
        return sorted({value for _, value in self._open().states}) if self._path else None

    @smproperty.dataarrayselection(name="Results")
    def GetResultSelection(self):
        return self._results

    @smproperty.dataarrayselection(name="Parts")
    def GetPartSelection(self):
        return self._parts

    @smproperty.doublevector(name="DisplacementFactor", default_values=[0.0])
    def SetDisplacementFactor(self, factor):
        if factor != self._factor:
            self._factor = factor
            self.Modified()

    @smproperty.xml('<Property name="Reload" command="Reload" panel_widget="command_button"/>')
    def Reload(self):
        """Takes in what a running solver has written."""
        if self._model is not None and self._model.refresh():
            self.Modified()

    def _open(self):
        if self._model is None:
            self._model = PlainModel(self._path) if zrfx is None else PackageModel(self._path)
        for selected, names in ((self._results, self._model.results), (self._parts, self._model.parts)):
            for name in names:
                if not selected.ArrayExists(name):
                    selected.AddArray(name)
        return self._model

    def RequestInformation(self, request, inputs, outputs):
        information, keys = outputs.GetInformationObject(0), vtkStreamingDemandDrivenPipeline
        times = self.GetTimestepValues() or []
        information.Remove(keys.TIME_STEPS())
        information.Remove(keys.TIME_RANGE())
        for time in times:
            information.Append(keys.TIME_STEPS(), time)
        for time in (times[0], times[-1]) if times else ():
            information.Append(keys.TIME_RANGE(), time)
        information.Set(vtkAlgorithm.CAN_HANDLE_PIECE_REQUEST(), 1)
        return 1

    def RequestData(self, request, inputs, outputs):
        information, keys, model = outputs.GetInformationObject(0), vtkStreamingDemandDrivenPipeline, self._open()
        time = information.Get(keys.UPDATE_TIME_STEP()) if information.Has(keys.UPDATE_TIME_STEP()) else None
        state = self._state(time)
        share = information.Get(keys.UPDATE_PIECE_NUMBER()) or 0, information.Get(keys.UPDATE_NUMBER_OF_PIECES()) or 1
        enabled = {self._results.GetArrayName(i) for i in range(self._results.GetNumberOfArrays())
                   if self._results.GetArraySetting(i)}
        output = vtkMultiBlockDataSet.GetData(outputs, 0)
        for index, name in enumerate(model.parts):
            output.SetBlock(index, None)
            if self._parts.ArrayIsEnabled(name):
                output.SetBlock(index, _grid(model, index, state and state[0], enabled, self._factor, *share))
            output.GetMetaData(index).Set(output.NAME(), name)
        if state:
            output.GetInformation().Set(output.DATA_TIME_STEP(), state[1])
        return 1

    def _state(self, time):
        """The last state that is not after a time; the first before all."""
        states = sorted(self._model.states, key=lambda state: state[1])
        before = [state for state in states if time is None or state[1] <= time * (1 + 1e-9)]
        return (before if before and time is not None else states[:1] or [None])[-1]
