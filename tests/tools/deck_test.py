#!/usr/bin/env python3
"""Results of CalculiX imported with the deck that they come from.

    deck_test.py PROGRAM DeckTest         decks made here
    deck_test.py PROGRAM PackageTest      those of Debian's calculix-ccx-test with reference results;
                                          exit code 77 where they are not installed
"""

import csv
import gzip
import io
import json
import os
import pathlib
import re
import sys
import unittest

from frd_files import END, HEAD, displacement
from tool_case import ToolCase

PACKAGE = pathlib.Path("/usr/share/doc/calculix-ccx-test/examples/test")

# Faces of the solver's volumes, from its manual: places of corners, from 1.
FACES = {"Hexahedron": ["1234", "5876", "1562", "2673", "3784", "4851"],
         "Tetrahedron": ["123", "142", "243", "341"],
         "Pentahedron": ["123", "456", "1254", "2365", "3146"]}
# Two of the solver's corners are the other way round here.
PLACES = {"Hexahedron": "12345678", "Tetrahedron": "1234", "Pentahedron": "132465"}

DECK = """** The tetrahedron of the results.
*NODE, NSET=All
1, 0, 0, 0
2, 1, 0, 0
3, 0, 1, 0
4, 0, 0, 1
*ELEMENT, TYPE=C3D4, ELSET=Solid
1, 1, 2, 3,
4
*MATERIAL, NAME=Steel
"""


class DeckCase(ToolCase):
    def contents(self, file):
        """Sets of elements by name, and parts by name with the types and nodes of their elements."""
        model = json.loads(self.output(f"info {file} --json"))["databases"][0]
        sets, parts = {}, {}
        for item in model["sets"]:
            rows = self.table(f"cat {file} --block Set:{item['id']}")
            sets[item["name"]] = sorted(int(row["element_id"]) for row in rows)
        ids = [int(row["id"]) for row in self.table(f"cat {file} --block Nodes:1")]
        for block, part in enumerate(model["parts"], 1):
            rows = csv.reader(io.StringIO(self.output(f"cat {file} --block Elements:{block} --csv")))
            parts[part["name"]] = [(row[1], [ids[int(n)] for n in row[2:]])
                                   for row in list(rows)[1:]]
        return sets, parts


