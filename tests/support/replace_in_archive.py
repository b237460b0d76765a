"""Replaces a text in the names and documents of an archive: replace_in_archive.py FILE FROM TO."""

import sys
import zipfile

path, old, new = sys.argv[1:]
with zipfile.ZipFile(path) as archive:
    entries = [(info.filename, archive.read(info)) for info in archive.infolist()]
with zipfile.ZipFile(path, "w") as archive:
    for name, data in entries:
        if name.endswith(".xml"):
            data = data.replace(old.encode(), new.encode())
        archive.writestr(name.replace(old, new), data)
