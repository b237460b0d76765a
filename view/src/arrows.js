// Arrows that show vectors at nodes.

import vtkDataArray from '@kitware/vtk.js/Common/Core/DataArray';
import vtkPolyData from '@kitware/vtk.js/Common/DataModel/PolyData';
import vtkArrowSource from '@kitware/vtk.js/Filters/Sources/ArrowSource';
import vtkActor from '@kitware/vtk.js/Rendering/Core/Actor';
import vtkGlyph3DMapper from '@kitware/vtk.js/Rendering/Core/Glyph3DMapper';

/** @typedef {import('./types.js').ArrowStyle} ArrowStyle */
/** @typedef {{ positions: Float32Array, vectors: Float32Array }} Field  Three numbers a node. */

/** The nodes that have a vector of some length, thinned out where there are many. @param {Field[]} fields @param {ArrowStyle} style @returns {Field} */
function shownOf(fields, { drawn, clamped, skipped, most }) {
    const count = fields.reduce((sum, field) => sum + field.vectors.length / 3, 0);
    const step = Math.max(1 + skipped, Math.ceil(count / most));
    /** @type {number[]} */
    const positions = [];
    /** @type {number[]} */
    const vectors = [];
    for (const field of fields) {
        for (let i = 0; i < field.vectors.length; i += 3 * step) {
            const vector = field.vectors.subarray(i, i + 3);
            const length = Math.hypot(...vector);
            if (!(length > 0 && length >= drawn[0] && length <= drawn[1])) continue;
            const factor = Math.min(Math.max(length, clamped[0]), clamped[1]) / length;
            positions.push(...field.positions.subarray(i, i + 3));
            vectors.push(...vector.map((component) => component * factor));
        }
    }
    return { positions: Float32Array.from(positions), vectors: Float32Array.from(vectors) };
}

/** An arrow of length 1 along x; that of vtk.js begins behind the origin. */
function arrowFromOrigin() {
    const arrow = vtkArrowSource.newInstance({ tipResolution: 12, shaftResolution: 8 }).getOutputData();
    const [begin] = arrow.getBounds();
    const points = arrow.getPoints().getData();
    for (let i = 0; i < points.length; i += 3) points[i] -= begin;
    arrow.getPoints().modified();
    return arrow;
}

export class Arrows {
    #mapper = vtkGlyph3DMapper.newInstance();
    #actor = vtkActor.newInstance();

    /** @param {{ addActor: Function }} renderer */
    constructor(renderer) {
        this.#mapper.setInputData(arrowFromOrigin(), 1);
        this.#mapper.setOrientationArray('vectors');
        this.#mapper.setScaleArray('vectors');
        this.#mapper.setScaleModeToScaleByMagnitude();
        this.#mapper.setScalarVisibility(false);
        this.#actor.setMapper(this.#mapper);
        this.#actor.setPickable(false);
        this.#actor.setVisibility(false);
        renderer.addActor(this.#actor);
    }

    /** @param {Field[]} fields @param {ArrowStyle} style @param {number} factor  Model length for each unit of the result. @param {import('./types.js').Vector} color */
    show(fields, style, factor, color) {
        const { positions, vectors } = shownOf(fields, style);
        this.#actor.setVisibility(vectors.length > 0);
        if (vectors.length === 0) return;
        const data = vtkPolyData.newInstance();
        data.getPoints().setData(positions, 3);
        data.getPointData().addArray(vtkDataArray.newInstance({ name: 'vectors', values: vectors, numberOfComponents: 3 }));
        this.#mapper.setInputData(data, 0);
        this.#mapper.setScaleFactor(factor);
        this.#actor.getProperty().setColor(...color);
    }
}
