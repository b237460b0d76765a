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
_POLYHEDRON = 42
_COMPONENTS = {3: ("X", "Y", "Z"), 6: ("XX", "YY", "ZZ", "XY", "YZ", "XZ")}
_WIDTHS = {"Vector": 3, "Displacement": 3, "Tensor": 6}
_UNDEFINED = np.float32(2.99e38)


def _tag(element):
    return element.tag.rpartition("}")[2]


def _true(element, name):
    return element.get(name, "").lower() == "true"


class _Share:
    """A range of the elements of a part in a state, with the range of nodes that holds those that they use.

    ``runs`` are pairs of VTK's type and the nodes of elements, as positions in their block: (elements, nodes), for
    polyhedrons lists of faces. ``rows`` and ``node_rows`` say where elements and nodes are in their blocks,
    ``corner_rows`` where the nodes of these elements are among those of all; ``ids`` and ``node_ids`` may be None.
    """

    def __init__(self, block, rows, runs, ids, first_corner):
        self.block, self.rows, self.runs, self.ids = block, rows, runs, ids
        self.node_counts = np.concatenate([_node_counts(*run) for run in runs] or [np.zeros(0, int)])
        self.corner_rows = slice(first_corner, first_corner + int(self.node_counts.sum()))
        flat = [np.concatenate([_corners(cell) for cell in cells] or [np.zeros(0, int)])
                if kind == _POLYHEDRON else cells.ravel() for kind, cells in runs]
        self.used = np.unique(np.concatenate(flat or [np.zeros(0, int)])).astype(np.int64)
        self.node_rows = slice(int(self.used[0]), int(self.used[-1]) + 1) if len(self.used) else slice(0, 0)

    def set_nodes(self, node_block, xyz, node_ids):
        """The nodes of the range."""
        self.node_block, self.node_ids = node_block, node_ids
        self.points = self.used - self.node_rows.start
        self.xyz = xyz[self.points]

    def item_rows(self, on):
        return {"nodes": self.node_rows, "elements": self.rows, "element_nodes": self.corner_rows}[on]


def _corners(cell):
    return np.unique(np.concatenate(cell))


def _node_counts(kind, cells):
    if kind == _POLYHEDRON:
        return np.array([len(_corners(cell)) for cell in cells], int)
    return np.full(len(cells), cells.shape[1])


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


