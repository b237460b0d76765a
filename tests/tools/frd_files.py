"""Small CalculiX result files, written as the solver does: a tetrahedron and results of it."""

HEAD = """    1C
    1UMAT    1STEEL
    2C                             4                                     1
 -1         1 0.00000E+00 0.00000E+00 0.00000E+00
 -1         2 1.00000E+00 0.00000E+00 0.00000E+00
 -1         3 0.00000E+00 1.00000E+00 0.00000E+00
 -1         4 0.00000E+00 0.00000E+00 1.00000E+00
 -3
    3C                             1                                     1
 -1         1    3    0    1
 -2         1         2         3         4
 -3
"""
END = " 9999\n"


def result(step, name, components, nodes, analysis=1, kind=1):
    lines = [f"    1PSTEP{step:26d}{1:12d}{step:12d}",
             f"  100CL  101{step / 4:12.5E}{len(nodes):12d}{'':20s}{analysis:2d}{step:5d}{'':10s} 1",
             f" -4  {name:8s}{len(components):5d}    1"]
    lines += [f" -5  {c:8s}    1{kind:5d}    0    0    0" for c in components]
    for node in nodes:
        lines.append(f" -1{node:10d}" + "".join(f"{node + i / 8:12.5E}"
                                                for i in range(len(components))))
    return "\n".join(lines) + "\n -3\n"


def displacement(step, analysis=1):
    return result(step, "DISP", ["D1", "D2", "D3"], [1, 2, 3, 4], analysis, kind=2)
