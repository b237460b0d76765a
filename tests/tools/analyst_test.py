#!/usr/bin/env python3
"""The program zrfx as those who solve meet it, from outside.

    analyst_test.py PROGRAM
"""

import json
import os
import subprocess
import unittest
import zipfile

from frd_files import END, HEAD, displacement, result
from tool_case import ToolCase

TENSOR = ["SXX", "SYY", "SZZ", "SXY", "SYZ", "SZX"]


def von_mises(t):
    squares = (t[0] - t[1]) ** 2 + (t[1] - t[2]) ** 2 + (t[2] - t[0]) ** 2
    return (squares / 2 + 3 * sum(s * s for s in t[3:])) ** 0.5


class AnalystTest(ToolCase):
    def setUp(self):
        super().setUp()
        self.model("beam", HEAD + displacement(1) + displacement(2) +
                   result(2, "STRESS", TENSOR, [1, 2, 3, 4], kind=4) + END)

    def damage(self, entry, name="damaged.zrfx"):
        """A copy of the model in which bytes of an entry are changed."""
        data = bytearray((self.folder / "beam.zrfx").read_bytes())
        info = next(i for i in zipfile.ZipFile(self.folder / "beam.zrfx").infolist()
                    if i.filename.endswith(entry))
        at = info.header_offset + 30 + len(info.filename)
        data[at] ^= 0x55
        data[at + 3] ^= 0x55
        (self.folder / name).write_bytes(data)
        return info.filename

    def test_results_are_shown_by_name_with_their_items(self):
        rows = self.table("cat beam.zrfx --result DISP")
        self.assertEqual(len(rows), 8)
        self.assertEqual(rows[1], {"state": "1", "state_value": "0.25", "node": "2", "x": "2",
                                   "y": "2.125", "z": "2.25"})
        rows = self.table("cat beam.zrfx --result STRESS --state last --component mises "
                          "--component xx --coordinates --node 3")
        tensor = [3 + i / 8 for i in range(6)]
        self.assertEqual([list(row) for row in rows],
                         [["node", "at_x", "at_y", "at_z", "von_mises", "xx"]])
        self.assertEqual([row["at_y"] for row in rows], ["1"])
        self.assertAlmostEqual(float(rows[0]["von_mises"]), von_mises(tensor), 5)
        rows = self.table("cat beam.zrfx --result DISP --component z --history --node 4 --node 1")
        self.assertEqual([(r["node"], r["state"], r["z"]) for r in rows],
                         [("1", "1", "1.25"), ("1", "2", "1.25"),
                          ("4", "1", "4.25"), ("4", "2", "4.25")])
        self.assertIn("# node x y z\n2 ", self.output(
            "cat beam.zrfx --result 1 --state 1 --part STEEL --node 2"))

    def test_items_without_a_value_are_named(self):
        self.model("hole", HEAD + displacement(1).replace("3.25000E+00", "        NaN") + END)
        shown = "cat hole.zrfx --result DISP --component z --component magnitude --state 1 --node 3"
        self.assertEqual(self.output(shown), "# node z magnitude\n3 UNDEF UNDEF\n")
        self.assertEqual(self.output(shown + " --csv"), "node,z,magnitude\n3,,\n")
        found = json.loads(self.output("stats hole.zrfx --json"))["statistics"]
        self.assertEqual([(s["quantity"], s["count"], s["undefined"]) for s in found],
                         [("x", 4, 0), ("y", 4, 0), ("z", 3, 1), ("magnitude", 3, 1)])

    def test_what_is_not_there_is_named(self):
        for arguments, message in [
                ("--result U", "there is no result 'U'; there are DISP, STRESS"),
                ("--result DISP --component xx",
                 "the result has no component 'xx'; it has x y z magnitude"),
                ("--result STRESS --state 1", "the result has no state '1'"),
                ("--result DISP --part Wood", "there is no part 'Wood'"),
                ("--result DISP --set Top", "there is no set 'Top'"),
                ("--result DISP --history", "a history needs --node or --element"),
                ("--result DISP --node 9", "the result has no values of the chosen items"),
                ("--block Nodes:7", "there is no block Nodes:7")]:
            run = self.zrfx("cat beam.zrfx " + arguments)
            self.assertEqual((run.returncode, run.stdout, run.stderr),
                             (1, "", f"zrfx: beam.zrfx: {message}\n"))
        self.assertEqual(self.zrfx("cat beam.zrfx").returncode, 2)

    def test_statistics_say_how_much_and_where(self):
        found = json.loads(self.output("stats beam.zrfx --json"))["statistics"]
        self.assertEqual([(s["result"], s["state"], s["quantity"]) for s in found],
                         [("DISP", state, q) for state in (1, 2)
                          for q in ("x", "y", "z", "magnitude")] +
                         [("STRESS", 2, q) for q in
                          ("xx", "yy", "zz", "xy", "yz", "zx", "von_mises", "principal_1",
                           "principal_2", "principal_3", "maximum_shear")])
        z = found[2]
        self.assertEqual((z["count"], z["undefined"], z["mean"]), (4, 0, 2.75))
        self.assertEqual(z["max"], {"value": 4.25, "node": 4, "part": 1, "partName": "STEEL",
                                    "position": [0.0, 0.0, 1.0]})
        self.assertEqual((z["min"]["value"], z["min"]["node"]), (1.25, 1))
        mises = found[14]
        expected = [von_mises([node + i / 8 for i in range(6)]) for node in (1, 2, 3, 4)]
        self.assertAlmostEqual(mises["mean"], sum(expected) / 4, 5)
        self.assertAlmostEqual(mises["max"]["value"], max(expected), 5)
        rows = self.table("stats beam.zrfx --result DISP --state 1")
        self.assertEqual((rows[2]["max"], rows[2]["max_id"], rows[2]["max_z"]), ("4.25", "4", "1"))
        self.assertIn("z               min 1.25 at node 1 of STEEL (0, 0, 0), max 4.25 at node 4 of "
                      "STEEL (0, 0, 1), mean 2.75 of 4\n", self.output("stats beam.zrfx"))
        self.assertIn("magnitude 1.9565595 to", self.output("info beam.zrfx"))

    def test_lost_output_is_a_failure(self):
        for arguments in ["properties --markdown", "info beam.zrfx --json", "list beam.zrfx",
                          "version", "--help", "check beam.zrfx", "import beam.frd out.zrfx"]:
            with open("/dev/full", "w") as full:
                run = self.zrfx(arguments, stdout=full)
            self.assertEqual((run.returncode, run.stderr),
                             (1, "zrfx: standard output: No space left on device\n"), arguments)

    def test_info_shows_what_damage_leaves(self):
        for entry, key in [("Nodes0001.xml", "nodes"), ("ResultValues0002.dat", "results"),
                           ("Elements0001.xml", "elements"), ("Results0001.xml", "results"),
                           ("StateInfo0001.xml", "states"), ("Database-TOC.xml", "blocks"),
                           ("Database.xml", "name"), ("Case.xml", "name")]:
            name = self.damage(entry)
            run = self.zrfx("info damaged.zrfx --json")
            self.assertEqual(run.returncode, 1, entry)
            self.assertEqual(run.stderr,
                             f"zrfx: damaged.zrfx: entry '{name}': damaged data\n"
                             "zrfx: damaged.zrfx: what depends on it is left out; zrfx check tells "
                             "all\n", entry)
            sound = json.loads(self.output("info beam.zrfx --json"))["databases"][0]
            shown = json.loads(run.stdout)["databases"][0]
            for other in {"nodes", "elements", "states", "parts"} - {key}:
                self.assertEqual(shown[other], sound[other], (entry, other))

    def test_damaged_entry_is_counted_once(self):
        archive = zipfile.ZipFile(self.folder / "beam.zrfx")
        for entry in archive.namelist():
            self.damage(entry)
            found = json.loads(self.zrfx("check damaged.zrfx --json").stdout)
            self.assertEqual([(e["check"], e["entry"]) for e in found["errors"]],
                             [("entry", entry)])

    def test_empty_file_is_called_empty(self):
        for name in ("a.zrfx", "a.frd", "a.msh"):
            (self.folder / name).touch()
        for command in ["info a.zrfx", "list a.zrfx", "check a.zrfx", "diff a.zrfx a.zrfx",
                        "import a.frd b.zrfx", "import a.msh b.zrfx"]:
            run = self.zrfx(command)
            file = command.split()[1]
            self.assertEqual((run.returncode, run.stderr),
                             (1, f"zrfx: {file}: the file is empty\n"), command)

    def test_wrong_usage_is_named(self):
        for arguments, message in [
                ("bogus", "there is no command 'bogus'"),
                ("help bogus", "COMMAND: there is no command 'bogus'"),
                ("diff a b --relative nan", "--relative: 'nan' is no number of 0 or more"),
                ("diff a b --absolute inf", "--absolute: 'inf' is no number of 0 or more"),
                ("diff a b --relative -1", "--relative: '-1' is no number of 0 or more"),
                ("check a --limit -1", "--limit: '-1' is no whole number of 0 or more"),
                ("check a --limit 1.5", "--limit: '1.5' is no whole number of 0 or more"),
                ("copy a b --level nan", "--level: 'nan' is no whole number from 0 to 9"),
                ("cat a --database x --block Nodes:1",
                 "--database: 'x' is no whole number of 0 or more")]:
            run = self.zrfx(arguments)
            self.assertEqual((run.returncode, run.stdout, run.stderr),
                             (2, "", f"zrfx: {message} (zrfx --help tells more)\n"))
        self.assertEqual(self.output("version"), self.output("--version"))
        self.assertEqual(self.output("help"), self.output("--help"))
        self.assertIn("zrfx import", self.output("help import"))

    def test_each_file_of_a_comparison_may_have_its_password(self):
        for name, password in (("a", "first"), ("b", "second")):
            (self.folder / name).write_text(password)
            self.output(f"copy beam.zrfx {name}.zrfx --new-password-file {name}")
        self.output("diff a.zrfx b.zrfx --password-file a --other-password-file b")
        run = self.zrfx("diff a.zrfx b.zrfx --password-file a",
                        env=os.environ | {"ZRFX_OTHER_PASSWORD": "second"})
        self.assertEqual((run.returncode, run.stderr), (0, ""))
        self.assertIn("zrfx: b.zrfx: the password is wrong",
                      self.zrfx("diff a.zrfx b.zrfx --password-file a").stderr)

    def test_folders_above_the_one_to_extract_to_are_made(self):
        self.output("extract beam.zrfx -o new/folder")
        self.assertTrue((self.folder / "new/folder/ZRF.xml").exists())

    def test_full_disk_is_told_once(self):
        disk = self.folder / "disk"
        disk.mkdir()
        mounted = subprocess.run(["mount", "-t", "tmpfs", "-o", "size=8k", "none", disk],
                                 capture_output=True)
        if mounted.returncode != 0:
            self.skipTest("no file system can be mounted here")
        self.addCleanup(subprocess.run, ["umount", disk])
        run = self.zrfx("extract beam.zrfx -o disk")
        self.assertEqual((run.returncode, run.stderr),
                         (1, "zrfx: disk: No space left on device\n"))


if __name__ == "__main__":
    unittest.main()
