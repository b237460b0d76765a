"""What tests of the program zrfx from outside share."""

import csv
import io
import pathlib
import shlex
import subprocess
import sys
import tempfile
import unittest

ZRFX = sys.argv.pop(1)


class ToolCase(unittest.TestCase):
    """A folder for files, in which the program runs."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def model(self, name, content):
        frd = self.folder / f"{name}.frd"
        frd.write_text(content)
        self.output(f"import {name}.frd {name}.zrfx")

    def zrfx(self, arguments, **options):
        options = {"stdout": subprocess.PIPE} | options
        return subprocess.run([ZRFX, *shlex.split(arguments)], cwd=self.folder, stderr=subprocess.PIPE,
                              text=True, **options)

    def output(self, arguments):
        run = self.zrfx(arguments)
        self.assertEqual((run.returncode, run.stderr), (0, ""), arguments)
        return run.stdout

    def table(self, arguments):
        """What pandas would read of a table in CSV: rows by the names of the columns."""
        return list(csv.DictReader(io.StringIO(self.output(arguments + " --csv"))))