class DeckTest(DeckCase):
    def setUp(self):
        super().setUp()
        self.frd = self.folder / "job.frd"
        self.frd.write_text(HEAD + displacement(1) + END)

    def imported(self, deck, **files):
        """What is printed besides the summary, and the contents."""
        (self.folder / "job.inp").write_text(DECK + deck)
        for name, text in files.items():
            (self.folder / f"{name}.inp").write_text(text)
        printed = self.output("import job.frd out.zrfx --deck job.inp").split("\n", 1)[1]
        self.assertIn("0 errors, 0 warnings", self.output("check out.zrfx"))
        return printed, *self.contents("out.zrfx")

    def test_sets_are_found_however_they_are_written(self):
        for deck, nodes in [
                ("*NSET, NSET=A\n1, 2,\n4\n", [1, 2, 4]),
                ("*nset,\n nset = A , generate\r\n1, 3, 2\n", [1, 3]),
                ("*NSET, NSET=A,\n1, 2,\n4\n", [1, 2, 4]),
                ("*NSET, NSET=a\n3\n*NSET, NSET=\"A\"\n1, 3\n", [1, 3]),
                ("*NSET, NSET=B\n2, 3\n*NSET, NSET=C\nb\n*NSET, NSET=A\nC, 1\n", [1, 2, 3]),
                ("*NSET, NSET=A\n*INCLUDE, INPUT=more.inp\n4\n", [2, 4]),
                ("*SURFACE, NAME=A, TYPE=NODE\n3\n", [3]),
                ("*NSET, NSET=A, GENERATE\n2, 2147483647\n", [2, 3, 4]),
                ("*NSET, NSET=A\nA, 1\nA, A\n", [1])]:
            printed, _, parts = self.imported(deck, more="**\n2\n")
            points = {name.upper(): own for name, own in parts.items()}["A"]
            self.assertEqual(points, [("Point", [n]) for n in nodes], deck)
            self.assertEqual("results lack" in printed, "21474" in deck)

    def test_sections_become_parts(self):
        for deck, name in [("*SOLID SECTION, ELSET=SOLID, MATERIAL=Steel\n", "SOLID (Steel)"),
                           ("*SOLIDSECTION,MATERIAL=Steel,ELSET=Solid\n", "Solid (Steel)"),
                           ("*SOLID SECTION, ELSET=None, MATERIAL=Steel\n", "STEEL"), ("", "STEEL")]:
            printed, sets, parts = self.imported(deck)
            self.assertEqual((printed, sets), ("", {"Solid": [1]}))
            self.assertEqual(parts, {name: [("Tetrahedron", [1, 2, 3, 4])]}, deck)

    def test_surfaces_become_parts_of_their_faces(self):
        for face, corners in enumerate(FACES["Tetrahedron"], 1):
            for item in ("1", "solid"):
                _, _, parts = self.imported(f"*SURFACE, NAME=Top\n{item}, S{face}\n")
                [(kind, nodes)] = parts["Top"]
                self.assertEqual((kind, sorted(nodes)), ("Triangle", sorted(map(int, corners))))
        hidden = json.loads(self.output("info out.zrfx --json"))["cases"][0]["properties"]
        self.assertEqual([p["values"].get("visible") for p in hidden[2:]], [None, False])
        rows = self.table("cat out.zrfx --result DISP --part Top")
        self.assertEqual([row["node"] for row in rows], ["1", "3", "4"])

    def test_what_the_results_lack_is_told(self):
        for deck, note in [
                ("*NSET, NSET=A\n1, 99\n", "the set of nodes A has nodes that the results lack\n"),
                ("*ELSET, ELSET=A\n1, Nothing\n",
                 "the set of elements A has elements that the results lack\n"),
                ("*SURFACE, NAME=A\nSolid, SPOS\n",
                 "the surface A has faces that are those of no volume\n"),
                ("*ELEMENT, TYPE=S3\n1, 1, 2, 3\n*SURFACE, NAME=A\n1, S1\n",
                 "the surface A has faces that are those of no volume\n")]:
            self.assertEqual(self.imported(deck)[0], note)

    def test_decks_that_are_not_sound_are_refused(self):
        os.mkfifo(self.folder / "pipe.inp")
        (self.folder / "loop.inp").write_text("*INCLUDE, INPUT=job.inp\n")
        for i in range(30):
            (self.folder / f"deep{i}.inp").write_text(f"*INCLUDE, INPUT=deep{i + 1}.inp\n")
        double = "*NSET, NSET=S0\n1\n" + "".join(
            f"*NSET, NSET=S{i}\n" + 2000 * f"S{i - 1}, 1, 2, 3, 4\n" for i in range(1, 200))
        for deck, error in [
                ("*INCLUDE, INPUT=nothing.inp\n",
                 "job.inp, line 11: 'nothing.inp': No such file or directory"),
                ("*INCLUDE, INPUT=loop.inp\n", "loop.inp, line 1: *INCLUDE of a file within itself"),
                ("*INCLUDE, INPUT=deep0.inp\n", "deep18.inp, line 1: too many files are included"),
                ("*INCLUDE, INPUT=pipe.inp\n",
                 "job.inp, line 11: 'pipe.inp' is no ordinary file"),
                ("*INCLUDE, INPUT=/dev/zero\n",
                 "job.inp, line 11: '/dev/zero' is no ordinary file"),
                ("*INCLUDE\n", "job.inp, line 11: *INCLUDE names no file"),
                ("*NSET, NSET=A, GENERATE\n1, 5, 0\n",
                 "job.inp, line 12: the step of a range is not positive"),
                (double, "the sets have too many items")]:
            (self.folder / "job.inp").write_text(DECK + deck)
            run = self.zrfx("import job.frd none.zrfx --deck job.inp", timeout=20)
            self.assertEqual((run.returncode, run.stdout), (1, ""), error)
            self.assertRegex(run.stderr, "^zrfx: job.inp: .*" + re.escape(error) + "\n$")
            self.assertFalse((self.folder / "none.zrfx").exists())
        run = self.zrfx("import job.frd none.zrfx --deck job.frd")
        self.assertEqual(run.stderr,
                         "zrfx: job.frd: this is no input deck: it has no keyword\n")
        run = self.zrfx("import job.frd none.zrfx --deck missing.inp")
        self.assertEqual(run.stderr, "zrfx: missing.inp: No such file or directory\n")

    def test_mesh_without_results_says_why(self):
        self.frd.write_text(HEAD + END)
        start = "the mesh is all that is in it, there are no results"
        for deck, reason in [
                ("", "the deck has no *STEP"),
                ("*STEP\n*NODE PRINT\n", "the deck asks for none: *NODE FILE and *EL FILE do"),
                ("*STEP\n*ELFILE\n",
                 "the deck asks for some, but the solver has written none; its messages say why")]:
            self.assertEqual(self.imported(deck)[0], f"{start}: {reason}\n")
        self.assertIn(f"{start}; --deck may tell why\n", self.output("import job.frd out.zrfx"))


# ---- The package, by a reader that knows nothing of the program


