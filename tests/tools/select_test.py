#!/usr/bin/env python3
"""Chosen results, states and parts of a file, and files put together.

    select_test.py PROGRAM
"""

import json
import unittest

from frd_files import END, displacement, result
from tool_case import ToolCase

TENSOR = ["SXX", "SYY", "SZZ", "SXY", "SYZ", "SZX"]

# Two tetrahedra of two materials, with one face in common.
HEAD = """    1C
    1UMAT    1STEEL
    1UMAT    2BRASS
    2C                             5                                     1
 -1        10 0.00000E+00 0.00000E+00 0.00000E+00
 -1        20 1.00000E+00 0.00000E+00 0.00000E+00
 -1        30 0.00000E+00 1.00000E+00 0.00000E+00
 -1        40 0.00000E+00 0.00000E+00 1.00000E+00
 -1        50 1.00000E+00 1.00000E+00 1.00000E+00
 -3
    3C                             2                                     1
 -1         1    3    0    1
 -2        10        20        30        40
 -1         2    3    0    2
 -2        20        30        40        50
 -3
"""
NODES = [10, 20, 30, 40, 50]


def state(step, stress=True):
    shown = result(step, "DISP", ["D1", "D2", "D3"], NODES, kind=2)
    return shown + (result(step, "STRESS", TENSOR, [20, 50], kind=4) if stress else "")