def _placed(items, values, ids, rows):
    """The values of a range of items, which name theirs by ids, or by position where there are none."""
    found = np.full((rows.stop - rows.start, values.shape[1]), np.nan, np.float32)
    if ids is None:
        inside = (items >= rows.start) & (items < rows.stop)
        found[items[inside] - rows.start] = values[inside]
    elif len(ids):
        inside = np.isin(items, ids)
        found[_positions(ids, items[inside])] = values[inside]
    return found


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
        self.displacements = {name for name, (kind, _, _) in self.results.items() if kind == "Displacement"}
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

    def _array(self, base, code, width=1, rows=None):
        """An array, or a range of its rows: no more of it is kept in memory."""
        name = self._folder + base.replace("\\", "/")
        if name + ".dat" not in self._names:
            text = self._archive.read(self._names[name + ".txt"]).decode().replace("UNDEF", "3e38 " * width)
            values = np.array(text.split(), code + "4")
            return values if rows is None else values[rows.start * width:rows.stop * width]
        size = 4 * width
        with self._archive.open(self._names[name + ".dat"]) as entry:
            if rows is None:
                data = entry.read()
                return np.frombuffer(data, "<" + code + "4", len(data) // size * width)
            entry.seek(rows.start * size)
            return np.frombuffer(entry.read((rows.stop - rows.start) * size), "<" + code + "4")

    def _record(self, parent, name):
        return next((e for e in parent if _tag(e) == name), None)

    def _named(self, parent, name):
        record = self._record(parent, name)
        return None if record is None else self._array(record.get("Filename"), "i")

    def element_block(self, part, state):
        """The elements of the part of an index in a state, by the id of their block."""
        return self._blocks.get(state, next(iter(self._blocks.values())))[part][1]

    def share(self, part, state, share_of):
        """A share of these elements; the function gives it by their number."""
        block = self.element_block(part, state)
        root = self._block("Elements", block)
        nodes_root = self._block("Nodes", int(root.get("NodeBlock")))
        by_ids = self._node_ids(nodes_root) if _true(root, "MapToNodeIDs") else None
        groups = [group for group in root if _tag(group) == "ElementGroup"]
        rows = share_of(sum(self._count(group) for group in groups))
        runs, ids, first, corner = [], [], 0, 0
        for group in groups:
            count, record = self._count(group), self._record(group, "File")
            own = slice(min(max(rows.start - first, 0), count), min(max(rows.stop - first, 0), count))
            runs.append((_VTK[group.get("Type")], self._cells(group, own, by_ids)))
            if record.get("IDs"):
                ids.append(self._array(record.get("IDs"), "i", 1, own))
            corner += self._corners_before(group, own.start)
            first += count
        share = _Share(block, rows, runs, np.concatenate(ids) if ids else None, corner)
        record = self._record(nodes_root, "File")
        xyz = (np.zeros((0, 3), np.float32) if record is None
               else self._array(record.get("Filename"), "f", 3, share.node_rows).reshape(-1, 3))
        share.set_nodes(int(root.get("NodeBlock")), xyz, self._node_ids(nodes_root, share.node_rows))
        return share

    def _node_ids(self, root, rows=None):
        record = self._record(root, "File")
        return self._array(record.get("IDs"), "i", 1, rows) if record is not None and record.get("IDs") else None

    def _count(self, group):
        return int(self._record(group, "File").get("NumItems"))

    def _corners_before(self, group, row):
        counts = self._named(group, "PolyhedronElementNodeCounts")
        if counts is not None:
            return int(counts[:row].sum())
        return row * int(group.get("NumElementNodes")) // max(self._count(group), 1)

    def _cells(self, group, rows, ids):
        """Elements of a group by the positions of their nodes, whose ids are given where they are named by these."""
        name, counts = self._record(group, "File").get("Filename"), self._named(group, "PolyhedronElementNodeCounts")
        width = int(group.get("NumElementNodes")) // max(self._count(group), 1)
        nodes = self._array(name, "i", width, rows) if counts is None else self._array(name, "i")
        nodes = nodes - 1 if ids is None else _positions(ids, nodes)
        if counts is None:
            return nodes.reshape(rows.stop - rows.start, width)
        return _faces(nodes, counts, self._named(group, "PolyhedronFaceCounts"),
                      self._named(group, "PolyhedronFaceNodeCounts"),
                      self._named(group, "PolyhedronFaceLocalNodes"))[rows]

    def values(self, name, state, share):
        """On what, and the values of the items of a share; None where the state has none."""
        kind, on, blocks = self.results[name]
        on = {"Node": "nodes", "Element": "elements", "Polygon": "elements", "ElementNode": "element_nodes",
              "PolygonNode": "element_nodes"}.get(on)
        if not on or state not in blocks:
            return None
        rows = share.item_rows(on)
        for block in blocks[state]:
            root = self._block("ResultValues", block)
            if int(root.get("MapToBlockID")) != (share.node_block if on == "nodes" else share.block):
                continue
            width, record = int(root.get("NumDimensions")), self._record(root, "File")
            if record.get("IDs") and _true(root, "WithID"):
                values = self._array(record.get("Filename"), "f", width).reshape(-1, width)
                values = _placed(self._array(record.get("IDs"), "i"), values,
                                 share.node_ids if on == "nodes" else share.ids, rows)
            else:
                values = self._array(record.get("Filename"), "f", width, rows).reshape(-1, width)
            return on, np.where(values < _UNDEFINED, values, np.float32(np.nan))
        return on, np.full((rows.stop - rows.start, _WIDTHS.get(kind, 1)), np.nan, np.float32)


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
        self.results = dict(self._model.results)
        self.displacements = {name for name, own in self.results.items() if own.kind == "displacement"}
        self.sets = {name: (own.by_ids, own.groups) for name, own in self._model.sets.items()}

    def element_block(self, part, state):
        return self._parts[part].block_at(None if state is None else self._model.states.by_id(state))

    def share(self, part, state, share_of):
        own = self._parts[part]
        state = None if state is None else self._model.states.by_id(state)
        elements = own.read_elements(share_of, state)
        index = self._model.node_blocks[elements.node_block].index if elements.by_ids else np.asarray
        runs = [(group.kind.vtk, index(group.nodes) if group.polyhedrons is None
                 else _faces(index(group.nodes), *group.polyhedrons)) for group in elements.groups]
        share = _Share(elements.block_id, slice(elements.first, elements.first + elements.count), runs, elements.ids,
                       elements.first_node)
        nodes = self._model.read_nodes(share.node_rows, elements.node_block)
        share.set_nodes(elements.node_block, nodes.xyz, nodes.ids)
        share.part = own
        return share

    def values(self, name, state, share):
        result = self.results[name]
        state = self._model.states.by_id(state)
        if result.on not in ("nodes", "elements", "element_nodes") or state.id not in result.state_ids:
            return None
        values = result.at(state, part=share.part, rows=share.item_rows(result.on))
        return result.on, values.reshape(len(values), -1)


def _grid(model, share, state, results, factor):
    """A share of the elements of a part, with the nodes that they use."""
    grid, points, used = vtkUnstructuredGrid(), vtkPoints(), share.points
    grid.SetPoints(points)
    _set_cells(grid, [(kind, cells) for kind, cells in share.runs if len(cells)], share.used)
    xyz = np.array(share.xyz)
    for name in model.results:
        moves = factor and name in model.displacements
        found = model.values(name, state, share) if name in results or moves else None
        if found is None:
            continue
        on, values = found
        if on == "nodes" and moves:
            xyz += np.float32(factor) * np.nan_to_num(values[used])
        if name in results:
            data = grid.GetPointData() if on == "nodes" else grid.GetCellData()
            data.AddArray(_array(values[used] if on == "nodes" else _means(values, on, share), name))
    points.SetData(_array(xyz, "Points"))
    for name in model.sets:
        grid.GetCellData().AddArray(_array(_set_mask(*model.sets[name], share), "set " + name))
    if share.node_ids is not None:
        grid.GetPointData().SetGlobalIds(_array(share.node_ids[used].astype(np.int64), "NodeId", 12))
    if share.ids is not None:
        grid.GetCellData().SetGlobalIds(_array(share.ids.astype(np.int64), "ElementId", 12))
    return grid


def _set_mask(by_ids, groups, share):
    """Which elements of a share are in a set."""
    mask = np.zeros(share.rows.stop - share.rows.start, np.uint8)
    for block, items in groups:
        if block != share.block:
            continue
        if by_ids and share.ids is not None:
            mask |= np.isin(share.ids, items).astype(np.uint8)
        else:
            mask[items[(items >= share.rows.start) & (items < share.rows.stop)] - share.rows.start] = 1
    return mask


def _means(values, on, share):
    counts = share.node_counts
    if on == "elements" or not len(counts):
        return values
    return (np.add.reduceat(values, np.cumsum(counts) - counts, axis=0) / counts[:, None]).astype(np.float32)


def _array(values, name, kind=None):
    """Copied, so that no memory of Python has to outlive this call."""
    array = numpy_to_vtk(np.ascontiguousarray(values), deep=1, array_type=kind)
    array.SetName(name)
    for i, component in enumerate(_COMPONENTS.get(array.GetNumberOfComponents(), ())):
        array.SetComponentName(i, component)
    return array


def _set_cells(grid, runs, used):
    if any(kind == _POLYHEDRON for kind, _ in runs):
        grid.Allocate(sum(len(nodes) for _, nodes in runs))
        for kind, cells in runs:
            for cell in cells:
                if kind != _POLYHEDRON:
                    grid.InsertNextCell(kind, len(cell), np.searchsorted(used, cell).tolist())
                    continue
                stream = vtkIdList()
                for number in (len(cell), *(n for face in cell for n in (len(face), *np.searchsorted(used, face)))):
                    stream.InsertNextId(int(number))
                grid.InsertNextCell(_POLYHEDRON, stream)
        return
    if not runs:
        return
    sizes = np.concatenate([np.full(len(nodes), nodes.shape[1]) for _, nodes in runs])
    connectivity = np.searchsorted(used, np.concatenate([nodes.ravel() for _, nodes in runs]))
    cells = vtkCellArray()
    cells.SetData(_array(np.concatenate([[0], np.cumsum(sizes)]).astype(np.int64), "", 12),
                  _array(connectivity.astype(np.int64), "", 12))
    grid.SetCells(_array(np.concatenate([np.full(len(n), kind, np.uint8) for kind, n in runs]), ""), cells)


@smproxy.reader(name="ZrfxReader", label="ZRFx Reader", extensions="zrfx", file_description="ZRFx files")
class ZrfxReader(VTKPythonAlgorithmBase):
    """The reader as ParaView shows it."""

    def __init__(self):
        super().__init__(nInputPorts=0, nOutputPorts=1, outputType="vtkMultiBlockDataSet")
        self._path, self._model, self._factor, self._shares = None, None, 0.0, {}
        self._results, self._parts = vtkDataArraySelection(), vtkDataArraySelection()
        for selected in (self._results, self._parts):
            selected.AddObserver("ModifiedEvent", lambda *_: self.Modified())

    @smproperty.stringvector(name="FileName")
    @smdomain.filelist()
    @smhint.filechooser(extensions="zrfx", file_description="ZRFx files")
    def SetFileName(self, path):
        if path != self._path:
            self._path, self._model, self._shares = path, None, {}
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
            self._shares = {}
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
        for key, values in ((keys.TIME_STEPS(), times), (keys.TIME_RANGE(), times and [times[0], times[-1]])):
            information.Remove(key)
            for time in values:
                information.Append(key, time)
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
                own = self._share(index, state and state[0], *share)
                output.SetBlock(index, _grid(model, own, state and state[0], enabled, self._factor))
            output.GetMetaData(index).Set(output.NAME(), name)
        if state:
            output.GetInformation().Set(output.DATA_TIME_STEP(), state[1])
        return 1

    def _share(self, part, state, piece, pieces):
        """The share of a part, kept until another is asked for."""
        key = (self._model.element_block(part, state), piece, pieces)
        if self._shares.get(part, (None, None))[0] != key:
            def share_of(count):
                return slice(count * piece // pieces, count * (piece + 1) // pieces)

            self._shares[part] = key, self._model.share(part, state, share_of)
        return self._shares[part][1]

    def _state(self, time):
        """The last state that is not after a time; the first before all."""
        states = sorted(self._model.states, key=lambda state: state[1])
        before = [state for state in states if time is None or state[1] <= time * (1 + 1e-9)]
        return (before if before and time is not None else states[:1] or [None])[-1]
