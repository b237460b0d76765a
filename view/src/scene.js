// The view: renderer, camera, and what turns the mouse, keys and fingers into motion.

import '@kitware/vtk.js/Rendering/OpenGL/Profiles/Geometry';
import '@kitware/vtk.js/Rendering/OpenGL/Profiles/Glyph';
import vtkPlane from '@kitware/vtk.js/Common/DataModel/Plane';
import vtkInteractorStyleTrackballCamera from '@kitware/vtk.js/Interaction/Style/InteractorStyleTrackballCamera';
import vtkRenderWindow from '@kitware/vtk.js/Rendering/Core/RenderWindow';
import vtkRenderWindowInteractor from '@kitware/vtk.js/Rendering/Core/RenderWindowInteractor';
import vtkRenderer from '@kitware/vtk.js/Rendering/Core/Renderer';
import vtkOpenGLRenderWindow from '@kitware/vtk.js/Rendering/OpenGL/RenderWindow';
import { centreOf, cornersOf, cross, dot, isBox, minus, plus, sizeOf, times, unit } from './vectors.js';

/** @typedef {import('./types.js').Vector} Vector */

/** Where the camera stands, seen from the middle of the model, and what is up. @type {Record<string, [Vector, Vector]>} */
const views = {
    iso: [[1, -1.4, 0.9], [0, 0, 1]],
    x: [[1, 0, 0], [0, 0, 1]],
    y: [[0, -1, 0], [0, 0, 1]],
    z: [[0, 0, 1], [0, 1, 0]],
    '-x': [[-1, 0, 0], [0, 0, 1]],
    '-y': [[0, 1, 0], [0, 0, 1]],
    '-z': [[0, 0, -1], [0, 1, 0]],
};

const fitMargin = 1.1;

export function hasWebGL() {
    return document.createElement('canvas').getContext('webgl2') !== null;
}

export class Scene {
    /** @param {HTMLElement} container */
    constructor(container) {
        this.container = container;
        this.renderer = vtkRenderer.newInstance();
        this.window = vtkRenderWindow.newInstance();
        this.window.addRenderer(this.renderer);
        this.gl = vtkOpenGLRenderWindow.newInstance();
        this.gl.setContainer(container);
        this.window.addView(this.gl);
        this.interactor = vtkRenderWindowInteractor.newInstance();
        this.interactor.setView(this.gl);
        this.interactor.initialize();
        this.interactor.setContainer(container);
        this.interactor.setInteractorStyle(vtkInteractorStyleTrackballCamera.newInstance());
        // The keys are the page's own; vtk.js has others.
        window.addEventListener('keypress', (event) => event.stopImmediatePropagation(), true);
        this.clipPlane = vtkPlane.newInstance();
        this.renderer.setTwoSidedLighting(true);
        new ResizeObserver(() => this.resize()).observe(container);
        this.resize();
    }

    get camera() {
        return this.renderer.getActiveCamera();
    }

    resize() {
        const ratio = window.devicePixelRatio || 1;
        const { width, height } = this.container.getBoundingClientRect();
        this.gl.setSize(Math.max(1, Math.floor(width * ratio)), Math.max(1, Math.floor(height * ratio)));
        this.render();
    }

    render() {
        this.renderer.resetCameraClippingRange();
        this.window.render();
    }

    /** @param {Vector} color @param {number} opacity */
    setBackground(color, opacity) {
        this.renderer.setBackground([...color, opacity]);
    }

    /** Looks at a box from one of the standard directions. @param {string} name @param {number[]} box */
    lookFrom(name, box) {
        const [direction, up] = views[name];
        const { camera } = this;
        const focus = isBox(box) ? centreOf(box) : /** @type {Vector} */ ([0, 0, 0]);
        const eye = plus(focus, times(unit(direction), sizeOf(box)));
        camera.setFocalPoint(...focus);
        camera.setPosition(...eye);
        camera.setViewUp(...up);
        this.fit(box);
    }

