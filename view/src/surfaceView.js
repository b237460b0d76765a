// The actors of one surface.

import vtkCellArray from '@kitware/vtk.js/Common/Core/CellArray';
import vtkDataArray from '@kitware/vtk.js/Common/Core/DataArray';
import vtkPolyData from '@kitware/vtk.js/Common/DataModel/PolyData';
import vtkActor from '@kitware/vtk.js/Rendering/Core/Actor';
import vtkMapper from '@kitware/vtk.js/Rendering/Core/Mapper';
import { edgesOf, topologyOf } from './topology.js';

/** @typedef {import('./types.js').Surface} Surface */
/** @typedef {import('./types.js').PartLook} PartLook */

/** @type {Set<string>} */
const filledStyles = new Set(['surface', 'surface_mesh', 'surface_outline_mesh', 'hidden_line_removed']);
/** @type {Set<string>} */
const meshStyles = new Set(['surface_mesh', 'line', 'hidden_line_removed']);
/** @type {Set<string>} */
const outlineStyles = new Set(['surface_outline_mesh', 'outline']);

/** Cells of so many points each, as vtk.js stores them. @param {Uint32Array} indices @param {number} each */
function cellArray(indices, each) {
    const count = indices.length / each;
    const values = new Uint32Array(count * (each + 1));
    for (let i = 0, at = 0, from = 0; i < count; ++i) {
        values[at++] = each;
        for (let k = 0; k < each; ++k) values[at++] = indices[from++];
    }
    return vtkCellArray.newInstance({ values });
}

/** @param {Float32Array} positions */
function polyDataAt(positions) {
    const data = vtkPolyData.newInstance();
    data.getPoints().setData(positions, 3);
    return data;
}

/** An actor and what it draws. */
class Layer {
    /** @param {ReturnType<typeof vtkPolyData.newInstance>} data */
    constructor(data) {
        this.data = data;
        this.mapper = vtkMapper.newInstance();
        this.mapper.setInputData(data);
        this.mapper.setScalarVisibility(false);
        this.mapper.setInterpolateScalarsBeforeMapping(true);
        this.mapper.setUseLookupTableScalarRange(true);
        this.mapper.setScalarModeToUsePointData();
        this.mapper.setColorModeToMapScalars();
        this.actor = vtkActor.newInstance();
        this.actor.setMapper(this.mapper);
        this.actor.setPickable(false);
        this.actor.getProperty().setInterpolationToFlat();
    }

    /** @param {Float32Array} positions */
    move(positions) {
        this.data.getPoints().setData(positions, 3);
        this.data.modified();
    }
}

export class SurfaceView {
    /** @type {Layer | null} */
    #shared = null;
    /** @type {Layer | null} */
    #split = null;
    /** @type {Layer | null} */
    #mesh = null;
    /** @type {Layer | null} */
    #outline = null;
    /** @type {Layer | null} */
    #rest = null;
    /** @type {Layer | null} */
    #highlight = null;
    /** @type {Uint32Array | null} */
    #outlineEdges = null;
    #isSplit = false;
    /** @type {any[]} */
    #planes = [];

    /**
     * @param {Surface} surface
     * @param {{ addActor: Function, removeActor: Function }} renderer
     */
    constructor(surface, renderer) {
        this.surface = surface;
        this.renderer = renderer;
        this.topology = topologyOf(surface);
        this.positions = surface.positions;
    }

    get #layers() {
        const all = [this.#shared, this.#split, this.#mesh, this.#outline, this.#rest, this.#highlight];
        return all.filter((layer) => layer !== null);
    }

    /** The faces, with points that they share, or with points of their own. @param {boolean} isSplit */
    #faces(isSplit) {
        this.#isSplit = isSplit;
        const known = isSplit ? this.#split : this.#shared;
        if (known) return known;
        const { corners } = this.surface;
        const { triangles, lines, points } = this.topology;
        /** @param {Uint32Array} places */
        const indices = (places) => (isSplit ? places : places.map((corner) => corners[corner]));
        const data = polyDataAt(isSplit ? this.#cornerPositions() : this.positions);
        data.setPolys(cellArray(indices(triangles), 3));
        data.setLines(cellArray(indices(lines), 2));
        data.setVerts(cellArray(indices(points), 1));
        const layer = this.#add(data);
        layer.mapper.setResolveCoincidentTopologyToPolygonOffset();
        layer.mapper.setRelativeCoincidentTopologyPolygonOffsetParameters(1, 1);
        if (isSplit) this.#split = layer;
        else this.#shared = layer;
        return layer;
    }

    /** @param {ReturnType<typeof vtkPolyData.newInstance>} data */
    #add(data) {
        const layer = new Layer(data);
        for (const plane of this.#planes) layer.mapper.addClippingPlane(plane);
        this.renderer.addActor(layer.actor);
        return layer;
    }