def read_deck(path):
    """Sets of nodes and elements, and faces of surfaces on volumes, by name in capitals."""
    nodes, elements, surfaces, volumes = {}, {}, {}, set()
    text = path.read_text(errors="replace").replace("\r", "")
    text = re.sub(r"(?m)^\*\*.*\n?", "", text)
    for card in re.split(r"(?m)^\*", text)[1:]:
        head, *lines = card.strip().split("\n")
        keyword, *parameters = head.upper().replace(" ", "").split(",")
        given = dict((p + "=").split("=")[:2] for p in parameters if p)
        rows = [[f.strip().upper() for f in line.split(",") if f.strip()] for line in lines if line]
        if keyword in ("NSET", "ELSET"):
            sets = nodes if keyword == "NSET" else elements
            own = sets.setdefault(given[keyword], set())
            for row in rows:
                if "GENERATE" in given:
                    first, last, step = (list(map(int, row)) + [1])[:3]
                    own.update(range(first, last + 1, step))
                else:
                    for item in row:
                        own.update({int(item)} if item.isdigit() else sets.get(item, set()))
        elif keyword == "NODE" and "NSET" in given:
            nodes.setdefault(given["NSET"], set()).update(int(row[0]) for row in rows)
        elif keyword == "ELEMENT":
            joined = re.sub(r",[ \t]*\n", ",", card).strip().split("\n")[1:]
            own = {int(line.split(",")[0]) for line in joined}
            if "ELSET" in given:
                elements.setdefault(given["ELSET"], set()).update(own)
            if re.match("C3D|F3D|DC3D", given["TYPE"]):
                volumes |= own
        elif keyword == "SURFACE" and given.get("TYPE") == "NODE":
            nodes.setdefault(given["NAME"], set()).update(
                n for row in rows for n in ({int(row[0])} if row[0].isdigit() else nodes[row[0]]))
        elif keyword == "SURFACE":
            surfaces[given["NAME"]] = [
                (e, row[1]) for row in rows
                for e in ([int(row[0])] if row[0].isdigit() else sorted(elements[row[0]]))
                if e in volumes]
    return nodes, elements, surfaces


class PackageTest(DeckCase):
    def test_sets_and_surfaces_are_those_of_the_decks(self):
        counts = {"decks": 0, "nodes": 0, "elements": 0, "faces": 0}
        for source in sorted(PACKAGE.glob("*.frd.ref*")):
            name = source.name.split(".")[0]
            data = source.read_bytes()
            data = gzip.decompress(data) if source.suffix == ".gz" else data
            deck = PACKAGE / f"{name}.inp"
            if not deck.exists() or len(data) > 10**6 and os.environ.get("NUO_LONG_TESTS") != "1":
                continue
            (self.folder / "job.frd").write_bytes(data)
            self.zrfx("import job.frd plain.zrfx")
            run = self.zrfx(f"import job.frd out.zrfx --deck {deck}")
            self.assertEqual((run.returncode, run.stderr), (0, ""), name)
            self.compare(name, read_deck(deck), counts)
            counts["decks"] += 1
        print(counts)
        self.assertGreater(min(counts.values()), 0)

    def compare(self, name, deck, counts):
        nodes, elements, surfaces = deck
        _, plain = self.contents("plain.zrfx")
        sets, parts = self.contents("out.zrfx")
        parts = {key.upper(): own for key, own in parts.items()}
        known = {int(row["id"]) for row in self.table("cat plain.zrfx --block Nodes:1")}
        types = {}
        for block, own in enumerate(plain.values(), 1):
            rows = self.table(f"cat plain.zrfx --block Elements:{block}")
            types |= {int(row["id"]): item for row, item in zip(rows, own)}
        expected = {key: sorted(own & set(types)) for key, own in elements.items()}
        self.assertEqual({key.upper(): own for key, own in sets.items()},
                         {key: own for key, own in expected.items() if own}, name)
        counts["elements"] += sum(map(len, sets.values()))
        for key, own in nodes.items():
            own &= known
            if own == known or not own:
                continue
            found = parts.get(key + " (NODES)", parts.get(key))
            self.assertEqual([n for _, [n] in found], sorted(own), (name, key))
            counts["nodes"] += len(own)
        for key, faces in surfaces.items():
            expected = []
            for element, label in faces:
                kind, own = types.get(element, ("", []))
                kind = kind.split("_")[0]
                if label[1:].isdigit() and kind in FACES:
                    corners = [PLACES[kind].index(c) for c in FACES[kind][int(label[1:]) - 1]]
                    expected.append({own[c] for c in corners})
            found = parts.get(key + " (SURFACE)", parts.get(key, []))
            self.assertEqual(sorted(sorted(nodes[:4 if kind.startswith("Quad") else 3])
                                    for kind, nodes in found), sorted(map(sorted, expected)), name)
            counts["faces"] += len(found)


if __name__ == "__main__":
    if "PackageTest" in sys.argv and not PACKAGE.is_dir():
        sys.exit(77)
    unittest.main()
