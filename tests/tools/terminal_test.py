#!/usr/bin/env python3
"""The program zrfx on a terminal: colours, lines that fit, completion.

    terminal_test.py PROGRAM COMPLETION
"""

import fcntl
import os
import pathlib
import pty
import re
import shlex
import struct
import subprocess
import sys
import termios
import unittest
import zipfile

from frd_files import END, HEAD, displacement, result

COMPLETION = pathlib.Path(sys.argv.pop(2)).resolve()

from tool_case import ZRFX, ToolCase  # noqa: E402  (takes the program from the arguments)

TENSOR = ["SXX", "SYY", "SZZ", "SXY", "SYZ", "SZX"]
COLOUR = re.compile("\033\\[[0-9]+m")


class TerminalTest(ToolCase):
    def setUp(self):
        super().setUp()
        self.model("a", HEAD + displacement(1) + result(1, "STRESS", TENSOR, [1, 2, 3, 4], kind=4) + END)
        self.model("b", HEAD.replace("STEEL", "BRASS") + displacement(1) + END)

    def shown(self, arguments, columns=80, **environment):
        """What a terminal of that width is sent."""
        ours, its = pty.openpty()
        fcntl.ioctl(its, termios.TIOCSWINSZ, struct.pack("HHHH", 24, columns, 0, 0))
        process = subprocess.Popen([ZRFX, *shlex.split(arguments)], cwd=self.folder, stdout=its,
                                   env=os.environ | {"TERM": "xterm", "NO_COLOR": ""} | environment)
        os.close(its)
        text = b""
        try:
            while piece := os.read(ours, 4096):
                text += piece
        except OSError:  # how a terminal ends
            pass
        os.close(ours)
        process.wait()
        return text.decode().replace("\r", "")

    def test_colours_are_for_terminals_that_want_them(self):
        with zipfile.ZipFile(self.folder / "a.zrfx") as sound, \
                zipfile.ZipFile(self.folder / "bad.zrfx", "w") as bad:
            for name in sound.namelist():
                if not name.endswith("ResultValues0001.dat"):
                    bad.writestr(name, sound.read(name))
        for command, painted in [("info a.zrfx", "\033[1mdatabase\033[0m"),
                                 ("stats a.zrfx", '\033[1mDISP, state 1 "Step 1, increment 1"\033[0m'),
                                 ("diff a.zrfx b.zrfx", "\033[1mdatabase 0, name\033[0m: "),
                                 ("check bad.zrfx", "\033[31merror\033[0m: ")]:
            self.assertIn(painted, self.shown(command), command)
            for environment in ({"NO_COLOR": "1"}, {"TERM": "dumb"}):
                self.assertNotIn("\033", self.shown(command, **environment))
            self.assertNotIn("\033", self.zrfx(command).stdout)

    def test_lines_fit_the_terminal(self):
        for command in ("info a.zrfx", "stats a.zrfx", "list a.zrfx"):
            wide = COLOUR.sub("", self.shown(command, 500))
            self.assertEqual(wide, self.zrfx(command).stdout)
            self.assertGreater(max(map(len, wide.splitlines())), 80)
            narrow = COLOUR.sub("", self.shown(command, 80))
            self.assertLessEqual(max(map(len, narrow.splitlines())), 80, command)
            if not command.startswith("list"):  # which shortens names
                self.assertEqual(narrow.split(), wide.split())

    def test_names_of_the_file_are_completed(self):
        for line, words in [
                ("zrfx st", ["stats"]), ("zrfx copy --pa", ["--password", "--parts", "--password-file"]),
                ("zrfx stats a.zrfx --result ", ["DISP", "STRESS"]),
                ("zrfx stats a.zrfx --result S", ["STRESS"]),
                ("zrfx cat a.zrfx --part ", ["STEEL"]),
                ("zrfx copy a.zrfx c.zrfx --states ", ["Step\\ 1\\,\\ increment\\ 1", "last"]),
                ("zrfx cat a.zrfx --block No", ["Nodes:1"]),
                ("zrfx cat a.zrfx --block Results:", ["1", "2"]),
                ("zrfx stats nothing.zrfx --result ", []), ("zrfx diff a", ["a.zrfx"])]:
            self.assertEqual(sorted(self.completed(line)), sorted(words), line)

    def completed(self, line):
        words = re.findall(r":|[^\s:]+", line) + ([""] if line.endswith(" ") else [])
        script = (f"compopt() {{ :; }}; source {shlex.quote(str(COMPLETION))}; "
                  f"COMP_WORDS=({shlex.join(words)}); COMP_WORDS[0]={shlex.quote(ZRFX)}; "
                  f"COMP_CWORD={len(words) - 1}; _zrfx; printf '%s\\n' \"${{COMPREPLY[@]}}\"")
        run = subprocess.run(["bash", "-c", script], cwd=self.folder, capture_output=True, text=True)
        self.assertEqual(run.stderr, "")
        return run.stdout.split("\n")[:-1] if run.stdout.strip() else []

    def test_names_are_printed_for_scripts(self):
        self.assertEqual(self.output("names a.zrfx results"), "DISP\nSTRESS\n")
        self.assertEqual(self.output("names a.zrfx states"), "Step 1, increment 1\n")
        self.assertEqual(self.zrfx("names a.zrfx nodes").returncode, 2)


if __name__ == "__main__":
    unittest.main()