    /** Moves the camera so that a box fills the picture. @param {number[]} box */
    fit(box) {
        if (!isBox(box)) return this.render();
        const { camera } = this;
        const { forward, right, up } = this.#axes();
        const focus = centreOf(box);
        const half = Math.tan((camera.getViewAngle() * Math.PI) / 360);
        let distance = 0;
        let height = 0;
        for (const corner of cornersOf(box)) {
            const away = minus(corner, focus);
            const reach = Math.max(Math.abs(dot(away, up)), Math.abs(dot(away, right)) / this.#aspect);
            height = Math.max(height, fitMargin * reach);
            distance = Math.max(distance, (fitMargin * reach) / half - dot(away, forward));
        }
        camera.setFocalPoint(...focus);
        camera.setPosition(...minus(focus, times(forward, distance || 1)));
        camera.setParallelScale(height || 1);
        this.render();
    }

    /** @param {import('./types.js').CameraPlace} place */
    placeCamera(place) {
        const { camera } = this;
        camera.setFocalPoint(...place.focus);
        camera.setPosition(...place.eye);
        camera.setViewUp(...place.up);
        camera.setParallelProjection(place.ortho);
        camera.setViewAngle(place.angle);
        camera.setParallelScale(place.height / 2);
    }

    /** Parallel or perspective, so that what is in the focus keeps its size. @param {boolean} isParallel */
    setParallel(isParallel) {
        const { camera } = this;
        const half = Math.tan((camera.getViewAngle() * Math.PI) / 360);
        if (isParallel) {
            camera.setParallelScale(camera.getDistance() * half);
        } else {
            const away = times(unit(minus(camera.getPosition(), camera.getFocalPoint())), camera.getParallelScale() / half);
            camera.setPosition(...plus(camera.getFocalPoint(), away));
        }
        camera.setParallelProjection(isParallel);
        this.render();
    }

    get #aspect() {
        const { width, height } = this.container.getBoundingClientRect();
        return width / Math.max(1, height);
    }

    /** The axes of the picture: right, up, and into it. */
    #axes() {
        const forward = unit(minus(this.camera.getFocalPoint(), this.camera.getPosition()));
        const right = unit(cross(forward, this.camera.getViewUp()));
        return { forward, right, up: cross(right, forward) };
    }

    /** Half the height of the picture at the distance 1, or anywhere in parallel projection. */
    get #halfHeight() {
        const { camera } = this;
        return camera.getParallelProjection() ? camera.getParallelScale() : Math.tan((camera.getViewAngle() * Math.PI) / 360);
    }

    /** The ray through a place in the picture, in pixels of the page. @param {number} x @param {number} y @returns {{ origin: Vector, direction: Vector }} */
    rayThrough(x, y) {
        const { width, height } = this.container.getBoundingClientRect();
        const { forward, right, up } = this.#axes();
        const half = this.#halfHeight;
        const across = times(right, ((2 * x) / width - 1) * half * this.#aspect);
        const offset = plus(across, times(up, (1 - (2 * y) / height) * half));
        const eye = this.camera.getPosition();
        if (!this.camera.getParallelProjection()) return { origin: eye, direction: unit(plus(forward, offset)) };
        // Also what lies behind the camera is in the picture of a parallel projection.
        const back = times(forward, -1e3 * this.camera.getDistance());
        return { origin: plus(plus(eye, offset), back), direction: forward };
    }

    /** The place of a point in the picture, in pixels of the page; null behind the camera. @param {readonly number[]} point */
    placeOf(point) {
        const { width, height } = this.container.getBoundingClientRect();
        const { forward, right, up } = this.#axes();
        const away = minus(point, this.camera.getPosition());
        const isParallel = this.camera.getParallelProjection();
        /** @param {Vector} axis */
        const along = (axis) => axis[0] * away[0] + axis[1] * away[1] + axis[2] * away[2];
        const depth = isParallel ? 1 : along(forward);
        if (depth <= 0) return null;
        const half = this.#halfHeight * depth;
        return {
            x: (width * (along(right) / (half * this.#aspect) + 1)) / 2,
            y: (height * (1 - along(up) / half)) / 2,
        };
    }

    /** The picture as it is. */
    canvas() {
        this.render();
        return /** @type {HTMLCanvasElement} */ (this.container.querySelector('canvas'));
    }
}