    /** @param {Uint32Array} pairs @param {Float32Array} positions */
    #addLines(pairs, positions) {
        const data = polyDataAt(positions);
        data.setLines(cellArray(pairs, 2));
        const layer = this.#add(data);
        layer.actor.getProperty().setLighting(false);
        return layer;
    }

    /** @param {Float32Array} positions */
    #addOutline(positions) {
        this.#outlineEdges ??= edgesOf(this.surface, true);
        return this.#addLines(this.#outlineEdges, positions);
    }

    #cornerPositions() {
        const { corners } = this.surface;
        const positions = new Float32Array(3 * corners.length);
        for (let i = 0; i < corners.length; ++i) {
            const node = 3 * corners[i];
            positions[3 * i] = this.positions[node];
            positions[3 * i + 1] = this.positions[node + 1];
            positions[3 * i + 2] = this.positions[node + 2];
        }
        return positions;
    }

    /** Moves the nodes. @param {Float32Array} positions */
    move(positions) {
        if (positions === this.positions) return;
        this.positions = positions;
        for (const layer of [this.#shared, this.#mesh, this.#outline, this.#highlight]) layer?.move(positions);
        this.#split?.move(this.#cornerPositions());
    }

    /**
     * Colours the faces by values of nodes, or of corners; by none where there are none.
     * @param {Float32Array | null} values @param {boolean} areAtCorners @param {any} lookup
     */
    color(values, areAtCorners, lookup) {
        const layer = this.#faces(values !== null && areAtCorners);
        layer.mapper.setScalarVisibility(values !== null);
        if (!values) return;
        const scalars = vtkDataArray.newInstance({ name: 'values', values, numberOfComponents: 1 });
        layer.data.getPointData().setScalars(scalars);
        layer.mapper.setLookupTable(lookup);
        layer.data.modified();
    }

    /** @param {PartLook} look @param {import('./types.js').Vector} edgeColor @param {import('./types.js').Vector} background */
    setLook(look, edgeColor, background) {
        const isFilled = look.visible && filledStyles.has(look.style);
        const hasMesh = look.visible && meshStyles.has(look.style);
        const hasOutline = look.visible && outlineStyles.has(look.style);
        const hasPoints = look.visible && look.style === 'point';
        const faces = this.#faces(this.#isSplit);
        for (const layer of [this.#shared, this.#split]) layer?.actor.setVisibility(false);
        faces.actor.setVisibility(isFilled || hasPoints);
        const property = faces.actor.getProperty();
        property.setColor(...(look.style === 'hidden_line_removed' ? background : look.color));
        if (look.style === 'hidden_line_removed') faces.mapper.setScalarVisibility(false);
        property.setOpacity(look.opacity);
        property.setLighting(look.lighting);
        property.setAmbient(look.lighting ? 0.35 : 1);
        property.setDiffuse(look.lighting ? 0.7 : 0);
        property.setSpecular(0.2 * look.specular);
        property.setSpecularPower(20);
        property.setLineWidth(Math.max(2, look.lineWidth));
        property.setPointSize(Math.max(3, look.pointSize));
        if (hasPoints) property.setRepresentationToPoints();
        else property.setRepresentationToSurface();
        if (hasMesh) this.#mesh ??= this.#addLines(edgesOf(this.surface, false), this.positions);
        if (hasOutline) this.#outline ??= this.#addOutline(this.positions);
        const color = look.style === 'line' || look.style === 'outline' ? look.color : edgeColor;
        for (const [layer, isShown] of /** @type {[Layer | null, boolean][]} */ ([[this.#mesh, hasMesh], [this.#outline, hasOutline]])) {
            layer?.actor.setVisibility(isShown);
            layer?.actor.getProperty().setColor(...color);
            layer?.actor.getProperty().setLineWidth(look.lineWidth);
        }
        if (this.#rest) this.#rest.actor.setVisibility(look.visible);
        if (this.#highlight) this.#highlight.actor.setVisibility(look.visible);
    }

    /** Shows the undeformed shape as outline, or not. @param {boolean} isShown @param {import('./types.js').Vector} color */
    showUndeformed(isShown, color) {
        if (isShown) this.#rest ??= this.#addOutline(this.surface.positions);
        this.#rest?.actor.setVisibility(isShown);
        this.#rest?.actor.getProperty().setColor(...color);
    }

    /** Draws some cells in a colour of their own, above the others. @param {Uint32Array} cells @param {import('./types.js').Vector} color */
    highlight(cells, color) {
        if (this.#highlight) this.renderer.removeActor(this.#highlight.actor);
        this.#highlight = null;
        if (cells.length === 0) return;
        const chosen = new Set(cells);
        const { corners } = this.surface;
        const { triangles, triangleCells, lines, lineCells } = this.topology;
        /** @param {Uint32Array} places @param {Uint32Array} owners @param {number} each */
        const own = (places, owners, each) =>
            places.filter((_, i) => chosen.has(owners[Math.floor(i / each)])).map((corner) => corners[corner]);
        const data = polyDataAt(this.positions);
        data.setPolys(cellArray(own(triangles, triangleCells, 3), 3));
        data.setLines(cellArray(own(lines, lineCells, 2), 2));
        this.#highlight = this.#add(data);
        this.#highlight.actor.getProperty().setColor(...color);
    }

    /** Clips all by planes. @param {any[]} planes */
    clip(planes) {
        this.#planes = planes;
        for (const layer of this.#layers) {
            layer.mapper.removeAllClippingPlanes();
            for (const plane of planes) layer.mapper.addClippingPlane(plane);
        }
    }

    /** Hides all, until a look is set. */
    hide() {
        for (const layer of this.#layers) layer.actor.setVisibility(false);
    }
}
