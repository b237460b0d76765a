// The shapes of what a source of data gives, and of what is shown of it.

/** @typedef {{ id: number, name: string, parent: number | null }} Part */
/** @typedef {{ part: number, surfaces: number[] }} LayoutPart  What a part is in some states. */
/** @typedef {{ id: number, name: string, value: number | null, type: string, layout: number }} State */
/** @typedef {{ value: number, id: number, second?: number, part?: number, position?: number[] }} Extreme */
/** @typedef {{ min: Extreme, max: Extreme }} Extremes */
/**
 * @typedef {object} Result
 * @property {number} id
 * @property {string} name
 * @property {string} type
 * @property {string} mapping  "Node", "Element", "ElementNode" or "Surface"
 * @property {number} components
 * @property {string[]} quantities  Components first, then what is derived from them.
 * @property {boolean} engineeringShear
 * @property {number | null} scale
 * @property {Record<string, { extremes: Record<string, Extremes> }>} states  By id of the state.
 */
/** @typedef {{ id: number, name: string }} ElementSet */
/**
 * @typedef {object} Model
 * @property {number} id
 * @property {string} name
 * @property {string} description
 * @property {Part[]} parts
 * @property {LayoutPart[][]} layouts
 * @property {State[]} states
 * @property {Result[]} results
 * @property {ElementSet[]} sets
 * @property {string[]} leftOut  Sentences.
 */
/** @typedef {{ classType: string, values: Record<string, any> }} PropertySet */
/** @typedef {{ id: number, name: string, description: string, properties: PropertySet[], snapshot: any }} Case */

/**
 * The outer surface of a part.
 * @typedef {object} Surface
 * @property {Float32Array} positions  Of the nodes, three each.
 * @property {number} step  How exact they are.
 * @property {Int32Array} nodeIds
 * @property {Uint8Array} kinds  Of the cells: 0 point, 1 line, 2 face, 3 face with mid-side nodes.
 * @property {Uint32Array} begins  Of the corners of each cell, and the end.
 * @property {Uint32Array} corners  Of all cells, as indices of nodes.
 * @property {Int32Array} elementIds  Of the cells.
 */
/**
 * The values of a result on a surface, all components of an item in a row; NaN is "no value".
 * @typedef {object} Values
 * @property {Float32Array} [node]
 * @property {Float32Array} [cell]
 * @property {Float32Array} [corner]
 * @property {number} step  How exact they are.
 */
/**
 * Where all data come from.
 * @typedef {object} Source
 * @property {string} file
 * @property {string} date
 * @property {Case[]} cases
 * @property {number | null} firstCase  Id of the case that is shown first.
 * @property {Model} model
 * @property {(index: number) => Promise<Surface>} surface
 * @property {(result: number, state: number, surface: number) => Promise<Values | null>} values
 *     By index of the result, id of the state, and index of the surface.
 * @property {(set: number, surface: number) => Promise<Uint32Array>} setCells  By index of the set.
 * @property {(image: any) => Promise<ImageData | null>} image
 */

/** @typedef {[number, number, number]} Vector */
/** @typedef {'surface' | 'surface_mesh' | 'outline' | 'line' | 'point' | 'surface_outline_mesh' | 'hidden_line_removed' | 'none'} DrawStyle */
/**
 * @typedef {object} PartLook
 * @property {boolean} visible
 * @property {Vector} color  Each from 0 to 1.
 * @property {number} opacity
 * @property {DrawStyle} style
 * @property {boolean} fringes
 * @property {boolean} displaced
 * @property {boolean} vectors
 * @property {boolean} lighting
 * @property {number} specular
 * @property {number} lineWidth
 * @property {number} pointSize
 */
/**
 * How values become colours.
 * @typedef {object} ColorScale
 * @property {string} scheme
 * @property {boolean} smooth
 * @property {number} bands
 * @property {'all' | 'state' | 'fixed'} mode
 * @property {number} min  Of a fixed range.
 * @property {number} max
 * @property {number[] | null} levels  Limits of bands that are not equally wide.
 * @property {Vector[] | null} colors  Of the bands, or of the points of a gradient.
 * @property {number[] | null} points  Values that the colours of a gradient stand at.
 * @property {Vector | null} above
 * @property {Vector | null} below
 * @property {Vector | null} undefinedColor
 * @property {boolean} logarithmic
 */
/** @typedef {{ on: boolean, point: Vector, normal: Vector }} Clip  The normal points to what stays. */
/** @typedef {{ eye: Vector, focus: Vector, up: Vector, ortho: boolean, angle: number, height: number }} CameraPlace */
/**
 * Lengths are those of the vectors, in the units of the result.
 * @typedef {object} ArrowStyle
 * @property {number | null} unitLength  What one unit measures in the model; null where `arrowScale` says it.
 * @property {Vector | null} color  Null for one that stands out.
 * @property {[number, number]} drawn  Shorter and longer vectors are left out.
 * @property {[number, number]} clamped  Shorter and longer ones are drawn with these lengths.
 * @property {number} skipped  Vectors left out after each one that is drawn.
 * @property {number} most
 */
/**
 * @typedef {object} Settings
 * @property {number} state  Index of the state.
 * @property {number[]} frames  Indices of the states in the order of playing.
 * @property {number} result  Index of the result that colours the model; -1 for none.
 * @property {string} quantity
 * @property {boolean} average  Means at nodes instead of the values of elements.
 * @property {ColorScale} scale
 * @property {number} displacement  Index of the result; -1 for none.
 * @property {number | null} exaggeration  Factor on the displacement; null for one that can be seen.
 * @property {number} phase  Factor on the displacement that swings from -1 to 1.
 * @property {boolean} swings
 * @property {boolean} undeformed  Shown as outline.
 * @property {number} vectors  Index of the result; -1 for none.
 * @property {number} arrowScale  Length of the longest arrow as a part of the model's size.
 * @property {ArrowStyle} arrows
 * @property {Map<number, PartLook>} parts
 * @property {number[]} sets  Indices of the sets that are highlighted.
 * @property {Clip} clip
 * @property {boolean} extremes  Marked in the picture.
 * @property {boolean} legend
 * @property {string} legendTitle
 * @property {string} format  As of numbers in C: "g", "e" or "f".
 * @property {number} digits
 * @property {Vector[] | null} background  From the upper end down; null follows the page.
 * @property {number} framesPerSecond
 * @property {number} firstDelay  Milliseconds that the first frame stays longer.
 */
export {};
