#!/usr/bin/env python3
"""Files compared by what they mean, as those who solve do it.

    diff_test.py PROGRAM
"""

import json
import re
import unittest

from frd_files import END, HEAD, displacement, result
from tool_case import ToolCase

TENSOR = ["SXX", "SYY", "SZZ", "SXY", "SYZ", "SZX"]


def stress(step, nodes=(1, 2, 3, 4)):
    return result(step, "STRESS", TENSOR, nodes, kind=4)


def renumbered(frd):
    """Ids of nodes and of the element raised by 1000, the last node first; values stay with them."""
    frd = re.sub(r"(?m)^( -[12])((?: {9}\d)+)(?=$| )",
                 lambda m: m[1] + "".join(f"{int(i) + 1000:10d}" for i in m[2].split()), frd)
    frd = frd.replace(" -1         1    3", " -1      1001    3")
    nodes = re.search(r"((?: -1 {6}100\d.*\n){4}) -3", frd)[1]
    return frd.replace(nodes, "".join(reversed(nodes.splitlines(keepends=True))), 1)


class DiffTest(ToolCase):
    BODY = HEAD + displacement(1) + displacement(2) + stress(2)

    def setUp(self):
        super().setUp()
        self.model("a", self.BODY + END)

    def diff(self, content, options=""):
        """The lines that tell what another file has."""
        self.model("b", content + END)
        # Of both models the name is that of the file.
        run = self.zrfx(f"diff a.zrfx b.zrfx --ignore description --ignore name {options}")
        self.assertEqual(run.stderr, "")
        self.assertEqual(run.returncode, 1 if run.stdout else 0)
        return run.stdout.splitlines()

    def test_only_what_is_another_is_told(self):
        for content, expected in [
                (self.BODY, []),
                (HEAD + displacement(1) + result(1, "PE", ["PE"], [1, 2]) + stress(1) +
                 displacement(2) + stress(2),
                 ["database 0, result STRESS, state 1: only in b.zrfx",
                  "database 0, result PE: only in b.zrfx"]),
                (HEAD + displacement(1), [
                    'database 0, state 2 "Step 2, increment 1": only in a.zrfx',
                    "database 0, result STRESS: only in a.zrfx",
                    'case 0, properties, 0, values, fringes_result_id: "STRESS" and "DISP"',
                    "case 0, properties, 1, values, state_ids: [1,2] and [1]"]),
                (self.BODY.replace("1.00000E+00 0.00000E+00 0.00000E+00",
                                   "1.50000E+00 0.00000E+00 0.00000E+00", 1),
                 ["database 0, nodes: 1 of 4 lie elsewhere, farthest node 2 by 0.5: (1, 0, 0) and "
                  "(1.5, 0, 0)"]),
                (self.BODY.replace(" -2         1         2         3         4",
                                   " -2         1         3         2         4"),
                 ["database 0, elements: 1 of 1 have another type or other nodes, first element 1"]),
                (self.BODY.replace("STEEL", "BRASS"),
                 ["database 0, part STEEL: only in a.zrfx", "database 0, part BRASS: only in b.zrfx"])]:
            self.assertEqual(self.diff(content), expected)

    def test_items_are_those_of_one_id_in_any_order(self):
        nodes = [" -1         1 0.00000E+00 0.00000E+00 0.00000E+00\n",
                 " -1         2 1.00000E+00 0.00000E+00 0.00000E+00\n"]
        swapped = self.BODY.replace("".join(nodes), "".join(reversed(nodes)))
        self.assertNotEqual(swapped, self.BODY)
        self.assertEqual(self.diff(swapped), [])
        self.assertNotEqual(self.diff(swapped, "--exact"), [])

    def test_renumbered_model_differs_in_its_numbers_only(self):
        same = ["database 0, nodes: 4 of 4 are numbered otherwise; the rest is compared by position",
                "database 0, elements: 1 of 1 are numbered otherwise; the rest is compared by type "
                "and nodes"]
        self.assertEqual(self.diff(renumbered(self.BODY)), same)
        self.assertEqual(self.diff(renumbered(self.BODY), "--results-only"), [])
        changed = renumbered(self.BODY.replace("3.25000E+00", "3.75000E+00", 1))
        self.assertEqual(self.diff(changed)[2:], [
            "database 0, result DISP, state 1: 1 of 12 values differs",
            "  largest absolute difference 0.5 in z at node 3 of STEEL (0, 1, 0): 3.25 and 3.75",
            "  largest relative difference 0.13333334 in z at node 3 of STEEL (0, 1, 0): 3.25 and "
            "3.75"])

    def test_states_belong_together_by_their_values(self):
        # Another first state, so that each has the id of the one before it.
        shifted = HEAD + displacement(0) + displacement(1) + displacement(2) + stress(2)
        found = self.diff(shifted, "--ignore 'case *' --ignore name")
        self.assertEqual(found, ['database 0, state 1 "State 1": only in b.zrfx',
                                 "database 0, state 1, id: 1 and 2",
                                 "database 0, state 2, id: 2 and 3"])

    def test_largest_differences_are_found_with_their_places(self):
        changed = self.BODY.replace("4.12500E+00", "4.25000E+00", 1).replace(
            "1.00000E+00 1.12500E+00 1.25000E+00\n", "1.00000E+00 1.12500E+00         NaN\n", 1)
        self.model("b", changed + END)
        run = self.zrfx("diff a.zrfx b.zrfx --results-only --json")
        self.assertEqual(run.returncode, 1)
        found = json.loads(run.stdout)
        self.assertEqual((found["equal"], found["comparedValues"]), (False, 48))
        [difference] = found["differences"]
        at_node_4 = {"component": "y", "a": 4.125, "b": 4.25, "node": 4, "part": 1,
                     "partName": "STEEL", "position": [0.0, 0.0, 1.0]}
        relative = difference["relative"].pop("difference")
        self.assertAlmostEqual(relative, 0.125 / 4.25)
        self.assertEqual(difference["absolute"], {"difference": 0.125} | at_node_4)
        self.assertEqual(difference["relative"], at_node_4)
        self.assertEqual({key: difference[key] for key in list(difference)[:9]}, {
            "place": "database 0, result DISP, state 1",
            "text": "2 of 12 values differ, 1 with a value in one file only", "result": "DISP",
            "state": 1, "values": 12, "differing": 2, "undefinedInOne": 1, "itemsOnlyInA": 0,
            "itemsOnlyInB": 0})

    def test_tolerances_are_of_all_or_of_one_result(self):
        changed = HEAD + (displacement(1) + displacement(2) + stress(2)).replace(
            "4.25000E+00", "4.25001E+00")
        for options, expected in [
                ("", ["DISP", "DISP", "STRESS"]), ("--relative 1e-5", []),
                ("--absolute 2e-5", []), ("--floor 5", []),
                ("--absolute 1e-6", ["DISP", "DISP", "STRESS"]),
                ("--relative DISP=1e-5", ["STRESS"]), ("--absolute STRESS=1", ["DISP", "DISP"]),
                ("--relative 1e-5 --relative STRESS=0", ["STRESS"]),
                ("--ignore DISP", ["STRESS"]), ("--ignore 'result S*'", ["DISP", "DISP"]),
                ("--ignore 'state 2'", ["DISP"]),
                ("--ignore 'result DISP, state 2'", ["DISP", "STRESS"])]:
            found = [line.split("result ")[1].split(",")[0] for line in self.diff(changed, options)
                     if not line.startswith(" ")]
            self.assertEqual(found, expected, options)


if __name__ == "__main__":
    unittest.main()
