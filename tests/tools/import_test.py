#!/usr/bin/env python3
"""Imports good, damaged, truncated and growing result files with the program zrfx, from outside.

    import_test.py PROGRAM
"""

import json
import os
import pathlib
import signal
import subprocess
import sys
import tempfile
import time
import unittest

from frd_files import END, HEAD, displacement, result

ZRFX = sys.argv.pop(1)


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
        for content, reason in [("", "the file is empty"), (END, "it has no mesh"),
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

    def test_states_of_a_response_have_names_of_their_own(self):
        self.frd.write_text(HEAD + displacement(1) + displacement(2).replace(
            f"{1:12d}{2:12d}\n", f"{0:12d}{2:12d}\n") + displacement(3, analysis=4).replace(
            "7.50000E-01", "4.82000E+01") + displacement(4, analysis=4).replace(
            "1.00000E+00    ", "4.82000E+01    ", 1) + END)
        self.assertEqual(self.imported().returncode, 0)
        self.assertEqual([s["name"] for s in self.states()],
                         ["Step 1, increment 1", "Step 2, at 0.5", "Buckling factor 48.2",
                          "Buckling factor 48.2 (2)"])

    def test_vector_potential_is_no_displacement(self):
        self.frd.write_text(HEAD + result(1, "ELPOT", ["V"], [1, 2]) + displacement(2) + END)
        self.assertEqual(self.imported().returncode, 0)
        database = self.info()["databases"][0]
        self.assertEqual([(r["name"], r["type"]) for r in database["results"]],
                         [("V", "Scalar"), ("DISP", "Vector")])
        self.assertEqual(database["simulationType"], "Electromagnetic")

    def test_password_encrypts(self):
        self.frd.write_text(HEAD + displacement(1) + displacement(2) + END)
        password = self.frd.with_name("password")
        password.write_text("sesame\n")
        environment = dict(os.environ, ZRFX_NEW_PASSWORD="sesame")
        for options in (["--password-file", password], ["--password"],
                        ["--password", "--follow", "--timeout", "5"]):
            run = subprocess.run([ZRFX, "import", self.frd, self.out, *options],
                                 env=environment, capture_output=True, text=True)
            self.assertEqual((run.returncode, run.stderr), (0, ""), options)
            self.assertIn("needed", self.zrfx("info", self.out).stderr)
            shown = self.zrfx("info", self.out, "--password-file", password).stdout
            self.assertIn("binary, compressed, encrypted", shown)

    def test_two_runs_differ_in_nothing_but_the_date(self):
        other = self.out.with_name("other.zrfx")
        for out, day in ((self.out, "20"), (other, "21")):
            date = f"    1UDATE              {day}.november.2026\n    1UTIME              10:20:30\n"
            self.frd.write_text(HEAD.replace("    1UMAT", date + "    1UMAT") + displacement(1) + END)
            self.assertEqual(self.zrfx("import", self.frd, out).returncode, 0)
        run = self.zrfx("diff", self.out, other)
        self.assertEqual((run.returncode, run.stdout), (0, ""))
        self.assertIn("solver run        21.november.2026 10:20:30\n",
                      self.zrfx("info", other).stdout)

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

    def test_file_of_an_earlier_run_is_waited_for(self):
        self.append(HEAD + displacement(1) + END)
        hour_ago = time.time() - 3600
        os.utime(self.frd, (hour_ago, hour_ago))
        self.assertEqual(self.follow("--timeout", "0.3").wait(20), 1)
        process = self.follow()
        time.sleep(0.5)
        self.assertFalse(self.out.exists())
        self.frd.write_text(HEAD + displacement(1) + displacement(2) + END)
        self.assertEqual(process.wait(20), 0)
        self.assertEqual(len(self.states()), 2)
        self.assertEqual(process.stderr.read(),
                         f"zrfx: {self.frd}: holds the results of an earlier run; "
                         "waiting for those of the new one\n")

    def test_file_that_was_finished_at_once_is_followed(self):
        self.append(HEAD + displacement(1) + END)
        self.assertEqual(self.follow("--timeout", "5").wait(20), 0)
        self.assertEqual(len(self.states()), 1)

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
