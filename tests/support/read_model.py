"""Reads the model that Model.cpp writes with nothing but Python's own modules, and checks it."""

import struct
import sys
import xml.etree.ElementTree as ElementTree
import zipfile

archive = zipfile.ZipFile(sys.argv[1])
assert archive.testzip() is None


def document(name):
    return ElementTree.fromstring(archive.read(name))


def tag(element):
    return element.tag.split("}")[-1]


def child(element, name):
    return next(c for c in element if tag(c) == name)


def values(name, code):
    data = archive.read("Database000\\" + name + ".dat")
    return list(struct.unpack("<%d%s" % (len(data) // 4, code), data))


def check(what, found, expected):
    assert found == expected, "%s: found %r, expected %r" % (what, found, expected)


# Registries.
main = document("ZRF.xml")
databases = [e for e in main.iter() if tag(e) == "Database"]
cases = [e for e in main.iter() if tag(e) == "Case"]
check("database ids", [e.get("ID") for e in databases], ["0", "7"])
check("database names", {e.get("Name") for e in databases}, {"Model Träger"})
check("case ids", [e.get("ID") for e in cases], ["3", "0"])
check("case name", cases[0].get("Name"), "View Träger")

# The table of contents names documents that are there, each of its block.
toc = document("Database000\\Database-TOC.xml")
lines = [(tag(e), e.get("ID"), e.get("File")) for e in toc]
check("blocks", len(lines), 18)
check("block twice", len(set(lines)), len(lines))
for block_type, block_id, name in lines:
    root = document(name)
    check(name, (tag(root), root.get("ID")), (block_type, block_id))

# Nodes and elements, value by value.
nodes = document("Database000\\Nodes\\Nodes0001.xml")
record = child(nodes, "File")
check("node count", record.get("NumItems"), "12")
xyz = [[i & 1, 0.5 * (i >> 1 & 1), -0.25 * (i >> 2)] for i in range(12)]
check("nodes", values(record.get("Filename"), "f"), sum(xyz, []))
check("node ids", values(record.get("IDs"), "i"), [100 + 7 * i for i in range(12)])

elements = document("Database000\\Elements\\Elements0001.xml")
groups = [e for e in elements if tag(e) == "ElementGroup"]
types = ["Hexahedron", "Tetrahedron", "Polyhedron", "Hexahedron"]
check("element types", [e.get("Type") for e in groups], types)
check("element counts", [child(e, "File").get("NumItems") for e in groups], ["1", "2", "2", "1"])
tetrahedrons = child(groups[1], "File")
check("connectivity", values(tetrahedrons.get("Filename"), "i"), [1, 2, 3, 5, 9, 10, 11, 12])
check("element ids", values(tetrahedrons.get("IDs"), "i"), [20, 30])
faces = child(groups[2], "PolyhedronFaceCounts")
check("faces", values(faces.get("Filename"), "i"), [4, 5])

# States, results and sets.
states = document("Database000\\StateInfo\\StateInfo0001.xml")
check("states", [e.get("Name") for e in states], ["Step Träger", "State 3", "Gravity", "Rest"])
check("state types", [e.get("RefType") for e in states], ["Time", "Frequency", "LoadCase", "Other"])
check("state group", states[0].get("Group"), "Group Träger")
result = document("Database000\\Results\\Results0002.xml")
check("result", (result.get("ResultType"), result.get("ResultMapping")), ("Displacement", "Node"))
tensors = document("Database000\\ResultValues\\ResultValues0003.xml")
check("dimensions", tensors.get("NumDimensions"), "6")
check("tensors", values(child(tensors, "File").get("Filename"), "f"),
      [1, 2, 3, 4, 5, 6, -1, -2, -3, -4, -5, -6.5])
load = document("Database000\\Set\\Set0001.xml")
items = [values(child(e, "File").get("Filename"), "i") for e in load]
check("sets", items, [[10, 20, 30], [3, 2, 1]])

# The case with all its files.
view = document("Case3\\Case.xml")
check("full database", view.get("FullDatabase"), "false")
check("properties", view.get("ZRFxProperties"), "ZRFxProperties.xml")
check("description", archive.read("Case3\\" + child(view, "Description").text).decode(),
      "<p>Träger</p>")
assert archive.read("Case3\\" + child(view, "Snapshot").text).startswith(b"\xff\xd8")
texture = archive.read("Case3\\Textures\\PartTexture_wood.raw")
check("texture", struct.unpack("<II", texture[:8]), (5, 3))
check("pixels", texture[8:], bytes([200, 100, 40]) * 15)
assert "eye" in archive.read("Case3\\ZRFxProperties.xml").decode()
