#!/usr/bin/env python3
"""Makes the meshes that the models of this folder include: nodes, bricks of 20 nodes, and the sets of
them to which the models refer. Run it again after changing a size."""
import math
from pathlib import Path

# Local corners of a brick, and the pairs of corners of its mid-side nodes, in the solver's order.
CORNERS = [(0, 0, 0), (1, 0, 0), (1, 1, 0), (0, 1, 0), (0, 0, 1), (1, 0, 1), (1, 1, 1), (0, 1, 1)]
EDGES = [(0, 1), (1, 2), (2, 3), (3, 0), (4, 5), (5, 6), (6, 7), (7, 4),
         (0, 4), (1, 5), (2, 6), (3, 7)]


class Mesh:
    def __init__(self, point):
        """`point` maps the place in a grid, where mid-side nodes have odd numbers, into space."""
        self.point, self.nodes, self.elements = point, {}, {}

    def add_cell(self, i, j, k, group):
        places = [(2 * (i + a), 2 * (j + b), 2 * (k + c)) for a, b, c in CORNERS]
        places += [tuple((p + q) // 2 for p, q in zip(places[a], places[b])) for a, b in EDGES]
        for place in places:
            self.nodes.setdefault(place, len(self.nodes) + 1)
        self.elements[(i, j, k)] = (group, [self.nodes[place] for place in places])

    def write(self, name, node_sets):
        """`node_sets`: name and a condition on the place in the grid."""
        lines = ["** Made by make_meshes.py", "*NODE, NSET=NALL"]
        for place, node in self.nodes.items():
            lines.append(f"{node}, " + ", ".join(f"{x:.9g}" for x in self.point(*place)))
        for group in sorted({group for group, _ in self.elements.values()}):
            lines.append(f"*ELEMENT, TYPE=C3D20R, ELSET={group}")
            for number, (own, nodes) in enumerate(self.elements.values(), 1):
                if own != group:
                    continue
                texts = [str(item) for item in [number] + nodes]
                lines += [", ".join(texts[:11]) + ",", ", ".join(texts[11:])]
        for label, condition in node_sets.items():
            lines.append(f"*NSET, NSET={label}")
            lines += [f"{node}," for place, node in self.nodes.items() if condition(*place)]
        Path(__file__).with_name(name).write_text("\n".join(lines) + "\n")


def plate_with_hole():
    """A quarter of a plate of 100 x 100 x 5 mm with a hole of 10 mm radius in its middle."""
    around, outward, half, radius = 12, 8, 50.0, 10.0

    def point(i, j, k):
        angle = math.pi / 2 * j / (2 * around)
        c, s = math.cos(angle), math.sin(angle)
        edge = half / max(c, s)
        r = radius + (edge - radius) * (i / (2 * outward)) ** 1.6
        return r * c, r * s, 5.0 * k / 2

    mesh = Mesh(point)
    for j in range(around):
        for i in range(outward):
            mesh.add_cell(i, j, 0, "PLATE")
    mesh.write("plate_with_hole.msh", {
        "X0": lambda i, j, k: j == 2 * around, "Y0": lambda i, j, k: j == 0,
        "Z0": lambda i, j, k: k == 0,
        "PULLED": lambda i, j, k: i == 2 * outward and j <= around})


def tuning_fork():
    """Two prongs of 93 mm and a handle of 45 mm, which are 5 mm thick."""
    def point(i, j, k):
        return 5.0 * i / 2, 5.0 * min(j, 18) / 2 + 4.88 * max(j - 18, 0) / 2, 5.0 * k / 2

    mesh = Mesh(point)
    for j in range(8):
        mesh.add_cell(1, j, 0, "FORK")
        mesh.add_cell(2, j, 0, "FORK")
    for i in range(4):
        mesh.add_cell(i, 8, 0, "FORK")
    for j in range(9, 28):
        mesh.add_cell(0, j, 0, "FORK")
        mesh.add_cell(3, j, 0, "FORK")
    mesh.write("tuning_fork.msh", {"HELD": lambda i, j, k: j == 0})


def heat_sink():
    """A copper plate of 40 x 4 x 30 mm with four aluminium fins of 20 mm height on it."""
    mesh = Mesh(lambda i, j, k: (4.0 * i / 2, 4.0 * j / 2, 7.5 * k / 2))
    for k in range(4):
        for i in range(10):
            mesh.add_cell(i, 0, k, "PLATE")
        for i in (0, 3, 6, 9):
            for j in range(1, 6):
                mesh.add_cell(i, j, k, "FINS")
    mesh.write("heat_sink.msh", {
        "BOTTOM": lambda i, j, k: j == 0, "TIPS": lambda i, j, k: j == 12,
        "CORNER": lambda i, j, k: (i, j, k) == (0, 0, 0),
        "LEFT": lambda i, j, k: (i, j) == (0, 0), "BACK": lambda i, j, k: (j, k) == (0, 0)})


if __name__ == "__main__":
    plate_with_hole()
    tuning_fork()
    heat_sink()
