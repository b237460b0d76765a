# Prints the entries of a ZIP archive, and for each document another one, named with "#shape"
# behind: the names of its elements with those of their attributes. For each: the number of bytes
# of its name, a blank, the name, the number of its bytes, a blank, the bytes.
import sys, zipfile, xml.etree.ElementTree

def shape(e):
    inner = []
    for child in map(shape, e):
        if child not in inner[-1:]:
            inner.append(child)
    text = e.tag.split('}')[1]
    if e.attrib:
        text += '[' + ' '.join(e.attrib) + ']'
    if inner:
        text += '(' + ' '.join(inner) + ')'
    return text

def put(*texts):
    for text in texts:
        sys.stdout.buffer.write(b'%d ' % len(text) + text)

with zipfile.ZipFile(sys.argv[1]) as z:
    for i in z.infolist():
        put(i.filename.encode(), z.read(i))
        if i.filename.endswith('.xml'):
            root = xml.etree.ElementTree.fromstring(z.read(i))
            put(i.filename.encode() + b'#shape', shape(root).encode())