class SelectTest(ToolCase):
    def setUp(self):
        super().setUp()
        self.model("a", HEAD + state(1) + state(2) + state(3) + END)

    def database(self, file):
        self.assertIn("0 errors, 0 warnings", self.output(f"check {file}"))
        return json.loads(self.output(f"info {file} --json"))["databases"][0]

    def test_copies_hold_what_is_chosen_and_nothing_else(self):
        whole = {"results": ["DISP", "STRESS"], "states": [1, 2, 3], "parts": ["STEEL", "BRASS"]}
        for options, left in [
                ("--results STRESS", {"results": ["STRESS"]}),
                ("--results 1,STRESS", {}),
                ("--states last", {"states": [3]}),
                ("--states 1,last --results DISP", {"states": [1, 3], "results": ["DISP"]}),
                ("--states 'Step 2, increment 1' --states 3", {"states": [2, 3]}),
                ("--parts BRASS", {"parts": ["BRASS"]}),
                ("--parts 1 --states 2 --results 2",
                 {"parts": ["STEEL"], "states": [2], "results": ["STRESS"]})]:
            left = whole | left
            self.output(f"copy a.zrfx b.zrfx {options}")
            found = self.database("b.zrfx")
            self.assertEqual([r["name"] for r in found["results"]], left["results"], options)
            self.assertEqual([s["id"] for s in found["states"]], left["states"])
            self.assertEqual([r["states"] for r in found["results"]],
                             [left["states"]] * len(left["results"]))
            self.assertEqual([p["name"] for p in found["parts"]], left["parts"])
            nodes = {"STEEL": {10, 20, 30, 40}, "BRASS": {20, 30, 40, 50}}
            nodes = set().union(*(nodes[part] for part in left["parts"]))
            for name in left["results"]:  # what is left has the values that it had
                rows = [row for row in self.table(f"cat a.zrfx --result {name}")
                        if int(row["state"]) in left["states"] and int(row["node"]) in nodes]
                self.assertEqual(self.table(f"cat b.zrfx --result {name}"), rows, options)
            shown = self.table("cat b.zrfx --result DISP --coordinates") if "DISP" in left["results"] \
                else []
            for row in shown:
                old = self.table(f"cat a.zrfx --result DISP --coordinates --node {row['node']}")
                self.assertEqual([row[c] for c in ("at_x", "at_y", "at_z")],
                                 [old[0][c] for c in ("at_x", "at_y", "at_z")])

    def test_elements_keep_their_values_and_sets(self):
        view = '$%s\n1\n"%s"\n1\n0\n3\n0\n1\n2\n%s$End%s\n'
        (self.folder / "m.msh").write_text(
            "$MeshFormat\n2.2 0 8\n$EndMeshFormat\n"
            '$PhysicalNames\n2\n3 1 "Left"\n3 2 "Right"\n$EndPhysicalNames\n'
            "$Nodes\n5\n1 0 0 0\n2 1 0 0\n3 0 1 0\n4 0 0 1\n5 1 1 1\n$EndNodes\n"
            "$Elements\n2\n1 4 2 1 1 1 2 3 4\n2 4 2 2 1 2 3 4 5\n$EndElements\n" +
            view % ("ElementData", "E", "1 1.5\n2 2.5\n", "ElementData") +
            view % ("ElementNodeData", "N", "1 4 1 2 3 4\n2 4 5 6 7 8\n", "ElementNodeData"))
        self.output("import m.msh m.zrfx")
        self.output("copy m.zrfx r.zrfx --parts Right")
        self.assertEqual([p["name"] for p in self.database("r.zrfx")["parts"]], ["Right"])
        for name in ("E", "N"):
            self.assertEqual(self.table(f"cat r.zrfx --result {name}"),
                             self.table(f"cat m.zrfx --result {name} --part Right"))

    def test_what_is_not_there_is_named(self):
        for options, message in [("--results U", "there is no result 'U'"),
                                 ("--states 1,7", "there is no state '7'"),
                                 ("--parts STEEL,Wood", "there is no part 'Wood'")]:
            run = self.zrfx(f"copy a.zrfx b.zrfx {options}")
            self.assertEqual((run.returncode, run.stderr), (1, f"zrfx: a.zrfx: {message}\n"))
            self.assertFalse((self.folder / "b.zrfx").exists())

    def test_run_that_went_on_is_one_run(self):
        self.model("first", HEAD + state(1) + state(2) + END)
        self.model("second", HEAD + state(2) + state(3) + END)
        self.assertEqual(
            self.output("merge first.zrfx second.zrfx -o whole.zrfx"),
            "second.zrfx: 1 state added, 1 state left out that the file has by reference value\n")
        self.database("whole.zrfx")
        names = "--ignore name --ignore description"
        self.assertEqual(self.zrfx(f"diff whole.zrfx a.zrfx {names}").stdout, "")
        self.output("merge first.zrfx second.zrfx -o first.zrfx")
        self.assertEqual(self.zrfx("diff whole.zrfx first.zrfx").stdout, "")

    def test_parts_of_one_model_come_together(self):
        self.output("copy a.zrfx steel.zrfx --parts STEEL")
        self.output("copy a.zrfx brass.zrfx --parts BRASS")
        self.assertEqual(self.output("merge steel.zrfx brass.zrfx brass.zrfx -o all.zrfx"),
                         2 * "brass.zrfx: 1 part added\n")
        found = self.database("all.zrfx")
        self.assertEqual([p["name"] for p in found["parts"]], ["STEEL", "BRASS", "BRASS (2)"])
        self.assertEqual([s["id"] for s in found["states"]], [1, 2, 3])
        self.assertEqual((found["nodes"], found["elements"]), (12, 3))
        for part in ("STEEL", "BRASS"):
            self.output(f"copy all.zrfx part.zrfx --parts {part}")
            for name in ("DISP", "STRESS"):
                self.assertEqual(self.table(f"cat part.zrfx --result {name}"),
                                 self.table(f"cat {part.lower()}.zrfx --result {name}"))

    def test_what_cannot_be_put_together_leaves_nothing(self):
        (self.folder / "bad.zrfx").write_text("no archive")
        for files, code, message in [
                ("a.zrfx", 2, "merge: there is nothing to put together with one file"),
                ("a.zrfx bad.zrfx", 1, "bad.zrfx: not a ZIP archive, or its end is missing"),
                ("a.zrfx none.zrfx", 1, "none.zrfx: File not found")]:
            run = self.zrfx(f"merge {files} -o out.zrfx")
            self.assertEqual((run.returncode, run.stdout, run.stderr),
                             (code, "", f"zrfx: {message}\n"))
            self.assertEqual(list(self.folder.glob("*out*")), [])


if __name__ == "__main__":
    unittest.main()
