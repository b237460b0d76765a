#!/usr/bin/env python3
"""Imports good, damaged, truncated and growing result files with the program zrfx, from outside.

    import_test.py PROGRAM
"""

import json
import pathlib
import signal
import subprocess
import sys
import tempfile
import time
import unittest

ZRFX = sys.argv.pop(1)
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


class ImportTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.frd = pathlib.Path(folder.name) / "beam.frd"
        self.out = pathlib.Path(folder.name) / "beam.zrfx"

    def zrfx(self, *arguments):
        return subprocess.run([ZRFX, *map(str, arguments)], capture_output=True, text=True)

    def imported(self, *options):
        return self.zrfx("import", self.frd, self.out, *options)

    def info(self):
        run = self.zrfx("check", self.out)
        self.assertEqual(run.returncode, 0, run.stdout + run.stderr)
        return json.loads(self.zrfx("info", "--json", self.out).stdout)

    def states(self):
        return self.info()["databases"][0]["states"]

    def test_results_get_their_types_and_names(self):
        tensor = ["SXX", "SYY", "SZZ", "SXY", "SYZ", "SZX"]
        contact = ["COPEN", "CSLIP1", "CSLIP2", "CPRESS", "CSHEAR1", "CSHEAR2"]
        self.frd.write_text(
            HEAD + displacement(1) + result(1, "STRESS", tensor, [1, 2, 3, 4], kind=4) +
            result(1, "CONTACT", contact, [2, 4], kind=4) + result(1, "NDTEMP", ["T"], [1, 2, 3, 4]) +
            result(1, "OTHER", ["T"], [3, 99]) + result(1, "FLUX", ["F1", "F2", "F3"], [1], kind=2) +
            END)
        run = self.imported("--name", "Bälk", "--level", "9")
        self.assertEqual((run.returncode, run.stderr), (0, ""))
        self.assertIn("1 node with values that are not in the mesh were left out", run.stdout)
        info = self.info()
        results = {r["name"]: r["type"] for r in info["databases"][0]["results"]}
        expected = {"DISP": "Displacement", "STRESS": "Tensor", "T": "Scalar", "OTHER T": "Scalar",
                    "FLUX": "Vector"}
        self.assertEqual(results, expected | {name: "Scalar" for name in contact})
        self.assertEqual(info["databases"][0]["parts"], [{"geometry": 0, "id": 1, "name": "STEEL"}])
        self.assertEqual((info["cases"][0]["name"], info["compressed"]), ("Bälk", True))
        view = {p["classType"]: p["values"] for p in info["cases"][0]["properties"]}
        self.assertEqual(view["result_selection"]["displacement_result_id"], 1)
        self.assertEqual(view["result_selection"]["fringes_result_id"], 2)
        self.assertEqual(view["state_selection"]["state_ids"], [1])

    def test_states_have_what_the_analysis_says(self):
        kinds = ["LoadCase", "Time", "Frequency", "LoadCase", "Other"]
        for analysis, kind in enumerate(kinds):
            self.frd.write_text(HEAD + displacement(1, analysis) + displacement(2, analysis) + END)
            self.assertEqual(self.imported().returncode, 0)
            self.assertEqual([(s["id"], s["value"], s["type"]) for s in self.states()],
                             [(1, 0.25, kind), (2, 0.5, kind)])

    def test_whole_blocks_of_a_faulty_file_are_kept(self):
        good = HEAD + displacement(1) + displacement(2)
        for content, states, reason in [
                (good + displacement(3)[:-60], 2, "line 42: the file ends within the result DISP"),
                (good, 2, "line 34: the file ends without its end marker"),
                (good.replace("1.00000E+00 1.1", "1.00000E+00 ???") + displacement(3) + END, 1,
                 "line 19: the result DISP: these are no values")]:
            self.frd.write_text(content)
            run = self.imported()
            self.assertEqual(run.returncode, 1)
            self.assertIn(f"zrfx: {self.frd}: {reason}\n", run.stderr)
            self.assertEqual(len(self.states()), states)

    def test_failed_import_leaves_the_file_that_was_there(self):
        self.out.write_text("precious")
        for content, reason in [("", "line 1: the file ends without"), (END, "it has no mesh"),
                                ("rubbish\n", "line 1: this is no line of a CalculiX result file"),
                                (HEAD.replace(" 4\n -3", " 7\n -3") + END,
                                 "element 1 refers to node 7, which is not there")]:
            self.frd.write_text(content)
            run = self.imported()
            self.assertEqual(run.returncode, 1)
            self.assertIn(f"zrfx: {self.frd}: {reason}", run.stderr)
            self.assertEqual(self.out.read_text(), "precious")
        self.assertEqual([p.name for p in self.frd.parent.iterdir() if "zrfx" in p.name],
                         ["beam.zrfx"])

    def test_wrong_usage_is_told(self):
        self.frd.write_text(HEAD + END)
        for arguments in [(), (self.frd,), (self.frd, self.out, "--level", "10"),
                          (self.frd, self.frd), (self.frd, self.out, "--timeout", "3")]:
            run = self.zrfx("import", *arguments)
            self.assertEqual(run.returncode, 2, arguments)
            self.assertEqual(run.stderr.count("\n"), 1, run.stderr)
        self.assertEqual(self.zrfx("import", self.frd.parent, self.out).returncode, 1)
        self.assertEqual(self.frd.read_text(), HEAD + END)

    # ---- Growing files

    def follow(self, *options):
        process = subprocess.Popen([ZRFX, "import", "--follow", self.frd, self.out, *options],
                                   stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
        self.addCleanup(process.wait)
        self.addCleanup(process.kill)
        return process

    def append(self, text):
        with self.frd.open("a") as file:
            file.write(text)

    def wait_for_states(self, count):
        for _ in range(200):
            if self.out.exists() and len(self.states()) >= count:
                return
            time.sleep(0.05)
        self.fail(f"state {count} was not imported")

    def test_states_are_readable_while_the_solver_runs(self):
        process = self.follow()
        self.append(HEAD + displacement(1) + displacement(2)[:300])
        self.wait_for_states(1)
        self.assertEqual(len(self.states()), 1)
        self.append(displacement(2)[300:])
        self.wait_for_states(2)
        self.append(result(2, "NDTEMP", ["T"], [1, 2, 3, 4]) + END)
        self.assertEqual((process.wait(20), process.stderr.read()), (0, ""))
        self.assertEqual(len(self.states()), 2)
        self.assertEqual([r["states"] for r in self.info()["databases"][0]["results"]],
                         [[1, 2], [2]])

    def test_interrupted_follow_leaves_a_good_file(self):
        process = self.follow()
        self.append(HEAD + displacement(1) + displacement(2)[:300])
        self.wait_for_states(1)
        process.send_signal(signal.SIGINT)
        self.assertEqual(process.wait(20), 0)
        self.assertEqual(len(self.states()), 1)

    def test_file_that_is_made_again_before_it_is_written_is_followed(self):
        self.frd.write_text("    1C\n"[:4])
        process = self.follow("--timeout", "10")
        time.sleep(0.3)
        self.frd.unlink()
        time.sleep(0.3)
        self.append(HEAD + displacement(1))
        self.wait_for_states(1)
        self.frd.unlink()
        self.append("    1C\n")
        self.assertEqual(process.wait(20), 1)
        self.assertIn("written anew meanwhile", process.stderr.read())

    def test_solver_that_falls_silent_is_reported(self):
        self.append(HEAD + displacement(1))
        process = self.follow("--timeout", "0.5")
        self.assertEqual(process.wait(20), 1)
        self.assertIn("nothing more was written", process.stderr.read())
        self.assertEqual(len(self.states()), 1)


if __name__ == "__main__":
    unittest.main()
